#include "store/table.h"

#include "support/register_fixture.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace {

using Store = RegisterFixture;

TEST_F(Store, SeeksInIndexOrderOnSomeOrAllKeys) {
    execute(u"INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_zokunameg, tblhoy_kaiki_yymd) VALUES "
            "(5, '甲', '2030-01-05'), (5, '乙', '2030-01-05'), (9, '甲', '2030-01-09')"_s);
    store::Database database;
    store::Table memorials(database, store::idxhoy_hohyo);
    EXPECT_TRUE(memorials.seek(store::Seek::equal, 5, u"甲"_s, QDate(2030, 1, 5)));
    EXPECT_FALSE(memorials.seek(store::Seek::equal, 5, u"甲"_s, QDate(2030, 1, 6)));
    EXPECT_TRUE(memorials.noMatch());
    QString walk;
    for (memorials.seek(store::Seek::atOrAfter, 5, u""_s, QDate(1600, 1, 1)); !memorials.eof(); memorials.moveNext())
        walk += QString::number(memorials.row().tblhoy_no) + memorials.row().tblhoy_zokunameg;
    EXPECT_EQ(walk, u"5乙5甲9甲"_s);
    ASSERT_TRUE(memorials.seek(store::Seek::atOrBefore, 8));
    EXPECT_EQ(memorials.row().tblhoy_zokunameg, u"甲"_s);
    EXPECT_FALSE(memorials.seek(store::Seek::atOrBefore, 4));
}

TEST_F(Store, KeepsNullAndEmptyApart) {
    execute(u"INSERT INTO tbl_ohaka (tblhak_no, tblhak_banchi1, tblhak_kanri_ryokin) VALUES (1, NULL, NULL)"_s);
    store::Database database;
    store::Table graves(database, store::idxhak_no);
    ASSERT_TRUE(graves.seek(store::Seek::equal, 1));
    auto row = graves.row();
    EXPECT_TRUE(row.tblhak_banchi1.isNull());
    EXPECT_FALSE(row.tblhak_kanri_ryokin.has_value());
    row.tblhak_biko = u"\uFA19\u795E ㈱ '\"\n"_s;
    graves.edit(row);
    EXPECT_EQ(
        query(u"SELECT tblhak_banchi1 IS NULL, tblhak_banchi2 IS NULL, tblhak_biko = '\uFA19\u795E ㈱ ''\"'||char(10),"
              " tblhak_shiyo_stymd FROM tbl_ohaka"_s),
        u"1,1,1,NULL"_s);
    row = {};
    row.tblhak_no = 2;
    graves.insert(row);
    EXPECT_EQ(query(u"SELECT tblhak_banchi1 = '', tblhak_haiki_ymd IS NULL FROM tbl_ohaka WHERE tblhak_no = 2"_s),
              u"1,1"_s);
}

TEST_F(Store, RefusesWhatTheFieldsCannotHold) {
    for (const QString& sql :
         {u"INSERT INTO tbl_danka (tbldnk_no1) VALUES (32768)"_s, u"INSERT INTO tbl_danka (tbldnk_no1) VALUES ('x')"_s,
          u"INSERT INTO tbl_danka (tbldnk_addymd) VALUES ('2026-02-30')"_s,
          u"INSERT INTO tbl_danka (tbldnk_addymd) VALUES ('2026/02/03')"_s,
          u"INSERT INTO tbl_ohaka (tblhak_shiyo_ryokin) VALUES (2147483648)"_s,
          u"INSERT INTO tbl_hatsuban VALUES (0, '檀家', 1, 0)"_s, u"UPDATE tbl_danka SET tbldnk_no1 = \"x\""_s})
        EXPECT_THROW(execute(sql), SQLite::Exception) << sql.toStdString();
}

TEST_F(Store, KanaRowsTakeEveryFormOfTheirLetters) {
    const std::pair<const char*, QString> rows[] = {
        // ? stands for no letter
        {"qrydnk_aa", u"ぁあおゔァアオヴｧｱｵ"_s}, {"qrydnk_ka", u"かがごゕゖカガゴヵヶｶｺ"_s},
        {"qrydnk_sa", u"さざぞサザゾｻｿ"_s},      {"qrydnk_ta", u"ただっづどタダッヅドﾀﾄｯ"_s},
        {"qrydnk_na", u"なのナノﾅﾉ"_s},          {"qrydnk_ha", u"はばぱぽハバパポﾊﾎ"_s},
        {"qrydnk_ma", u"まもマモﾏﾓ"_s},          {"qrydnk_ya", u"ゃやょよャヤョヨｬﾔｮﾖ"_s},
        {"ｑｒｙｄｎｋ_ra", u"らろラロﾗﾛ"_s},    {"qrydnk_wa", u"ゎわゐゑをんヮワヰヱヲンヷヺｦﾜﾝ"_s},
        {"qrydnk_hoka", u" A亜ー・ｰﾞゝ漢?"_s},
    };
    int number = 0;
    for (const auto& [view, letters] : rows) {
        for (const QChar letter : letters)
            execute(u"INSERT INTO tbl_danka (tbldnk_no1, tbldnk_kanaidx) VALUES (%1, nullif('%2', '?'))"_s.arg(++number)
                        .arg(letter));
    }
    for (const auto& [view, letters] : rows)
        EXPECT_EQ(query(u"SELECT group_concat(ifnull(tbldnk_kanaidx, '?'), '') FROM (SELECT tbldnk_kanaidx FROM "
                        "tbl_danka WHERE tbldnk_no1 IN (SELECT tbldnk_no1 FROM %1) ORDER BY tbldnk_no1)"_s.arg(
                            QString::fromUtf8(view))),
                  letters)
            << view;
}

TEST_F(Store, SaysWhatIsWrongWithTheFile) {
    const auto message = [&]() -> QString {
        try {
            store::Database database;
            store::Table counters(database, store::idxno_key);
            counters.seek(store::Seek::equal, 0, u"檀家"_s);
            counters.insert({1, u"x"_s, 0, 0});
        } catch (const std::exception& failure) {
            return store::explain(failure);
        }
        return u"opened"_s;
    };
    const QString file = store::Database::registerPath();
    const auto write = [&](const QByteArray& bytes) {
        QFile::remove(file);
        QFile out(file);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(bytes);
    };
    const auto read = [&] {
        QFile in(file);
        EXPECT_TRUE(in.open(QIODevice::ReadOnly));
        return in.readAll();
    };
    const QByteArray bytes = read();
    const std::pair<QByteArray, QString> cases[] = {
        {QByteArray(), u"空です"_s},
        {QByteArray("\0\1\0\0Standard Jet DB\0", 20) + QByteArray(4096, 'x'), u"hoshiren-db convert"_s},
        {QByteArray(4096, 'x'), u"形式が違います"_s},
        {bytes.left(bytes.size() / 2), u"壊れています"_s},
    };
    for (const auto& [contents, words] : cases) {
        write(contents);
        EXPECT_TRUE(message().contains(words)) << message().toStdString();
        EXPECT_EQ(read(), contents);
    }
    write(bytes);
    for (const auto& [version, words] : {std::pair(store::layoutVersion + 1, u"新しい版で作られて"_s),
                                         {store::layoutVersion - 1, u"「hoshiren-db upgrade Hoshiren.mdb」"_s}}) {
        execute(u"PRAGMA user_version = %1"_s.arg(version));
        const QByteArray other = read();
        EXPECT_TRUE(message().contains(words)) << message().toStdString();
        EXPECT_EQ(read(), other);
        write(bytes);
    }
    SQLite::Database other(file.toStdString(), SQLite::OPEN_READWRITE);
    other.exec("BEGIN EXCLUSIVE");
    EXPECT_TRUE(message().contains(u"使用中"_s)) << message().toStdString();
    other.exec("ROLLBACK");
    EXPECT_EQ(message(), u"opened"_s);
    EXPECT_THROW(store::createRegister(file), store::Error);
}

} // namespace
