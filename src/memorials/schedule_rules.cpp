#include "memorials/schedule_rules.h"

#include "store/selections.h"
#include "store/table.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace memorials {

namespace {

using Memorials = decltype(store::Table(std::declval<store::Database&>(), store::idxhoy_hohyo));

store::tbl_hohyo unreserved(const desk::ScreenContext& context, const QString& label, QDate date, QDate today) {
    store::tbl_hohyo row;
    row.tblhoy_no = context.dnk_no1;
    row.tblhoy_danknameg = context.dnk_nameg;
    row.tblhoy_danknamek = context.dnk_namek;
    row.tblhoy_zokunameg = context.kak_zokunameg;
    row.tblhoy_zokunamek = context.kak_zokunamek;
    row.tblhoy_kaimyog = context.kak_kaimyoug;
    row.tblhoy_kaimyok = context.kak_kaimyouk;
    row.tblhoy_meiymd = context.kak_mei_ymd;
    row.tblhoy_kaiki_mei = label;
    row.tblhoy_kaiki_yymd = date;
    row.tblhoy_kaiki_ampm = u"1"_s;
    row.tblhoy_kaiki_hour = std::int16_t{0};
    row.tblhoy_kaiki_mint = std::int16_t{0};
    row.tblhoy_ofuse = 0;
    row.tblhoy_kanaidx = store::kanaIndex(context.dnk_namek);
    row.tblhoy_add_ymd = today;
    return row;
}

// False when the deceased has a memorial on that day already.
bool AddAnniversary(Memorials& memorials, const desk::ScreenContext& context, const QString& label, QDate date,
                    QDate today) {
    if (memorials.seek(store::Seek::equal, context.dnk_no1, context.kak_zokunameg, date))
        return false;
    memorials.insert(unreserved(context, label, date, today));
    return true;
}

} // namespace

QDate anniversaryDate(const Anniversary& anniversary, QDate death) {
    return anniversary.unit == Unit::days ? death.addDays(anniversary.amount) : death.addYears(anniversary.amount);
}

void RegisterSchedule(desk::ScreenContext& context, desk::Desk& desk) {
    QStringList present;
    {
        store::Database database;
        store::Write write(database);
        Memorials memorials(database, store::idxhoy_hohyo);
        for (const Anniversary& anniversary : AnniversaryTable) {
            const auto label = QString::fromUtf16(anniversary.label);
            if (!AddAnniversary(memorials, context, label, anniversaryDate(anniversary, context.kak_mei_ymd),
                                desk.today()))
                present << label;
        }
        write.commit();
    }
    for (const QString& label : present)
        desk.notify(u"既に法要の%1は登録されています確認してください"_s.arg(label), u"法要 登録"_s);
}

void DeleteMemorials(desk::ScreenContext& context) {
    store::Database database;
    store::Write write(database);
    {
        Memorials memorials(database, store::idxhoy_hohyo);
        const auto& row = memorials.row();
        while (memorials.seek(store::Seek::atOrAfter, context.dnk_no1, context.kak_zokunameg) &&
               row.tblhoy_no == context.dnk_no1 && row.tblhoy_danknameg == context.dnk_nameg &&
               row.tblhoy_zokunameg == context.kak_zokunameg)
            memorials.remove();
    }
    write.commit();
}

} // namespace memorials
