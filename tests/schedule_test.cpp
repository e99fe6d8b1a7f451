#include "memorials/schedule_rules.h"

#include "support/register_fixture.h"
#include "support/test_desk.h"

using namespace Qt::StringLiterals;

namespace {

class Schedule : public RegisterFixture {
  protected:
    Schedule() {
        entry.tblkak_no = 3;
        entry.tblkak_dnknameg = u"山田"_s;
        entry.tblkak_dnknamek = u"ヤマダ"_s;
        entry.tblkak_zokunameg = u"O'山田"_s;
        entry.tblkak_zokunamek = u"オヤマダ"_s;
        entry.tblkak_kaimyoug = u"釈正念"_s;
        entry.tblkak_kaimyouk = u"シャクショウネン"_s;
        entry.tblkak_mei_ymd = QDate(2008, 2, 29);
    }
    void add(const QString& rows) {
        execute(u"INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_danknameg, tblhoy_zokunameg, tblhoy_kaiki_yymd, "
                "tblhoy_kaiki_s, tblhoy_kaiki_mei) VALUES "_s +
                rows);
    }
    QString days() { return query(u"SELECT tblhoy_kaiki_mei, tblhoy_kaiki_yymd FROM tbl_hohyo ORDER BY 2"_s); }
    void expectPresent(const QString& label) {
        desk.expect(u"既に法要の"_s + label + u"は登録されています確認してください"_s, u"法要 登録"_s);
    }

    store::tbl_kakocho entry;
    TestDesk desk{today};
};

TEST_F(Schedule, WritesWholeRowsOfThoseNotThereYet) {
    add(u"(3, '山田', 'O''山田', '2010-02-28', 0, 'by hand')"_s);
    expectPresent(u"3回忌"_s);
    memorials::RegisterSchedule(entry, desk);
    const QString written = u"49日,2008-04-17|100ｹ日,2008-06-07|1周忌,2009-02-28|by hand,2010-02-28|7回忌,2014-02-28|"
                            "13回忌,2020-02-29|17回忌,2024-02-29|23回忌,2030-02-28|27回忌,2034-02-28|"
                            "33回忌,2040-02-29|50回忌,2057-02-28|100回忌,2107-02-28|200回忌,2207-02-28|"
                            "300回忌,2307-02-28"_s;
    EXPECT_EQ(days(), written);
    EXPECT_EQ(
        query(u"SELECT * FROM tbl_hohyo WHERE tblhoy_kaiki_mei = '1周忌'"_s),
        u"3,山田,ヤマダ,O'山田,オヤマダ,釈正念,シャクショウネン,2008-02-29,1周忌,0,2009-02-28,NULL,NULL,0,1,0,0,,,,0,"
        "NULL,0,,ヤ,2026-11-22"_s);
    for (const auto& anniversary : memorials::AnniversaryTable)
        expectPresent(QString::fromUtf16(anniversary.label));
    memorials::RegisterSchedule(entry, desk);
    EXPECT_EQ(days(), written);
}

TEST_F(Schedule, IsWrittenWholeOrNotAtAll) {
    refuseRows(u"tbl_hohyo"_s, u"tblhoy_kaiki_mei = '50回忌'"_s);
    EXPECT_THROW(memorials::RegisterSchedule(entry, desk), std::exception);
    EXPECT_EQ(days(), QString());
}

TEST_F(Schedule, DeletionTakesAllOfOneDeceasedUpToAnotherHouseholdName) {
    const std::pair<QString, QString> cases[] = {
        // Before the zero date, held or not, with and without a date: all of the deceased, nobody else's.
        {u"(3, '山田', 'O''山田', '1700-01-01', 0, 'a'), (3, '山田', 'O''山田', '2307-01-01', 1, 'b'), "
         "(3, '山田', 'O''山田', NULL, 0, 'c'), (3, '山田', 'O''山田2', '1700-01-01', 0, 'd'), "
         "(3, '山田', 'O', '1700-01-01', 0, 'e'), (4, '山田', 'O''山田', '1700-01-01', 0, 'f'), "
         "(2, '山田', 'O''山田', '1700-01-01', 0, 'g')"_s,
         u"d|e|f|g"_s},
        {u"(3, '山田', 'O''山田', '2001-01-01', 0, 'a'), (3, '山本', 'O''山田', '2002-01-01', 0, 'b'), "
         "(3, '山田', 'O''山田', '2003-01-01', 0, 'c')"_s,
         u"b|c"_s},
        {u"(5, '山田', 'O''山田', '2001-01-01', 0, 'a')"_s, u"a"_s}};
    for (const auto& [rows, left] : cases) {
        execute(u"DELETE FROM tbl_hohyo"_s);
        add(rows);
        desk::Deletion deletion(desk, {}, {});
        memorials::DeleteMemorials(entry, deletion);
        EXPECT_EQ(query(u"SELECT tblhoy_kaiki_mei FROM tbl_hohyo ORDER BY 1"_s), left);
    }
}

} // namespace
