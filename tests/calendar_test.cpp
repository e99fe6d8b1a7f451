#include "calendar/date_groups.h"
#include "calendar/eras.h"
#include "calendar/spoken_date.h"

#include "support/register_fixture.h"
#include "support/test_desk.h"
#include "values/dates.h"

using namespace Qt::StringLiterals;

namespace {

const QString unknownEra = u"元号の変換が出来ません。入力した元号・ﾃﾞｰﾀ･ﾍﾞｰｽの整合性をﾁｪｯｸしてください"_s;

class Calendar : public RegisterFixture {
  protected:
    store::Database database;
    TestDesk desk{today};
};

TEST_F(Calendar, HoldsTheErasOfTheHandbooks) {
    EXPECT_EQ(
        query(u"SELECT tblnen_nengo || tblnen_snen FROM tbl_nengo ORDER BY tblnen_snen DESC"_s).replace(u'|', u' '),
        u"令和2019 平成1989 昭和1926 大正1912 明治1868 慶応1865 元治1864 文久1861 万延1860 安政1854 "
        "嘉永1848 弘化1844 天保1830 文政1818 文化1804 享和1801 寛政1789 天明1781 安永1772 明和1764 "
        "宝暦1751 寛延1748 延享1744 寛保1741 元文1736 享保1716 正徳1711 宝永1704 元禄1688 貞享1684 "
        "天和1681 延宝1673 寛文1661 万治1658 明暦1655 承応1652 慶安1648 正保1644 寛永1624 元和1615 "
        "慶長1596 文禄1592 天正1573 元亀1570 永禄1558 弘治1555 天文1532 享禄1528 大永1521 永正1504"_s);
    // Each ends in the year in which the next begins.
    EXPECT_EQ(query(u"SELECT count(*) FROM tbl_nengo a WHERE tblnen_enen = ifnull((SELECT min(tblnen_snen) "
                    "FROM tbl_nengo b WHERE b.tblnen_snen > a.tblnen_snen), 2050)"_s),
              u"50"_s);
}

TEST_F(Calendar, ConvertsByYearAloneAcrossOverlapsAndGaps) {
    const QString untouched = u"untouched"_s;
    const char* two = "('A', 1926, 1989), ('B', 1989, 2050)";
    const char* gap = "('A', 1926, 1980), ('B', 1990, 2050)";
    const char* inside = "('A', 1900, 2000), ('B', 1950, 1960)";
    const std::tuple<const char*, QDate, QString> cases[] = {
        {two, {1989, 1, 7}, u"B1年1月7日"_s},    {two, {1988, 12, 31}, u"A63年12月31日"_s},
        {two, {1925, 6, 1}, untouched},          {two, {2060, 1, 1}, u"B72年1月1日"_s},
        {gap, {1985, 1, 1}, u"B-4年1月1日"_s},   {gap, {1980, 12, 31}, u"A55年12月31日"_s},
        {inside, {1955, 1, 1}, u"B6年1月1日"_s}, {inside, {1970, 1, 1}, u"B21年1月1日"_s},
        {"('', 1900, 2000)", {1955, 1, 1}, {}}};
    for (const auto& [eras, date, expected] : cases) {
        execute(u"DELETE FROM tbl_nengo; INSERT INTO tbl_nengo VALUES "_s + QLatin1StringView(eras));
        if (expected == untouched)
            desk.expect(u"該当する年号がありません。確認して下さい。"_s, u"和暦に変換"_s);
        calendar::EraDate result{untouched, untouched, untouched};
        calendar::西暦変換(database, date, result, desk);
        EXPECT_EQ(result.full, expected) << date.year();
    }
}

TEST_F(Calendar, FillsTheBoxesAndShowsStoredDates) {
    desk::DateGroup group;
    calendar::CMB年号(database, group);
    EXPECT_EQ(group.era.items.first(3), QStringList({u"令和"_s, u"平成"_s, u"昭和"_s}));
    for (const auto& [box, last] : {std::pair{&group.year, 100}, {&group.month, 12}, {&group.day, 31}})
        EXPECT_EQ(box->items.first() + box->items.last(), u'1' + QString::number(last));
    // What was stored stands, whatever the era table says today.
    calendar::showDate(group, {u"平成"_s, std::int16_t{31}, std::int16_t{5}, std::int16_t{2}}, QDate(2019, 5, 2));
    EXPECT_EQ((QStringList{group.era.text, group.year.text, group.month.text, group.day.text, group.western.text}),
              QStringList({u"平成"_s, u"31"_s, u"5"_s, u"2"_s, u"2019/05/02"_s}));
}

TEST_F(Calendar, ReadsDatesAsTheyAreSpoken) {
    execute(u"INSERT INTO tbl_nengo VALUES ('無始', 0, 0)"_s);
    const std::pair<QString, QString> cases[] = {{u"２０２６年１１月２２日"_s, u"令和8 2026/11/22"_s},
                                                 {u"20261120"_s, u"令和8 2026/11/20"_s},
                                                 {u"２０２６１１２０"_s, u"令和8 2026/11/20"_s},
                                                 {u"18680101"_s, u"明治1 1868/01/01"_s},
                                                 {u"ｒ８／１１／２２"_s, u"令和8 2026/11/22"_s},
                                                 {u"R8/11/20"_s, u"令和8 2026/11/20"_s},
                                                 {u"令8.11.20"_s, u"令和8 2026/11/20"_s},
                                                 {u"れいわ８。１１。２０"_s, u"令和8 2026/11/20"_s},
                                                 {u"ﾍｲｾｲ31・4・30"_s, u"平成31 2019/04/30"_s},
                                                 {u"㍼64.1.7"_s, u"昭和64 1989/01/07"_s},
                                                 {u"昭64-1-7"_s, u"昭和64 1989/01/07"_s},
                                                 {u"h31-4-30"_s, u"平成31 2019/04/30"_s},
                                                 {u"元禄元年9月30日"_s, u"元禄1 1688/09/30"_s},
                                                 {u" 昭和 20 年 8 月 15 日"_s, u"昭和20 1945/08/15"_s},
                                                 {u"大1.7.30"_s, u"大正1 1912/07/30"_s},
                                                 {u"M1.1.1"_s, u"明治1 1868/01/01"_s},
                                                 {u"8.11.20"_s, u"令和8 2026/11/20"_s},
                                                 {u"8年11月20日"_s, u"令和8 2026/11/20"_s},
                                                 // No such day, no such era, not complete.
                                                 {u"R8.2.30"_s, {}},
                                                 {u"8.11.31"_s, {}},
                                                 {u"20261131"_s, {}},
                                                 {u"令和0.1.1"_s, {}},
                                                 {u"X8.1.1"_s, {}},
                                                 {u"慶3.1.1"_s, {}},
                                                 {u"無始8.1.1"_s, {}},
                                                 {u"14990101"_s, {}},
                                                 {u"令和8年11月"_s, {}},
                                                 {u"8.11"_s, {}},
                                                 {u"2026112"_s, {}},
                                                 {u"令和"_s, {}},
                                                 {{}, {}}};
    for (const auto& [typed, expected] : cases) {
        SCOPED_TRACE(typed.toStdString());
        const auto date = calendar::readSpoken(database, typed, today);
        EXPECT_EQ(date ? date->era + QString::number(date->year) + u' ' + values::dateText(date->date) : QString(),
                  expected);
        // Spread over the boxes it is what the check makes of them; anything else stays.
        desk::DateGroup group;
        group.era.text = typed;
        group.western.text = u"1999/09/09"_s;
        EXPECT_EQ(calendar::spreadSpoken(database, group, today), !expected.isEmpty());
        EXPECT_EQ(group.western.text, u"1999/09/09"_s);
        if (expected.isEmpty()) {
            EXPECT_EQ(group.era.text + group.year.text, typed);
        } else {
            desk::SaveAttempt attempt(context);
            EXPECT_EQ(calendar::checkDate(database, group, calendar::命日, context, desk), date->date);
            EXPECT_EQ(calendar::typedDate(database, group, today), date->date);
        }
    }
    EXPECT_EQ(calendar::readSpoken(database, u"8.11.20"_s, {}), std::nullopt);
    // A new era is the present one at once, and its first character its short name.
    execute(u"INSERT INTO tbl_nengo VALUES ('大明', 2026, 2050)"_s);
    for (const auto& typed : {u"1.11.20"_s, u"大1.11.20"_s})
        EXPECT_EQ(calendar::readSpoken(database, typed, today)->era, u"大明"_s);
    execute(u"DELETE FROM tbl_nengo WHERE tblnen_nengo = '令和'"_s);
    EXPECT_EQ(calendar::readSpoken(database, u"R8.11.22"_s, today), std::nullopt);
}

TEST_F(Calendar, TellsADateApart) {
    const std::tuple<QDate, bool, QString> cases[] = {
        {{2026, 11, 22}, true, u"2026/11/22（日） 満0歳"_s},  {{1945, 11, 22}, true, u"1945/11/22（木） 満81歳"_s},
        {{1945, 11, 23}, true, u"1945/11/23（金） 満80歳"_s}, {{2027, 1, 5}, true, u"2027/01/05（火）"_s},
        {{2020, 11, 23}, false, u"2020/11/23（月） 5年前"_s}, {{2025, 11, 23}, false, u"2025/11/23（日）"_s}};
    for (const auto& [date, birth, hint] : cases)
        EXPECT_EQ(calendar::dateHint(date, today, birth), hint);
    desk::DateGroup group;
    calendar::enterToday(database, group, desk);
    EXPECT_EQ(calendar::typedDate(database, group, today), today);
    EXPECT_EQ(group.western.text, QString());
}

TEST_F(Calendar, ChecksADateGroup) {
    struct Case {
        QString typed; // era|year|month|day
        QString western;
        QString marks;   // year, month, day, Western box: b black, r red; capital: moved to the front of the tab order
        QString message; // behind the field's name
        bool unknown = false;
    };
    const QString name = u"生年月日"_s;
    const QString missing = name + u"に正しく入力して下さい"_s;
    const QString whole = name + u"　年月日に正しく入力して下さい"_s;
    const Case cases[] = {{u"|||"_s, {}, u"bbbb"_s, {}},
                          {u"昭和|２５|０１| ５　"_s, u"1950/01/05"_s, u"bbbb"_s, {}},
                          {u"平成|0|3|1"_s, u"1988/03/01"_s, u"bbbb"_s, {}},
                          {u"平成|101|2|28"_s, u"2089/02/28"_s, u"bbbb"_s, {}},
                          {u"平成|20|2|３０"_s, u"2008/2/30"_s, u"rrrr"_s, whole},
                          {u"平成|32767|1|1"_s, u"34755/1/1"_s, u"rrrr"_s, whole},
                          {u"平成|40000|ｘ|3"_s, {}, u"Rrbb"_s, name + u"　年に正しく入力して下さい"_s},
                          {u"平成|1|x|"_s, {}, u"bRrb"_s, name + u"　月に正しく入力して下さい"_s},
                          {u"平成|1|2|ａ"_s, {}, u"bbRb"_s, name + u"　日に正しく入力して下さい"_s},
                          {u"平正|1|2|3"_s, {}, u"bbbb"_s, {}, true}};
    for (const auto& [typed, western, marks, message, unknown] : cases) {
        for (const bool required : {false, true}) {
            SCOPED_TRACE(typed.toStdString());
            desk::DateGroup group;
            desk::Combo* const boxes[] = {&group.era, &group.year, &group.month, &group.day};
            for (int i = 0; i < 4; ++i)
                boxes[i]->text = typed.section(u'|', i, i);
            group.western.text = u"1999/09/09"_s;
            desk::SaveAttempt attempt(context);
            if (unknown)
                desk.expect(unknownEra, u"檀家 登録"_s);
            const auto check = required ? calendar::checkRequiredDate : calendar::checkDate;
            EXPECT_EQ(check(database, group, calendar::生年月日, context, desk),
                      values::readDate(western).value_or(QDate()));
            EXPECT_EQ(group.western.text, western);
            EXPECT_EQ(context.chk_ymd, western);
            const bool absent = required && western.isEmpty();
            QString seen;
            for (const desk::Control* box :
                 std::initializer_list<desk::Control*>{&group.year, &group.month, &group.day, &group.western}) {
                const QChar mark = box->colour == desk::Colour::red ? u'r' : u'b';
                seen += box->first ? mark.toUpper() : mark;
            }
            EXPECT_EQ(seen, absent ? marks.first(3) + u'r' : marks);
            const QString expected = absent && message.isEmpty() ? missing : message;
            EXPECT_EQ(context.chk_msg, expected);
            EXPECT_EQ(attempt.failed(), !expected.isEmpty());
            EXPECT_EQ(group.era.keyboard, expected == missing);
            EXPECT_EQ(group.year.keyboard, expected == whole || marks.startsWith(u'R'));
            EXPECT_EQ(context.chk_dterr, attempt.failed() || unknown ? 1 : 0);
        }
    }
}

} // namespace
