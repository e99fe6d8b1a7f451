#include "graves/fee_notice_rules.h"
#include "support/label_printer.h"
#include "support/register_fixture.h"
#include "support/test_desk.h"

using namespace Qt::StringLiterals;
using namespace graves;

namespace {

const QString title = u"お墓管理費通知"_s;
const QString asked = u"の管理費を受領済みにしますか？\n受領日を今日にし、次回請求日を一年先に進めます。"_s;
const QString all = u"SELECT * FROM tbl_ohaka"_s;

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
    void click(int row, int column = 0) {
        form.frm21_tbl.clickedRow = row;
        form.frm21_tbl.clickedColumn = column;
        form.click(context, desk);
    }
    void tick(std::initializer_list<int> rows) {
        for (const int row : rows)
            click(row, form.frm21_tbl.tickColumns.back());
    }
    void showOwed(bool owed = true) {
        form.未納のみ.chosen = owed;
        showFees(form, context, desk);
    }
    QString ticks() const {
        QString all;
        for (const QStringList& row : form.frm21_tbl.rows)
            all += row.back();
        return all;
    }
    void receive(const QString& what, const QString& besides = {}, bool yes = true) {
        desk.answer(what + asked + besides, title, yes);
        receiveFees(form, context, desk);
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
    EXPECT_EQ(form.frm21_tbl.rows[0].join(u'|'), u"3|東||1|||家|||平成20年2月12日|12,000|||☑|☐"_s);

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

    form.nextPage(desk);
    // All that was due from the page on is moved on: others are still due.
    execute(u"UPDATE tbl_ohaka SET tblhak_kanri_nxymd = '2010-01-01' WHERE tblhak_kanri_nxymd >= '2008-03-15'"_s);
    desk.opened.front().closed();
    EXPECT_TRUE(numbers().startsWith(u"1 2 "_s));
}

TEST_F(FeeNotices, LoseNoneOfADayWhateverOrderItsGravesWereStoredIn) {
    QStringList rows{u"(50, 1, '2008-04-01')"_s};
    for (int i = 1; i <= 49; ++i)
        rows << u"(%1, 1, '2008-04-01')"_s.arg(i);
    add(rows.join(u','));
    showFees(form, context, desk);
    EXPECT_TRUE(numbers().startsWith(u"50 1 2 "_s));
    form.nextPage(desk);
    EXPECT_TRUE(numbers().startsWith(u"29 30 "_s));
    EXPECT_TRUE(numbers().endsWith(u" 49"_s));
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

TEST_F(FeeNotices, AReceiptMovesTwoDatesOfTheTickedGravesAndCanBeTakenBack) {
    add(u"(1, 1, '2008-02-29'), (2, 1, '2008-03-01'), (3, 1, '2008-03-02'), (4, 1, '2008-03-03'), "
        "(5, 0, '2008-03-04')"_s);
    execute(u"UPDATE tbl_ohaka SET tblhak_haiki_kbn = 1 WHERE tblhak_no = 4; "
            "UPDATE tbl_ohaka SET tblhak_kanri_ryokin = NULL WHERE tblhak_no = 3"_s);
    showFees(form, context, desk);
    desk.expect(u"受領にする行が選ばれていません。『受領選択』の欄を押して選んで下さい。"_s, title);
    receiveFees(form, context, desk);
    tick({1, 2, 2, 3, 4, 5});
    EXPECT_EQ(ticks(), u"☑☐☑－－"_s);
    EXPECT_EQ(desk.informed, (QStringList{u"管理番号 4は廃棄したお墓のため、受領にできません。"_s,
                                          u"管理番号 5は檀家さんに紐付いていないため、受領にできません。"_s}));
    form.count();
    EXPECT_EQ(form.合計表示.text, u"合計 48,000円（金額なし 1件）　受領 2件 12,000円（金額なし 1件）"_s);
    const QString before = query(all);
    receive(u"2件、合計 12,000円（金額なし 1件）"_s, {}, false);
    EXPECT_EQ(query(all), before);
    receive(u"2件、合計 12,000円（金額なし 1件）"_s);
    const QString received = QString(before)
                                 .replace(u"NULL,2008-02-29"_s, u"2008-02-12,2009-02-28"_s)
                                 .replace(u"NULL,2008-03-02"_s, u"2008-02-12,2009-03-02"_s);
    EXPECT_EQ(query(all), received);
    EXPECT_EQ(numbers() + ticks(), u"2 4 5☐－－"_s); // those received lie behind the range

    // A grave that was received today is told; いいえ is then what Enter gives.
    show(u"2008/2/12"_s, u"2010/2/12"_s);
    tick({4});
    receive(u"1件、合計 12,000円"_s, u"\n（うち1件は、受領日がすでに今日です。）"_s, false);
    EXPECT_EQ(desk.lastPreset, desk::Preset::no);
    const auto takeBack = desk.offered.front().run;
    takeBack();
    EXPECT_EQ(query(all), before);
    EXPECT_EQ(ticks(), u"☑☐☑－－"_s);
    desk.expectBeginning(u"受領のあとで変わったお墓があるため、元に戻せません。何も書き込まれていません。"_s, title);
    takeBack();
    EXPECT_EQ(query(all), before);
}

TEST_F(FeeNotices, AReceiptIsWrittenWholeOrNotAtAll) {
    const struct {
        QString meanwhile;
        QString told;
        QString left; // ticks of the page that is read again
    } cases[] = {
        {u"UPDATE tbl_ohaka SET tblhak_biko = '角'"_s, u"ほかの画面で変更されています"_s, u"☑☐☑"_s},
        {u"UPDATE tbl_ohaka SET tblhak_haiki_kbn = 1"_s, u"廃棄されています"_s, u"☑－☑"_s},
        {u"UPDATE tbl_ohaka SET tblhak_dnk_no = 0"_s, u"檀家さんとの紐付けが外されています"_s, u"☑－☑"_s},
        {u"DELETE FROM tbl_ohaka"_s, u"削除されています"_s, u"☑☑"_s},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.meanwhile.toStdString());
        execute(u"DELETE FROM tbl_ohaka"_s);
        add(u"(1, 1, '2008-03-01'), (2, 1, '2008-03-02'), (3, 1, '2008-03-03')"_s);
        showFees(form, context, desk);
        tick({1, 2, 3});
        QString before;
        desk.whileAsked = [&] {
            execute(c.meanwhile + u" WHERE tblhak_no = 2"_s);
            before = query(all);
        };
        desk.answer(u"3件、合計 36,000円"_s + asked, title, true);
        desk.expectBeginning(
            u"一覧に表示したあとで変わったお墓があるため、受領にできません。何も書き込まれていません。\n\n管理番号 2："_s +
                c.told,
            title);
        receiveFees(form, context, desk);
        EXPECT_EQ(query(all), before);
        EXPECT_EQ(ticks(), c.left);
        desk.whileAsked = [] {};
        receive(u"2件、合計 24,000円"_s); // the others are still ticked
    }
}

TEST_F(FeeNotices, OwedIsWhatAHouseholdShouldHavePaidBeforeToday) {
    add(u"(1, 1, '1900-01-01'), (2, 1, '2008-02-11'), (3, 1, '2008-02-12'), (4, 0, '2008-02-01'), "
        "(5, 1, '2008-02-02'), (6, 1, NULL)"_s);
    execute(u"UPDATE tbl_ohaka SET tblhak_haiki_kbn = 1 WHERE tblhak_no = 5"_s);
    form.frm21_from.text = u"誤り"_s; // nothing to what is owed
    showOwed();
    form.count();
    EXPECT_EQ(numbers() + form.件数表示.text, u"1 21–2／2件"_s);
    EXPECT_EQ(form.printedRange(), u"未納（次回請求日が2008/02/12より前）　合計 24,000円"_s);
    desk.expect(form.choice->rests, u"宛名印刷"_s);
    printFeeLabels(form, printer, desk);
    EXPECT_TRUE(printer.jobs.empty());

    desk.expect(u"検索開始日ｴﾗｰです開始日を再度入力して下さい"_s, title);
    showOwed(false);
    EXPECT_TRUE(form.未納のみ.chosen); // as what is listed
    tick({1});
    form.frm21_from.text = u"2008/2/12"_s;
    showOwed(false);
    EXPECT_EQ(numbers() + ticks(), u"3☐"_s);
    showOwed();
    EXPECT_EQ(ticks(), u"☐☐"_s);
    tick({1, 2});
    receive(u"2件、合計 24,000円"_s);
    EXPECT_EQ(numbers(), u"1"_s); // still owed, for the years since
    execute(u"DELETE FROM tbl_ohaka WHERE tblhak_no <> 4"_s);
    desk.expect(u"未納のお墓はありません。"_s, title);
    showOwed();
    EXPECT_EQ(form.frm21_tbl.rows.size(), 0U);
    desk.expect(u"管理費通知予定はありません。"_s, title);
    showOwed(false);
}

TEST_F(FeeNotices, TicksHoldAcrossPagesAndTheListGoesOnAtItsPlace) {
    QStringList rows;
    for (int i = 1; i <= 95; ++i)
        rows << u"(%1, 1, '2008-03-0%2')"_s.arg(i).arg(i < 60 ? 1 : 2);
    add(rows.join(u','));
    showFees(form, context, desk);
    tick({1});
    form.nextPage(desk);
    for (int row = 2; row <= 30; ++row)
        tick({row});
    receive(u"30件、合計 360,000円"_s);
    form.count();
    EXPECT_TRUE(numbers().startsWith(u"30 60 61 "_s)) << numbers().toStdString();
    EXPECT_EQ(form.件数表示.text, u"29–58／65件"_s);
}

} // namespace
