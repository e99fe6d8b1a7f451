#include "printing/address_label_rules.h"
#include "support/label_printer.h"
#include "support/register_fixture.h"
#include "support/test_desk.h"

using namespace Qt::StringLiterals;
using printing::LabelMode;
using printing::LabelOutcome;

namespace {

const QString title = u"宛名印刷"_s;
const QString noHousehold = u"檀家情報を取得出来ません。DBの整合性を確認して下さい"_s;

class AddressLabels : public RegisterFixture {
  protected:
    AddressLabels() {
        for (std::int16_t number = 1; number <= 3; ++number)
            addHousehold(number, 0);
    }
    void addHousehold(std::int16_t number, std::int16_t branch, const QString& name = u"山田　太郎"_s) {
        store::Database database;
        store::tbl_danka row = sampleHousehold(number);
        row.tbldnk_no2 = branch;
        row.tbldnk_yubin = QString::number(number);
        row.tbldnk_toshug = name;
        store::Table(database, store::idxdnk_no).insert(row);
    }
    // Rows "(household, day, held, booked, notified)".
    void addMemorials(const QString& rows) {
        execute(u"INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_kaiki_yymd, tblhoy_kaiki_s, tblhoy_kaiki_rs, "
                "tblhoy_tsuchi_s, tblhoy_zokunameg) SELECT *, row_number() OVER () FROM (VALUES %1)"_s.arg(rows));
    }
    LabelOutcome print(QDate from, QDate to, LabelMode mode = LabelMode::memorials) {
        return printing::宛名出力(from, to, mode, printer, desk);
    }
    // The postal codes printed by the last job, in order: the test's households bear their numbers there.
    QStringList printed() const { return printer.lines(printer.jobs.size() - 1, 5); }

    TestDesk desk{today};
    TestPrinter printer;
};

TEST_F(AddressLabels, PrintsOpenMemorialsOfTheRangeInDateOrder) {
    addHousehold(9, 1); // a branch alone is not household 9
    addMemorials(u"(2, '2000-01-01', 0, 0, 0), (3, '1999-12-31', 0, 0, 0), (1, '1999-12-30', 0, 0, 0), "
                 "(1, '2000-01-02', 0, 0, 0), (1, '1999-12-31', 1, 0, 0), (1, '1999-12-31', 0, 1, 0), "
                 "(1, '1999-12-31', 0, 0, 1), (9, '1999-12-31', 0, 0, 0), (8, '1999-12-31', 0, 0, 0)"_s);
    desk.expect(noHousehold, title);
    desk.expect(noHousehold, title);
    EXPECT_EQ(print({1999, 12, 31}, {2000, 1, 1}), LabelOutcome::handedOver);
    EXPECT_EQ(printed(), QStringList({u"3"_s, u"2"_s}));
    EXPECT_NEAR(printer.jobs[0][0].back().x, 108.8, 1e-9); // no place is left free for those without a household
}

TEST_F(AddressLabels, PrintsEveryGraveWithABillingDate) {
    execute(u"INSERT INTO tbl_ohaka (tblhak_no, tblhak_dnk_no, tblhak_kanri_nxymd, tblhak_haiki_kbn) VALUES "
            "(1, 1, '2027-01-01', 0), (2, 2, '2026-12-01', 1), (3, 1, '2026-12-31', 0), (4, 3, NULL, 0), "
            "(5, 3, '2026-11-30', 0), (6, 3, '2027-01-02', 0)"_s);
    EXPECT_EQ(print({2026, 12, 1}, {2027, 1, 1}, LabelMode::fees), LabelOutcome::handedOver);
    EXPECT_EQ(printed(), QStringList({u"2"_s, u"1"_s, u"1"_s}));
    EXPECT_EQ(printer.lines(0, 10).front(), u"山田　太郎"_s);
    EXPECT_EQ(printer.lines(0, 15).front(), u"寺前1丁目2-3"_s);
}

TEST_F(AddressLabels, SaysWhereNothingLiesAhead) {
    addMemorials(u"(1, '2026-11-21', 0, 0, 0), (1, '2030-01-01', 1, 0, 0)"_s);
    EXPECT_EQ(print({2026, 11, 22}, {2031, 11, 22}), LabelOutcome::noLabel); // held already
    desk.expect(u"法要予定はありません"_s, title);
    EXPECT_EQ(print({2030, 1, 2}, {2031, 1, 2}), LabelOutcome::noRecord);
    desk.expect(u"管理費通知予定はありません"_s, title);
    EXPECT_EQ(print({2026, 11, 22}, {2027, 11, 22}, LabelMode::fees), LabelOutcome::noRecord);
    EXPECT_TRUE(printer.jobs.empty());
}

TEST_F(AddressLabels, TellsOfTheFileOfMissingCharactersAndOfAPrinterThatFails) {
    addHousehold(30000, 0, u"𠮷田 鷗外"_s);
    addMemorials(u"(1, '2026-12-01', 0, 0, 0), (30000, '2026-12-02', 0, 0, 0)"_s);
    printer.file = u"宛名.pdf"_s;
    printer.waiting = u"用紙がありません。"_s;
    desk.expect(u"プリンターがないため、宛名をPDFファイルに書き出しました。\n宛名.pdf"_s, title);
    desk.expect(u"用紙がありません。"_s, title);
    desk.expect(u"印刷できない文字を〓にした宛名があります。\n檀家番号 30000：𠮷鷗"_s, title);
    EXPECT_EQ(print({2026, 12, 1}, {2026, 12, 31}), LabelOutcome::handedOver);
    printer.refusal = u"紙がありません"_s;
    desk.expect(u"紙がありません"_s, title);
    EXPECT_EQ(print({2026, 12, 1}, {2026, 12, 31}), LabelOutcome::failed);
}

TEST_F(AddressLabels, RefusesOtherSheetsWhatCannotBeReadOnThem) {
    const QString none = u"何も印刷していません。\n檀家番号 30000："_s;
    printing::LabelChoice choice;
    choice.stock = printing::labelStocks()[1];
    const auto refused = [&](const QString& name, const QString& message) {
        execute(u"DELETE FROM tbl_danka WHERE tbldnk_no1 = 30000"_s);
        execute(u"DELETE FROM tbl_hohyo"_s);
        addHousehold(30000, 0, name);
        addMemorials(u"(1, '2026-12-01', 0, 0, 0), (30000, '2026-12-02', 0, 0, 0)"_s);
        desk.expect(message, title);
        return printing::宛名出力({2026, 12, 1}, {2026, 12, 31}, LabelMode::memorials, printer, desk, choice) ==
                   LabelOutcome::failed &&
               printer.jobs.empty();
    };
    EXPECT_TRUE(refused(u"森 鷗外"_s, u"印刷できない文字のある宛名があります。"
                                      "檀家登録で直すか、通知選択を外して下さい。\n"_s +
                                          none + u'鷗'));
    const QString longName(60, u'長');
    EXPECT_TRUE(refused(longName, u"長いため、読みにくいほど小さくなる宛名があります。"
                                  "宛名設定で他の用紙を選ぶか、通知選択を外して下さい。\n"_s +
                                      none + longName.left(20)));
    // Shown all the same, and printed once it is left out.
    desk.expect(u"長いため、読みにくいほど小さくなった宛名があります。\n檀家番号 30000："_s + longName.left(20), title);
    printing::previewLabels({2026, 12, 1}, {2026, 12, 31}, LabelMode::memorials, printer, desk, choice);
    EXPECT_EQ(printer.jobs.size(), 1U);
}

} // namespace
