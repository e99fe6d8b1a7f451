#include "sample/sample_register.h"
#include "support/database_tool.h"
#include "support/jet_file.h"
#include "support/register_fixture.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QtEndian>

#include <cstdio>
#include <random>

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
    struct Table {
        std::vector<JetFile::Column> columns;
        std::vector<JetFile::Row> rows;
    };
    // The register's table as it is in an older file that has lived: columns were deleted before the first one, in the
    // middle and behind the last one. Rows from before that still hold their values.
    template <class Record> Table livedTable() {
        Table table{JetFile::columns<Record>(), rows<Record>()};
        const auto drop = [&table](std::size_t at, JetFile::Type type, const JetFile::Cell& value) {
            const auto place = static_cast<std::ptrdiff_t>(at);
            table.columns.insert(table.columns.begin() + place, {u"消した列"_s, type, true});
            for (std::size_t i = 0; i < table.rows.size(); ++i)
                table.rows[i].insert(table.rows[i].begin() + place,
                                     i < table.rows.size() / 2 ? value : JetFile::Cell());
        };
        drop(0, JetFile::wholeShort, qint64{1});
        drop(table.columns.size() / 2, JetFile::text, u"以前の値"_s);
        drop(table.columns.size() / 2, JetFile::real, 2.5);
        drop(table.columns.size(), JetFile::text, u"以前の値"_s);
        return table;
    }
    // A column that was added when the rows before the given one were there.
    static void addLater(Table& table, const QString& name, std::size_t since) {
        const auto at = std::find_if(table.columns.begin(), table.columns.end(),
                                     [&name](const auto& column) { return column.name == name; });
        const auto place = at - table.columns.begin();
        at->since = since;
        std::rotate(at, at + 1, table.columns.end());
        for (JetFile::Row& row : table.rows)
            std::rotate(row.begin() + place, row.begin() + place + 1, row.end());
    }
    static void setType(Table& table, const QString& name, JetFile::Type type) {
        for (JetFile::Column& column : table.columns)
            if (column.name == name)
                column.type = type;
    }
    static void add(JetFile& file, const char16_t* name, const Table& table, int deleted = 0) {
        file.add(QString::fromUtf16(name), table.columns, table.rows, deleted);
    }

    // A sample register, in part with values that are rare in one, and the older file of it.
    void makeSample(const QString& sample, int households, JetFile::Version version) {
        sample::makeRegister(sample, households, today);
        store::Database::setRegisterPath(sample);
        // Null beside empty, texts of several pages, dates before the zero date; characters outside the basic plane.
        execute(uR"(UPDATE tbl_danka SET tbldnk_bikou = NULL, tbldnk_fax = '' WHERE tbldnk_no1 = 1;
                    UPDATE tbl_danka SET tbldnk_haka_basho = NULL, tbldnk_addymd = NULL WHERE rowid <= 5;
                    UPDATE tbl_danka SET tbldnk_addymd = '1500-01-01', tbldnk_oyano = NULL WHERE tbldnk_no1 = 8;
                    UPDATE tbl_danka SET tbldnk_addymd = '1899-12-29', tbldnk_oyano = -32768 WHERE tbldnk_no1 = 9;
                    UPDATE tbl_danka SET tbldnk_addymd = '1899-12-30' WHERE tbldnk_no1 = 10;
                    UPDATE tbl_ohaka SET tblhak_shiyo_ryokin = 2147483647, tblhak_kanri_ryokin = NULL
                      WHERE tblhak_no = 1)"_s);
        execute(u"UPDATE tbl_danka SET tbldnk_bikou = '%1' WHERE tbldnk_no1 = 6"_s.arg(u"長い備考。"_s.repeated(1500)));
        execute(u"UPDATE tbl_danka SET tbldnk_bikou = '%1' WHERE tbldnk_no1 = 7"_s.arg(u"備考。"_s.repeated(60)));
        // Rows of every length, up to three times what a place of one byte can tell.
        execute(u"UPDATE tbl_kakocho SET tblkak_kaimyoug = substr('%1', 1, rowid * 11 % 125), "
                "tblkak_kankeisha = substr('%1', 1, rowid * 5 % 125), tblkak_bikou = substr('%1', 1, rowid * 7 % 125)"_s
                    .arg(u"院釈居士"_s.repeated(32)));
        if (version == JetFile::Version::access2000)
            execute(u"UPDATE tbl_danka SET tbldnk_nameg = '𠮷田㈱神' WHERE tbldnk_no1 = 2"_s);
    }
    void addTables(JetFile& file) {
        Table households = livedTable<store::tbl_danka>();
        addLater(households, u"tbldnk_haka_basho"_s, 5);
        addLater(households, u"tbldnk_addymd"_s, 5);
        setType(households, u"tbldnk_bikou"_s, JetFile::longText);
        households.rows.push_back(households.rows[0]);
        add(file, u"tbl_danka", households, 1);
        add(file, u"tbl_kazoku", livedTable<store::tbl_kazoku>());
        add(file, u"tbl_kakocho", livedTable<store::tbl_kakocho>());
        add(file, u"tbl_ohaka", livedTable<store::tbl_ohaka>());
        Table memorials = livedTable<store::tbl_hohyo>();
        setType(memorials, u"tblhoy_kaiki_s"_s, JetFile::yesNo);
        add(file, u"tbl_hohyo", memorials);
        add(file, u"tbl_nengo", livedTable<store::tbl_nengo>());
        add(file, u"tbl_hatsuban", livedTable<store::tbl_hatsuban>());
        add(file, u"マスタ", livedTable<store::マスタ>());
    }

    // Converts the file to old-new.mdb; the exit status and all that was printed.
    std::pair<int, QString> convert(JetFile& file) {
        file.write(path(u"old.mdb"_s));
        return tool({u"convert"_s, u"old.mdb"_s});
    }
    std::pair<int, QString> tool(const QStringList& arguments) const {
        return runDatabaseTool(directory.path(), arguments);
    }
    void writeOld(const QByteArray& bytes) const {
        QFile file(path(u"old.mdb"_s));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }
    // What runs of the tool made, whole or not.
    QStringList leftBehind() const {
        return QDir(directory.path())
            .entryList({u"*-new*"_s, u"*.part*"_s, u"*-journal"_s},
                       QDir::Files | QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot);
    }
    static QByteArray littleEndian(quint32 value) {
        QByteArray bytes(4, 0);
        qToLittleEndian(value, bytes.data());
        return bytes;
    }
    // The same damage for the same seed.
    static QByteArray damaged(QByteArray bytes, qsizetype page, unsigned seed) {
        std::mt19937 random(seed);
        const auto upTo = [&random](qsizetype bound) {
            return static_cast<qsizetype>(random() % static_cast<quint32>(bound));
        };
        for (qsizetype times = 1 + upTo(4); times > 0; --times) {
            const qsizetype pages = bytes.size() / page;
            // A page, and a place near its beginning more often than elsewhere: there stand its counts and places.
            const qsizetype at = upTo(pages) * page + upTo(upTo(2) ? 80 : page);
            switch (upTo(6)) {
            case 0:
                for (qsizetype bits = 1 + upTo(8); bits > 0; --bits) {
                    const qsizetype one = upTo(bytes.size());
                    bytes[one] = static_cast<char>(bytes[one] ^ 1 << upTo(8));
                }
                break;
            case 1: // lengths and counts
                bytes.replace(at, 2, littleEndian(static_cast<quint32>(random())).left(2));
                break;
            case 2: // places of pages, in the file or not
                bytes.replace(at, 4, littleEndian(static_cast<quint32>(upTo(pages + 2) << 8 | upTo(4))));
                break;
            case 3:
                bytes.replace(at, 4, littleEndian(upTo(2) ? 0xffffffff : static_cast<quint32>(random())));
                break;
            case 4:
                bytes.replace(at / page * page, page, bytes.mid(upTo(pages) * page, page));
                break;
            default:
                if (upTo(4) == 0)
                    bytes.truncate(std::max(page, upTo(bytes.size())));
                else
                    bytes.replace(at / page * page, page, QByteArray(page, upTo(2) ? '\0' : '\xff'));
            }
            bytes.resize(std::max(bytes.size(), page));
        }
        return bytes;
    }
};

} // namespace

class ConvertVersion : public Convert, public testing::WithParamInterface<JetFile::Version> {};

INSTANTIATE_TEST_SUITE_P(Of, ConvertVersion, testing::Values(JetFile::Version::access97, JetFile::Version::access2000),
                         [](const auto& version) {
                             return version.param == JetFile::Version::access97 ? "Access97" : "Access2000";
                         });

TEST_P(ConvertVersion, TakesEveryRowAsItIs) {
    const QString sample = path(u"sample.mdb"_s);
    makeSample(sample, 40, GetParam());
    JetFile file(GetParam());
    addTables(file);
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
    constexpr int ofTheirOwn = 100; // columns: their description takes more than a page
    for (int i = 0; i < ofTheirOwn; ++i)
        households.insert(households.begin(), {u"予備%1"_s.arg(i), JetFile::text});
    const auto household = [](double number, const QString& added) {
        JetFile::Row row = JetFile::row(sampleHousehold(0));
        row[0] = number;
        row[18] = added;
        row.emplace_back(u"a@b"_s);
        row.insert(row.begin(), ofTheirOwn, {});
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
    EXPECT_EQ(tool({u"convert"_s, u"."_s}).first, 1);
    EXPECT_EQ(leftBehind(), QStringList());
}

// The note of one household goes in a circle, and says that it is longer than the file.
TEST_F(Convert, EndsWhereALongTextIsLinkedToItself) {
    JetFile file;
    store::tbl_danka household = sampleHousehold(1);
    household.tbldnk_bikou = u"長い備考。"_s.repeated(1500);
    Table households{JetFile::columns<store::tbl_danka>(), {JetFile::row(household)}};
    setType(households, u"tbldnk_bikou"_s, JetFile::longText);
    add(file, u"tbl_danka", households);
    const QByteArray whole = file.bytes();
    constexpr int page = 4096;
    const auto owner = whole.indexOf("LVAL");
    ASSERT_TRUE(owner > 0);
    // Each page of the chain has one row, which begins with the next one's place.
    const auto last = owner / page;
    const auto first = whole.lastIndexOf("LVAL") / page;
    const QByteArray head = littleEndian(static_cast<quint32>(2 * household.tbldnk_bikou.size()));
    const auto at = whole.indexOf(head + littleEndian(static_cast<quint32>(first << 8)));
    ASSERT_TRUE(first > last && at > 0);
    for (const quint32 length : {static_cast<quint32>(2 * household.tbldnk_bikou.size()), 0x3fffffffU}) {
        QByteArray circle = whole;
        const auto row = first * page + qFromLittleEndian<quint16>(whole.data() + first * page + 14);
        circle.replace(row, 4, littleEndian(static_cast<quint32>(first << 8)));
        circle.replace(at, 4, littleEndian(length));
        writeOld(circle);
        QElapsedTimer time;
        time.start();
        const auto [status, lines] = tool({u"convert"_s, u"old.mdb"_s});
        EXPECT_LT(time.elapsed(), 5000);
        EXPECT_EQ(status, 1);
        EXPECT_TRUE(lines.contains(u"tbldnk_bikou: 長い文字列のページを読めません\n"_s)) << lines.toStdString();
        EXPECT_TRUE(QFile::remove(path(u"old-new.mdb"_s)));
    }
}

// HOSHIREN_DAMAGED_FILES tells how many are tried (40 unless told otherwise): bits turned over, the end cut off,
// lengths and places of pages written over, pages in the place of others.
TEST_F(Convert, EndsWithAMessageWhateverIsDamaged) {
    const int files = qEnvironmentVariableIsSet("HOSHIREN_DAMAGED_FILES")
                          ? qEnvironmentVariableIntValue("HOSHIREN_DAMAGED_FILES")
                          : 40;
    QByteArray whole[2];
    for (const auto version : {JetFile::Version::access97, JetFile::Version::access2000}) {
        const QString sample = path(u"sample%1.mdb"_s.arg(static_cast<int>(version)));
        makeSample(sample, 12, version);
        JetFile file(version);
        addTables(file);
        whole[static_cast<int>(version)] = file.bytes();
    }
    int refused = 0;
    int taken = 0;
    int inPart = 0;
    for (int i = 0; i < files && !HasFailure(); ++i) {
        writeOld(damaged(whole[i % 2], i % 2 ? 4096 : 2048, static_cast<unsigned>(i)));
        const auto [status, lines] = tool({u"convert"_s, u"old.mdb"_s});
        EXPECT_TRUE(status == 0 || status == 1) << i << ": " << status;
        EXPECT_TRUE(lines.contains(u"。"_s)) << i << lines.toStdString();
        // The reader itself refuses, and not the process that looks after it.
        EXPECT_FALSE(lines.contains(u"途中で終わりました"_s)) << i << lines.toStdString();
        const bool made = leftBehind() == QStringList{u"old-new.mdb"_s};
        EXPECT_TRUE(made || (status == 1 && leftBehind().isEmpty())) << i << leftBehind().join(u' ').toStdString();
        if (made) {
            store::Database converted(path(u"old-new.mdb"_s));
            EXPECT_EQ(converted.engine().execAndGet("PRAGMA integrity_check").getString(), "ok") << i;
        }
        ++(!made ? refused : status == 0 ? taken : inPart);
        QFile::remove(path(u"old-new.mdb"_s));
    }
    std::printf("%d damaged files: %d refused, %d taken in part, %d taken whole\n", files, refused, inPart, taken);
}
