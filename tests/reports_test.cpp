#include "reports/reports_rules.h"

#include "sample/sample_register.h"
#include "support/register_fixture.h"
#include "support/test_desk.h"

#include <QFile>

using namespace Qt::StringLiterals;
using printing::Listing;
using printing::ListingTable;

namespace {

class Reports : public RegisterFixture {
  protected:
    void addDead(const QString& rows) {
        execute(u"INSERT INTO tbl_kakocho (tblkak_no, tblkak_dnknameg, tblkak_dnknamek, tblkak_zokunameg, "
                "tblkak_kaimyoug, tblkak_mei_ymd, tblkak_mei_gname, tblkak_mei_gyy) VALUES "_s +
                rows);
    }
    Listing made(const QString& title, reports::Wish wish) {
        store::Database database;
        const auto& all = reports::reports();
        return std::ranges::find(all, title, &reports::Report::title)->make(database, wish);
    }
    // The headings, rows and sums of the last table, a line each.
    static QStringList linesOf(const Listing& list) {
        QStringList lines;
        const auto take = [&](const std::vector<QStringList>& rows) {
            for (const QStringList& cells : rows)
                lines << cells.join(u'|');
        };
        const auto& table = std::get<ListingTable>(list.blocks.back());
        for (const printing::ListingGroup& group : table.groups) {
            lines << group.heading;
            take(group.rows);
            take(group.sums);
        }
        take(table.sums);
        return lines;
    }
};

// The same year worked out by the engine alone, from the rows and from what the schedule says of each anniversary.
QString anniversariesSql(int year, bool byMonth) {
    return uR"(
        WITH kaiki(place, label, days, years) AS (VALUES
               (1, '49日', 48, 0), (2, '100ｹ日', 99, 0), (3, '1周忌', 0, 1), (4, '3回忌', 0, 2), (5, '7回忌', 0, 6),
               (6, '13回忌', 0, 12), (7, '17回忌', 0, 16), (8, '23回忌', 0, 22), (9, '27回忌', 0, 26),
               (10, '33回忌', 0, 32), (11, '50回忌', 0, 49), (12, '100回忌', 0, 99), (13, '200回忌', 0, 199),
               (14, '300回忌', 0, 299)),
             day AS (SELECT *, CASE WHEN days > 0 THEN date(tblkak_mei_ymd, '+' || days || ' days')
                                    WHEN substr(tblkak_mei_ymd, 6) = '02-29' AND (%1 % 4 <> 0 OR %1 % 100 = 0 AND %1 % 400 <> 0)
                                    THEN '%1-02-28'
                                    ELSE '%1' || substr(tblkak_mei_ymd, 5) END AS falls
                     FROM tbl_kakocho, kaiki
                     WHERE days > 0 OR CAST(substr(tblkak_mei_ymd, 1, 4) AS INTEGER) + years = %1)
        SELECT label || '|' || CAST(substr(falls, 6, 2) AS INTEGER) || '月' || CAST(substr(falls, 9, 2) AS INTEGER) || '日|' ||
               tblkak_kaimyoug || '|' || tblkak_zokunameg || '|' || tblkak_mei_gname || tblkak_mei_gyy || '年' ||
               CAST(substr(tblkak_mei_ymd, 6, 2) AS INTEGER) || '月' || CAST(substr(tblkak_mei_ymd, 9, 2) AS INTEGER) || '日|' ||
               tblkak_dnknameg || '（' || tblkak_no || '）|' ||
               coalesce((SELECT tbldnk_toshug FROM tbl_danka WHERE tbldnk_no1 = tblkak_no AND tbldnk_no2 = 0), '')
        FROM day WHERE substr(falls, 1, 4) = '%1'
        ORDER BY %2 falls, tblkak_dnknamek, tblkak_no, tblkak_zokunameg)"_s.arg(QString::number(year),
                                                                                byMonth ? QString() : u"place,"_s);
}

TEST_F(Reports, AnniversariesAreThoseThatTheRowsGive) {
    QFile::remove(store::Database::registerPath());
    sample::makeRegister(store::Database::registerPath(), 300, today);
    // What is registered as memorials does not count.
    execute(u"DELETE FROM tbl_hohyo"_s);
    addDead(
        u"(1, 'O''山', 'ｵ', 'うるう', '釈閏', '2024-02-29', '令和', 6), (2, '山', 'ヤ', '昔', '釈昔', '1728-02-29', "
        u"'享保', 13), "
        "(32000, '無', 'ム', '家なし', '釈無', '1989-01-05', '昭和', 64), (3, '山', 'ヤ', '日なし', '釈不', NULL, '', NULL)"_s);
    for (const int year : {1990, 2026, 2027, 2028, 2031})
        for (const int kind : {0, 1}) {
            QStringList expected = query(anniversariesSql(year, kind == 1)).split(u'|');
            const Listing list = made(u"年回表"_s, {.year = year, .kind = kind});
            QStringList found;
            for (const printing::ListingGroup& group : std::get<ListingTable>(list.blocks.back()).groups)
                for (QStringList cells : group.rows) {
                    if (kind == 0)
                        cells.prepend(group.heading.section(u'　', 0, 0));
                    else
                        cells.swapItemsAt(0, 1);
                    found += cells;
                }
            EXPECT_GT(expected.size(), 7 * 10) << year;
            EXPECT_EQ(found, expected) << year << " " << kind;
            EXPECT_EQ(list.notes.front(), u"命日が登録されていない方：1名（この表には載っていません。）"_s);
        }
    const Listing list = made(u"年回表"_s, {.year = 2027, .kind = 0});
    const auto& years = std::get<ListingTable>(list.blocks.front()).groups.front().rows;
    EXPECT_EQ(years[0].join(u'|'), u"49日|令和8年11月14日～令和9年11月13日|23回忌|平成17年（2005年）"_s);
    EXPECT_EQ(years[6].join(u'|'), u"17回忌|平成23年（2011年）|300回忌|享保13年（1728年）"_s);
    const Listing changeOver = made(u"年回表"_s, {.year = 2021, .kind = 0});
    EXPECT_EQ(std::get<ListingTable>(changeOver.blocks.front()).groups.front().rows[2][3],
              u"昭和64年・平成1年（1989年）"_s);
}

TEST_F(Reports, TellWhatIsMissing) {
    addDead(
        u"(9, '山', 'ヤ', '昔', '釈昔', '1503-03-01', '', NULL), (9, '山', 'ヤ', '今', '釈今', '2025-03-01', '令和', 7)"_s);
    execute(
        u"PRAGMA ignore_check_constraints = 1; INSERT INTO tbl_kakocho (tblkak_no, tblkak_zokunameg, tblkak_mei_ymd) VALUES (1, '不明', '1503-02-30')"_s);
    const Listing old = made(u"年回表"_s, {.year = 1802});
    EXPECT_EQ(linesOf(old), (QStringList{u"300回忌　1名"_s, u"3月1日|釈昔|昔|1503年3月1日|山（9）|"_s}));
    EXPECT_EQ(old.notes,
              (QStringList{u"命日を読み取れない方：1名（この表には載っていません。DBの整合性を確認して下さい。）"_s,
                           u"檀家情報を取得出来ない方：1名（当主は空欄です。DBの整合性を確認して下さい。）"_s}));
    const struct {
        QString title;
        reports::Wish wish;
        QString nothing;
    } cases[] = {
        {u"年回表"_s, {.year = 9999}, u"9999年に年回を迎えられる方は、過去帳に登録されていません。"_s},
        {u"年回表"_s, {.year = 1500}, u"1500年に年回を迎えられる方は、過去帳に登録されていません。"_s},
        {u"祥月命日表"_s,
         {.year = 2026, .month = 4},
         u"令和8年（2026年）4月が祥月命日の方は、過去帳に登録されていません。"_s},
        {u"檀家名簿"_s, {}, u"檀家が登録されていません。"_s},
        {u"お墓台帳"_s, {}, u"お墓が登録されていません。"_s},
        {u"管理費請求一覧"_s, {.year = 9999, .month = 12}, u"9999年12月に管理費を請求するお墓はありません。"_s},
        {u"法要予定表"_s, {.year = 9999, .month = 2}, {}}, // an empty calendar is one to write into
    };
    for (const auto& each : cases)
        EXPECT_EQ(made(each.title, each.wish).nothing, each.nothing);
}

TEST_F(Reports, DeathDaysOfAMonthOrADay) {
    addDead(
        u"(1, '山', 'ヤ', '閏', '釈閏', '2024-02-29', '令和', 6), (1, '川', 'カ', '二八', '釈八', '2025-02-28', "
        u"'令和', 7), "
        "(1, '谷', 'タ', '三月', '釈三', '2024-03-29', '令和', 6), (1, '谷', 'タ', '先', '釈先', '2031-02-28', '令和', 13)"_s);
    const QString leap = u"釈閏|閏|令和6年2月29日|%1年|%2|山（1）|"_s;
    const QString other = u"釈八|二八|令和7年2月28日|%1年|%2|川（1）|"_s;
    const struct {
        reports::Wish wish;
        QStringList lines;
    } cases[] = {
        {{.year = 2027, .month = 2},
         {u"28日　2名"_s, other.arg(2).arg(u"3回忌"_s), leap.arg(3).arg(QString()), u"29日　1名"_s,
          leap.arg(3).arg(QString())}},
        {{.year = 2028, .month = 2},
         {u"28日　1名"_s, other.arg(3).arg(QString()), u"29日　1名"_s, leap.arg(4).arg(QString())}},
        {{.year = 2026, .month = 2, .day = 28},
         {u"28日　2名"_s, other.arg(1).arg(u"1周忌"_s), leap.arg(2).arg(u"3回忌"_s)}},
        {{.year = 2028, .month = 2, .day = 29}, {u"29日　1名"_s, leap.arg(4).arg(QString())}},
    };
    for (const auto& each : cases)
        EXPECT_EQ(linesOf(made(u"祥月命日表"_s, each.wish)), each.lines) << each.wish.year << each.wish.day;
}

TEST_F(Reports, HouseholdsGravesAndFees) {
    execute(uR"(
        INSERT INTO tbl_danka (tbldnk_no1, tbldnk_no2, tbldnk_nameg, tbldnk_namek, tbldnk_kanaidx, tbldnk_chiku, tbldnk_toshug) VALUES
          (1, 0, '山田', 'ヤマダ', 'ヤ', '乙地区', '山田一'), (1, 1, '分家', 'ヤマダ', 'ヤ', '', '山田二'),
          (2, 0, '青木', 'あおき', 'あ', '甲地区', '青木一'), (3, 0, '愛', 'ｱｲ', 'ｱ', '乙地区', '愛一');
        INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_nameg, tblkzk_zokugara, tblkzk_sei_ymd, tblkzk_seishikbn) VALUES
          (1, '山田', '子', '長男', '1990-01-01', '0'), (1, '山田', '父', '本人', '1960-01-01', '0'), (1, '山田', '祖父', '', '1930-01-01', '1');
        INSERT INTO マスタ (マ_区分, マ_NO, マ_名称, マ_略称) VALUES (2, 90, '乙地区', '乙地区'), (2, 91, '甲地区', '甲地区');
        INSERT INTO tbl_ohaka (tblhak_no, tblhak_banchi1, tblhak_banchi2, tblhak_dnk_no, tblhak_haiki_kbn, tblhak_haiki_ymd,
            tblhak_kanri_ryokin, tblhak_kanri_nxymd, tblhak_biko) VALUES
          (1, '東', '10', 1, 0, NULL, 5000, '2027-04-01', ''), (2, '東', '9', 2, 0, NULL, 7000, '2027-04-30', '角'),
          (3, '西', '1', 8, 0, NULL, NULL, '2027-12-31', ''), (4, '西', '2', 0, 1, '2025-01-01', 100, '2027-05-01', ''),
          (5, '西', '3', 1, 0, NULL, 300, '2028-01-01', ''))"_s);
    const auto numbers = [](const Listing& list, qsizetype column) {
        QStringList texts;
        for (const QString& line : linesOf(list))
            texts << (line.contains(u'|') ? line.section(u'|', static_cast<int>(column), static_cast<int>(column))
                                          : line);
        return texts.join(u' ');
    };
    EXPECT_EQ(numbers(made(u"檀家名簿"_s, {.kind = 0}), 0), u"あ　2件 3 2 や　2件 1 1-1"_s);
    EXPECT_EQ(numbers(made(u"檀家名簿"_s, {.kind = 1}), 0), u"乙地区　2件 3 1 甲地区　1件 2 地区の登録なし　1件 1-1"_s);
    EXPECT_EQ(numbers(made(u"檀家名簿"_s, {.kind = 2}), 9), u"あ　2件   や　2件 父（本人）、子（長男） "_s);
    EXPECT_EQ(numbers(made(u"お墓台帳"_s, {}), 1), u"区画 東　2基 2 1 区画 西　3基 3 4 5"_s);
    EXPECT_TRUE(linesOf(made(u"お墓台帳"_s, {})).contains(u"2|4||||||||100|令和9年5月1日|令和7年1月1日廃棄　"_s));
    const Listing fees = made(u"管理費請求一覧"_s, {.year = 2027});
    EXPECT_EQ(numbers(fees, 9), u"4月　2件 5,000 7,000 12,000 12月　1件  0 12,000"_s);
    EXPECT_EQ(fees.notes, (QStringList{u"金額の登録がないお墓：1件（合計には入っていません。）"_s,
                                       u"檀家情報を取得出来ないお墓：1件（当主と電話番号は空欄です。）"_s,
                                       u"廃棄済みで請求日が残っているお墓：1件（この表には載っていません。）"_s}));
    EXPECT_EQ(numbers(made(u"管理費請求一覧"_s, {.year = 2028, .month = 1}), 9), u"1月　1件 300 300 300"_s);
}

TEST_F(Reports, BookingsStandInTheirDays) {
    execute(uR"(
        INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_danknameg, tblhoy_zokunameg, tblhoy_kaiki_mei, tblhoy_kaiki_yymd, tblhoy_kaiki_rymd,
            tblhoy_kaiki_rs, tblhoy_kaiki_s, tblhoy_kaiki_ampm, tblhoy_kaiki_hour, tblhoy_kaiki_mint) VALUES
          (1, '山', 'あ', '3回忌', '2026-11-01', '2026-11-30', 1, 0, '2', 1, 30), (1, '山', 'い', '1周忌', '2026-11-02', '2026-11-30', 1, 0, '1', 10, 0),
          (1, '山', 'う', '済', '2026-11-03', '2026-11-30', 1, 1, '1', 9, 0), (1, '山', 'え', '翌月', '2026-11-04', '2026-12-01', 1, 0, '1', 9, 0))"_s);
    const Listing list = made(u"法要予定表"_s, {.year = 2026, .month = 11});
    const auto& days = std::get<printing::ListingCalendar>(list.blocks.front()).days;
    ASSERT_EQ(days.size(), 35U); // 1 November 2026 is a Sunday
    EXPECT_EQ(days[0].label, u"1"_s);
    EXPECT_EQ(days[29].entries, (QStringList{u"AM 10：00 山 1周忌"_s, u"PM 1：30 山 3回忌"_s}));
    EXPECT_EQ(days[30].label, QString());
    EXPECT_EQ(linesOf(list).front(), u"11月30日（月）　2件"_s);
}

TEST_F(Reports, BoxesAreReadAsPeopleTypeThem) {
    addDead(u"(1, '山', 'ヤ', '人', '釈', '2024-02-29', '令和', 6)"_s);
    const QString wrongYear = u"年を正しく入力して下さい（例：2027、令和9）"_s;
    const struct {
        QString title, year, month, day;
        QString heading; // what the list is of, or the message
    } cases[] = {
        {u"年回表"_s, u"2025"_s, {}, {}, u"令和7年（2025年）に年回を迎えられる方"_s},
        {u"年回表"_s, u"２０２５年"_s, u"99"_s, {}, u"令和7年（2025年）に年回を迎えられる方"_s},
        {u"年回表"_s, u"令和７"_s, {}, {}, u"令和7年（2025年）に年回を迎えられる方"_s},
        {u"年回表"_s, u" R7 "_s, {}, {}, u"令和7年（2025年）に年回を迎えられる方"_s},
        {u"年回表"_s, QString(), {}, {}, wrongYear},
        {u"年回表"_s, u"10000"_s, {}, {}, wrongYear},
        {u"年回表"_s, u"令和"_s, {}, {}, wrongYear},
        {u"祥月命日表"_s, u"平成31"_s, u"２月"_s, QString(), u"平成31年・令和1年（2019年）2月"_s},
        {u"祥月命日表"_s, u"2026"_s, u"2"_s, u"２９日"_s, u"令和8年（2026年）2月29日"_s},
        {u"祥月命日表"_s, u"2026"_s, u"2"_s, u"30"_s, u"日を1から29で入力して下さい"_s},
        {u"祥月命日表"_s, u"2026"_s, QString(), QString(), u"月を1から12で入力して下さい"_s},
        {u"祥月命日表"_s, u"2026"_s, u"13"_s, QString(), u"月を1から12で入力して下さい"_s},
        {u"管理費請求一覧"_s, u"2026"_s, QString(), QString(), u"令和8年（2026年）に請求　0件"_s},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE((each.title + each.year + each.month + each.day).toStdString());
        TestDesk desk(today);
        reports::帳票Form form;
        reports::beginReports(form, context, desk);
        EXPECT_EQ(form.帳票年.text, u"2027"_s);
        form.帳票種類.text = each.title;
        reports::chooseReport(form, context, desk);
        form.帳票年.text = each.year;
        form.帳票月.text = each.month;
        form.帳票日.text = each.day;
        const bool wrong = each.heading.contains(u"入力して下さい"_s);
        if (wrong)
            desk.expect(each.heading, u"帳票"_s);
        const auto list = reports::makeReport(form, desk);
        EXPECT_EQ(list.has_value(), !wrong);
        EXPECT_EQ(list ? list->range : each.heading, each.heading);
        desk.finish();
    }
}

} // namespace
