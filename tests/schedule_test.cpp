#include "memorials/schedule_rules.h"

#include "support/register_fixture.h"
#include "support/test_desk.h"

#include <chrono>

using namespace Qt::StringLiterals;

namespace {

QString iso(QDate date) {
    return date.toString(Qt::ISODate);
}

// The same days by the standard library's calendar.
std::chrono::sys_days expectedDay(std::chrono::sys_days death, int row) {
    using namespace std::chrono;
    if (row < 2)
        return death + days(row == 0 ? 49 - 1 : 100 - 1);
    static constexpr std::array nth{1, 3, 7, 13, 17, 23, 27, 33, 50, 100, 200, 300};
    const int n = nth.at(static_cast<std::size_t>(row - 2));
    const year_month_day day = year_month_day(death) + years(n == 1 ? 1 : n - 1);
    return day.ok() ? sys_days(day) : sys_days(day.year() / day.month() / last);
}

TEST(Anniversaries, AgreeWithTheStandardLibraryForEveryDay) {
    using namespace std::chrono;
    const sys_days end = 2031y / January / 1;
    int leapDays = 0;
    for (sys_days death = 1890y / January / 1; death < end; death += days(1)) {
        const year_month_day ymd(death);
        const QDate date(static_cast<int>(ymd.year()), static_cast<int>(static_cast<unsigned>(ymd.month())),
                         static_cast<int>(static_cast<unsigned>(ymd.day())));
        leapDays += ymd.month() == February && ymd.day() == 29d;
        for (int row = 0; row < 14; ++row) {
            const QDate due =
                memorials::anniversaryDate(memorials::AnniversaryTable.at(static_cast<std::size_t>(row)), date);
            const auto since = expectedDay(death, row).time_since_epoch().count();
            ASSERT_EQ(due.toJulianDay(), QDate(1970, 1, 1).toJulianDay() + since)
                << iso(date).toStdString() << " " << row;
        }
    }
    EXPECT_EQ(leapDays, 34); // 1900 has none
}

class Schedule : public RegisterFixture {
  protected:
    Schedule() {
        context.dnk_no1 = 3;
        context.dnk_nameg = u"山田"_s;
        context.dnk_namek = u"ヤマダ"_s;
        context.kak_zokunameg = u"O'山田"_s;
        context.kak_zokunamek = u"オヤマダ"_s;
        context.kak_kaimyoug = u"釈正念"_s;
        context.kak_kaimyouk = u"シャクショウネン"_s;
        context.kak_mei_ymd = QDate(2008, 3, 1);
    }
    QString days() { return query(u"SELECT tblhoy_kaiki_mei, tblhoy_kaiki_yymd FROM tbl_hohyo ORDER BY 2"_s); }
    QString count() { return query(u"SELECT count(*) FROM tbl_hohyo"_s); }
    void expectPresent(const QString& label) {
        desk.expect(u"既に法要の"_s + label + u"は登録されています確認してください"_s, u"法要 登録"_s);
    }

    TestDesk desk{today};
};

TEST_F(Schedule, WritesFourteenWholeRowsOnce) {
    memorials::RegisterSchedule(context, desk);
    EXPECT_EQ(days(), u"49日,2008-04-18|100ｹ日,2008-06-08|1周忌,2009-03-01|3回忌,2010-03-01|7回忌,2014-03-01|"
                      "13回忌,2020-03-01|17回忌,2024-03-01|23回忌,2030-03-01|27回忌,2034-03-01|33回忌,2040-03-01|"
                      "50回忌,2057-03-01|100回忌,2107-03-01|200回忌,2207-03-01|300回忌,2307-03-01"_s);
    EXPECT_EQ(
        query(u"SELECT * FROM tbl_hohyo WHERE tblhoy_kaiki_mei = '3回忌'"_s),
        u"3,山田,ヤマダ,O'山田,オヤマダ,釈正念,シャクショウネン,2008-03-01,3回忌,0,2010-03-01,NULL,NULL,0,1,0,0,,,,0,"
        "NULL,0,,ヤ,2026-11-22"_s);
    for (const auto& anniversary : memorials::AnniversaryTable)
        expectPresent(QString::fromUtf16(anniversary.label));
    memorials::RegisterSchedule(context, desk);
    EXPECT_EQ(count(), u"14"_s);
}

TEST_F(Schedule, LeapDayEmptyKanaAndOneThatIsThere) {
    context.dnk_namek.clear();
    context.kak_mei_ymd = QDate(2008, 2, 29);
    execute(
        u"INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_danknameg, tblhoy_zokunameg, tblhoy_kaiki_yymd, tblhoy_kaiki_mei) "
        "VALUES (3, '山田', 'O''山田', '2010-02-28', 'by hand')"_s);
    expectPresent(u"3回忌"_s);
    memorials::RegisterSchedule(context, desk);
    EXPECT_EQ(days(), u"49日,2008-04-17|100ｹ日,2008-06-07|1周忌,2009-02-28|by hand,2010-02-28|7回忌,2014-02-28|"
                      "13回忌,2020-02-29|17回忌,2024-02-29|23回忌,2030-02-28|27回忌,2034-02-28|33回忌,2040-02-29|"
                      "50回忌,2057-02-28|100回忌,2107-02-28|200回忌,2207-02-28|300回忌,2307-02-28"_s);
    EXPECT_EQ(query(u"SELECT DISTINCT tblhoy_kanaidx FROM tbl_hohyo WHERE tblhoy_kaiki_mei <> 'by hand'"_s), u" "_s);
}

TEST_F(Schedule, IsWrittenWholeOrNotAtAll) {
    execute(u"CREATE TRIGGER full BEFORE INSERT ON tbl_hohyo WHEN NEW.tblhoy_kaiki_mei = '50回忌' "
            "BEGIN SELECT RAISE(ABORT, 'disk'); END"_s);
    EXPECT_THROW(memorials::RegisterSchedule(context, desk), std::exception);
    EXPECT_EQ(count(), u"0"_s);
}

TEST_F(Schedule, DeletionTakesAllOfOneDeceasedUpToAnotherHouseholdName) {
    const QString insert = u"INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_danknameg, tblhoy_zokunameg, tblhoy_kaiki_yymd, "
                           "tblhoy_kaiki_s, tblhoy_kaiki_mei) VALUES "_s;
    struct Case {
        QString rows;
        QString left;
    };
    const Case cases[] = {
        // Before the zero date, held or not, with and without a date: all of the deceased, nobody else's.
        {u"(3, '山田', 'O''山田', '1700-01-01', 0, 'a'), (3, '山田', 'O''山田', '2307-01-01', 1, 'b'), "
         "(3, '山田', 'O''山田', NULL, 0, 'c'), (3, '山田', 'O''山田2', '1700-01-01', 0, 'd'), "
         "(3, '山田', 'O', '1700-01-01', 0, 'e'), (4, '山田', 'O''山田', '1700-01-01', 0, 'f'), "
         "(2, '山田', 'O''山田', '1700-01-01', 0, 'g')"_s,
         u"d|e|f|g"_s},
        {u"(3, '山田', 'O''山田', '2001-01-01', 0, 'a'), (3, '山本', 'O''山田', '2002-01-01', 0, 'b'), "
         "(3, '山田', 'O''山田', '2003-01-01', 0, 'c')"_s,
         u"b|c"_s},
        {u"(5, '山田', 'O''山田', '2001-01-01', 0, 'a')"_s, u"a"_s},
    };
    for (const auto& [rows, left] : cases) {
        execute(u"DELETE FROM tbl_hohyo; "_s + insert + rows);
        memorials::DeleteMemorials(context);
        EXPECT_EQ(query(u"SELECT tblhoy_kaiki_mei FROM tbl_hohyo ORDER BY 1"_s), left);
    }
}

} // namespace
