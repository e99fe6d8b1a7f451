#include "store/consistency.h"

#include "store/layout.h"
#include "store/row_rules.h"

using namespace Qt::StringLiterals;

namespace store {

namespace {

QString text(const SQLite::Column& column) {
    return QString::fromUtf8(column.getText(), column.getBytes());
}

void findDamage(Database& database, QStringList& faults) {
    SQLite::Statement check(database.engine(), "PRAGMA integrity_check(1000)");
    while (check.executeStep())
        if (const QString found = text(check.getColumn(0)); found != u"ok"_s)
            faults += u"ファイルの損傷: %1"_s.arg(found);
}

// A statement that selects contradicting rows, and the line made of each: a % and the number of the column.
struct Contradiction {
    std::string statement;
    const char16_t* line;
};

const Contradiction contradictions[] = {
    {"SELECT tblkzk_no1, tblkzk_nameg FROM tbl_kazoku WHERE " + lostSql<tbl_kazoku>() + " ORDER BY 1, 2",
     u"家族「%2」の檀家番号 %1 の檀家がありません。"},
    {"SELECT tblkak_no, tblkak_zokunameg FROM tbl_kakocho WHERE " + lostSql<tbl_kakocho>() + " ORDER BY 1, 2",
     u"過去帳「%2」の檀家番号 %1 の檀家がありません。"},
    {"SELECT tblhoy_no, tblhoy_zokunameg, tblhoy_kaiki_mei, tblhoy_kaiki_yymd FROM tbl_hohyo "
     "WHERE " +
         lostSql<tbl_hohyo>() + " ORDER BY 1, 2, 4",
     u"法要「%2 %3（%4）」の檀家番号 %1 の檀家がありません。"},
    {"SELECT tblkak_no, tblkak_zokunameg FROM tbl_kakocho JOIN tbl_kazoku ON tblkzk_no1 = tblkak_no "
     "AND tblkzk_dnknameg = tblkak_dnknameg AND tblkzk_nameg = tblkak_zokunameg WHERE " +
         isLiving.sql() + " ORDER BY 1, 2",
     u"過去帳「%2」の檀家番号 %1 の家族が、まだ存命とされています。"},
    {"SELECT tblhak_no, tblhak_dnk_no FROM tbl_ohaka WHERE tblhak_dnk_no <> " + literal(codes::noHousehold) + " AND " +
         lostSql<tbl_ohaka>() + " ORDER BY 1",
     u"お墓 %1 の檀家番号 %2 の檀家がありません。"},
    {"SELECT group_concat(tblhak_no, '、'), tblhak_banchi1, tblhak_banchi2 FROM tbl_ohaka WHERE " + isInUse.sql() +
         " GROUP BY tblhak_banchi1, tblhak_banchi2 HAVING count(*) > 1 ORDER BY 2, 3",
     u"使用中のお墓 %1 が同じ区画「%2」番地「%3」にあります。"},
    {"SELECT tblhak_no FROM tbl_ohaka WHERE " + isDisposed.sql() + " AND tblhak_haiki_ymd IS NULL ORDER BY 1",
     u"廃棄されたお墓 %1 に廃棄日がありません。"},
    {"SELECT tblhak_no, tblhak_haiki_kbn FROM tbl_ohaka WHERE NOT (" + isInUse.sql() + " OR " + isDisposed.sql() +
         ") ORDER BY 1",
     u"お墓 %1 の廃棄区分が 0 でも 1 でもありません: %2"},
    {"SELECT tbldnk_no1, tbldnk_no2, tbldnk_kanaidx, tbldnk_namek FROM tbl_danka "
     "WHERE tbldnk_kanaidx IS NOT substr(ifnull(tbldnk_namek, '') || ' ', 1, 1) ORDER BY 1, 2",
     u"檀家 %1-%2 のカナ索引「%3」が檀家名カナ「%4」の頭文字ではありません。"},
    {"SELECT kind, last, highest FROM (SELECT " + literal(codes::householdNumbers) +
         " AS kind, ifnull(max(tbldnk_no1), 0) AS highest FROM tbl_danka "
         "UNION ALL SELECT " +
         literal(codes::graveNumbers) +
         ", ifnull(max(tblhak_no), 0) FROM tbl_ohaka) LEFT JOIN (SELECT tblno_key2, tblno_sumino AS "
         "last FROM tbl_hatsuban WHERE tblno_key1 = 0) ON tblno_key2 = kind WHERE highest > ifnull(last, 0)",
     u"%1の発番「%2」が、登録されている最大の番号 %3 より小さくなっています。"},
};

} // namespace

QStringList findUnreadableTexts(SQLite::Database& engine) {
    // Covers older registers as well; a table without row numbers belongs to no register.
    SQLite::Statement tables(engine, "SELECT name FROM pragma_table_list WHERE schema = 'main' AND type = 'table' AND "
                                     "NOT wr AND name NOT LIKE 'sqlite~_%' ESCAPE '~'");
    QStringList faults;
    while (tables.executeStep()) {
        SQLite::Statement rows(engine, "SELECT rowid, * FROM \"" + tables.getColumn(0).getString() + "\" NOT INDEXED");
        while (rows.executeStep()) {
            for (int i = 0; i < rows.getColumnCount(); ++i) {
                const SQLite::Column field = rows.getColumn(i);
                if (field.isText() && !QUtf8StringView(field.getText(), field.getBytes()).isValidUtf8())
                    faults += u"表 %1 の %2 行目の %3 に文字として読めない値があります。"_s.arg(
                        text(tables.getColumn(0)), text(rows.getColumn(0)), QString::fromUtf8(field.getName()));
            }
        }
    }
    return faults;
}

void findFaults(Database& database, QStringList& faults) {
    findDamage(database, faults);
    const LayoutDifferences differences = compareLayout(database.engine());
    faults += differences.missing + differences.other + differences.extra;
    if (!differences.readable)
        return;
    faults += findUnreadableTexts(database.engine());
    for (const auto& [statement, line] : contradictions) {
        SQLite::Statement rows(database.engine(), statement);
        while (rows.executeStep()) {
            QString fault;
            for (const char16_t* at = line; *at; ++at)
                fault += *at == u'%' ? text(rows.getColumn(*++at - u'1')) : QString(QChar(*at));
            faults += fault;
        }
    }
}

} // namespace store
