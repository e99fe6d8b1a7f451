#include "masters/postal_codes.h"

#include "support/register_fixture.h"
#include "support/test_desk.h"
#include "values/cp932.h"

#include <QFile>
#include <QSettings>

using namespace Qt::StringLiterals;

namespace {

QByteArray codePage(const QString& text) {
    QByteArray bytes;
    for (const QChar unit : text) {
        const quint16 code = values::cp932::encode(unit.unicode()).value();
        if (code >= 0x100)
            bytes += static_cast<char>(code >> 8);
        bytes += static_cast<char>(code & 0xFF);
    }
    return bytes;
}

class PostalCodes : public RegisterFixture {
  protected:
    PostalCodes() { QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, directory.path()); }

    static QString line(const QString& code, const QString& prefecture, const QString& city, const QString& town) {
        return u"13101,\"100  \",\"%1\",\"ﾄｳｷｮｳﾄ\",\"ｶﾀ\",\"ｶﾅ\",\"%2\",\"%3\",\"%4\",0,0,0,0,0,0\r\n"_s.arg(
            code, prefecture, city, town);
    }
    void put(const QString& name, const QByteArray& contents) {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
    }
    QString filled(const QString& code, const QString& address = {}) {
        desk::Text typed;
        desk::Text box;
        typed.text = code;
        box.text = address;
        desk.informed.clear();
        masters::fillAddress(typed, box, desk);
        return box.text;
    }

    const QString list =
        line(u"1000000"_s, u"東京都"_s, u"表区"_s, u"以下に掲載がない場合"_s) +
        line(u"1000002"_s, u"東京都"_s, u"表区"_s, u"能町（１～３丁目）"_s) +
        line(u"1000002"_s, u"東京都"_s, u"表区"_s, u"能町（４丁目）"_s) +
        line(u"1000003"_s, u"東京都"_s, u"表区"_s, u"甲町"_s) + line(u"1000003"_s, u"東京都"_s, u"表区"_s, u"乙町"_s) +
        line(u"0280000"_s, u"岩手県"_s, u"十村"_s, u"葛巻（第４０地割「５７番地、"_s) +
        line(u"0280000"_s, u"岩手県"_s, u"十村"_s, u"１７６番地」～第４５地割）"_s) +
        line(u"0000004"_s, u"北海道"_s, u"甲市"_s, u"甲"_s) + line(u"0000004"_s, u"北海道"_s, u"乙市"_s, u"乙"_s);
    TestDesk desk{today};
};

TEST_F(PostalCodes, FillAnEmptyAddress) {
    EXPECT_EQ(filled(u"1000002"_s), QString()); // without the list
    const std::pair<QString, QString> cases[] = {{u"100-0000"_s, u"東京都表区"_s},
                                                 {u"１００－０００２"_s, u"東京都表区能町"_s},
                                                 {u"〒100-0003"_s, u"東京都表区"_s},
                                                 {u"0280000"_s, u"岩手県十村葛巻"_s},
                                                 {u"000-0004"_s, u"北海道"_s},
                                                 {u"100-0009"_s, {}},
                                                 {u"100000"_s, {}},
                                                 {u"-1000002"_s, u"東京都表区能町"_s},
                                                 {{}, {}}};
    const QByteArray forms[] = {codePage(list), list.toUtf8(), "\xEF\xBB\xBF" + list.toUtf8()};
    for (const QByteArray& form : forms) {
        put(u"ken_all.csv"_s, form);
        for (const auto& [code, address] : cases)
            EXPECT_EQ(filled(code), address) << code.toStdString();
        EXPECT_EQ(filled(u"1000002"_s, u"寺前1"_s), u"寺前1"_s);
        put(u"ken_all.csv"_s, form + "\r\n"); // the same list as another file: read again
    }
    filled(u"100-0003"_s);
    EXPECT_EQ(desk.informed, QStringList({u"この郵便番号の町名は2通りあります。続きを入れて下さい"_s}));
}

TEST_F(PostalCodes, WhatIsNoListIsRefusedAndTheOneInUseStays) {
    put(u"chosen.csv"_s, list.toUtf8());
    EXPECT_EQ(masters::choosePostalCodes(path(u"chosen.csv"_s)), 9U);
    const QByteArray whole = codePage(list);
    const QByteArray others[] = {{},
                                 "\r\n",
                                 "a,b,c\r\n",
                                 whole.chopped(20),
                                 QByteArray(1000, '\0'),
                                 "SQLite format 3",
                                 QByteArray(whole).replace("1000002", "10000x2")};
    for (const QByteArray& other : others) {
        put(u"other.csv"_s, other);
        EXPECT_THROW(masters::choosePostalCodes(path(u"other.csv"_s)), store::Error) << other.left(20).toStdString();
    }
    EXPECT_THROW(masters::choosePostalCodes(directory.path()), store::Error);
    EXPECT_EQ(filled(u"1000002"_s), u"東京都表区能町"_s);
    // One that went bad since is told of, and nothing filled.
    put(u"chosen.csv"_s, "no list");
    EXPECT_EQ(filled(u"1000002"_s), QString());
    EXPECT_TRUE(desk.informed.value(0).contains(u"1行目"_s));
    // A damaged settings file names none: the one beside the register counts.
    put(u"KEN_ALL.CSV"_s, whole);
    QSettings(u"hoshiren"_s, u"hoshiren"_s).sync();
    const QString settings = QSettings(u"hoshiren"_s, u"hoshiren"_s).fileName();
    QFile damaged(settings);
    ASSERT_TRUE(damaged.open(QIODevice::WriteOnly));
    damaged.write("\x00\xff[[[broken", 11);
    damaged.close();
    EXPECT_EQ(filled(u"1000002"_s), u"東京都表区能町"_s);
}

} // namespace
