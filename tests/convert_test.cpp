#include "sample/sample_register.h"
#include "support/database_tool.h"
#include "support/jet_file.h"
#include "support/register_fixture.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

class Convert : public RegisterFixture {
  protected:
    template <class Record> static void addTable(JetFile& file, const std::vector<JetFile::Row>& rows = {}) {
        file.add(QString::fromUtf8(store::Description<Record>::table), JetFile::columns<Record>(), rows);
    }
    // The table of the present register, row by row.
    template <class Record> std::vector<JetFile::Row> rows() {
        std::vector<JetFile::Row> all;
        for (const Record& record : rowsOf<Record>("ORDER BY rowid"))
            all.push_back(JetFile::row(record));
        return all;
    }
    template <class Record> void copyTable(JetFile& file) { addTable<Record>(file, rows<Record>()); }

    // Converts the file to old-new.mdb; the exit status and all that was printed.
    std::pair<int, QString> convert(JetFile& file) {
        file.write(path(u"old.mdb"_s));
        return tool({u"convert"_s, u"old.mdb"_s});
    }
    std::pair<int, QString> tool(const QStringList& arguments) const {
        return runDatabaseTool(directory.path(), arguments);
    }
    void SetUp() override {
        JetFile file;
        if (convert(file).second.contains(u"読めるように作られていません"_s))
            GTEST_SKIP() << "hoshiren-db was built without mdbtools' library";
    }
};

} // namespace

TEST_F(Convert, TakesEveryRowAsItIs) {
    const QString sample = path(u"sample.mdb"_s);
    sample::makeRegister(sample, 40, today);
    store::Database::setRegisterPath(sample);
    // Null beside empty, characters outside the basic plane, a text of several pages, dates before the zero date.
    execute(uR"(UPDATE tbl_danka SET tbldnk_bikou = NULL, tbldnk_fax = '' WHERE tbldnk_no1 = 1;
                UPDATE tbl_danka SET tbldnk_nameg = '𠮷田㈱神' WHERE tbldnk_no1 = 2;
                UPDATE tbl_danka SET tbldnk_addymd = '1500-01-01', tbldnk_oyano = NULL WHERE tbldnk_no1 = 3;
                UPDATE tbl_danka SET tbldnk_addymd = '1899-12-29', tbldnk_oyano = -32768 WHERE tbldnk_no1 = 4;
                UPDATE tbl_danka SET tbldnk_addymd = '1899-12-30' WHERE tbldnk_no1 = 5;
                UPDATE tbl_ohaka SET tblhak_shiyo_ryokin = 2147483647, tblhak_kanri_ryokin = NULL WHERE tblhak_no = 1)"_s);
    execute(u"UPDATE tbl_danka SET tbldnk_bikou = '%1' WHERE tbldnk_no1 = 6"_s.arg(u"長い備考。"_s.repeated(1500)));
    execute(u"UPDATE tbl_danka SET tbldnk_bikou = '%1' WHERE tbldnk_no1 = 7"_s.arg(u"備考。"_s.repeated(60)));

    JetFile file;
    auto households = JetFile::columns<store::tbl_danka>();
    for (JetFile::Column& column : households)
        if (column.name == u"tbldnk_bikou"_s)
            column.type = JetFile::longText;
    auto householdRows = rows<store::tbl_danka>();
    householdRows.push_back(householdRows[0]);
    file.add(u"tbl_danka"_s, households, householdRows, 1);
    copyTable<store::tbl_kazoku>(file);
    copyTable<store::tbl_kakocho>(file);
    copyTable<store::tbl_ohaka>(file);
    copyTable<store::tbl_hohyo>(file);
    copyTable<store::tbl_nengo>(file);
    copyTable<store::tbl_hatsuban>(file);
    copyTable<store::マスタ>(file);
    const auto [status, lines] = convert(file);
    EXPECT_EQ(status, 0) << lines.toStdString();
    EXPECT_TRUE(lines.contains(u"tbl_danka: 元 40 行 → 新 40 行\n"_s)) << lines.toStdString();
    EXPECT_TRUE(lines.contains(u"hoshiren-db restore old-new.mdb"_s)) << lines.toStdString();
    store::Database converted(path(u"old-new.mdb"_s));
    converted.engine().exec("ATTACH '" + sample.toStdString() + "' AS old");
    const QString rowsOfOneOnly = u"SELECT count(*) FROM (SELECT * FROM %2.%1 EXCEPT SELECT * FROM %3.%1)"_s;
    for (const char16_t* table : {u"tbl_danka", u"tbl_kazoku", u"tbl_kakocho", u"tbl_ohaka", u"tbl_hohyo", u"tbl_nengo",
                                  u"tbl_hatsuban", u"マスタ"})
        for (const auto& [one, other] : {std::pair(u"main", u"old"), {u"old", u"main"}}) {
            const std::string difference = rowsOfOneOnly.arg(table, one, other).toStdString();
            EXPECT_EQ(converted.engine().execAndGet(difference).getInt(), 0) << difference;
        }
    // Nothing is written over.
    EXPECT_EQ(tool({u"convert"_s, u"old.mdb"_s}).first, 1);
}

TEST_F(Convert, NamesEveryRowThatItCannotTake) {
    auto households = JetFile::columns<store::tbl_danka>();
    households[0].type = JetFile::real;
    households[18].type = JetFile::text;
    households.push_back({u"tbldnk_mail"_s, JetFile::text});
    const auto household = [](double number, const QString& added) {
        JetFile::Row row = JetFile::row(sampleHousehold(0));
        row[0] = number;
        row[18] = added;
        row.emplace_back(u"a@b"_s);
        return row;
    };
    JetFile file;
    file.add(u"TBL_DANKA"_s, households,
             {household(1, u"2020/04/01"_s), household(2.5, u""_s), household(40000, u""_s), household(1, u""_s),
              household(5, u"2020/02/30"_s), household(6, u""_s)});
    auto members = JetFile::columns<store::tbl_kazoku>();
    members.erase(members.begin() + 20);
    JetFile::Row member(members.size());
    member[0] = qint64{6};
    member[4] = QString(QChar(0xd842)); // half a character
    file.add(u"tbl_kazoku"_s, members, {member});
    addTable<store::tbl_kakocho>(file);
    JetFile::Row grave(JetFile::columns<store::tbl_ohaka>().size());
    grave[0] = qint64{1};
    grave[9] = 36526.75; // with a time of day
    grave[14] = -2000000.0;
    JetFile::Row vacant = grave;
    vacant[14] = {};
    addTable<store::tbl_ohaka>(file, {grave, vacant});
    addTable<store::tbl_nengo>(file);
    addTable<store::tbl_hatsuban>(file, {{qint64{0}, u"檀家"_s, qint64{3}, qint64{0}}});
    addTable<store::マスタ>(file);
    const auto [status, lines] = convert(file);
    EXPECT_EQ(status, 1);
    for (const QString& line :
         {u"TBL_DANKA: 列 tbldnk_mail は登録簿にない列です。移しません。"_s,
          u"tbl_danka 2 行目（0、山田、ヤマダ、檀家、100-0001）: tbldnk_no1: 整数ではありません"_s,
          u"tbl_danka 3 行目（0、山田、ヤマダ、檀家、100-0001）: tbldnk_no1: 値 40000 が大きすぎます"_s,
          u"tbl_danka 4 行目（0、山田、ヤマダ、檀家、100-0001）: 同じ番号・名前の行が既にあります"_s,
          u"tbl_danka 5 行目（0、山田、ヤマダ、檀家、100-0001）: tbldnk_addymd: 日付「2020/02/30」を読めません"_s,
          u"tbl_danka: 元 6 行 → 新 2 行"_s, u"tbl_kazoku: 列 tblkzk_bikou がありません。空欄にします。"_s,
          u"tbl_kazoku 1 行目（6）: tblkzk_nameg: 文字コードに誤りがあります"_s,
          u"tbl_ohaka 1 行目（1）: tblhak_kanri_nxymd: 日付が範囲外です"_s,
          u"tblhak_shiyo_stymd: 時刻を除きました（1 行）"_s, u"tblhak_haiki_kbn: 空欄を 0 としました（1 行）"_s,
          u"tbl_ohaka: 元 2 行 → 新 1 行"_s, u"tbl_hohyo: 表がありません。"_s,
          u"檀家の発番「3」が、登録されている最大の番号 6 より小さくなっています。"_s})
        EXPECT_TRUE(lines.contains(line + u'\n')) << line.toStdString() << "\n--\n" << lines.toStdString();
}

TEST_F(Convert, RefusesWhatIsNoRegister) {
    JetFile file;
    file.add(u"住所録"_s, {{u"名"_s, JetFile::text}}, {{u"山田"_s}});
    EXPECT_EQ(convert(file).first, 1);
    QFile junk(path(u"old.mdb"_s));
    ASSERT_TRUE(junk.open(QIODevice::ReadWrite));
    junk.resize(5000);
    junk.close();
    EXPECT_EQ(tool({u"convert"_s, u"old.mdb"_s}).first, 1);
    EXPECT_EQ(tool({u"convert"_s, u"Hoshiren.mdb"_s}).first, 1);
    EXPECT_EQ(QDir(directory.path()).entryList({u"old-*"_s, u"Hoshiren-*"_s}, QDir::Files), QStringList());
}
