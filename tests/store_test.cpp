#include "store/table.h"

#include "support/register_fixture.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace {

class Store : public RegisterFixture {
  protected:
    void addMemorial(std::int16_t household, const QString& name, QDate due) {
        store::Database database;
        store::Table memorials(database, store::idxhoy_hohyo);
        store::tbl_hohyo row;
        row.tblhoy_no = household;
        row.tblhoy_zokunameg = name;
        row.tblhoy_kaiki_yymd = due;
        memorials.insert(row);
    }
};

TEST_F(Store, SeeksInIndexOrderOnSomeOrAllKeys) {
    for (const auto& [number, name] : {std::pair{5, u"乙"_s}, {5, u"甲"_s}, {9, u"甲"_s}})
        addMemorial(static_cast<std::int16_t>(number), name, QDate(2030, 1, number));
    store::Database database;
    store::Table memorials(database, store::idxhoy_hohyo);
    EXPECT_TRUE(memorials.seek(store::Seek::equal, 5, u"甲"_s, QDate(2030, 1, 5)));
    EXPECT_FALSE(memorials.seek(store::Seek::equal, 5, u"甲"_s, QDate(2030, 1, 6)));
    EXPECT_TRUE(memorials.noMatch());
    ASSERT_TRUE(memorials.seek(store::Seek::atOrAfter, 5, u""_s, QDate(1600, 1, 1)));
    EXPECT_EQ(memorials.row().tblhoy_zokunameg, u"乙"_s);
    memorials.moveNext();
    EXPECT_EQ(memorials.row().tblhoy_zokunameg, u"甲"_s);
    memorials.moveNext();
    EXPECT_EQ(memorials.row().tblhoy_no, 9);
    memorials.moveNext();
    EXPECT_TRUE(memorials.eof());
    ASSERT_TRUE(memorials.seek(store::Seek::atOrBefore, 8));
    EXPECT_EQ(memorials.row().tblhoy_zokunameg, u"甲"_s);
    EXPECT_FALSE(memorials.seek(store::Seek::atOrBefore, 4));
}

TEST_F(Store, WalksOnAfterDeletingTheCurrentRow) {
    execute(u"INSERT INTO tbl_ohaka (tblhak_no, tblhak_banchi1, tblhak_banchi2, tblhak_haiki_kbn) "
            "VALUES (1,'東','1',0),(2,'東','1',1),(3,'東','1',0),(4,'東','2',1)"_s);
    store::Database database;
    store::Table graves(database, store::idxhak_banchi12);
    QStringList seen;
    for (graves.seek(store::Seek::atOrAfter, u"東"_s, u"1"_s); !graves.eof(); graves.moveNext()) {
        seen << QString::number(graves.row().tblhak_no);
        if (graves.row().tblhak_no != 1 && graves.row().tblhak_no != 4)
            graves.remove();
        if (seen.size() > 9)
            break;
    }
    // Equal keys are met in the order of writing; the walk goes on from the removed row's key, which row 1 still bears.
    EXPECT_EQ(query(u"SELECT tblhak_no FROM tbl_ohaka"_s), u"1|4"_s);
    EXPECT_EQ(seen.last(), u"4"_s);
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

// Every seek and every selection of the lists finds its rows through an index of its own.
TEST_F(Store, SearchesByOneIndexOnAllColumns) {
    store::Database database;
    const auto plan = [&](const std::string& sql) {
        SQLite::Statement statement(database.engine(), "EXPLAIN QUERY PLAN " + sql);
        QString text;
        while (statement.executeStep())
            text += QString::fromUtf8(statement.getColumn(3).getText()) + u"; "_s;
        return text;
    };
    EXPECT_EQ(
        plan("SELECT * FROM tbl_hohyo INDEXED BY idxhoy_hohyo WHERE (tblhoy_no, tblhoy_zokunameg, "
             "tblhoy_kaiki_yymd) >= (?,?,?) ORDER BY tblhoy_no, tblhoy_zokunameg, tblhoy_kaiki_yymd"),
        u"SEARCH tbl_hohyo USING INDEX idxhoy_hohyo ((tblhoy_no,tblhoy_zokunameg,tblhoy_kaiki_yymd)>(?,?,?)); "_s);
    EXPECT_EQ(plan("SELECT * FROM tbl_hohyo WHERE tblhoy_kaiki_rymd >= ? AND tblhoy_kaiki_rymd <= ? ORDER BY "
                   "tblhoy_kaiki_rymd, tblhoy_kaiki_ampm, tblhoy_kaiki_hour"),
              u"SEARCH tbl_hohyo USING INDEX idxhoy_rymd (tblhoy_kaiki_rymd>? AND tblhoy_kaiki_rymd<?); "_s);
    EXPECT_EQ(plan("SELECT * FROM tbl_ohaka WHERE tblhak_bohyo_mei >= ? ORDER BY tblhak_bohyo_mei"),
              u"SEARCH tbl_ohaka USING INDEX idxhak_bohyomei (tblhak_bohyo_mei>?); "_s);
}

TEST_F(Store, KanaRowsTakeEveryFormOfTheirLetters) {
    const std::pair<const char*, QString> rows[] = {
        {"qrydnk_aa", u"ぁあおゔァアオヴｧｱｵ"_s}, {"qrydnk_ka", u"かがごゕゖカガゴヵヶｶｺ"_s},
        {"qrydnk_sa", u"さざぞサザゾｻｿ"_s},      {"qrydnk_ta", u"ただっづどタダッヅドﾀﾄｯ"_s},
        {"qrydnk_na", u"なのナノﾅﾉ"_s},          {"qrydnk_ha", u"はばぱぽハバパポﾊﾎ"_s},
        {"qrydnk_ma", u"まもマモﾏﾓ"_s},          {"qrydnk_ya", u"ゃやょよャヤョヨｬﾔｮﾖ"_s},
        {"ｑｒｙｄｎｋ_ra", u"らろラロﾗﾛ"_s},    {"qrydnk_wa", u"ゎわゐゑをんヮワヰヱヲンヷヺｦﾜﾝ"_s},
        {"qrydnk_hoka", u" A亜ー・ｰﾞゝ漢"_s},
    };
    std::int16_t number = 0;
    {
        store::Database database;
        store::Table households(database, store::idxdnk_no);
        for (const auto& [view, letters] : rows) {
            for (const QChar letter : letters) {
                store::tbl_danka row;
                row.tbldnk_no1 = ++number;
                row.tbldnk_kanaidx = letter;
                households.insert(row);
            }
        }
    }
    execute(u"INSERT INTO tbl_danka (tbldnk_no1, tbldnk_kanaidx) VALUES (9999, NULL)"_s);
    for (const auto& [view, letters] : rows) {
        const QString name = QString::fromUtf8(view);
        const QString expected = QString::number(letters.size() + (name == u"qrydnk_hoka"_s ? 1 : 0));
        EXPECT_EQ(query(u"SELECT count(*) FROM "_s + name), expected) << view;
        for (const QChar letter : letters)
            EXPECT_EQ(
                query(u"SELECT count(*) FROM %1 JOIN tbl_danka USING (tbldnk_no1) WHERE tbldnk_kanaidx = '%2'"_s.arg(
                    name, letter)),
                u"1"_s)
                << view << QString(letter).toStdString();
    }
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
    QFile good(file);
    ASSERT_TRUE(good.open(QIODevice::ReadOnly));
    const QByteArray bytes = good.readAll();
    good.close();

    const std::pair<QByteArray, QString> cases[] = {
        {QByteArray(), u"空です"_s},
        {QByteArray("\0\1\0\0Standard Jet DB\0", 20) + QByteArray(4096, 'x'), u"hoshiren-db convert"_s},
        {QByteArray(4096, 'x'), u"形式が違います"_s},
        {bytes.left(bytes.size() / 2), u"壊れています"_s},
    };
    for (const auto& [contents, words] : cases) {
        write(contents);
        EXPECT_TRUE(message().contains(words)) << message().toStdString();
        QFile same(file);
        ASSERT_TRUE(same.open(QIODevice::ReadOnly));
        EXPECT_EQ(same.readAll(), contents);
    }
    QFile::remove(file);
    EXPECT_TRUE(message().contains(u"がありません"_s)) << message().toStdString();
    EXPECT_FALSE(QFile::exists(file));

    write(bytes);
    execute(u"PRAGMA user_version = 2"_s);
    EXPECT_TRUE(message().contains(u"新しい版"_s)) << message().toStdString();
    write(bytes);
    SQLite::Database other(file.toStdString(), SQLite::OPEN_READWRITE);
    other.exec("BEGIN EXCLUSIVE");
    EXPECT_TRUE(message().contains(u"使用中"_s)) << message().toStdString();
    other.exec("ROLLBACK");
    EXPECT_EQ(message(), u"opened"_s);
    EXPECT_THROW(store::createRegister(file), store::Error);
}

} // namespace
