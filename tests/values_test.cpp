#include "values/dates.h"
#include "values/numbers.h"
#include "values/single_line.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// What each of the texts between bars is read as.
QString wholes(const QString& typed) {
    QStringList read;
    for (const QString& text : typed.split(u'|')) {
        const auto number = values::readWhole(text);
        read << (number ? QString::number(*number) : u"none"_s);
    }
    return read.join(u'|');
}

TEST(Numbers, ReadsWhatPeopleTypeAndNothingElse) {
    EXPECT_EQ(wholes(u"0|　１２　|１２3|－７|\u22127|＋7|1,234|１，２３４，５６７"_s),
              u"0|12|123|-7|-7|7|1234|1234567"_s);
    // A half goes to the even neighbour.
    EXPECT_EQ(wholes(u"2.5|3.5|-2.5|-3.5|2.50001|2.49|.6|５．"_s), u"2|4|-2|-4|3|2|1|5"_s);
    EXPECT_EQ(wholes(u"9223372036854775807|-9223372036854775808|9223372036854775808|9223372036854775807.5"_s),
              u"9223372036854775807|-9223372036854775808|none|none"_s);
    EXPECT_TRUE(values::isNumeric(u"9223372036854775808"));
    for (const char16_t* wrong : {u"", u"　", u".", u"-", u"ａ", u"0x10", u"1e3", u"1 2", u"--1", u"1.2.3", u"12,34",
                                  u"1234,567", u",123", u"1,"})
        EXPECT_FALSE(values::isNumeric(wrong)) << QString::fromUtf16(wrong).toStdString();
    EXPECT_EQ(values::readInt16(u"-32768"), -32768);
    EXPECT_EQ(values::readInt16(u"32767.5"), std::nullopt);
    EXPECT_EQ(values::readMoney(u"2147483648"), std::nullopt);
    EXPECT_EQ(values::readKeyNumber(u"－１２"), -12);
    for (const char16_t* wrong : {u"1.5", u"２．０", u"5.", u"32768", u""})
        EXPECT_EQ(values::readKeyNumber(wrong), std::nullopt) << QString::fromUtf16(wrong).toStdString();
}

TEST(Numbers, WritesMoneyAndLeavesNamesAlone) {
    EXPECT_EQ(values::moneyText(999) + values::moneyText(-1234567), u"999-1,234,567"_s);
    EXPECT_EQ(values::halfWidth(u"１２，３４５．６／－＋−㈱神\uFA19ヴｱー"_s), u"12,345.6/-+-㈱神\uFA19ヴｱー"_s);
}

TEST(Dates, ReadsEveryWayOfWritingOne) {
    for (const char16_t* typed : {u"2008/2/29", u"2008-02-29", u"2008.2.29", u"　２００８／０２／２９ ",
                                  u"２００８年２月２９日", u"2008 / 2 / 29"})
        EXPECT_EQ(values::readDate(typed), QDate(2008, 2, 29)) << QString::fromUtf16(typed).toStdString();
    for (const char16_t* wrong : {u"2007/2/29", u"1900/2/29", u"2000/13/1", u"2000/0/1", u"2000/1/0", u"2000/1-1",
                                  u"2000年1月1", u"08/2/3", u"1499/12/31", u"10000/1/1", u"20000101", u""})
        EXPECT_EQ(values::readDate(wrong), std::nullopt) << QString::fromUtf16(wrong).toStdString();
    for (const auto& text : {u"1500/01/01"_s, u"9999/12/31"_s})
        EXPECT_EQ(values::dateText(values::readDate(text).value()), text);
}

TEST(SingleLine, KeepsNamesAndTurnsBreaksIntoOneBlank) {
    const std::pair<QString, QString> cases[] = {
        {u"山田　太郎"_s, u"山田　太郎"_s},
        {u"神\U00020BB7\uE000が"_s, u"神\U00020BB7\uE000が"_s}, // nothing is put together or exchanged
        {u" a  b "_s, u" a  b "_s},
        {u"a \r\n\t b\u2028c"_s, u"a b c"_s},
        {u"\n a\n"_s, u"a"_s},
        {QString(QChar(u'\0')) + u"a\u202Eb\uFEFF"_s + QChar(0xD842), u"ab"_s},
    };
    for (const auto& [typed, line] : cases) {
        EXPECT_EQ(values::singleLine(typed), line);
        EXPECT_EQ(values::isSingleLine(typed), typed == line);
    }
}

} // namespace
