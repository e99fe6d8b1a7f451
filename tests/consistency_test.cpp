#include "sample/sample_register.h"
#include "store/consistency.h"
#include "support/database_tool.h"
#include "support/register_fixture.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace {

class Consistency : public RegisterFixture {
  protected:
    static QStringList faults() {
        store::Database database;
        QStringList found;
        store::findFaults(database, found);
        return found;
    }
    std::pair<int, QString> tool(const QStringList& arguments) const {
        return runDatabaseTool(directory.path(), arguments);
    }
    // Rows that agree with one another, for the cases to break.
    void fill() {
        execute(uR"(
            INSERT INTO tbl_danka (tbldnk_no1, tbldnk_no2, tbldnk_nameg, tbldnk_namek, tbldnk_kanaidx) VALUES
              (7, 0, '山田', 'ヤマダ', 'ヤ'), (7, 1, '山田', 'やまだ', 'や'), (8, 0, '', '', ' ');
            INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_nameg, tblkzk_seishikbn) VALUES
              (7, '旧姓', '太郎', '0');
            INSERT INTO tbl_kakocho (tblkak_no, tblkak_dnknameg, tblkak_zokunameg) VALUES (7, '旧姓', 'ハナ');
            INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_zokunameg, tblhoy_kaiki_mei, tblhoy_kaiki_yymd) VALUES
              (7, 'ハナ', '1周忌', '2020-05-01');
            INSERT INTO tbl_ohaka (tblhak_no, tblhak_banchi1, tblhak_banchi2, tblhak_dnk_no, tblhak_haiki_kbn,
              tblhak_haiki_ymd) VALUES
              (1, '東', '1', 7, 0, NULL), (2, '東', '1', 0, 1, '2020-01-01'), (3, '東', '2', 0, 0, NULL);
            UPDATE tbl_hatsuban SET tblno_sumino = 8;)"_s);
    }
};

} // namespace

TEST_F(Consistency, TellsEachFaultInOneLine) {
    const struct {
        QString damage;
        QStringList lines;
    } cases[] = {
        {u"DELETE FROM tbl_danka WHERE tbldnk_no1 = 7"_s,
         {u"家族「太郎」の檀家番号 7 の檀家がありません。"_s, u"過去帳「ハナ」の檀家番号 7 の檀家がありません。"_s,
          u"法要「ハナ 1周忌（2020-05-01）」の檀家番号 7 の檀家がありません。"_s,
          u"お墓 1 の檀家番号 7 の檀家がありません。"_s}},
        // A branch is enough for the household to be there.
        {u"DELETE FROM tbl_danka WHERE tbldnk_no1 = 7 AND tbldnk_no2 = 0"_s, {}},
        {u"UPDATE tbl_kazoku SET tblkzk_no1 = 9, tblkzk_nameg = '%1%2'"_s,
         {u"家族「%1%2」の檀家番号 9 の檀家がありません。"_s}},
        {u"UPDATE tbl_kazoku SET tblkzk_nameg = 'ハナ'"_s,
         {u"過去帳「ハナ」の檀家番号 7 の家族が、まだ存命とされています。"_s}},
        {u"UPDATE tbl_ohaka SET tblhak_banchi2 = '1' WHERE tblhak_no = 3"_s,
         {u"使用中のお墓 1、3 が同じ区画「東」番地「1」にあります。"_s}},
        {u"UPDATE tbl_ohaka SET tblhak_haiki_ymd = NULL"_s, {u"廃棄されたお墓 2 に廃棄日がありません。"_s}},
        {u"UPDATE tbl_ohaka SET tblhak_haiki_kbn = 2 WHERE tblhak_no = 3"_s,
         {u"お墓 3 の廃棄区分が 0 でも 1 でもありません: 2"_s}},
        {u"UPDATE tbl_danka SET tbldnk_kanaidx = 'カ' WHERE tbldnk_no2 = 1"_s,
         {u"檀家 7-1 のカナ索引「カ」が檀家名カナ「やまだ」の頭文字ではありません。"_s}},
        {u"UPDATE tbl_danka SET tbldnk_kanaidx = NULL WHERE tbldnk_no1 = 8"_s,
         {u"檀家 8-0 のカナ索引「」が檀家名カナ「」の頭文字ではありません。"_s}},
        {u"UPDATE tbl_hatsuban SET tblno_sumino = 2"_s,
         {u"檀家の発番「2」が、登録されている最大の番号 8 より小さくなっています。"_s,
          u"お墓の発番「2」が、登録されている最大の番号 3 より小さくなっています。"_s}},
        {u"DELETE FROM tbl_hatsuban WHERE tblno_key2 = 'お墓'"_s,
         {u"お墓の発番「」が、登録されている最大の番号 3 より小さくなっています。"_s}},
        {u"UPDATE tbl_danka SET tbldnk_bikou = CAST(x'E5B1' AS TEXT) WHERE rowid = 1"_s,
         {u"表 tbl_danka の 1 行目の tbldnk_bikou に文字として読めない値があります。"_s}},
        {u"DROP VIEW ｑｒｙｄｎｋ_ra; DROP INDEX idxkzk_no; DROP TABLE tbl_nengo"_s,
         {u"クエリ ｑｒｙｄｎｋ_ra がありません。"_s, u"索引 idxkzk_no がありません。"_s,
          u"索引 idxnen_nengo がありません。"_s, u"索引 idxnen_snen がありません。"_s,
          u"表 tbl_nengo がありません。"_s}},
    };
    for (const auto& [damage, lines] : cases) {
        QFile::remove(store::Database::registerPath());
        store::createRegister(store::Database::registerPath());
        fill();
        execute(damage);
        EXPECT_EQ(faults(), lines) << damage.toStdString();
    }
}

TEST_F(Consistency, NamesWhateverDiffersFromANewRegister) {
    // The statement of a table or query, with a part of it replaced, in the place of the one that is there.
    const auto altered = [](const char16_t* table, const char16_t* from, const char16_t* to) {
        return u"PRAGMA writable_schema = ON; UPDATE sqlite_master SET sql = replace(sql, '%2', '%3') WHERE name = '%1'"_s
            .arg(QString::fromUtf16(table), QString::fromUtf16(from).replace(u'\'', u"''"_s),
                 QString::fromUtf16(to).replace(u'\'', u"''"_s));
    };
    const std::pair<QString, QString> planted[] = {
        {u"DROP TABLE tbl_nengo"_s, u"表 tbl_nengo がありません。"_s},
        {u"CREATE TABLE 覚書 (a TEXT)"_s, u"表 覚書 は登録簿のものではありません。"_s},
        {u"ALTER TABLE tbl_danka DROP COLUMN tbldnk_fax"_s, u"表 tbl_danka に列 tbldnk_fax がありません。"_s},
        {u"ALTER TABLE tbl_danka ADD COLUMN 余分 TEXT"_s,
         u"表 tbl_danka の列「余分 TEXT」は登録簿のものではありません。"_s},
        {u"ALTER TABLE tbl_danka RENAME COLUMN tbldnk_fax TO 余分"_s, u"表 tbl_danka に列 tbldnk_fax がありません。"_s},
        {altered(u"tbl_danka", u"tbldnk_tel TEXT", u"tbldnk_tel INTEGER"),
         u"表 tbl_danka の列 tbldnk_tel が違います: 「INTEGER」（正しくは「TEXT」）"_s},
        {altered(u"tbl_kazoku", u"tblkzk_nameg TEXT NOT NULL", u"tblkzk_nameg TEXT"),
         u"表 tbl_kazoku の列 tblkzk_nameg が違います: 「TEXT DEFAULT ''」（正しくは「TEXT NOT NULL DEFAULT ''」）"_s},
        {altered(u"tbl_nengo", u"tblnen_snen INTEGER NOT NULL DEFAULT 0", u"tblnen_snen INTEGER NOT NULL DEFAULT 1"),
         u"表 tbl_nengo の列 tblnen_snen が違います"_s},
        {altered(u"tbl_ohaka", u"tblhak_no BETWEEN -32768 AND 32767", u"tblhak_no BETWEEN -32768 AND 99999"),
         u"表 tbl_ohaka の列 tblhak_no が違います"_s},
        {altered(u"tbl_danka", u" CHECK (tbldnk_addymd IS date(tbldnk_addymd, '+0 days'))", u""),
         u"表 tbl_danka の列 tbldnk_addymd が違います"_s},
        {altered(u"tbl_danka", u"tbldnk_tel TEXT,\n  tbldnk_fax TEXT", u"tbldnk_fax TEXT,\n  tbldnk_tel TEXT"),
         u"表 tbl_danka の列の順序が違います。"_s},
        {altered(u"マスタ", u") STRICT", u")"), u"表 マスタ の種類が違います: 「」（正しくは「STRICT」）"_s},
        {altered(u"tbl_danka", u"\n) STRICT", u", CHECK (tbldnk_no1 > 0)) STRICT"),
         u"表 tbl_danka の列「CHECK ( tbldnk_no1 > 0 )」は登録簿のものではありません。"_s},
        {u"DROP INDEX idxkzk_no"_s, u"索引 idxkzk_no がありません。"_s},
        {u"CREATE INDEX ix ON tbl_danka (tbldnk_tel)"_s, u"索引 ix は登録簿のものではありません。"_s},
        {u"DROP INDEX idxdnk_no; CREATE INDEX idxdnk_no ON tbl_danka (tbldnk_no1, tbldnk_no2)"_s,
         u"索引 idxdnk_no が違います"_s},
        {u"DROP INDEX idxhak_banchi12; CREATE INDEX idxhak_banchi12 ON tbl_ohaka (tblhak_banchi2, tblhak_banchi1)"_s,
         u"索引 idxhak_banchi12 が違います"_s},
        {u"DROP INDEX idxhoy_yymd; CREATE INDEX idxhoy_yymd ON tbl_hohyo (tblhoy_kaiki_yymd DESC)"_s,
         u"索引 idxhoy_yymd が違います"_s},
        {u"DROP INDEX idxhoy_rymd; CREATE INDEX idxhoy_rymd ON tbl_hohyo (tblhoy_kaiki_rymd, tblhoy_kaiki_ampm, "
         "tblhoy_kaiki_hour)"_s,
         u"索引 idxhoy_rymd が違います"_s},
        {u"DROP VIEW qrydnk_aa"_s, u"クエリ qrydnk_aa がありません。"_s},
        {u"CREATE VIEW 一覧 AS SELECT 1"_s, u"クエリ 一覧 は登録簿のものではありません。"_s},
        {altered(u"qrydnk_ka", u"'か' AND 'ご'", u"'か' AND 'け'"), u"クエリ qrydnk_ka の内容が違います。"_s},
        {u"DROP VIEW qrydnk_sa; CREATE TABLE qrydnk_sa (a TEXT)"_s,
         u"クエリ qrydnk_sa がありません。|表 qrydnk_sa は登録簿のものではありません。"_s},
        {u"CREATE TRIGGER t AFTER UPDATE ON tbl_danka BEGIN DELETE FROM tbl_kazoku; END"_s,
         u"トリガー t は登録簿のものではありません。"_s},
        {u"CREATE TRIGGER t INSTEAD OF DELETE ON qrydnk_ha BEGIN SELECT 1; END"_s,
         u"トリガー t は登録簿のものではありません。"_s},
    };
    for (const auto& [difference, lines] : planted) {
        QFile::remove(store::Database::registerPath());
        store::createRegister(store::Database::registerPath());
        execute(difference);
        const QString found = faults().join(u'|');
        EXPECT_TRUE(found.contains(lines)) << difference.toStdString() << "\n" << found.toStdString();
    }
}

TEST_F(Consistency, WhatAFileBringsAlongDoesNotRun) {
    fill();
    execute(u"CREATE TRIGGER t AFTER UPDATE ON tbl_danka BEGIN DELETE FROM tbl_kazoku; END"_s);
    execute(u"UPDATE tbl_danka SET tbldnk_tel = '03'"_s);
    EXPECT_EQ(query(u"SELECT count(*) FROM tbl_kazoku"_s), u"1"_s);
    // A query under the register's own name that reaches beyond its tables.
    execute(u"DROP VIEW qrydnk_ya; CREATE VIEW qrydnk_ya AS SELECT name FROM pragma_database_list"_s);
    EXPECT_THROW(query(u"SELECT * FROM qrydnk_ya"_s), SQLite::Exception);
}

TEST_F(Consistency, DatabaseToolMakesAndLooksOverARegister) {
    EXPECT_EQ(tool({u"create"_s, u"new.mdb"_s}).first, 0);
    EXPECT_EQ(tool({u"check"_s, u"new.mdb"_s}), std::pair(0, u"異常はありません。\n"_s));
    EXPECT_EQ(tool({u"create"_s, u"new.mdb"_s}).first, 1);
    EXPECT_EQ(tool({u"check"_s, u"missing.mdb"_s}).first, 1);
    EXPECT_EQ(tool({u"check"_s}).first, 2);
    EXPECT_EQ(tool({u"repair"_s, u"new.mdb"_s}).first, 2);

    fill();
    const QString figures = tool({u"info"_s, u"Hoshiren.mdb"_s}).second;
    for (const QString& line : {u"檀家（分家を除く）: 2\n"_s, u"檀家（分家）: 1\n"_s, u"お墓（廃棄）: 1\n"_s,
                                u"最後に発番したお墓番号: 8\n"_s, u"檀家名の写しが今と異なる家族: 1\n"_s})
        EXPECT_TRUE(figures.contains(line)) << line.toStdString() << figures.toStdString();
    execute(u"UPDATE tbl_kazoku SET tblkzk_no1 = 9"_s);
    EXPECT_EQ(tool({u"check"_s, u"Hoshiren.mdb"_s}),
              std::pair(1, u"家族「太郎」の檀家番号 9 の檀家がありません。\n1 件の異常が見つかりました。\n"_s));

    // A page is lost in the middle, and half of the file at the end.
    QFile file(store::Database::registerPath());
    ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.seek(8192));
    file.write(QByteArray(8192, '\xff'));
    file.resize(file.size() / 2);
    file.close();
    const auto [status, lines] = tool({u"check"_s, u"Hoshiren.mdb"_s});
    EXPECT_EQ(status, 1);
    EXPECT_TRUE(lines.contains(u"損傷"_s) || lines.contains(u"壊れて"_s)) << lines.toStdString();
}

TEST_F(Consistency, SampleRegisterAgreesAndIsTheSameEachTime) {
    const auto make = [this](const QString& name) {
        store::Database::setRegisterPath(path(name));
        sample::makeRegister(path(name), 200, today);
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    };
    EXPECT_TRUE(make(u"first.mdb"_s) == make(u"second.mdb"_s)) << "the same size and day give another register";
    EXPECT_THROW(make(u"first.mdb"_s), store::Error);
    EXPECT_EQ(faults(), QStringList());
    // 60,000 dead for 32,767 households; fourteen memorials for each.
    EXPECT_EQ(query(u"SELECT (SELECT count(*) FROM tbl_kakocho), (SELECT count(*) FROM tbl_hohyo)"_s), u"366,5124"_s);
}
