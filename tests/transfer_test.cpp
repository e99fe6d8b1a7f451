#include "support/register_fixture.h"
#include "support/test_desk.h"
#include "transfer/bulk_file.h"
#include "transfer/grave_transfer_rules.h"
#include "transfer/household_transfer_rules.h"

#include <QBuffer>
#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

const QString householdTitle = u"檀家一括登録"_s;
const QString graveTitle = u"お墓一括登録"_s;
const QString householdQuestion = u"入力檀家番号は無視し、登録前に一旦全件削除します"_s;
const QString graveQuestion = u"入力お墓番号は無視し、登録前に一旦全件削除します"_s;
const QString taken = u"同一檀家番号が存在します"_s;

const QStringList goodHousehold =
    u"7||原|ハラ|1||587-3050|川端1丁目||071||川端地区|原　美代|ハラ ミヨ|0||備考"_s.split(u'|');
const QStringList goodGrave =
    u"東|001|7|檀家|原|ハラ|家|原家之墓|2001/04/01|30000|2001/4/1|5,000|2024-04-01|2025/04/01|0||備考"_s.split(u'|');

using Changes = std::initializer_list<std::pair<int, QString>>;

std::vector<QString> with(QStringList fields, Changes changes) {
    for (const auto& [number, text] : changes)
        fields[number - 1] = text;
    return {fields.begin(), fields.end()};
}

struct CheckCase {
    Changes changes;
    QString error;
    std::vector<int> marked;
};

void expectChecked(const QStringList& good, const CheckCase& c,
                   const std::function<void(transfer::BulkRecord&)>& check) {
    transfer::BulkRecord record;
    record.fields = with(good, c.changes);
    check(record);
    EXPECT_EQ(record.error.toStdString(), c.error.toStdString());
    EXPECT_EQ(record.marked, c.marked) << c.error.toStdString();
}

QByteArray lines(const std::vector<std::vector<QString>>& records) {
    QByteArray bytes;
    for (const auto& fields : records)
        transfer::appendRecord(bytes, fields);
    return bytes;
}

class Transfer : public RegisterFixture {
  protected:
    void put(const QString& name, const QByteArray& bytes) {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QByteArray get(const QString& name) {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
    }
    // The error file's records, their fields joined.
    QStringList errorFile(int fieldCount) {
        QByteArray bytes = get(u"err.csv"_s);
        QBuffer device(&bytes);
        device.open(QIODevice::ReadOnly);
        transfer::BulkReader reader(device, fieldCount);
        QStringList all;
        for (transfer::BulkRecord read; reader.next(read);)
            all << (QStringList(read.fields.begin(), read.fields.end()) << read.error).join(u'|');
        return all;
    }
    std::optional<transfer::ImportCounts> importHouseholds(transfer::HouseholdOptions options) {
        return transfer::ImportHouseholds(path(u"in.csv"_s), path(u"err.csv"_s), options, desk);
    }
    std::optional<transfer::ImportCounts> importGraves(transfer::GraveImportMode mode) {
        return transfer::ImportGraves(path(u"in.csv"_s), path(u"err.csv"_s), mode, desk);
    }
    QString counter(const QString& kind) {
        return query(u"SELECT tblno_sumino FROM tbl_hatsuban WHERE tblno_key2 = '%1'"_s.arg(kind));
    }

    TestDesk desk{today};
};

constexpr transfer::HouseholdOptions automatic{};
constexpr transfer::HouseholdOptions updating{.numbered = true, .update = true};
constexpr transfer::HouseholdOptions refusing{.numbered = true, .update = false};

TEST(HouseholdRecord, FirstFailureAloneIsRecorded) {
    const CheckCase cases[] = {
        {{}, {}, {}},
        {{{3, u""_s}, {4, u""_s}}, u"檀家名は必須です"_s, {3}},
        {{{4, u""_s}, {6, u"檀徒"_s}}, u"檀家名カナは必須です"_s, {4}},
        {{{6, u"檀徒"_s}, {7, u""_s}}, u"檀家区分は必須です"_s, {6, 5}},
        {{{6, u"一般"_s}, {5, u"x"_s}}, {}, {}},
        {{{7, u""_s}, {8, u""_s}}, u"郵便番号は必須です"_s, {7}},
        {{{8, u""_s}, {10, u""_s}}, u"住所1は必須です"_s, {8}},
        {{{10, u""_s}, {13, u""_s}}, u"電話は必須です"_s, {10}},
        {{{13, u""_s}, {14, u""_s}}, u"当主名は必須です"_s, {13}},
        {{{14, u""_s}, {16, u"境中"_s}}, u"当主カナは必須です"_s, {14}},
        {{{16, u"境中"_s}, {1, u""_s}}, u"墓所を正しく入力して下さい"_s, {16, 15}},
        {{{1, u""_s}}, u"檀家番号入力を選択時は必須です"_s, {1}},
        {{{1, u"十二"_s}}, u"檀家番号を正しく入力して下さい"_s, {1}},
        {{{1, u"0"_s}, {2, u"-1"_s}}, u"檀家番号を正しく入力して下さい"_s, {1, 2}},
        {{{1, u"40000"_s}}, u"檀家番号を正しく入力して下さい"_s, {1}},
        {{{1, u"1.5"_s}}, u"檀家番号を正しく入力して下さい"_s, {1}},
        {{{2, u"32768"_s}}, u"檀家番号を正しく入力して下さい"_s, {2}},
        {{{1, u"３２７６７"_s}, {2, u"32767"_s}}, {}, {}},
    };
    for (const auto& c : cases)
        expectChecked(goodHousehold, c, [](auto& record) { transfer::CheckHouseholdRecord(record, true); });
    expectChecked(goodHousehold, {{{1, u"十二"_s}, {2, u"x"_s}}, {}, {}},
                  [](auto& record) { transfer::CheckHouseholdRecord(record, false); });
}

TEST(GraveRecord, FirstFailureAloneIsRecorded) {
    const QString feeError = u"使用料に正しく入力して下さい"_s;
    const QString startError = u"使用開始日に正しく入力して下さい"_s;
    const CheckCase cases[] = {
        {{}, {}, {}},
        {{{1, u""_s}, {2, u""_s}}, u"お墓の区画は必須です"_s, {1}},
        {{{2, u""_s}, {5, u""_s}}, u"お墓の区画整理番号は必須です"_s, {2}},
        {{{5, u""_s}, {6, u""_s}}, u"檀家区分入力時には檀家名は必須です"_s, {5}},
        {{{6, u""_s}, {8, u""_s}}, u"檀家区分入力時には檀家カナは必須です"_s, {6}},
        {{{4, u"0"_s}, {5, u""_s}, {6, u""_s}}, {}, {}},
        {{{8, u""_s}, {9, u"x"_s}}, u"墓標区分入力時には墓標名は必須です"_s, {8}},
        {{{7, u"空"_s}, {8, u""_s}, {9, u""_s}}, {}, {}},
        {{{9, u"2001/02/30"_s}, {10, u"x"_s}}, startError, {9}},
        {{{7, u""_s}, {8, u""_s}, {9, u"昭和"_s}}, startError, {9}},
        {{{9, u""_s}, {10, u"x"_s}}, u"墓標区分入力時には使用開始日は必須です"_s, {9}},
        {{{10, u"三万"_s}, {11, u"x"_s}}, feeError, {10}},
        {{{10, u"40000"_s}}, feeError, {10}},
        {{{10, u"99999999999999999999"_s}}, feeError, {10}},
        {{{10, u"３２,７６７"_s}, {12, u""_s}}, {}, {}},
        {{{11, u"1/2"_s}, {12, u"x"_s}}, startError, {11}},
        {{{12, u"&H10"_s}, {13, u"x"_s}}, u"管理費に正しく入力して下さい"_s, {12}},
        {{{13, u"x"_s}, {14, u"x"_s}}, u"管理費受領日に正しく入力して下さい"_s, {13}},
        {{{14, u"x"_s}, {15, u"2"_s}}, u"管理費次回日に正しく入力して下さい"_s, {14}},
        {{{14, u""_s}}, u"管理費次回日に正しく入力して下さい"_s, {14}},
        {{{13, u""_s}, {15, u"2"_s}}, u"管理費受領日に入力がなければ管理費次回日は無効です"_s, {14}},
        {{{13, u""_s}, {14, u""_s}}, {}, {}},
        {{{15, u"2"_s}, {16, u"x"_s}}, u"W_廃棄区分に正しく入力して下さい"_s, {15}},
        {{{15, u"1"_s}, {16, u"x"_s}}, u"W_廃棄日に正しく入力して下さい"_s, {16}},
        {{{15, u""_s}, {16, u"x"_s}}, u"W_廃棄日に正しく入力して下さい"_s, {16}},
        {{{15, u"1"_s}, {3, u"x"_s}}, u"墓標区分入力時にはW_廃棄日は必須です"_s, {16}},
        {{{3, u"x"_s}}, u"檀家番号を正しく入力して下さい"_s, {3}},
        {{{3, u"40000"_s}}, u"檀家番号を正しく入力して下さい"_s, {3}},
        {{{3, u""_s}}, {}, {}},
    };
    for (const auto& c : cases)
        expectChecked(goodGrave, c, transfer::CheckGraveRecord);
}

TEST_F(Transfer, OptionsAreCheckedInOrder) {
    enum { input = 1, output = 2, files = 3, automatically = 4, numbered = 8, update = 16, refuse = 32 };
    const QString noOutput = u"出力ファイルを指定して下さい。"_s;
    const QString noInput = u"入力ファイルを指定して下さい。"_s;
    const QString alone = u"自動採番を選択時は他のオプションの選択は出来ません"_s;
    const QString choose = u"自動採番又は番号入力のどちらかを選択して下さい"_s;
    const struct {
        int given;
        QString households, graves; // messages; empty: accepted
    } cases[] = {
        {0, noOutput, noInput},
        {input, noOutput, noOutput},
        {output, noInput, noInput},
        {files, choose, u"オプションを選択して下さい"_s},
        {files | automatically | numbered, alone, {}},
        {files | automatically | refuse, alone, u"選択できるオプションは一個のみです"_s},
        {files | automatically, {}, {}},
        {files | numbered, u"同一データ存在時の処理を選択して下さい"_s, u"オプションを選択して下さい"_s},
        {files | numbered | update | refuse, u"同一データ存在時の処理はどちらかを選択して下さい"_s,
         u"選択できるオプションは一個のみです"_s},
        {files | numbered | update, {}, {}},
        {files | update | refuse, choose, u"選択できるオプションは一個のみです"_s},
    };
    const auto expectMessage = [&](const QString& message, const QString& title, int given, auto form, auto check) {
        form.IN.name.text = given & input ? u"i"_s : QString();
        form.OUT.name.text = given & output ? u"e"_s : QString();
        form.更新.chosen = given & update;
        form.エラー.chosen = given & refuse;
        if (!message.isEmpty())
            desk.expect(message, title);
        EXPECT_EQ(check(form, desk), message.isEmpty()) << given;
        EXPECT_EQ(desk.lastIcon, desk::Icon::none);
        desk.finish();
    };
    for (const auto& c : cases) {
        transfer::檀家一括Form households;
        households.自動.chosen = c.given & automatically;
        households.入力.chosen = c.given & numbered;
        expectMessage(c.households, householdTitle, c.given, households, transfer::CheckImportOptions);
        transfer::お墓一括Form graves;
        graves.削除.chosen = c.given & automatically;
        expectMessage(c.graves, graveTitle, c.given, graves, transfer::CheckGraveOptions);
    }
    desk.expect(noOutput, u"檀家出力"_s);
    transfer::檀家出力Form households;
    transfer::runHouseholdExport(households, context, desk);
    desk.expect(noOutput, u"お墓出力"_s);
    transfer::お墓出力Form graves;
    transfer::runGraveExport(graves, context, desk);
}

// The counts of the two files were derived from them by other means.
TEST_F(Transfer, AnOfficesHouseholdFile) {
    const struct {
        transfer::HouseholdOptions options;
        int rejected;
        int stored;
        QString numbers; // highest number, counter, and how many numbers differ
    } cases[] = {
        {refusing, 64, 936, u"1000,1000,936"_s},
        {updating, 58, 936, u"1000,1000,936"_s},
        {automatic, 48, 952, u"1952,1952,952"_s}, // the counter goes on from 1000
    };
    ASSERT_TRUE(QFile::copy(QStringLiteral(TEST_DATA "/households.csv"), path(u"in.csv"_s)));
    for (const auto& c : cases) {
        execute(u"DELETE FROM tbl_danka"_s);
        if (!c.options.numbered)
            desk.answer(householdQuestion, householdTitle, true);
        desk.expect(u"檀家さん 1000 件中 %1 がエラーで登録されませんでした"_s.arg(c.rejected), householdTitle);
        const auto counts = importHouseholds(c.options);
        ASSERT_TRUE(counts);
        EXPECT_EQ(counts->read, 1000);
        EXPECT_EQ(counts->rejected, c.rejected);
        EXPECT_EQ(errorFile(16).size(), c.rejected);
        EXPECT_EQ(query(u"SELECT count(*) FROM tbl_danka"_s), QString::number(c.stored));
        EXPECT_EQ(query(u"SELECT max(tbldnk_no1), (SELECT tblno_sumino FROM tbl_hatsuban WHERE tblno_key2 = '檀家'), "
                        "count(DISTINCT tbldnk_no1) FROM tbl_danka"_s),
                  c.numbers);
        desk.finish();
    }
    EXPECT_EQ(query(u"SELECT count(*) FILTER (WHERE tbldnk_dnkkbn = '檀家'), "
                    "count(*) FILTER (WHERE tbldnk_haka_basho = '境内') FROM tbl_danka"_s),
              u"796,767"_s);
    EXPECT_EQ(query(u"SELECT count(*) FROM マスタ WHERE マ_区分 = 2"_s), u"12"_s);
    EXPECT_EQ(query(u"SELECT tbldnk_nameg, tbldnk_kanaidx, tbldnk_toshug, tbldnk_bikou, tbldnk_addymd FROM tbl_danka "
                    "ORDER BY tbldnk_no1 LIMIT 1"_s),
              u"原,ハ,原　美代,護持会役員, 会計,2026-11-22"_s);
    EXPECT_EQ(errorFile(16).value(0).section(u'|', 2, 3), u"**|サカモト"_s);
    EXPECT_FALSE(QFile::exists(path(u"Hoshiren.mdb-wal"_s)));
    EXPECT_EQ(query(u"PRAGMA journal_mode"_s), u"delete"_s);
}

TEST_F(Transfer, AnOfficesGraveFile) {
    ASSERT_TRUE(QFile::copy(QStringLiteral(TEST_DATA "/graves.csv"), path(u"in.csv"_s)));
    const QString report = u"お墓登録 600 件中 42 がエラーで登録されませんでした"_s;
    desk.expect(report, graveTitle);
    importGraves(transfer::GraveImportMode::reject);
    EXPECT_EQ(errorFile(18).size(), 42);
    EXPECT_EQ(query(u"SELECT count(*), max(tblhak_no), sum(tblhak_haiki_kbn) FROM tbl_ohaka"_s), u"558,558,8"_s);
    EXPECT_EQ(counter(u"お墓"_s), u"558"_s);
    EXPECT_EQ(query(u"SELECT tblhak_banchi2, tblhak_dnk_no, tblhak_kanaidx, tblhak_shiyo_stymd, tblhak_shiyo_ryokin, "
                    "tblhak_kanri_nxymd, tblhak_haiki_ymd, tblhak_add_ymd FROM tbl_ohaka WHERE tblhak_no = 1"_s),
              u"069,659,マ,1968-07-01,25000,2027-04-01,NULL,2026-11-22"_s);
    desk.answer(graveQuestion, graveTitle, true);
    desk.expect(report, graveTitle);
    importGraves(transfer::GraveImportMode::afterEmptying);
    EXPECT_EQ(query(u"SELECT count(*), min(tblhak_no), max(tblhak_no) FROM tbl_ohaka"_s), u"558,559,1116"_s);
    desk.expect(u"お墓登録 600 件中 600 がエラーで登録されませんでした"_s, graveTitle);
    importGraves(transfer::GraveImportMode::reject);
    EXPECT_EQ(errorFile(18).filter(u"同一区画+整理番号が存在します"_s).size(), 558);
    EXPECT_EQ(errorFile(18).value(0).section(u'|', 0, 1), u"**下段|**069"_s);
}

TEST_F(Transfer, HouseholdsAreStoredAsTheLayoutSays) {
    const struct {
        Changes changes;
        QString row; // number, branch, category, grave place, kana index
    } cases[] = {
        {{{1, u"1"_s}, {5, u"0"_s}, {6, u"檀家"_s}}, u"1,0,檀家,境外,ハ"_s},
        {{{1, u" 2 "_s}, {2, u"3"_s}, {5, u"1"_s}}, u"2,3,檀家,境外,ハ"_s},
        {{{1, u"3"_s}, {5, u""_s}, {15, u"1"_s}}, u"3,0,一般,境内,ハ"_s},
        {{{1, u"4"_s}, {6, u"一般"_s}, {15, u"0"_s}, {16, u"境内"_s}}, u"4,0,一般,境内,ハ"_s},
        {{{1, u"5"_s}, {15, u""_s}, {16, u"境外"_s}, {4, u"ﾊﾗ"_s}}, u"5,0,檀家,境外,ﾊ"_s},
        {{{1, u"6"_s}, {4, u"𛀀カ"_s}}, u"6,0,檀家,境外,𛀀"_s},
    };
    QByteArray bytes;
    QStringList rows;
    for (const auto& c : cases) {
        transfer::appendRecord(bytes, with(goodHousehold, c.changes));
        rows << c.row;
    }
    put(u"in.csv"_s, bytes);
    desk.expect(u"檀家さん 6 件を登録しました"_s, householdTitle);
    importHouseholds(refusing);
    EXPECT_EQ(query(u"SELECT tbldnk_no1, tbldnk_no2, tbldnk_dnkkbn, tbldnk_haka_basho, tbldnk_kanaidx FROM tbl_danka "
                    "ORDER BY tbldnk_no1"_s),
              rows.join(u'|'));
    EXPECT_EQ(get(u"err.csv"_s), "");
}

TEST_F(Transfer, NumbersFromTheFile) {
    put(u"in.csv"_s,
        lines({with(goodHousehold, {{1, u"9"_s}}), with(goodHousehold, {{1, u"7"_s}, {3, u"新"_s}, {12, u"新町"_s}}),
               with(goodHousehold, {{1, u"7"_s}, {2, u"1"_s}})}));
    store::Database database;
    store::Table(database, store::idxdnk_no).insert(sampleHousehold(7));
    desk.expect(u"檀家さん 3 件中 1 がエラーで登録されませんでした"_s, householdTitle);
    importHouseholds(refusing);
    EXPECT_EQ(errorFile(16),
              QStringList(u"**7|**|新|ハラ||587-3050|川端1丁目||071||新町|原　美代|ハラ ミヨ||備考|"_s + taken + u'|'));
    EXPECT_EQ(desk.informed, QStringList{u"新しい記録 2 件、書き換えた記録 0 件"_s});
    const QString numbers = u"SELECT tbldnk_no1, tbldnk_no2, tbldnk_nameg FROM tbl_danka ORDER BY 1, 2"_s;
    EXPECT_EQ(query(numbers), u"7,0,山田|7,1,原|9,0,原"_s);
    EXPECT_EQ(query(u"SELECT count(*) FROM マスタ WHERE マ_区分 = 2 AND マ_名称 = '新町'"_s), u"0"_s);
    EXPECT_EQ(counter(u"檀家"_s), u"9"_s);
    desk.expect(u"檀家さん 3 件を登録しました"_s, householdTitle);
    importHouseholds(updating);
    EXPECT_EQ(desk.informed.last(), u"新しい記録 0 件、書き換えた記録 3 件"_s);
    EXPECT_EQ(query(numbers), u"7,0,新|7,1,原|9,0,原"_s);
    EXPECT_EQ(query(u"SELECT tbldnk_addymd FROM tbl_danka WHERE tbldnk_nameg = '新'"_s), u"2026-11-22"_s);
    EXPECT_EQ(query(u"SELECT count(*) FROM マスタ WHERE マ_区分 = 2 AND マ_名称 = '新町'"_s), u"1"_s);
    // A row that cannot be rewritten without loss costs its own record alone.
    execute(u"PRAGMA ignore_check_constraints = ON; UPDATE tbl_danka SET tbldnk_addymd = '?' WHERE tbldnk_no1 = 9"_s);
    desk.answerBeginning(u"登録簿の控えを作れませんでした。"_s, householdTitle, true);
    desk.expect(u"檀家さん 3 件中 1 がエラーで登録されませんでした"_s, householdTitle);
    importHouseholds(updating);
    EXPECT_EQ(errorFile(16).filter(u"この記録には読めない日付があり"_s).size(), 1);
    EXPECT_EQ(query(u"SELECT tbldnk_addymd FROM tbl_danka ORDER BY 1"_s), u"2026-11-22|2026-11-22|?"_s);
}

TEST_F(Transfer, TheLastNumbers) {
    execute(u"INSERT OR REPLACE INTO tbl_hatsuban VALUES (0, '檀家', 32766, 0), (0, 'お墓', 32766, 0)"_s);
    put(u"in.csv"_s, lines({with(goodHousehold, {}), with(goodHousehold, {})}));
    desk.answer(householdQuestion, householdTitle, true);
    desk.expect(u"檀家さん 2 件中 1 がエラーで登録されませんでした"_s, householdTitle);
    importHouseholds(automatic);
    EXPECT_EQ(query(u"SELECT tbldnk_no1 FROM tbl_danka"_s), u"32767"_s);
    EXPECT_EQ(errorFile(16).filter(u"発番できる番号の上限に達しています"_s).size(), 1);
    // No table is emptied for records that no number is left for.
    desk.expect(u"発番できる番号の上限に達しています"_s, householdTitle);
    EXPECT_FALSE(importHouseholds(automatic));
    EXPECT_EQ(query(u"SELECT tbldnk_no1 FROM tbl_danka"_s), u"32767"_s);
    put(u"in.csv"_s, lines({with(goodGrave, {}), with(goodGrave, {{2, u"2"_s}})}));
    desk.expect(u"お墓登録 2 件中 1 がエラーで登録されませんでした"_s, graveTitle);
    importGraves(transfer::GraveImportMode::update);
    EXPECT_EQ(query(u"SELECT tblhak_no FROM tbl_ohaka"_s), u"32767"_s);
}

TEST_F(Transfer, AnUpdateOfAGraveKeepsWhatTheFileLeavesOpen) {
    put(u"in.csv"_s, lines({with(goodGrave, {})}));
    desk.expect(u"お墓登録 1 件を登録しました"_s, graveTitle);
    importGraves(transfer::GraveImportMode::reject);
    const QString columns = u"SELECT tblhak_no, tblhak_dnk_no, tblhak_dnk_kbn, tblhak_kanaidx, tblhak_bohyo_kbn, "
                            "tblhak_shiyo_stymd, tblhak_shiyo_ryokin, tblhak_kanri_ryokin, tblhak_kanri_jrymd, "
                            "tblhak_haiki_kbn, tblhak_haiki_ymd FROM tbl_ohaka"_s;
    EXPECT_EQ(query(columns), u"1,7,檀家,ハ,家,2001-04-01,30000,5000,2024-04-01,0,NULL"_s);
    put(u"in.csv"_s, lines({with(goodGrave, {{3, u""_s},
                                             {4, u"0"_s},
                                             {5, u""_s},
                                             {6, u""_s},
                                             {7, u"空"_s},
                                             {8, u""_s},
                                             {9, u""_s},
                                             {10, u""_s},
                                             {12, u"1.5"_s},
                                             {13, u""_s},
                                             {14, u""_s},
                                             {15, u"1"_s},
                                             {16, u"2026.1.2"_s}})}));
    desk.expect(u"お墓登録 1 件を登録しました"_s, graveTitle);
    importGraves(transfer::GraveImportMode::update);
    EXPECT_EQ(query(columns), u"1,0,, ,空,2001-04-01,0,2,2024-04-01,1,2026-01-02"_s);
}

// A place may hold a live grave and disposed ones; each record finds its own.
TEST_F(Transfer, GravesOfOnePlace) {
    const QString placed = u"SELECT tblhak_no, tblhak_bohyo_mei, tblhak_haiki_kbn FROM tbl_ohaka ORDER BY tblhak_no"_s;
    const auto disposed = [](const QString& name) {
        return with(goodGrave, {{8, name}, {15, u"1"_s}, {16, u"2020/1/1"_s}});
    };
    put(u"in.csv"_s, lines({disposed(u"一"_s), with(goodGrave, {{8, u"今"_s}}), disposed(u"二"_s)}));
    desk.answer(graveQuestion, graveTitle, true);
    desk.expect(u"お墓登録 3 件を登録しました"_s, graveTitle);
    importGraves(transfer::GraveImportMode::afterEmptying);
    const QString before = u"1,一,1|2,今,0|3,二,1"_s;
    EXPECT_EQ(query(placed), before);
    desk.expect(u"お墓登録情報 3 件を出力しました"_s, u"お墓出力"_s);
    EXPECT_EQ(transfer::ExportGraves(path(u"in.csv"_s), desk), 3);
    desk.expect(u"お墓登録 3 件を登録しました"_s, graveTitle);
    importGraves(transfer::GraveImportMode::update);
    EXPECT_EQ(query(placed), before);

    put(u"in.csv"_s, lines({with(goodGrave, {{8, u"新"_s}})}));
    desk.expect(u"お墓登録 1 件を登録しました"_s, graveTitle);
    importGraves(transfer::GraveImportMode::update);
    EXPECT_EQ(query(placed), u"1,一,1|2,新,0|3,二,1"_s);
    EXPECT_EQ(desk.informed.last(), u"新しい記録 0 件、書き換えた記録 1 件"_s);

    // Whatever the register has of a place: no record of a file takes another one's row.
    const auto live = with(goodGrave, {{8, u"今"_s}});
    const QString vacant = u"DELETE FROM tbl_ohaka; UPDATE tbl_hatsuban SET tblno_sumino = 0"_s;
    const QString oneLive = vacant + u"; INSERT INTO tbl_ohaka (tblhak_no, tblhak_banchi1, tblhak_banchi2) "
                                     "VALUES (7, '東', '001')"_s;
    const struct {
        QString there;
        std::vector<std::vector<QString>> records;
        QString after;
    } brought[] = {
        {vacant, {live, disposed(u"一"_s)}, u"1,今,0|2,一,1"_s},
        {vacant, {disposed(u"一"_s), live, disposed(u"二"_s)}, u"1,一,1|2,今,0|3,二,1"_s},
        {oneLive, {live, disposed(u"一"_s)}, u"1,一,1|7,今,0"_s},
        {oneLive, {disposed(u"一"_s), live}, u"1,今,0|7,一,1"_s},
        {oneLive, {disposed(u"一"_s)}, u"7,一,1"_s},
    };
    for (const auto& c : brought) {
        execute(c.there);
        put(u"in.csv"_s, lines(c.records));
        desk.expect(u"お墓登録 %1 件を登録しました"_s.arg(c.records.size()), graveTitle);
        importGraves(transfer::GraveImportMode::update);
        EXPECT_EQ(query(placed).toStdString(), c.after.toStdString());
    }
    execute(vacant);
    put(u"in.csv"_s, lines({disposed(u"一"_s), live}));
    desk.expect(u"お墓登録 2 件中 1 がエラーで登録されませんでした"_s, graveTitle);
    importGraves(transfer::GraveImportMode::reject);
    EXPECT_EQ(query(placed), u"1,一,1"_s);

    execute(u"UPDATE tbl_ohaka SET tblhak_no = 3; UPDATE tbl_hatsuban SET tblno_sumino = 3"_s);
    put(u"in.csv"_s, lines({with(goodGrave, {{8, u"新"_s}})}));
    desk.expect(u"お墓登録 1 件中 1 がエラーで登録されませんでした"_s, graveTitle);
    importGraves(transfer::GraveImportMode::reject);
    execute(u"UPDATE tbl_hatsuban SET tblno_sumino = 2 WHERE tblno_key2 = 'お墓'"_s);
    put(u"in.csv"_s, lines({with(goodGrave, {{2, u"別"_s}})}));
    desk.expect(u"お墓登録 1 件中 1 がエラーで登録されませんでした"_s, graveTitle);
    importGraves(transfer::GraveImportMode::update);
    EXPECT_EQ(errorFile(18).filter(u"指定されたお墓番号は既に登録されています"_s).size(), 1)
        << "a counter that lags behind";
}

TEST_F(Transfer, WhatTheCodePageDoesNotHoldComesBack) {
    auto row = sampleHousehold(5);
    row.tbldnk_nameg = u"𠮷田\"'"_s;
    row.tbldnk_bikou = u"一行\n二行 &#x41; &amp;"_s;
    row.tbldnk_jyusho2 = u"1〜2, 﨑"_s;
    store::Database database;
    store::Table households(database, store::idxdnk_no);
    households.insert(sampleHousehold(4));
    households.insert(row);
    desk.expect(u"檀家さん 2 件を出力しました"_s, u"檀家出力"_s);
    desk.expect(
        u"次の 1 件にはシフトJISにない文字又は改行があります。文字参照（&#x5409; の形）で出力しました。\n\n5-0 𠮷田\"'"_s,
        u"檀家出力"_s);
    EXPECT_EQ(transfer::ExportHouseholds(path(u"in.csv"_s), desk), 2);
    EXPECT_EQ(desk.informed, QStringList{u"形の似た文字 1 字を、シフトJISにある ￥ ― － ～ ∥ に置き換えて出力しました"
                                         "（1 件：5-0 𠮷田\"'）"_s});
    EXPECT_TRUE(get(u"in.csv"_s)
                    .startsWith("\"4\",\"0\",\"\x8E\x52\x93\x63\",\"\x83\x84\x83\x7D\x83_\",\"1\",\"\x92h\x89\xC6\","))
        << get(u"in.csv"_s).left(60).toPercentEncoding().toStdString();
    const auto before = rowsOf<store::tbl_danka>();
    desk.expect(u"檀家さん 2 件を登録しました"_s, householdTitle);
    importHouseholds(updating);
    const auto after = rowsOf<store::tbl_danka>();
    EXPECT_EQ(after[1].tbldnk_nameg, row.tbldnk_nameg);
    EXPECT_EQ(after[1].tbldnk_bikou, row.tbldnk_bikou);
    EXPECT_EQ(after[1].tbldnk_jyusho2, u"1～2, 﨑"_s);
}

TEST_F(Transfer, NothingIsTouchedBeforeYes) {
    execute(u"INSERT INTO tbl_danka (tbldnk_no1, tbldnk_no2) VALUES (1, 0)"_s);
    put(u"in.csv"_s, lines({with(goodHousehold, {})}));
    put(u"err.csv"_s, "old");
    desk.answer(householdQuestion, householdTitle, false);
    EXPECT_FALSE(importHouseholds(automatic));
    EXPECT_EQ(desk.lastPreset, desk::Preset::no);
    EXPECT_EQ(get(u"err.csv"_s), "old");
    EXPECT_EQ(query(u"SELECT count(*) FROM tbl_danka"_s), u"1"_s);
    // Files that cannot be used are told before the question.
    const QString input = path(u"in.csv"_s);
    const QString errors = path(u"err.csv"_s);
    EXPECT_THROW(transfer::ImportHouseholds(path(u"none.csv"_s), errors, automatic, desk), transfer::FileError);
    EXPECT_THROW(transfer::ImportHouseholds(directory.path(), errors, automatic, desk), transfer::FileError);
    EXPECT_THROW(transfer::ImportHouseholds(input, path(u"none/err.csv"_s), automatic, desk), transfer::FileError);
    const QString own = u"登録簿のファイルは指定できません。別のファイルを指定して下さい"_s;
    for (const QString& name : {u"Hoshiren.mdb"_s, u"Hoshiren.mdb-wal"_s, u"Hoshiren.mdb-journal"_s}) {
        desk.expect(own, householdTitle);
        EXPECT_FALSE(transfer::ImportHouseholds(input, path(name), automatic, desk));
        desk.expect(own, householdTitle);
        EXPECT_FALSE(transfer::ImportHouseholds(path(name), errors, automatic, desk));
        desk.expect(own, u"檀家出力"_s);
        EXPECT_EQ(transfer::ExportHouseholds(path(name), desk), 0);
    }
    const QString copies = u"控えの場所（backup フォルダー）には出力できません。別のフォルダーを指定して下さい"_s;
    QDir(directory.path()).mkdir(u"backup"_s);
    desk.expect(copies, householdTitle);
    EXPECT_FALSE(transfer::ImportHouseholds(input, path(u"backup/err.csv"_s), automatic, desk));
    desk.expect(copies, u"檀家出力"_s);
    EXPECT_EQ(transfer::ExportHouseholds(path(u"backup/out.csv"_s), desk), 0);
    desk.expect(u"入力ファイルと出力ファイルが同じです。別のファイルを指定して下さい"_s, householdTitle);
    EXPECT_FALSE(transfer::ImportHouseholds(input, path(u"./in.csv"_s), automatic, desk));
    // A register that cannot be used leaves the error file.
    QFile::rename(path(u"Hoshiren.mdb"_s), path(u"away"_s));
    EXPECT_THROW(importHouseholds(automatic), store::Error);
    EXPECT_EQ(get(u"err.csv"_s), "old");
    QFile::rename(path(u"away"_s), path(u"Hoshiren.mdb"_s));
    EXPECT_EQ(query(u"SELECT count(*) FROM tbl_danka"_s), u"1"_s);

    put(u"in.csv"_s, {});
    desk.answer(householdQuestion, householdTitle, true);
    desk.expect(u"檀家さん 0 件を登録しました"_s, householdTitle);
    importHouseholds(automatic);
    EXPECT_EQ(get(u"err.csv"_s), "");
    for (const auto& [none, title] :
         {std::pair{u"檀家登録は 0 件です"_s, u"檀家出力"_s}, {u"お墓登録は 0 件です"_s, u"お墓出力"_s}}) {
        desk.expect(none, title);
        EXPECT_EQ(title == u"檀家出力"_s ? transfer::ExportHouseholds(path(u"out.csv"_s), desk)
                                         : transfer::ExportGraves(path(u"out.csv"_s), desk),
                  0);
        EXPECT_EQ(get(u"out.csv"_s), "(none)");
    }
}

TEST_F(Transfer, ACancelLeavesWhatWasStored) {
    std::vector<std::vector<QString>> records;
    for (int number = 1; number <= 200; ++number)
        records.push_back(with(goodHousehold, {{1, QString::number(number)}}));
    put(u"in.csv"_s, lines(records));
    desk.cancelAt = 50;
    desk.expect(u"途中で中止しました。\n檀家さん 112 件を登録しました"_s, householdTitle);
    importHouseholds({true, false});
    EXPECT_EQ(query(u"SELECT count(*), max(tbldnk_no1) FROM tbl_danka"_s), u"112,112"_s);
    EXPECT_EQ(counter(u"檀家"_s), u"112"_s);
    put(u"out.csv"_s, "old");
    desk.expect(u"中止しました。ファイルは出力されていません"_s, u"檀家出力"_s);
    EXPECT_EQ(transfer::ExportHouseholds(path(u"out.csv"_s), desk), 0);
    EXPECT_EQ(get(u"out.csv"_s), "old");
}

// A failing write in the middle: the run ends with what had been counted.
TEST_F(Transfer, AFailureOfTheRegisterEndsTheRun) {
    refuseRows(u"tbl_danka"_s, u"tbldnk_no1 = 40"_s);
    put(u"in.csv"_s, lines(std::vector(100, with(goodHousehold, {}))));
    desk.answer(householdQuestion, householdTitle, true);
    try {
        importHouseholds(automatic);
        ADD_FAILURE() << "no failure";
    } catch (const store::Error& failure) {
        EXPECT_TRUE(failure.message().contains(u"disk full"_s));
        EXPECT_TRUE(failure.message().contains(u"32 件目までは処理済みです（登録 32 件、エラー 0 件）"_s))
            << failure.message().toStdString();
    }
    EXPECT_EQ(query(u"SELECT count(*) FROM tbl_danka"_s), u"32"_s);
    EXPECT_EQ(counter(u"檀家"_s), u"32"_s);
    EXPECT_EQ(query(u"PRAGMA journal_mode"_s), u"delete"_s);
}

} // namespace
