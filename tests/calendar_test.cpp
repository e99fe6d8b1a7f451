#include "calendar/date_groups.h"
#include "calendar/eras.h"

#include "support/register_fixture.h"
#include "support/test_desk.h"
#include "values/dates.h"

#include <array>

using namespace Qt::StringLiterals;

namespace {

const QString noEra = u"該当する年号がありません。確認して下さい。"_s;
const QString noEraTitle = u"和暦に変換"_s;
const QString unknownEra = u"元号の変換が出来ません。入力した元号・ﾃﾞｰﾀ･ﾍﾞｰｽの整合性をﾁｪｯｸしてください"_s;
const QString unknownEraTitle = u"檀家 登録"_s;

class Calendar : public RegisterFixture {
  protected:
    void eras(const QString& values) {
        execute(u"DELETE FROM tbl_nengo"_s);
        if (!values.isEmpty())
            execute(u"INSERT INTO tbl_nengo VALUES "_s + values);
    }
    QString full(QDate date) {
        store::Database database;
        calendar::EraDate result{u"untouched"_s, u"untouched"_s, u"untouched"_s};
        calendar::西暦変換(database, date, result, desk);
        return result.full;
    }

    TestDesk desk{today};
};

// The common table as printed in handbooks, newest first: the year an era begins in is its first year.
QString handbook(int year) {
    static const auto pages =
        u"令和2019 平成1989 昭和1926 大正1912 明治1868 慶応1865 元治1864 文久1861 万延1860 安政1854 "
        "嘉永1848 弘化1844 天保1830 文政1818 文化1804 享和1801 寛政1789 天明1781 安永1772 明和1764 "
        "宝暦1751 寛延1748 延享1744 寛保1741 元文1736 享保1716 正徳1711 宝永1704 元禄1688 貞享1684 "
        "天和1681 延宝1673 寛文1661 万治1658 明暦1655 承応1652 慶安1648 正保1644 寛永1624 元和1615 "
        "慶長1596 文禄1592 天正1573 元亀1570 永禄1558 弘治1555 天文1532 享禄1528 大永1521 永正1504"_s.split(u' ');
    for (const QString& entry : pages) {
        const int first = entry.last(4).toInt();
        if (first <= year)
            return u"%1%2年2月28日"_s.arg(entry.chopped(4)).arg(year - first + 1);
    }
    return {};
}

TEST_F(Calendar, ConvertsEveryYearAsTheHandbooksDo) {
    for (int year = 1500; year <= 2400; ++year) {
        if (year < 1504)
            desk.expect(noEra, noEraTitle);
        EXPECT_EQ(full(QDate(year, 2, 28)), year < 1504 ? u"untouched"_s : handbook(year)) << year;
    }
    EXPECT_EQ(query(u"SELECT count(*), min(tblnen_snen), max(tblnen_enen) FROM tbl_nengo"_s), u"50,1504,2050"_s);
    EXPECT_EQ(query(u"SELECT count(*) FROM tbl_nengo a JOIN tbl_nengo b ON a.tblnen_enen = b.tblnen_snen"_s), u"49"_s);
}

TEST_F(Calendar, ConvertsByYearAloneAcrossOverlapsGapsAndEnds) {
    struct Case {
        QString eras;
        QDate date;
        QString expected; // empty: the no-era message
    };
    const QString two = u"('A', 1926, 1989), ('B', 1989, 2050)"_s;
    const QString gap = u"('A', 1926, 1980), ('B', 1990, 2050)"_s;
    const Case cases[] = {
        {two, {1989, 1, 7}, u"B1年1月7日"_s},
        {two, {1926, 12, 25}, u"A1年12月25日"_s},
        {two, {1988, 5, 5}, u"A63年5月5日"_s},
        {two, {1925, 6, 1}, {}},
        {two, {2060, 1, 1}, u"B72年1月1日"_s},
        {gap, {1985, 1, 1}, u"B-4年1月1日"_s},
        {u"('A', 1900, 2000), ('B', 1950, 1960)"_s, {1955, 1, 1}, u"B6年1月1日"_s},
        {u"('A', 1900, 2000), ('B', 1950, 1960)"_s, {1970, 1, 1}, u"B21年1月1日"_s},
        {u"('', 1900, 2000)"_s, {1955, 1, 1}, u"<empty>"_s},
        {{}, {2000, 1, 1}, {}},
    };
    for (const auto& [table, date, expected] : cases) {
        eras(table);
        if (expected.isEmpty())
            desk.expect(noEra, noEraTitle);
        const QString text = full(date);
        EXPECT_EQ(text.isEmpty() ? u"<empty>"_s : text, expected.isEmpty() ? u"untouched"_s : expected)
            << table.toStdString() << date.year();
    }
}

TEST_F(Calendar, CountsEraYearsOnInBothDirections) {
    struct Case {
        QString era;
        QString year;
        QString western; // empty: the message
    };
    const Case cases[] = {{u"平成"_s, u"1"_s, u"1989"_s},
                          {u"平成"_s, u"70"_s, u"2058"_s},
                          {u"平成"_s, u"0"_s, u"1988"_s},
                          {u"平成"_s, u"-3"_s, u"1985"_s},
                          {u"平成"_s, u"１０１"_s, u"2089"_s},
                          {u"平成"_s, u"2.5"_s, u"1990"_s},
                          {u"平成"_s, u"3.5"_s, u"1992"_s},
                          {u"平成"_s, u"40000"_s, {}},
                          {u"平正"_s, u"1"_s, {}},
                          {u""_s, u"1"_s, {}}};
    store::Database database;
    for (const auto& [era, year, western] : cases) {
        std::int16_t error = 7;
        if (western.isEmpty())
            desk.expect(unknownEra, unknownEraTitle);
        EXPECT_EQ(calendar::元号変換(database, era, year, error, desk), western) << year.toStdString();
        EXPECT_EQ(error, western.isEmpty() ? 1 : 7);
    }
}

TEST_F(Calendar, FillsABoxWithErasNewestFirstAndTheNumbers) {
    store::Database database;
    desk::DateGroup group;
    calendar::CMB年号(database, group);
    EXPECT_EQ(group.era.items.size(), 50);
    EXPECT_EQ(group.era.items.first(3), QStringList({u"令和"_s, u"平成"_s, u"昭和"_s}));
    for (const auto& [box, last] : {std::pair{&group.year, 100}, {&group.month, 12}, {&group.day, 31}}) {
        EXPECT_EQ(box->items.size(), last);
        EXPECT_EQ(box->items.first(), u"1"_s);
        EXPECT_EQ(box->items.last(), QString::number(last));
    }
    EXPECT_EQ(group.era.text, QString());
}

TEST_F(Calendar, ReadsRangeBoxesInEitherCalendar) {
    const std::pair<QString, QDate> cases[] = {
        {u"2026/11/22"_s, {2026, 11, 22}},
        {u"２０２６年１１月２２日"_s, {2026, 11, 22}},
        {u"令和8年11月22日"_s, {2026, 11, 22}},
        {u"R8.11.22"_s, {2026, 11, 22}},
        {u"ｒ８／１１／２２"_s, {2026, 11, 22}},
        {u"h31-4-30"_s, {2019, 4, 30}},
        {u"S64.1.7"_s, {1989, 1, 7}},
        {u"令和元年５月１日"_s, {2019, 5, 1}},
        {u"元禄元年9月30日"_s, {1688, 9, 30}},
        {u"元禄15年12月14日"_s, {1702, 12, 14}},
        {u" 昭和 20 年 8 月 15 日"_s, {1945, 8, 15}},
        {u"T1.7.30"_s, {1912, 7, 30}},
        {u"M1.1.1"_s, {1868, 1, 1}},
        {u"R8.2.30"_s, {}},
        {u"X8.1.1"_s, {}},
        {u"令和8年11月"_s, {}},
        {u"8.11.22"_s, {}},
        {u"令和"_s, {}},
        {u""_s, {}},
    };
    store::Database database;
    for (const auto& [typed, date] : cases)
        EXPECT_EQ(calendar::readDate(database, typed).value_or(QDate()), date) << typed.toStdString();
    execute(u"DELETE FROM tbl_nengo WHERE tblnen_nengo = '令和'"_s);
    EXPECT_EQ(calendar::readDate(database, u"R8.11.22"_s), std::nullopt);
}

// Colours of year, month, day and Western box: b black, r red.
QString colours(const desk::DateGroup& group) {
    QString text;
    for (const desk::Control* box :
         {static_cast<const desk::Control*>(&group.year), static_cast<const desk::Control*>(&group.month),
          static_cast<const desk::Control*>(&group.day), static_cast<const desk::Control*>(&group.western)})
        text += box->colour == desk::Colour::red ? u'r' : u'b';
    return text;
}

struct CheckCase {
    std::array<QString, 4> typed;
    QString western;
    QString colours;     // with an optional date; a required one that is empty turns the last to r
    QString message;     // recorded, behind the field's name
    char first = ' ';    // box moved to the front of the tab order
    char keyboard = ' '; // box the keyboard goes to
    bool unknown = false;
};

class DateCheck : public Calendar, public ::testing::WithParamInterface<CheckCase> {};

TEST_P(DateCheck, OptionalAndRequired) {
    const CheckCase& c = GetParam();
    store::Database database;
    for (const bool required : {false, true}) {
        desk::DateGroup group;
        group.era.text = c.typed[0];
        group.year.text = c.typed[1];
        group.month.text = c.typed[2];
        group.day.text = c.typed[3];
        group.western.text = u"1999/09/09"_s;
        desk::SaveAttempt attempt(context);
        if (c.unknown)
            desk.expect(unknownEra, unknownEraTitle);
        const QDate date = required ? calendar::checkRequiredDate(database, group, calendar::生年月日, context, desk)
                                    : calendar::checkDate(database, group, calendar::生年月日, context, desk);
        const bool missing = required && c.western.isEmpty();
        EXPECT_EQ(group.western.text, c.western);
        EXPECT_EQ(context.chk_ymd, c.western);
        EXPECT_EQ(date, values::readDate(c.western).value_or(QDate()));
        EXPECT_EQ(colours(group), missing ? c.colours.first(3) + u'r' : c.colours);
        EXPECT_EQ(group.era.colour, desk::Colour::black);
        const QString expected = !c.message.isEmpty() ? u"生年月日　"_s + c.message
                                 : missing            ? u"生年月日に正しく入力して下さい"_s
                                                      : QString();
        EXPECT_EQ(context.chk_msg, expected);
        EXPECT_EQ(attempt.failed(), !expected.isEmpty());
        EXPECT_EQ(context.chk_dterr, !expected.isEmpty() || c.unknown ? 1 : 0);
        const std::pair<char, desk::Control*> boxes[] = {
            {'e', &group.era}, {'y', &group.year}, {'m', &group.month}, {'d', &group.day}, {'w', &group.western}};
        for (const auto& [name, box] : boxes) {
            EXPECT_EQ(box->first, c.first == name) << name;
            EXPECT_EQ(box->keyboard, (missing && c.message.isEmpty() ? 'e' : c.keyboard) == name) << name;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Groups, DateCheck,
    ::testing::Values(
        CheckCase{{u""_s, u""_s, u""_s, u""_s}, {}, u"bbbb"_s, {}},
        CheckCase{{u"平成"_s, u"1"_s, u"1"_s, u"8"_s}, u"1989/01/08"_s, u"bbbb"_s, {}},
        CheckCase{{u"昭和"_s, u"２５"_s, u"０１"_s, u" ５　"_s}, u"1950/01/05"_s, u"bbbb"_s, {}},
        CheckCase{{u"平成"_s, u"0"_s, u"3"_s, u"1"_s}, u"1988/03/01"_s, u"bbbb"_s, {}},
        CheckCase{{u"平成"_s, u"－1"_s, u"3"_s, u"1"_s}, u"1987/03/01"_s, u"bbbb"_s, {}},
        CheckCase{{u"平成"_s, u"101"_s, u"3"_s, u"1"_s}, u"2089/03/01"_s, u"bbbb"_s, {}},
        CheckCase{{u"平成"_s, u"20"_s, u"2"_s, u"29"_s}, u"2008/02/29"_s, u"bbbb"_s, {}},
        CheckCase{{u"平成"_s, u"20"_s, u"2"_s, u"３０"_s},
                  u"2008/2/30"_s,
                  u"rrrr"_s,
                  u"年月日に正しく入力して下さい"_s,
                  ' ',
                  'y'},
        CheckCase{{u"平成"_s, u"20"_s, u"13"_s, u"1"_s},
                  u"2008/13/1"_s,
                  u"rrrr"_s,
                  u"年月日に正しく入力して下さい"_s,
                  ' ',
                  'y'},
        CheckCase{{u"平成"_s, u"32767"_s, u"1"_s, u"1"_s},
                  u"34755/1/1"_s,
                  u"rrrr"_s,
                  u"年月日に正しく入力して下さい"_s,
                  ' ',
                  'y'},
        CheckCase{{u"平成"_s, u"40000"_s, u"3"_s, u"1"_s}, {}, u"rbbb"_s, u"年に正しく入力して下さい"_s, 'y', 'y'},
        CheckCase{{u"平成"_s, u""_s, u"5"_s, u"3"_s}, {}, u"rbbb"_s, u"年に正しく入力して下さい"_s, 'y', 'y'},
        CheckCase{{u"平成"_s, u"abc"_s, u"ｘ"_s, u"3"_s}, {}, u"rrbb"_s, u"年に正しく入力して下さい"_s, 'y', 'y'},
        CheckCase{{u"平成"_s, u"1"_s, u"x"_s, u""_s}, {}, u"brrb"_s, u"月に正しく入力して下さい"_s, 'm', 'm'},
        CheckCase{{u"平成"_s, u"1"_s, u"2"_s, u"ａ"_s}, {}, u"bbrb"_s, u"日に正しく入力して下さい"_s, 'd', 'd'},
        CheckCase{{u"平正"_s, u"1"_s, u"2"_s, u"3"_s}, {}, u"bbbb"_s, {}, ' ', ' ', true},
        CheckCase{{u""_s, u"1"_s, u"2"_s, u"3"_s}, {}, u"bbbb"_s, {}, ' ', ' ', true}));

TEST_F(Calendar, KeepsOnlyTheFirstMessageOfAnAttempt) {
    store::Database database;
    desk::DateGroup birth;
    birth.year.text = u"x"_s;
    desk::DateGroup death;
    desk::Text name;
    desk::SaveAttempt attempt(context);
    attempt.required(name, u"俗名を入力して下さい"_s);
    calendar::checkRequiredDate(database, birth, calendar::生年月日, context, desk);
    calendar::checkRequiredDate(database, death, calendar::命日, context, desk);
    EXPECT_EQ(context.chk_msg, u"俗名を入力して下さい"_s);
    EXPECT_EQ(colours(birth), u"rrrr"_s);
    EXPECT_EQ(colours(death), u"bbbr"_s);
    EXPECT_FALSE(birth.year.first || birth.era.keyboard || death.era.keyboard);
}

TEST_F(Calendar, ShowsStoredDates) {
    store::Database database;
    desk::DateGroup group;
    calendar::showDate(database, group, QDate(2008, 2, 9), desk);
    const auto shown = [&] {
        return QStringList{group.era.text, group.year.text, group.month.text, group.day.text, group.western.text}.join(
            u"|"_s);
    };
    EXPECT_EQ(shown(), u"平成|20|2|9|2008/02/09"_s);
    calendar::showDate(database, group, QDate(), desk);
    EXPECT_EQ(shown(), u"||||"_s);
    // What was stored stands, whatever the era table says today.
    calendar::showDate(group, {u"平成"_s, std::int16_t{31}, std::int16_t{5}, std::int16_t{2}}, QDate(2019, 5, 2));
    EXPECT_EQ(shown(), u"平成|31|5|2|2019/05/02"_s);
}

} // namespace
