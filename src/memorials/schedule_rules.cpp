#include "memorials/schedule_rules.h"

#include "store/codes.h"
#include "store/selections.h"
#include "store/table.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace memorials {

namespace {

using Memorials = decltype(store::Table(std::declval<store::Database&>(), store::idxhoy_hohyo));

store::tbl_hohyo unreserved(const store::tbl_kakocho& entry, const QString& label, QDate date, QDate today) {
    store::tbl_hohyo row;
    row.tblhoy_no = entry.tblkak_no;
    row.tblhoy_danknameg = entry.tblkak_dnknameg;
    row.tblhoy_danknamek = entry.tblkak_dnknamek;
    row.tblhoy_zokunameg = entry.tblkak_zokunameg;
    row.tblhoy_zokunamek = entry.tblkak_zokunamek;
    row.tblhoy_kaimyog = entry.tblkak_kaimyoug;
    row.tblhoy_kaimyok = entry.tblkak_kaimyouk;
    row.tblhoy_meiymd = entry.tblkak_mei_ymd;
    row.tblhoy_kaiki_mei = label;
    row.tblhoy_kaiki_yymd = date;
    row.tblhoy_kaiki_ampm = store::codes::morning;
    row.tblhoy_kaiki_hour = std::int16_t{0};
    row.tblhoy_kaiki_mint = std::int16_t{0};
    row.tblhoy_ofuse = 0;
    row.tblhoy_kanaidx = store::kanaIndex(entry.tblkak_dnknamek);
    row.tblhoy_add_ymd = today;
    return row;
}

// False when the deceased has a memorial on that day already.
bool AddAnniversary(Memorials& memorials, const store::tbl_kakocho& entry, const QString& label, QDate date,
                    QDate today) {
    if (memorials.seek(store::Seek::equal, entry.tblkak_no, entry.tblkak_zokunameg, date))
        return false;
    memorials.insert(unreserved(entry, label, date, today));
    return true;
}

} // namespace

QDate anniversaryDate(const Anniversary& anniversary, QDate death) {
    return anniversary.unit == Unit::days ? death.addDays(anniversary.amount) : death.addYears(anniversary.amount);
}

void RegisterSchedule(const store::tbl_kakocho& entry, desk::Desk& desk) {
    QStringList present;
    {
        store::Database database;
        store::Write write(database);
        Memorials memorials(database, store::idxhoy_hohyo);
        for (const Anniversary& anniversary : AnniversaryTable) {
            const auto label = QString::fromUtf16(anniversary.label);
            if (!AddAnniversary(memorials, entry, label, anniversaryDate(anniversary, entry.tblkak_mei_ymd),
                                desk.today()))
                present << label;
        }
        write.commit();
    }
    for (const QString& label : present)
        desk.notify(u"既に法要の%1は登録されています確認してください"_s.arg(label), u"法要 登録"_s);
}

void DeleteMemorials(const store::tbl_kakocho& entry, desk::Deletion& deletion) {
    store::Database database;
    deletion.write(database, [&](store::Records& taken) {
        Memorials memorials(database, store::idxhoy_hohyo);
        memorials.seek(store::Seek::atOrAfter, entry.tblkak_no, entry.tblkak_zokunameg);
        const int deleted = memorials.removeWhile([&](const store::tbl_hohyo& row) {
            if (row.tblhoy_no != entry.tblkak_no || row.tblhoy_danknameg != entry.tblkak_dnknameg ||
                row.tblhoy_zokunameg != entry.tblkak_zokunameg)
                return false;
            taken.take(memorials);
            return true;
        });
        return deleted > 0;
    });
}

} // namespace memorials
