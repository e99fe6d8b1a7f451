#include "reports/deceased.h"

#include "store/row_rules.h"
#include "store/table.h"

using namespace Qt::StringLiterals;

namespace reports {

std::vector<Deceased> selectDeceased(store::Database& database, EraForms& eras, const std::string& condition,
                                     const QStringList& values) {
    SQLite::Statement rows(
        database.engine(),
        "SELECT tblkak_no, tblkak_dnknameg, tblkak_zokunameg, tblkak_kaimyoug, tblkak_mei_ymd, tblkak_mei_gname, "
        "tblkak_mei_gyy, tbldnk_no1, tbldnk_toshug FROM tbl_kakocho LEFT JOIN tbl_danka ON " +
            store::householdSql<store::tbl_kakocho>() + " WHERE " + condition +
            " ORDER BY tblkak_dnknamek, tblkak_no, tblkak_zokunameg, tblkak_dnknameg;");
    int bound = 0;
    for (const QString& value : values)
        store::bindValue(rows, ++bound, value);
    std::vector<Deceased> found;
    while (rows.executeStep()) {
        Deceased& each = found.emplace_back();
        QString era;
        std::optional<std::int16_t> eraYear;
        store::readValue(rows.getColumn(0), each.household);
        store::readValue(rows.getColumn(1), each.householdName);
        store::readValue(rows.getColumn(2), each.secularName);
        store::readValue(rows.getColumn(3), each.posthumousName);
        store::readValue(rows.getColumn(4), each.death);
        store::readValue(rows.getColumn(5), era);
        store::readValue(rows.getColumn(6), eraYear);
        each.householdFound = !rows.getColumn(7).isNull();
        store::readValue(rows.getColumn(8), each.head);
        if (!each.death.isValid())
            found.pop_back(); // it is counted among those that cannot be read
        else
            each.deathText = eras.date(each.death, era, eraYear);
    }
    return found;
}

void noteDeceased(printing::Listing& list, store::Database& database, qint64 withoutHousehold) {
    SQLite::Statement undated(database.engine(), "SELECT count(*) FROM tbl_kakocho WHERE tblkak_mei_ymd IS NULL;");
    undated.executeStep();
    note(list, u"命日が登録されていない方：%1名（この表には載っていません。）"_s, undated.getColumn(0).getInt64());
    note(list, u"命日を読み取れない方：%1名（この表には載っていません。DBの整合性を確認して下さい。）"_s,
         unreadableDates(database, "tbl_kakocho", "tblkak_mei_ymd"));
    note(list, u"檀家情報を取得出来ない方：%1名（当主は空欄です。DBの整合性を確認して下さい。）"_s, withoutHousehold);
}

QString householdText(const Deceased& deceased) {
    return u"%1（%2）"_s.arg(deceased.householdName).arg(deceased.household);
}

} // namespace reports
