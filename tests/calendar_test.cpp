#include "calendar/date_groups.h"
#include "calendar/eras.h"

#include "support/register_fixture.h"
#include "support/test_desk.h"
#include "values/dates.h"

using namespace Qt::StringLiterals;

namespace {

const QString unknownEra = u"元号の変換が出来ません。入力した元号・ﾃﾞｰﾀ･ﾍﾞｰｽの整合性をﾁｪｯｸしてください"_s;

class Calendar : public RegisterFixture {
  protected:
    QString full(QDate date, bool found) {
        if (!found)
            desk.expect(u"該当する年号がありません。確認して下さい。"_s, u"和暦に変換"_s);
        calendar::EraDate result{u"untouched"_s, u"untouched"_s, u"untouched"_s};
        calendar::西暦変換(database, date, result, desk);
        return result.full;
    }
    static void fill(desk::DateGroup& group, const QString& typed) { // era|year|month|day
        const auto boxes = typed.split(u'|');
        group.era.text = boxes[0];
        group.year.text = boxes[1];
        group.month.text = boxes[2];
        group.day.text = boxes[3];
    }
    static QString shown(const desk::DateGroup& group) {
        return QStringList{group.era.text, group.year.text, group.month.text, group.day.text, group.western.text}.join(
            u"|"_s);
    }

    store::Database database;
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
    return u"untouched"_s;
}

TEST_F(Calendar, ConvertsEveryYearAsTheHandbooksDo) {
    for (int year = 1500; year <= 2400; ++year)
        EXPECT_EQ(full(QDate(year, 2, 28), year >= 1504), handbook(year)) << year;
    EXPECT_EQ(query(u"SELECT count(*), max(tblnen_enen) FROM tbl_nengo"_s), u"50,2050"_s);
    EXPECT_EQ(query(u"SELECT count(*) FROM tbl_nengo a JOIN tbl_nengo b ON a.tblnen_enen = b.tblnen_snen"_s), u"49"_s);
}

TEST_F(Calendar, ConvertsByYearAloneAcrossOverlapsGapsAndEnds) {
    struct Case {
        const char* eras;
        QDate date;
        QString expected;
    };
    const char* two = "('A', 1926, 1989), ('B', 1989, 2050)";
    const char* gap = "('A', 1926, 1980), ('B', 1990, 2050)";
    const char* inside = "('A', 1900, 2000), ('B', 1950, 1960)";
    const Case cases[] = {{two, {1989, 1, 7}, u"B1年1月7日"_s},      {two, {1926, 12, 25}, u"A1年12月25日"_s},
                          {two, {1988, 5, 5}, u"A63年5月5日"_s},     {two, {1925, 6, 1}, u"untouched"_s},
                          {two, {2060, 1, 1}, u"B72年1月1日"_s},     {gap, {1985, 1, 1}, u"B-4年1月1日"_s},
                          {gap, {1980, 12, 31}, u"A55年12月31日"_s}, {inside, {1955, 1, 1}, u"B6年1月1日"_s},
                          {inside, {1970, 1, 1}, u"B21年1月1日"_s},  {"('', 1900, 2000)", {1955, 1, 1}, {}},
                          {nullptr, {2000, 1, 1}, u"untouched"_s}};
    for (const auto& [eras, date, expected] : cases) {
        execute(u"DELETE FROM tbl_nengo"_s);
        if (eras)
            execute(u"INSERT INTO tbl_nengo VALUES "_s + QLatin1StringView(eras));
        EXPECT_EQ(full(date, expected != u"untouched"_s), expected) << date.year();
    }
}

TEST_F(Calendar, CountsEraYearsOnInBothDirections) {
    const std::pair<QString, QString> cases[] = {
        {u"平成1"_s, u"1989"_s},   {u"平成70"_s, u"2058"_s},     {u"平成0"_s, u"1988"_s},
        {u"平成-3"_s, u"1985"_s},  {u"平成１０１"_s, u"2089"_s}, {u"平成2.5"_s, u"1990"_s},
        {u"平成3.5"_s, u"1992"_s}, {u"平成40000"_s, {}},         {u"平正1"_s, {}}};
    for (const auto& [typed, western] : cases) {
        std::int16_t error = 7;
        if (western.isEmpty())
            desk.expect(unknownEra, u"檀家 登録"_s);
        EXPECT_EQ(calendar::元号変換(database, typed.first(2), typed.sliced(2), error, desk), western);
        EXPECT_EQ(error, western.isEmpty() ? 1 : 7);
    }
}

TEST_F(Calendar, FillsTheBoxesAndShowsStoredDates) {
    desk::DateGroup group;
    calendar::CMB年号(database, group);
    EXPECT_EQ(group.era.items.first(3), QStringList({u"令和"_s, u"平成"_s, u"昭和"_s}));
    for (const auto& [box, last] : {std::pair{&group.year, 100}, {&group.month, 12}, {&group.day, 31}}) {
        EXPECT_EQ(box->items.size(), last);
        EXPECT_EQ(box->items.first() + box->items.last(), u'1' + QString::number(last));
    }
    EXPECT_EQ(shown(group), u"||||"_s);
    calendar::showDate(database, group, QDate(2008, 2, 9), desk);
    EXPECT_EQ(shown(group), u"平成|20|2|9|2008/02/09"_s);
    calendar::showDate(database, group, QDate(), desk);
    EXPECT_EQ(shown(group), u"||||"_s);
    // What was stored stands, whatever the era table says today.
    calendar::showDate(group, {u"平成"_s, std::int16_t{31}, std::int16_t{5}, std::int16_t{2}}, QDate(2019, 5, 2));
    EXPECT_EQ(shown(group), u"平成|31|5|2|2019/05/02"_s);
}

TEST_F(Calendar, ReadsRangeBoxesInEitherCalendar) {
    const std::pair<QString, QDate> cases[] = {{u"２０２６年１１月２２日"_s, {2026, 11, 22}},
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
                                               {u""_s, {}}};
    for (const auto& [typed, date] : cases)
        EXPECT_EQ(calendar::readDate(database, typed).value_or(QDate()), date) << typed.toStdString();
    execute(u"DELETE FROM tbl_nengo WHERE tblnen_nengo = '令和'"_s);
    EXPECT_EQ(calendar::readDate(database, u"R8.11.22"_s), std::nullopt);
}

TEST_F(Calendar, ChecksADateGroup) {
    struct Case {
        QString typed;
        QString western;
        QString marks;   // year, month, day, Western box: b black, r red; capital: moved to the front of the tab order
        QString message; // behind the field's name
        bool unknown = false;
    };
    const QString year = u"　年に正しく入力して下さい"_s;
    const QString whole = u"　年月日に正しく入力して下さい"_s;
    const Case cases[] = {{u"|||"_s, {}, u"bbbb"_s, {}},
                          {u"平成|1|1|8"_s, u"1989/01/08"_s, u"bbbb"_s, {}},
                          {u"昭和|２５|０１| ５　"_s, u"1950/01/05"_s, u"bbbb"_s, {}},
                          {u"平成|0|3|1"_s, u"1988/03/01"_s, u"bbbb"_s, {}},
                          {u"平成|－1|3|1"_s, u"1987/03/01"_s, u"bbbb"_s, {}},
                          {u"平成|101|2|28"_s, u"2089/02/28"_s, u"bbbb"_s, {}},
                          {u"平成|20|2|３０"_s, u"2008/2/30"_s, u"rrrr"_s, whole},
                          {u"平成|20|13|1"_s, u"2008/13/1"_s, u"rrrr"_s, whole},
                          {u"平成|32767|1|1"_s, u"34755/1/1"_s, u"rrrr"_s, whole},
                          {u"平成|40000|3|1"_s, {}, u"Rbbb"_s, year},
                          {u"平成||5|3"_s, {}, u"Rbbb"_s, year},
                          {u"平成|abc|ｘ|3"_s, {}, u"Rrbb"_s, year},
                          {u"平成|1|x|"_s, {}, u"bRrb"_s, u"　月に正しく入力して下さい"_s},
                          {u"平成|1|2|ａ"_s, {}, u"bbRb"_s, u"　日に正しく入力して下さい"_s},
                          {u"平正|1|2|3"_s, {}, u"bbbb"_s, {}, true},
                          {u"|1|2|3"_s, {}, u"bbbb"_s, {}, true}};
    for (const auto& [typed, western, marks, message, unknown] : cases) {
        for (const bool required : {false, true}) {
            SCOPED_TRACE(typed.toStdString());
            desk::DateGroup group;
            fill(group, typed);
            group.western.text = u"1999/09/09"_s;
            desk::SaveAttempt attempt(context);
            if (unknown)
                desk.expect(unknownEra, u"檀家 登録"_s);
            const auto check = required ? calendar::checkRequiredDate : calendar::checkDate;
            EXPECT_EQ(check(database, group, calendar::生年月日, context, desk),
                      values::readDate(western).value_or(QDate()));
            EXPECT_EQ(group.western.text, western);
            EXPECT_EQ(context.chk_ymd, western);
            const bool missing = required && western.isEmpty();
            QString seen;
            bool keyboard = group.era.keyboard;
            for (const desk::Control* box :
                 std::initializer_list<desk::Control*>{&group.year, &group.month, &group.day, &group.western}) {
                const QChar mark = box->colour == desk::Colour::red ? u'r' : u'b';
                seen += box->first ? mark.toUpper() : mark;
                keyboard |= box->keyboard;
            }
            EXPECT_EQ(seen, missing ? marks.first(3) + u'r' : marks);
            EXPECT_EQ(group.era.colour, desk::Colour::black);
            const QString expected = message.isEmpty() && missing ? u"生年月日に正しく入力して下さい"_s
                                     : message.isEmpty()          ? QString()
                                                                  : u"生年月日"_s + message;
            EXPECT_EQ(context.chk_msg, expected);
            EXPECT_EQ(attempt.failed(), !expected.isEmpty());
            EXPECT_EQ(keyboard, !expected.isEmpty());
            EXPECT_EQ(context.chk_dterr, !expected.isEmpty() || unknown ? 1 : 0);
        }
    }
}

TEST_F(Calendar, KeepsOnlyTheFirstMessageOfAnAttempt) {
    desk::DateGroup birth;
    desk::Text name;
    birth.year.text = u"x"_s;
    desk::SaveAttempt attempt(context);
    attempt.required(name, u"俗名を入力して下さい"_s);
    calendar::checkRequiredDate(database, birth, calendar::生年月日, context, desk);
    EXPECT_EQ(context.chk_msg, u"俗名を入力して下さい"_s);
    EXPECT_EQ(birth.month.colour, desk::Colour::red);
    EXPECT_FALSE(birth.year.first || birth.era.keyboard);
}

} // namespace
