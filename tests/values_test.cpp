#include "values/dates.h"
#include "values/numbers.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct NumberCase {
    const char16_t* typed;
    bool numeric;
    std::optional<qint64> whole;
};

constexpr auto none = std::nullopt;

TEST(Numbers, ReadsWhatPeopleTypeAndNothingElse) {
    const NumberCase cases[] = {
        {u"0", true, 0},
        {u" 12 ", true, 12},
        {u"　１２　", true, 12},
        {u"１２3", true, 123},
        {u"-7", true, -7},
        {u"－７", true, -7},
        {u"\u22127", true, -7},
        {u"＋7", true, 7},
        {u"1,234", true, 1234},
        {u"１，２３４，５６７", true, 1234567},
        {u"12,34", false, none},
        {u"1234,567", false, none},
        {u",123", false, none},
        {u"1,", false, none},
        {u"2.5", true, 2},
        {u"3.5", true, 4},
        {u"-2.5", true, -2},
        {u"-3.5", true, -4},
        {u"2.50001", true, 3},
        {u"2.49", true, 2},
        {u"0.5", true, 0},
        {u".5", true, 0},
        {u".6", true, 1},
        {u"５．", true, 5},
        {u".", false, none},
        {u"-", false, none},
        {u"", false, none},
        {u"　", false, none},
        {u"abc", false, none},
        {u"ａ", false, none},
        {u"0x10", false, none},
        {u"&H10", false, none},
        {u"1e3", false, none},
        {u"1 2", false, none},
        {u"--1", false, none},
        {u"1.2.3", false, none},
        {u"二", false, none},
        {u"9223372036854775807", true, 9223372036854775807},
        {u"-9223372036854775808", true, std::numeric_limits<qint64>::min()},
        {u"9223372036854775808", true, none},
        {u"9223372036854775807.5", true, none},
        {u"99999999999999999999", true, none},
    };
    for (const auto& [typed, numeric, whole] : cases) {
        const QString text = QString::fromUtf16(typed);
        SCOPED_TRACE(text.toStdString());
        EXPECT_EQ(values::isNumeric(text), numeric);
        EXPECT_EQ(values::readWhole(text), whole);
    }
}

TEST(Numbers, RefusesWhatDoesNotFit) {
    EXPECT_EQ(values::readInt16(u"32767"_s), 32767);
    EXPECT_EQ(values::readInt16(u"-32768"_s), -32768);
    EXPECT_EQ(values::readInt16(u"32768"_s), none);
    EXPECT_EQ(values::readInt16(u"32767.5"_s), none);
    EXPECT_EQ(values::readInt16(u"40000"_s), none);
    EXPECT_EQ(values::readMoney(u"2,147,483,647"_s), 2147483647);
    EXPECT_EQ(values::readMoney(u"2147483648"_s), none);
}

TEST(Numbers, MoneyReadsBackAsWritten) {
    const std::pair<qint64, QString> cases[] = {{0, u"0"_s},
                                                {999, u"999"_s},
                                                {1000, u"1,000"_s},
                                                {-1234567, u"-1,234,567"_s},
                                                {2147483647, u"2,147,483,647"_s}};
    for (const auto& [yen, text] : cases) {
        EXPECT_EQ(values::moneyText(yen), text);
        EXPECT_EQ(values::readMoney(text), yen);
    }
}

TEST(Numbers, HalfWidthLeavesNamesAlone) {
    EXPECT_EQ(values::halfWidth(u"１２，３４５．６／－＋−"_s), u"12,345.6/-+-"_s);
    EXPECT_EQ(values::halfWidth(u"㈱神\uFA19ヴｱー"_s), u"㈱神\uFA19ヴｱー"_s);
}

TEST(Dates, ReadsEveryWayOfWritingOne) {
    const std::pair<const char16_t*, std::optional<QDate>> cases[] = {
        {u"2008/2/29", QDate(2008, 2, 29)},
        {u"2008-02-29", QDate(2008, 2, 29)},
        {u"2008.2.29", QDate(2008, 2, 29)},
        {u"2008年2月29日", QDate(2008, 2, 29)},
        {u"　２００８／０２／２９ ", QDate(2008, 2, 29)},
        {u"２００８年２月２９日", QDate(2008, 2, 29)},
        {u"2008 / 2 / 29", QDate(2008, 2, 29)},
        {u"2008/2/30", none},
        {u"2007/2/29", none},
        {u"1900/2/29", none},
        {u"2000/13/1", none},
        {u"2000/0/1", none},
        {u"2000/1/0", none},
        {u"2000/1-1", none},
        {u"2000年1月1", none},
        {u"08/2/3", none},
        {u"1500/1/1", QDate(1500, 1, 1)},
        {u"1499/12/31", none},
        {u"9999/12/31", QDate(9999, 12, 31)},
        {u"10000/1/1", none},
        {u"2000/1", none},
        {u"20000101", none},
        {u"", none},
    };
    for (const auto& [typed, date] : cases) {
        const QString text = QString::fromUtf16(typed);
        SCOPED_TRACE(text.toStdString());
        EXPECT_EQ(values::readDate(text), date);
        if (date) {
            EXPECT_EQ(values::readDate(values::dateText(*date)), date);
        }
    }
}

TEST(Dates, WritesYearMonthAndDayPadded) {
    EXPECT_EQ(values::dateText(QDate(1950, 1, 5)), u"1950/01/05"_s);
    EXPECT_EQ(values::dateText(QDate()), QString());
    EXPECT_EQ(values::dateText(values::zeroDate()), u"1899/12/30"_s);
}

} // namespace
