#include "family/household_list.h"

using namespace Qt::StringLiterals;

namespace family {

void showHousehold(HouseholdBoxes& block, desk::ScreenContext& context, desk::Desk& desk, const QString& title) {
    block.frm21_dankag.text = context.dnk_nameg;
    if (context.dnk_yubin.isEmpty()) {
        bool found = false;
        {
            store::Database database;
            store::Table households(database, store::idxdnk_no);
            found = households.seek(store::Seek::equal, context.dnk_no1, context.dnk_no2);
            if (found)
                context.takeNames(households.row());
        }
        if (!found) {
            desk.notify(u"指定された檀家を読めません。DBの整合性を確認して下さい"_s, title);
            return;
        }
    }
    block.frm12_yubinno.text = context.dnk_yubin;
    block.frm12_jyusho1.text = context.dnk_jyusho1;
    block.frm12_jyusho2.text = context.dnk_jyusho2;
    block.frm12_tel.text = context.dnk_tel;
    block.frm12_chiku.text = context.dnk_chiku;
    block.frm12_bikou.text = context.dnk_bikou;
}

QString eraText(const QString& gname, std::optional<std::int16_t> gyy, std::optional<std::int16_t> gmm,
                std::optional<std::int16_t> gdd) {
    const auto digits = [](std::optional<std::int16_t> number) {
        return number ? QString::number(*number) : QString();
    };
    return gname + digits(gyy) + u'年' + digits(gmm) + u'月' + digits(gdd) + u'日';
}

} // namespace family
