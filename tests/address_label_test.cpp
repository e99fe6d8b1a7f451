#include "printing/address_label_rules.h"
#include "support/label_printer.h"
#include "support/register_fixture.h"
#include "support/test_desk.h"

#include <cmath>

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
    void addHousehold(std::int16_t number, std::int16_t branch, const QString& name = {}) {
        store::Database database;
        store::tbl_danka row = sampleHousehold(number);
        row.tbldnk_no2 = branch;
        row.tbldnk_yubin = QString::number(number);
        if (!name.isEmpty())
            row.tbldnk_toshug = name;
        store::Table(database, store::idxdnk_no).insert(row);
    }
    void addMemorial(int household, const QString& day, int held = 0, int reserved = 0, int notified = 0) {
        execute(u"INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_zokunameg, tblhoy_kaiki_yymd, tblhoy_kaiki_s, "
                "tblhoy_kaiki_rs, tblhoy_tsuchi_s) VALUES (%1, '故人%2', '%3', %4, %5, %6)"_s.arg(household)
                    .arg(++deceased)
                    .arg(day)
                    .arg(held)
                    .arg(reserved)
                    .arg(notified));
    }
    void addGrave(int household, const QString& day, int disposed = 0) {
        execute(u"INSERT INTO tbl_ohaka (tblhak_no, tblhak_dnk_no, tblhak_kanri_nxymd, tblhak_haiki_kbn) "
                "VALUES (%1, %2, %3, %4)"_s.arg(++deceased)
                    .arg(household)
                    .arg(day)
                    .arg(disposed));
    }
    LabelOutcome print(QDate from, QDate to, LabelMode mode = LabelMode::memorials) {
        return printing::宛名出力(from, to, mode, printer, desk);
    }
    // The postal codes printed by the last job, in order: the test's households bear their numbers there.
    QStringList printed() const {
        return printer.jobs.empty() ? QStringList() : printer.lines(printer.jobs.size() - 1, 5);
    }

    TestDesk desk{today};
    TestPrinter printer;
    int deceased = 0;
};

TEST_F(AddressLabels, PrintsOpenMemorialsOfTheRangeInDateOrder) {
    for (const auto& [from, to] : {std::pair{u"2029-06-01"_s, u"2031-05-31"_s},
                                   {u"1999-12-31"_s, u"2000-01-01"_s},
                                   {u"2099-12-31"_s, u"2100-01-01"_s}}) {
        execute(u"DELETE FROM tbl_hohyo"_s);
        addMemorial(2, to);
        addMemorial(3, from);
        addMemorial(1, QDate::fromString(from, Qt::ISODate).addDays(-1).toString(Qt::ISODate));
        addMemorial(1, QDate::fromString(to, Qt::ISODate).addDays(1).toString(Qt::ISODate));
        addMemorial(1, from, 1, 0, 0);
        addMemorial(1, from, 0, 1, 0);
        addMemorial(1, from, 0, 0, 1);
        EXPECT_EQ(print(QDate::fromString(from, Qt::ISODate), QDate::fromString(to, Qt::ISODate)),
                  LabelOutcome::handedOver);
        EXPECT_EQ(printed(), QStringList({u"3"_s, u"2"_s})) << from.toStdString();
    }
}

TEST_F(AddressLabels, PrintsEveryGraveWithABillingDate) {
    addGrave(1, u"'2027-01-01'"_s);
    addGrave(2, u"'2026-12-01'"_s, 1);
    addGrave(1, u"'2026-12-31'"_s);
    addGrave(3, u"NULL"_s);
    EXPECT_EQ(print({2026, 12, 1}, {2027, 1, 1}, LabelMode::fees), LabelOutcome::handedOver);
    EXPECT_EQ(printed(), QStringList({u"2"_s, u"1"_s, u"1"_s}));
    EXPECT_EQ(printer.lines(0, 10).front(), u"山田　太郎"_s);
    EXPECT_EQ(printer.lines(0, 15).front(), u"寺前1丁目2-3"_s);
}

TEST_F(AddressLabels, SaysWhereNothingLiesAhead) {
    addMemorial(1, u"2026-11-21"_s);
    addMemorial(1, u"2030-01-01"_s, 1);
    EXPECT_EQ(print({2026, 11, 22}, {2027, 11, 22}), LabelOutcome::noLabel); // later ones, none in the range
    EXPECT_EQ(print({2026, 11, 22}, {2031, 11, 22}), LabelOutcome::noLabel); // held already
    desk.expect(u"法要予定はありません"_s, title);
    EXPECT_EQ(print({2030, 1, 2}, {2031, 1, 2}), LabelOutcome::noRecord);
    desk.expect(u"管理費通知予定はありません"_s, title);
    EXPECT_EQ(print({2026, 11, 22}, {2027, 11, 22}, LabelMode::fees), LabelOutcome::noRecord);
    EXPECT_TRUE(printer.jobs.empty());
}

TEST_F(AddressLabels, LeavesOutARecordWithoutHousehold) {
    addHousehold(9, 1); // a branch alone is not household 9
    for (const int household : {1, 9, 8, 2})
        addMemorial(household, u"2026-12-0%1"_s.arg(deceased + 1));
    desk.expect(noHousehold, title);
    desk.expect(noHousehold, title);
    EXPECT_EQ(print({2026, 12, 1}, {2026, 12, 31}), LabelOutcome::handedOver);
    EXPECT_EQ(printed(), QStringList({u"1"_s, u"2"_s}));
    EXPECT_NEAR(printer.jobs[0][0].back().x, 108.8, 1e-9); // no place is left free for the two
    desk.expect(noHousehold, title);
    EXPECT_EQ(print({2026, 12, 2}, {2026, 12, 2}), LabelOutcome::noLabel);
}

TEST_F(AddressLabels, TellsOfTheFileOfMissingCharactersAndOfAPrinterThatFails) {
    addMemorial(1, u"2026-12-01"_s);
    addHousehold(30000, 0, u"𠮷田 鷗外"_s);
    addMemorial(30000, u"2026-12-02"_s);
    printer.file = u"/tmp/宛名.pdf"_s;
    desk.expect(u"プリンターがないため、宛名をPDFファイルに書き出しました。\n/tmp/宛名.pdf"_s, title);
    desk.expect(u"印刷できない文字を〓にした宛名があります。\n檀家番号 30000：𠮷鷗"_s, title);
    EXPECT_EQ(print({2026, 12, 1}, {2026, 12, 31}), LabelOutcome::handedOver);
    printer.refusal = u"紙がありません"_s;
    desk.expect(u"紙がありません"_s, title);
    EXPECT_EQ(print({2026, 12, 1}, {2026, 12, 31}), LabelOutcome::failed);
}

} // namespace
