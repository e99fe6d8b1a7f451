#include "transfer/bulk_file.h"
#include "transfer/bulk_record.h"
#include "values/cp932.h"

#include <QBuffer>
#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

const QString badCode = u"文字コードに誤りがあります"_s;
const QString badCount = u"項目数に誤りがあります"_s;
const QString badQuotes = u"引用符に誤りがあります"_s;
const QString lineBreak = u"項目の中に改行があります"_s;

std::vector<transfer::BulkRecord> readAll(QByteArray bytes, int fieldCount) {
    QBuffer device(&bytes);
    device.open(QIODevice::ReadOnly);
    transfer::BulkReader reader(device, fieldCount);
    std::vector<transfer::BulkRecord> records;
    for (transfer::BulkRecord record; reader.next(record);)
        records.push_back(record);
    EXPECT_EQ(reader.bytesRead(), bytes.size());
    return records;
}

// Records joined for comparison: fields with "|", a rejected one with its error and its marked fields behind them.
QStringList summary(const QByteArray& bytes, int fieldCount) {
    QStringList lines;
    for (const auto& record : readAll(bytes, fieldCount)) {
        QStringList fields(record.fields.begin(), record.fields.end());
        if (record.rejected())
            fields << record.error;
        for (const int number : record.marked)
            fields << QString::number(number);
        lines << fields.join(u'|');
    }
    return lines;
}

QByteArray written(const std::vector<QString>& fields) {
    QByteArray bytes;
    transfer::appendRecord(bytes, fields);
    return bytes;
}

} // namespace

TEST(Cp932, EveryPairThatDecodesComesBackAsWindowsWritesIt) {
    int held = 0;
    int elsewhere = 0;
    for (int lead = 0x81; lead <= 0xFC; ++lead) {
        if (lead >= 0xA0 && lead < 0xE0)
            continue;
        for (int trail = 0; trail < 0x100; ++trail) {
            const char pair[] = {static_cast<char>(lead), static_cast<char>(trail)};
            QString text;
            if (!values::cp932::decode(QByteArrayView(pair, 2), text))
                continue;
            ++held;
            ASSERT_EQ(text.size(), 1);
            const auto bytes = values::cp932::encode(text[0].unicode());
            ASSERT_TRUE(bytes);
            elsewhere += *bytes != (lead << 8 | trail);
        }
    }
    // 7,724 pairs of the code page and 1,880 user-defined ones; 398 are second places of a character.
    EXPECT_EQ(held, 7724 + 1880);
    EXPECT_EQ(elsewhere, 398);
}

TEST(Cp932, TheCharactersThatTellItFromItsRelatives) {
    const struct {
        const char* bytes;
        char16_t unit;
        bool chosen; // the place that is written
    } cases[] = {
        {"\x81\x60", u'～', true},  {"\x81\x7C", u'－', true},     {"\x81\x5C", u'―', true},
        {"\x81\x61", u'∥', true},   {"\x81\xCA", u'￢', true},     {"\xFA\x54", u'￢', false},
        {"\x87\x8A", u'㈱', true},  {"\xFA\x58", u'㈱', false},    {"\x87\x90", u'≒', false},
        {"\x81\xE0", u'≒', true},   {"\xFA\x40", u'ⅰ', true},      {"\xEE\xEF", u'ⅰ', false},
        {"\x87\x54", u'Ⅰ', true},   {"\xFA\x4A", u'Ⅰ', false},     {"\xFB\xFC", u'髙', true},
        {"\xEE\xE0", u'髙', false}, {"\xF0\x40", u'\uE000', true}, {"\xF9\xFC", u'\uE757', true},
        {"\xB1", u'ｱ', true},       {"\x5C", u'\\', true},
    };
    for (const auto& c : cases) {
        QString text;
        EXPECT_TRUE(values::cp932::decode(c.bytes, text)) << c.bytes;
        EXPECT_EQ(text, QString(QChar(c.unit)));
        const QByteArrayView bytes(c.bytes);
        const quint16 code = static_cast<quint16>(bytes.size() == 1 ? static_cast<unsigned char>(bytes[0])
                                                                    : static_cast<unsigned char>(bytes[0]) << 8 |
                                                                          static_cast<unsigned char>(bytes[1]));
        EXPECT_EQ(values::cp932::encode(c.unit) == code, c.chosen) << std::hex << code;
    }
}

TEST(BulkReader, Records) {
    const struct {
        const char* what;
        QByteArray bytes;
        QStringList records;
    } cases[] = {
        {"empty file", "", {}},
        {"line ends", "1,2\r\n3,4\n5,6\r7,8", {u"1|2"_s, u"3|4"_s, u"5|6"_s, u"7|8"_s}},
        {"an empty line is a record",
         "1,2\r\n\r\n3,4\n\n5,6",
         {u"1|2"_s, u"||"_s + badCount, u"3|4"_s, u"||"_s + badCount, u"5|6"_s}},
        {"a blank last line is none", "1,2\r\n\r\n", {u"1|2"_s}},
        {"nor is one of blanks", "1,2\r\n\n \t", {u"1|2"_s, u"||"_s + badCount}},
        {"a file of one line end", "\r\n", {}},
        {"^Z behind the last line end", "1,2\r\n\x1A", {u"1|2"_s}},
        {"^Z behind a blank line", "1,2\r\n\r\n\x1A\x1A", {u"1|2"_s}},
        {"^Z behind the last field", "1,2\x1A", {u"1|2"_s}},
        {"^Z elsewhere is text", "1\x1A,\x1A\n3,4\x1A\r\n", {u"1\u001A|\u001A"_s, u"3|4\u001A"_s}},
        {"blanks", " a b , \" c \" \r\n\t,\t\"\"\r\n", {u"a b| c "_s, u"|"_s}},
        {"full-width blanks stay", "\x81\x40\x8C\xB4\x81\x40,\xA0\r\n", {u"　原　|〓|"_s + badCode + u"|2"_s}},
        {"commas and quotation marks",
         "\"a,b\",\"\"\"c\"\"\"\r\n\"\"\"\"\"\",a\"b\"\r\n",
         {u"a,b|\"c\""_s, u"\"\"|a\"b\""_s}},
        {"characters that end in a backslash or a bar", "\"\x95\x5C\x83\x5C\x8F\x5C\",\x94\x5C\r\n", {u"表ソ十|能"_s}},
        {"too few, too many",
         "a\r\na,b,c\r\na,b,\r\nd,e\r\n",
         {u"a||"_s + badCount, u"a|b|"_s + badCount, u"a|b|"_s + badCount, u"d|e"_s}},
        {"unmatched quotation mark ends with its line",
         "\"a,b\r\n\"c\",\"d\r\ne,f\r\n",
         {u"a,b||"_s + badCount, u"c|d|"_s + badQuotes + u"|2"_s, u"e|f"_s}},
        {"line breaks between quotation marks",
         "\"a\nb\",c\r\nd,\"\"\"e\r\n\r\n\"\"f\"\r\ng,h\r\n\"i\n\x95\",j\r\nk,l",
         {u"a\nb|c|"_s + lineBreak + u"|1"_s, u"d|\"e\n\n\"f|"_s + lineBreak + u"|2"_s, u"g|h"_s,
          u"i\n〓|j|"_s + badCode + u"|1"_s, u"k|l"_s}},
        {"lines that make no record together stand for themselves",
         "a,\"b\nc\nd,e\n\"f\ng\",h,i\nj,k\n\"l\n",
         {u"a|b|"_s + badQuotes + u"|2"_s, u"c||"_s + badCount, u"d|e"_s, u"f||"_s + badCount, u"g\"|h|"_s + badCount,
          u"j|k"_s, u"l||"_s + badCount}},
        {"a record between two stray quotation marks is not swallowed",
         "a,\"b\nc,d\ne\"\n",
         {u"a|b|"_s + badQuotes + u"|2"_s, u"c|d"_s, u"e\"||"_s + badCount}},
        {"text behind a quoted field",
         "\"a\"b,c\r\n\"\"d,e\r\nf,g\r\n",
         {u"ab|c|"_s + badQuotes + u"|1"_s, u"d|e|"_s + badQuotes + u"|1"_s, u"f|g"_s}},
        {"lone lead byte at a line end",
         "a,\x95\r\nb,\x95\x5C\n\x95",
         {u"a|〓|"_s + badCode + u"|2"_s, u"b|表"_s, u"〓||"_s + badCode + u"|1"_s}},
        {"lone lead byte takes no comma or quotation mark",
         "\"\x95\",\"\xFFx\"\r\n",
         {u"〓|〓x|"_s + badCode + u"|1|2"_s}},
        {"bytes that denote nothing",
         "\x80,\xFD\r\n\x85\x40,\xEB\x9F\r\n",
         {u"〓|〓|"_s + badCode + u"|1|2"_s, u"〓@|〓〓|"_s + badCode + u"|1|2"_s}},
        {"a real 〓 is a character", "\x81\xAC,b\r\n", {u"〓|b"_s}},
        {"NUL", QByteArray("a,\0\r\n", 5), {u"a|〓|"_s + badCode + u"|2"_s}},
        {"references",
         "&#x20BB7;&#XFA11;,\"&#x26;#x41;&#x0;&#xD800;&#x110000;&#x1234567;&#65;&#x;&#xG1;&#x41\"\r\n",
         {u"𠮷﨑|&#x41;&#x0;&#xD800;&#x110000;&#x1234567;&#65;&#x;&#xG1;&#x41"_s}},
        {"UTF-8 behind its mark",
         "\xEF\xBB\xBF\"\xE5\x8E\x9F\",\xF0\xA0\xAE\xB7\n\xE5\x8E,b\r\n",
         {u"原|𠮷"_s, u"〓〓|b|"_s + badCode + u"|1"_s}},
        {"UTF-8 without it", "\xE5\x8E\x9F,b\r\n", {u"蜴〓|b|"_s + badCode + u"|1"_s}},
        {"nothing but the mark", "\xEF\xBB\xBF", {}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(summary(c.bytes, 2), c.records) << c.what << ": " << summary(c.bytes, 2).join(u'\n').toStdString();
}

TEST(BulkReader, RecordsAcrossBlocksAndBeyondAllBounds) {
    // Lengths that let every byte of a line end fall on the edge of a block once.
    for (const int length : {251, 252, 253, 254, 255, 256}) {
        const QByteArray record = QByteArray(length - 3, 'x') + ",";
        QByteArray bytes;
        for (int i = 0; i < 3000; ++i)
            bytes += record + "\r\n";
        const auto records = readAll(bytes, 2);
        ASSERT_EQ(records.size(), 3000U) << length;
        for (const auto& r : records)
            ASSERT_EQ(r.field(1).size(), length - 3);
    }
    EXPECT_EQ(summary("a,b\r\nc," + QByteArray(3'000'000, 'x') + "\r\nd,e\r\n", 2).value(2), u"d|e"_s);
    EXPECT_EQ(readAll("c," + QByteArray(3'000'000, 'x'), 2)[0].error, badCount);
}

TEST(BulkRecord, ErrorLineMarksTheFieldsThatCausedIt) {
    auto record = readAll("a,b,c,d\r\n", 4)[0];
    record.reject(u"悪い"_s, {2, 4});
    EXPECT_EQ(record.errorLine(std::vector{1, 2, 4}), (std::vector{u"a"_s, u"**b"_s, u"**d"_s, u"悪い"_s}));
}

TEST(BulkWriter, Fields) {
    const struct {
        QString text;
        QByteArray bytes;
        bool referred;
        int lookAlikes = 0;
    } cases[] = {
        {u""_s, "", false},
        {u"表 ソ 十"_s, "\x95\x5C \x83\x5C \x8F\x5C", false},
        {u"\"引用\", O'Hara"_s, "\"\"\x88\xF8\x97\x70\"\", O'Hara", false},
        {u"\u301C\u2212\u2014\u2016\u00A5"_s, "\x81\x60\x81\x7C\x81\x5C\x81\x61\x81\x8F", false, 5},
        {u"\uFA11\uFA19\u795E㈱\\~"_s, "\xFA\xB1\xFB~\x90_\x87\x8A\\~", false},
        {u"𠮷&鷗\u00A0"_s, "&#x20BB7;&&#x9DD7;&#xA0;", true},
        {u"一\r\n二"_s, "\x88\xEA&#xD;&#xA;\x93\xF1", true},
        {u"&#x41; &#x41 &amp;"_s, "&#x26;#x41; &#x41 &amp;", true},
        {QString(QChar(0xD842)), "&#xFFFD;", true},
    };
    for (const auto& c : cases) {
        QByteArray bytes;
        const std::vector<QString> fields{c.text, u"x"_s};
        const transfer::Altered altered = transfer::appendRecord(bytes, fields);
        EXPECT_EQ(altered.referred, c.referred) << c.text.toStdString();
        EXPECT_EQ(altered.lookAlikes, c.lookAlikes) << c.text.toStdString();
        EXPECT_EQ(bytes.toPercentEncoding(), ("\"" + c.bytes + "\",\"x\"\r\n").toPercentEncoding())
            << c.text.toStdString();
    }
}

TEST(BulkWriter, EveryCharacterComesBackButFive) {
    QStringList changed;
    for (char32_t c = 1; c <= 0x2FFFF; ++c) {
        if (QChar::isSurrogate(c))
            continue;
        const QString text = u'&' + QString::fromUcs4(&c, 1) + u"#x41;"_s;
        const auto records = readAll(written({text, u"x"_s}), 2);
        ASSERT_EQ(records.size(), 1U);
        ASSERT_FALSE(records[0].rejected());
        if (records[0].field(1) != text)
            changed << QString::number(c, 16);
    }
    EXPECT_EQ(changed, QStringList({u"a5"_s, u"2014"_s, u"2016"_s, u"2212"_s, u"301c"_s}));
}

class BulkFiles : public testing::Test {
  protected:
    QString path(const QString& name) const { return folder.filePath(name); }
    void put(const QString& name, const QByteArray& bytes) {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QByteArray get(const QString& name) {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
    }
    static bool ownerOnly(const QString& path) {
        return std::filesystem::status(path.toStdString()).permissions() ==
               (std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    }

    QTemporaryDir folder;
};

TEST_F(BulkFiles, AnExportTakesItsNameWhenItIsWhole) {
    put(u"out.csv"_s, "old");
    const std::vector<QString> fields{u"原"_s, u"1"_s};
    {
        transfer::ExportFile unfinished(path(u"out.csv"_s));
        unfinished.write(fields);
    }
    EXPECT_EQ(get(u"out.csv"_s), "old");
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList{u"out.csv"_s});
    transfer::ExportFile whole(path(u"out.csv"_s));
    whole.write(fields);
    EXPECT_EQ(get(u"out.csv"_s), "old");
    whole.commit();
    EXPECT_EQ(get(u"out.csv"_s), "\"\x8C\xB4\",\"1\"\r\n");
    EXPECT_TRUE(ownerOnly(path(u"out.csv"_s)));
}

TEST_F(BulkFiles, TheErrorFileIsTestedWithoutBeingTouched) {
    put(u"err.csv"_s, "old");
    transfer::ErrorFile existing(path(u"err.csv"_s));
    existing.check();
    EXPECT_EQ(get(u"err.csv"_s), "old");
    existing.open();
    EXPECT_EQ(get(u"err.csv"_s), "");
    existing.write(std::vector{u"a"_s});
    EXPECT_EQ(get(u"err.csv"_s), "\"a\"\r\n") << "each record at once";
    EXPECT_TRUE(ownerOnly(path(u"err.csv"_s)));

    transfer::ErrorFile(path(u"new.csv"_s)).check();
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList{u"err.csv"_s});
    EXPECT_THROW(transfer::ErrorFile(path(u"none/err.csv"_s)).check(), transfer::FileError);
    EXPECT_THROW(transfer::ExportFile(path(u"none/out.csv"_s)), transfer::FileError);
    QFile none(path(u"none.csv"_s));
    EXPECT_THROW(transfer::openInput(none), transfer::FileError);
}

TEST_F(BulkFiles, OnlyRegularFilesAreOpenedAndNothingIsChanged) {
    const QString pipe = path(u"pipe"_s);
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0644), 0);
    for (const QString& name : {folder.path(), pipe, u"/dev/null"_s}) {
        const auto before = std::filesystem::status(name.toStdString());
        EXPECT_THROW(transfer::ErrorFile(name).check(), transfer::FileError);
        EXPECT_THROW(transfer::ExportFile{name}, transfer::FileError);
        QFile input(name);
        EXPECT_THROW(transfer::openInput(input), transfer::FileError);
        const auto after = std::filesystem::status(name.toStdString());
        EXPECT_EQ(after.type(), before.type());
        EXPECT_EQ(after.permissions(), before.permissions()) << name.toStdString();
    }
    // What an error file takes the place of may have another name that is somebody's.
    put(u"mine.csv"_s, "mine");
    std::filesystem::create_hard_link(path(u"mine.csv"_s).toStdString(), path(u"err.csv"_s).toStdString());
    const auto mode = std::filesystem::status(path(u"mine.csv"_s).toStdString()).permissions();
    transfer::ErrorFile(path(u"err.csv"_s)).open();
    EXPECT_EQ(get(u"mine.csv"_s), "mine");
    EXPECT_EQ(std::filesystem::status(path(u"mine.csv"_s).toStdString()).permissions(), mode);
    EXPECT_EQ(get(u"err.csv"_s), "");
}

TEST_F(BulkFiles, OneFileUnderManyNames) {
    put(u"a.csv"_s, "a");
    put(u"b.csv"_s, "b");
    QDir(folder.path()).mkdir(u"sub"_s);
    std::filesystem::create_symlink(path(u"a.csv"_s).toStdString(), path(u"link.csv"_s).toStdString());
    std::filesystem::create_hard_link(path(u"a.csv"_s).toStdString(), path(u"hard.csv"_s).toStdString());
    std::filesystem::create_symlink(path(u"R.mdb-wal"_s).toStdString(), path(u"later.csv"_s).toStdString());
    const struct {
        QString one, other;
        bool same;
    } cases[] = {
        {u"a.csv"_s, u"a.csv"_s, true},          {u"a.csv"_s, u"b.csv"_s, false},
        {u"a.csv"_s, u"sub/../a.csv"_s, true},   {u"a.csv"_s, u"link.csv"_s, true},
        {u"a.csv"_s, u"hard.csv"_s, true},       {u"new.csv"_s, u"sub/../new.csv"_s, true},
        {u"new.csv"_s, u"sub/new.csv"_s, false}, {u"later.csv"_s, u"R.mdb-wal"_s, true},
    };
    for (const auto& c : cases)
        EXPECT_EQ(transfer::sameFile(path(c.one), path(c.other)), c.same)
            << c.one.toStdString() << c.other.toStdString();
    for (const QString& side : {u"R.mdb"_s, u"R.mdb-journal"_s, u"R.mdb-wal"_s, u"R.mdb-shm"_s, u"later.csv"_s})
        EXPECT_TRUE(transfer::belongsToRegister(path(side), path(u"R.mdb"_s))) << side.toStdString();
    EXPECT_FALSE(transfer::belongsToRegister(path(u"a.csv"_s), path(u"R.mdb"_s)));

    QDir(folder.path()).mkpath(u"backup/deeper"_s);
    std::filesystem::create_directory_symlink(path(u"backup"_s).toStdString(), path(u"link"_s).toStdString());
    std::filesystem::create_symlink(path(u"backup/c.mdb"_s).toStdString(), path(u"copy.csv"_s).toStdString());
    for (const QString& inside :
         {u"backup/c.mdb"_s, u"sub/../backup/new.csv"_s, u"backup/deeper/new.csv"_s, u"link/new.csv"_s, u"copy.csv"_s})
        EXPECT_TRUE(transfer::inBackupFolder(path(inside), path(u"R.mdb"_s))) << inside.toStdString();
    for (const QString& outside : {u"a.csv"_s, u"sub/new.csv"_s, u"backup.csv"_s})
        EXPECT_FALSE(transfer::inBackupFolder(path(outside), path(u"R.mdb"_s))) << outside.toStdString();
}
