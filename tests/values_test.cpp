#include "values/dates.h"
#include "values/numbers.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr auto none = std::nullopt;
constexpr qint64 lowest = std::numeric_limits<qint64>::min();

TEST(Numbers, ReadsWhatPeopleTypeAndNothingElse) {
    const std::pair<const char16_t*, qint64> numbers[] = {{u"0", 0},
                                                          {u"　１２　", 12},
                                                          {u"１２3", 123},
                                                          {u"-7", -7},
                                                          {u"－７", -7},
                                                          {u"\u22127", -7},
                                                          {u"＋7", 7},
                                                          {u"1,234", 1234},
                                                          {u"１，２３４，５６７", 1234567},
                                                          {u"2.5", 2},
                                                          {u"3.5", 4},
                                                          {u"-2.5", -2},
                                                          {u"-3.5", -4},
                                                          {u"2.50001", 3},
                                                          {u"2.49", 2},
                                                          {u"0.5", 0},
                                                          {u".6", 1},
                                                          {u"５．", 5},
                                                          {u"9223372036854775807", 9223372036854775807},
                                                          {u"-9223372036854775808", lowest}};
    for (const auto& [typed, whole] : numbers)
        EXPECT_EQ(values::readWhole(typed), whole) << QString::fromUtf16(typed).toStdString();
    for (const char16_t* large : {u"9223372036854775808", u"9223372036854775807.5", u"99999999999999999999"}) {
        EXPECT_TRUE(values::isNumeric(large));
        EXPECT_EQ(values::readWhole(large), none);
    }
    for (const char16_t* wrong : {u"", u"　", u".", u"-", u"abc", u"ａ", u"二", u"0x10", u"&H10", u"1e3", u"1 2",
                                  u"--1", u"1.2.3", u"12,34", u"1234,567", u",123", u"1,"})
        EXPECT_FALSE(values::isNumeric(wrong)) << QString::fromUtf16(wrong).toStdString();
    EXPECT_EQ(values::readInt16(u"32767"_s), 32767);
    EXPECT_EQ(values::readInt16(u"-32768"_s), -32768);
    EXPECT_EQ(values::readInt16(u"32767.5"_s), none);
    EXPECT_EQ(values::readMoney(u"2147483648"_s), none);
}

TEST(Numbers, WritesMoneyAndLeavesNamesAlone) {
    for (const auto& [yen, text] : {std::pair{0, u"0"_s}, {999, u"999"_s}, {-1234567, u"-1,234,567"_s}}) {
        EXPECT_EQ(values::moneyText(yen), text);
        EXPECT_EQ(values::readMoney(text), yen);
    }
    EXPECT_EQ(values::halfWidth(u"１２，３４５．６／－＋−"_s), u"12,345.6/-+-"_s);
    EXPECT_EQ(values::halfWidth(u"㈱神\uFA19ヴｱー"_s), u"㈱神\uFA19ヴｱー"_s);
}

TEST(Dates, ReadsEveryWayOfWritingOne) {
    for (const char16_t* typed : {u"2008/2/29", u"2008-02-29", u"2008.2.29", u"2008年2月29日",
                                  u"　２００８／０２／２９ ", u"２００８年２月２９日", u"2008 / 2 / 29"})
        EXPECT_EQ(values::readDate(typed), QDate(2008, 2, 29)) << QString::fromUtf16(typed).toStdString();
    for (const char16_t* wrong :
         {u"2008/2/30", u"2007/2/29", u"1900/2/29", u"2000/13/1", u"2000/0/1", u"2000/1/0", u"2000/1-1", u"2000年1月1",
          u"08/2/3", u"1499/12/31", u"10000/1/1", u"2000/1", u"20000101", u""})
        EXPECT_EQ(values::readDate(wrong), none) << QString::fromUtf16(wrong).toStdString();
    for (const auto& text : {u"1500/01/01"_s, u"1899/12/30"_s, u"9999/12/31"_s})
        EXPECT_EQ(values::dateText(values::readDate(text).value()), text);
    EXPECT_EQ(values::dateText(QDate()), QString());
    EXPECT_EQ(values::dateText(values::zeroDate()), u"1899/12/30"_s);
}

} // namespace
