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
    FeeNotices() { beginFeeNotices(form, context, desk); }
    // Rows "(number, household, next billing)".
    void add(const QString& rows) {
        execute(u"INSERT INTO tbl_ohaka (tblhak_no, tblhak_dnk_no, tblhak_kanri_nxymd, tblhak_banchi1, "
                "tblhak_bohyo_mei, tblhak_kanri_ryokin) SELECT *, '東', '家', 12000 FROM (VALUES %1)"_s.arg(rows));
    }
    void show(const QString& from, const QString& to) {
        form.frm21_from.text = from;
        form.frm21_to.text = to;
        showFees(form, context, desk);
    }
    void click(int row) {
        form.frm21_tbl.clickedRow = row;
        form.click(context, desk);
    }
    QString numbers() const {
        QStringList cells;
        for (const QStringList& row : form.frm21_tbl.rows)
            cells << row.front();
        return cells.join(u' ');
    }

    TestDesk desk{QDate(2008, 2, 12)};
    TestPrinter printer;
    お墓通Form form;
};

TEST_F(FeeNotices, ListTheRangeInBillingOrder) {
    add(u"(3, 1, '2008-02-12'), (1, 0, '2009-02-12'), (2, 1, '2009-02-13'), (4, 1, NULL), (5, 1, '2008-02-11')"_s);
    EXPECT_EQ(form.frm21_from.text + form.frm21_to.text, u"2008/02/122009/02/12"_s);
    EXPECT_EQ(form.frm21_tbl.columns[0].header + form.frm21_tbl.columns[3].header, u"管理番号檀家番号"_s);
    showFees(form, context, desk);
    EXPECT_EQ(numbers(), u"3 1"_s);
    EXPECT_EQ(form.frm21_tbl.rows[0].join(u'|'), u"3|東||1|||家|||平成20年2月12日|12,000||"_s);

    desk.expect(u"有功範囲外を指定しています。選択し直して下さい"_s, title);
    click(3);
    desk.expect(u"管理費通知予定はありません。"_s, title);
    show(u"2020/1/1"_s, u"2020/1/2"_s);
    EXPECT_EQ(numbers(), u"3 1"_s);
}

TEST_F(FeeNotices, KeepTheRangeOfTheLastShowing) {
    desk.expect(u"検索開始日ｴﾗｰです開始日を再度入力して下さい"_s, title);
    show(u"2008/13/01"_s, u"2009/02/12"_s);
    EXPECT_EQ(form.frm21_from.colour, desk::Colour::red);
    desk.expect(u"検索終了日ｴﾗｰです終了を再度入力して下さい"_s, title);
    show(u"2010/1/1"_s, u"2009/12/31"_s);
    EXPECT_EQ(form.frm21_to.colour, desk::Colour::red);
    form.frm21_to.text = u"2010/1/1"_s;
    leaveFeesTo(form, context, desk);
    leaveFeesFrom(form, context, desk);
    EXPECT_EQ(form.frm21_to.colour, desk::Colour::black);
    EXPECT_EQ(form.from, QDate(2008, 2, 12));
    EXPECT_EQ(form.to, QDate(2009, 2, 12));
}

TEST_F(FeeNotices, GoOnFromTheCurrentBillingDate) {
    QStringList rows;
    for (int i = 1; i <= 31; ++i)
        rows << u"(%1, %1, '%2')"_s.arg(i).arg(QDate(2008, 3, 1).addDays(i / 2).toString(Qt::ISODate));
    add(rows.join(u','));
    showFees(form, context, desk);
    form.nextPage(desk);
    EXPECT_EQ(numbers(), u"30 31"_s);
    // Each showing starts a new list: the pages of the one before are none of its own.
    show(u"2008/3/9"_s, u"2008/3/15"_s);
    EXPECT_TRUE(numbers().startsWith(u"16 17 "_s));
    form.previousPage(desk);
    EXPECT_TRUE(numbers().startsWith(u"16 17 "_s));
    show(u"2008/2/12"_s, u"2009/2/12"_s);
    form.nextPage(desk);
    click(1);
    openFeeGrave(form, context, desk);
    EXPECT_EQ(context.hak_no, 30);
    add(u"(20000, 1, '2008-03-16')"_s);
    desk.opened.back().closed();
    EXPECT_EQ(numbers(), u"30 31 20000"_s); // the whole day again, not the first page
    EXPECT_EQ(context.hak_no + context.dnk_no1, 0);
    form.previousPage(desk);
    EXPECT_TRUE(numbers().startsWith(u"1 2 "_s));

    context.dnk_no1 = 2;
    context.dnk_no2 = 1;
    click(2);
    openFeeHousehold(form, context, desk);
    desk.opened.back().closed();
    EXPECT_TRUE(numbers().startsWith(u"30 "_s));
    EXPECT_EQ(context.dnk_no1, 2);
    EXPECT_EQ(context.dnk_no2, 0); // never a branch that another screen showed

    click(1);
    execute(u"DELETE FROM tbl_ohaka WHERE tblhak_no = 30"_s);
    show(u"2008/2/12"_s, u"2009/2/12"_s);
    openFeeGrave(form, context, desk); // the grave chosen is gone
    EXPECT_EQ(desk.opened.size(), 2U);
}

TEST_F(FeeNotices, PrintALabelAGraveAndMarkNothing) {
    {
        store::Database database;
        store::Table(database, store::idxdnk_no).insert(sampleHousehold(1));
    }
    add(u"(1, 1, '2008-03-01'), (2, 1, '2008-03-02')"_s);
    const QString before = query(u"SELECT * FROM tbl_ohaka"_s);
    printFeeLabels(form, printer, desk);
    EXPECT_EQ(printer.lines(0, 5).size(), 2);
    EXPECT_EQ(query(u"SELECT * FROM tbl_ohaka"_s), before);
}

} // namespace
