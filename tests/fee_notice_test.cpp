#include "graves/fee_notice_rules.h"
#include "support/label_printer.h"
#include "support/register_fixture.h"
#include "support/test_desk.h"

using namespace Qt::StringLiterals;
using namespace graves;

namespace {

const QString title = u"お墓管理費通知"_s;

class FeeNotices : public RegisterFixture {
  protected:
    void add(int number, const QString& billing, int household = 1) {
        execute(u"INSERT INTO tbl_ohaka (tblhak_no, tblhak_banchi1, tblhak_banchi2, tblhak_dnk_no, tblhak_bohyo_mei, "
                "tblhak_kanri_ryokin, tblhak_kanri_nxymd) VALUES (%1, '東', '%1', %2, '家', 12000, %3)"_s.arg(number)
                    .arg(household)
                    .arg(billing.isEmpty() ? u"NULL"_s : u"'%1'"_s.arg(billing)));
    }
    void show(const QString& from, const QString& to) {
        form.frm21_from.text = from;
        form.frm21_to.text = to;
        showFees(form, context, desk);
    }
    QStringList numbers() const {
        QStringList cells;
        for (const QStringList& row : form.frm21_tbl.rows)
            cells << row.front();
        return cells;
    }

    TestDesk desk{QDate(2008, 2, 12)};
    TestPrinter printer;
    お墓通Form form;
};

TEST_F(FeeNotices, ListTheRangeInBillingOrder) {
    add(3, u"2008-02-12"_s);
    add(1, u"2009-02-12"_s, 0);
    add(2, u"2009-02-13"_s);
    add(4, {});
    add(5, u"2008-02-11"_s);
    openFeeNotices(form, context, desk);
    EXPECT_EQ(form.frm21_from.text + form.frm21_to.text, u"2008/02/122009/02/12"_s);
    EXPECT_TRUE(form.frm21_tbl.rows.empty());
    const auto& columns = form.frm21_tbl.columns;
    EXPECT_EQ(columns[0].header + columns[3].header, u"管理番号檀家番号"_s);
    EXPECT_EQ(columns[4].twips, 500);
    showFees(form, context, desk);
    EXPECT_EQ(numbers(), QStringList({u"3"_s, u"1"_s}));
    EXPECT_EQ(form.frm21_tbl.rows[0].join(u'|'), u"3|東|3|1|||家|||平成20年2月12日|12,000||"_s);
    EXPECT_EQ(form.frm21_tbl.cell(2, 3), QString());

    form.frm21_tbl.clickedRow = 3;
    desk.expect(u"有功範囲外を指定しています。選択し直して下さい"_s, title);
    clickFee(form, context, desk);
    desk.expect(u"管理費通知予定はありません。"_s, title);
    show(u"2020/1/1"_s, u"2020/1/2"_s);
    EXPECT_EQ(numbers().size(), 2);
}

TEST_F(FeeNotices, KeepTheRangeOfTheLastShowing) {
    add(1, u"2008-03-01"_s);
    openFeeNotices(form, context, desk);
    showFees(form, context, desk);
    desk.expect(u"検索開始日ｴﾗｰです開始日を再度入力して下さい"_s, title);
    show(u"2008/13/01"_s, u"2009/02/12"_s);
    EXPECT_EQ(form.frm21_from.colour, desk::Colour::red);
    desk.expect(u"検索終了日ｴﾗｰです終了を再度入力して下さい"_s, title);
    show(u"2010/1/1"_s, u"2009/12/31"_s);
    EXPECT_EQ(form.frm21_from.colour, desk::Colour::black);
    EXPECT_EQ(form.frm21_to.colour, desk::Colour::red);
    form.frm21_to.text = u"2010/1/1"_s;
    leaveFeesTo(form, context, desk);
    leaveFeesFrom(form, context, desk);
    EXPECT_EQ(form.frm21_to.colour, desk::Colour::black);
    EXPECT_EQ(numbers(), QStringList({u"1"_s}));
    EXPECT_EQ(form.from, QDate(2008, 2, 12));
    EXPECT_EQ(form.to, QDate(2009, 2, 12));
}

TEST_F(FeeNotices, GoOnFromTheCurrentBillingDate) {
    for (int i = 1; i <= 31; ++i)
        add(i, QDate(2008, 3, 1).addDays(i / 2).toString(Qt::ISODate), i);
    openFeeNotices(form, context, desk);
    showFees(form, context, desk);
    nextFees(form, context, desk);
    EXPECT_EQ(numbers(), QStringList({u"30"_s, u"31"_s}));
    openFeeGrave(form, context, desk);
    EXPECT_TRUE(desk.opened.empty());
    form.frm21_tbl.clickedRow = 1;
    clickFee(form, context, desk);
    openFeeGrave(form, context, desk);
    EXPECT_EQ(desk.opened.back().screen, u"お墓登"_s);
    EXPECT_EQ(desk.opened.back().how, desk::Opening::modal);
    EXPECT_EQ(context.hak_no, 30);
    EXPECT_EQ(context.dnk_no1, 30);
    add(20000, u"2008-03-16"_s);
    desk.opened.back().closed();
    EXPECT_EQ(numbers(), QStringList({u"30"_s, u"31"_s, u"20000"_s})); // the whole day again, not the first page
    EXPECT_EQ(context.hak_no + context.dnk_no1, 0);
    previousFees(form, context, desk);
    EXPECT_EQ(numbers().front(), u"1"_s);

    form.frm21_tbl.clickedRow = 2;
    clickFee(form, context, desk);
    openFeeHousehold(form, context, desk);
    EXPECT_EQ(desk.opened.back().screen, u"檀家登"_s);
    EXPECT_EQ(context.dnk_no1, 2);
    desk.opened.back().closed();
    EXPECT_EQ(numbers().front(), u"30"_s);
    EXPECT_EQ(context.dnk_no1, 2);
}

TEST_F(FeeNotices, PrintALabelAGraveAndMarkNothing) {
    for (std::int16_t household = 1; household <= 3; ++household) {
        store::Database database;
        store::Table(database, store::idxdnk_no).insert(sampleHousehold(household));
    }
    add(1, u"2008-03-01"_s, 1);
    add(2, u"2008-03-02"_s, 2);
    add(3, u"2008-03-03"_s, 3);
    add(4, u"2008-03-04"_s, 2);
    openFeeNotices(form, context, desk);
    const QString before = query(u"SELECT * FROM tbl_ohaka"_s);
    previewFeeLabels(form, printer, desk);
    printFeeLabels(form, printer, desk);
    EXPECT_EQ(printer.lines(0, 5).size(), 4);
    EXPECT_EQ(printer.lines(1, 5).size(), 4);
    EXPECT_EQ(query(u"SELECT * FROM tbl_ohaka"_s), before);
    execute(u"DELETE FROM tbl_ohaka"_s);
    desk.expect(u"管理費通知予定はありません"_s, u"宛名印刷"_s);
    printFeeLabels(form, printer, desk);
}

} // namespace
