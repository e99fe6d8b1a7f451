#include "family/household_list.h"

using namespace Qt::StringLiterals;

namespace family {

void showHousehold(HouseholdBoxes& block, desk::ScreenContext& context, desk::Desk& desk, const QString& title) {
    block.frm21_dankag.text = context.dnk_nameg;
    if (!context.dnk_handedOver) {
        std::optional<store::tbl_danka> row;
        {
            store::Database database;
            row = store::find(database, store::idxdnk_no, context.dnk_no1, context.dnk_no2);
        }
        if (!row) {
            block.household = context;
            desk.notify(u"指定された檀家を読めません。DBの整合性を確認して下さい"_s, title);
            return;
        }
        context.publishHousehold(desk::HouseholdBlock::of(*row));
    }
    block.household = context;
    block.household.dnk_handedOver = false;
    block.frm21_dankag.text = context.dnk_nameg;
    block.frm12_yubinno.text = context.dnk_yubin;
    block.frm12_jyusho1.text = context.dnk_jyusho1;
    block.frm12_jyusho2.text = context.dnk_jyusho2;
    block.frm12_tel.text = context.dnk_tel;
    block.frm12_chiku.text = context.dnk_chiku;
    block.frm12_bikou.text = context.dnk_bikou;
}

void publishShown(const HouseholdBoxes& block, desk::ScreenContext& context) {
    context.publishHousehold(block.household);
}

} // namespace family
