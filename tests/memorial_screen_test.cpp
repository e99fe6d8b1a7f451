#include "support/screen_fixture.h"

#include <QDialog>
#include <QDir>
#include <QLabel>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

class MemorialScreens : public ScreenFixture {
  protected:
    MemorialScreens() {
        {
            store::Database database;
            store::Table(database, store::idxdnk_no).insert(sampleHousehold(7));
        }
        execute(u"INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_nameg, tblkzk_seishikbn) "
                "VALUES (7, '山田', '山田　二', '0'); "
                "INSERT INTO tbl_kakocho (tblkak_no, tblkak_dnknameg, tblkak_dnknamek, tblkak_zokunameg, "
                "tblkak_zokunamek, tblkak_mei_ymd) VALUES (7, '山田', 'ヤマダ', '山田　一', 'ヤマダ ハジメ', "
                "'2024-12-01'); "
                "INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_danknameg, tblhoy_zokunameg, tblhoy_kaiki_mei, "
                "tblhoy_kaiki_yymd) VALUES (7, '山田', '山田　一', '3回忌', '2026-12-01')"_s);
    }
    void fill(const QString& name, const std::vector<std::pair<QString, QString>>& boxes) {
        for (const auto& [box, value] : boxes)
            type(name, box, value);
    }
};

TEST_F(MemorialScreens, NoticesArePreviewed) {
    open(u"法要通"_s);
    press(u"法要通"_s, u"印刷プレビュー"_s);
    auto* preview = screen(u"法要通"_s).findChild<QDialog*>(u"宛名プレビュー"_s);
    ASSERT_NE(preview, nullptr);
    EXPECT_EQ(preview->findChild<QLabel*>(u"枚目"_s)->text(), u"1 / 1 枚目"_s);
    EXPECT_EQ(QDir(directory.path()).entryList({u"*.pdf"_s}).size(), 0);
}

TEST_F(MemorialScreens, AMemorialIsRecordedAsHeld) {
    const QString detail = u"法要明"_s;
    workplace->context.publishHousehold(7);
    open(u"法要檀"_s);
    clickCell(u"法要檀"_s, u"frm21_tbl"_s, 1);
    press(u"法要檀"_s, u"個別照会"_s);
    EXPECT_EQ(text(detail, u"frm31_zoknamek"_s), u"ヤマダ ハジメ"_s);
    for (const auto& button : {u"予約日"_s, u"実施日"_s, u"frm31_pm"_s})
        press(detail, button);
    clickLine(detail, u"frm31_kankeisha"_s, u"山田　二"_s);
    fill(detail, {{u"開始時"_s, u"１"_s}, {u"frm31_法要場所"_s, u"本堂"_s}});
    fill(detail, {{u"frm31_続柄"_s, u"甥"_s}, {u"frm31_ofuse"_s, u"30000"_s}});
    answer(u"入力された内容で法要を変更します。内容を確認して下さい。"_s, u"法要明細"_s, true);
    expect(u"入力された内容で法要は更新されました。"_s, u"法要明細"_s);
    press(detail, u"更新"_s);
    close(detail);
    EXPECT_EQ(cell(u"法要檀"_s, u"frm21_tbl"_s, 1, 4), u"済"_s);
    EXPECT_EQ(query(u"SELECT tblhoy_kaiki_rymd, tblhoy_kaiki_ampm, tblhoy_kaiki_jymd, tblhoy_kaiki_seshug, "
                    "tblhoy_zokugara, tblhoy_ofuse FROM tbl_hohyo"_s),
              u"2026-12-01,2,2026-12-01,山田　二,甥,30000"_s);
}

TEST_F(MemorialScreens, ARangeIsCheckedWhenItsBoxIsLeft) {
    ASSERT_TRUE(QTest::qWaitForWindowActive(&open(u"法要通"_s)));
    auto& from = control(u"法要通"_s, u"frm02_from"_s);
    from.setFocus();
    type(u"法要通"_s, u"frm02_from"_s, u"令和8年13月1日"_s);
    expect(u"検索開始日ｴﾗｰです開始日を再度入力して下さい"_s, u"法要通知"_s);
    QTest::keyClick(&from, Qt::Key_Tab);
    QTRY_COMPARE(colour(u"法要通"_s, u"frm02_from"_s), QColor(255, 0, 0));
    EXPECT_EQ(screen(u"法要通"_s).focusWidget()->objectName(), u"frm02_to"_s); // the keyboard goes where it was sent
    allShown();
    type(u"法要通"_s, u"frm02_from"_s, u"令和8年12月1日"_s);
    press(u"法要通"_s, u"表示"_s);
    EXPECT_EQ(cell(u"法要通"_s, u"frm21_tbl"_s, 1, 4), u"令和8年12月1日"_s);
}

TEST_F(MemorialScreens, TheThirteenthAnniversariesTakeFewPresses) {
    execute(u"INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_zokunameg, tblhoy_kaiki_yymd, tblhoy_kaiki_mei) VALUES "
            "(7, '甲', '2026-12-05', '13回忌'), (7, '乙', '2027-02-05', '7回忌'), (7, '丙', '2027-03-05', '13回忌')"_s);
    const QString list = u"法要通"_s;
    const QString settings = u"宛名設定"_s;
    open(u"メニュー"_s);
    int presses = 0;
    const auto pressed = [&](const QString& name, const QString& button) {
        press(name, button);
        ++presses;
    };
    pressed(u"メニュー"_s, u"法要通知"_s);
    pressed(list, u"表示"_s);
    EXPECT_EQ(cell(list, u"frm21_tbl"_s, 1, 9), u"☑"_s);
    pressed(list, u"宛名設定"_s);
    pressed(settings, u"回忌全解除"_s);
    auto& anniversaries = control<QListWidget>(settings, u"回忌選択"_s);
    const auto found = anniversaries.findItems(u"13回忌（2件）"_s, Qt::MatchExactly);
    ASSERT_EQ(found.size(), 1);
    found.front()->setCheckState(Qt::Checked);
    ++presses;
    // The upper half of the sheet is used up: a click on the seventh label.
    auto& sheet = control(settings, u"開始位置"_s);
    QTest::mouseClick(&sheet, Qt::LeftButton, {}, {sheet.width() / 2 - 20, sheet.height() / 2 + 10});
    ++presses;
    EXPECT_EQ(text(settings, u"開始番号"_s), u"7"_s);
    pressed(settings, u"設定"_s);
    EXPECT_EQ(workplace->find(settings), nullptr);
    expectBeginning(u"プリンターがないため、宛名をPDFファイルに書き出しました。\n"_s, u"宛名印刷"_s);
    pressed(list, u"通知"_s);
    EXPECT_LE(presses, 8);
    EXPECT_EQ(query(u"SELECT tblhoy_zokunameg FROM tbl_hohyo WHERE tblhoy_tsuchi_s = 1"_s), u"甲|丙"_s);
    answer(u"2026/11/22の通知処理を取り消します。\n2件の法要を通知前に戻します。よろしいですか？"_s, u"法要通知"_s,
           true);
    press(list, u"通知取消"_s);
    EXPECT_EQ(query(u"SELECT count(*) FROM tbl_hohyo WHERE tblhoy_tsuchi_s = 1"_s), u"0"_s);
    // Space turns the tick of the row picked; the list stays where it is.
    clickCell(list, u"frm21_tbl"_s, 2);
    QTest::keyClick(&control(list, u"frm21_tbl"_s), Qt::Key_Space);
    EXPECT_EQ(cell(list, u"frm21_tbl"_s, 2, 9) + cell(list, u"frm21_tbl"_s, 3, 9), u"☐－"_s);
}

TEST_F(MemorialScreens, TheNextDueRowIsInSightAndNotChosen) {
    execute(uR"(DELETE FROM tbl_hohyo;
        WITH RECURSIVE n(i, day) AS (SELECT 1, '2024-06-22' UNION ALL SELECT i + 1, date(day, '+1 month') FROM n
          WHERE i < 60) INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_danknameg, tblhoy_zokunameg, tblhoy_kaiki_yymd)
          SELECT 7, '山田', i, day FROM n)"_s);
    workplace->context.publishHousehold(7);
    const QString name = u"法要檀"_s;
    ui::Screen& shown = open(name);
    auto& grid = control<QTableView>(name, u"frm21_tbl"_s);
    const auto inSight = [&](int row) {
        return grid.viewport()->rect().contains(grid.visualRect(grid.model()->index(row - 1, 0)));
    };
    // The thirtieth month is November 2026.
    for (const int height : {500, 380}) {
        shown.resize(shown.width(), height);
        EXPECT_TRUE(inSight(30) && !inSight(1)) << height;
    }
    EXPECT_FALSE(grid.currentIndex().isValid());
    // Whoever reads on by keys begins each page at its top.
    while (cell(name, u"frm21_tbl"_s, 1, 0) == u"1"_s)
        QTest::keyClick(&grid, Qt::Key_PageDown);
    EXPECT_TRUE(inSight(1));
}

TEST_F(MemorialScreens, AScreenLeftOpenKeepsItsDeceased) {
    const QString extra = u"法要外"_s;
    workplace->context.publishHousehold(7);
    workplace->context.dnk_nameg = u"山田"_s;
    open(extra);
    clickLine(extra, u"frm31_zoknameg"_s, u"山田　一"_s);
    workplace->context.publishHousehold(8); // another screen goes on to another household
    fill(extra, {{u"frm31_hohyo_mei"_s, u"特別供養"_s}, {u"予約年号"_s, u"令和"_s}, {u"予約年"_s, u"9"_s}});
    fill(extra,
         {{u"予約月"_s, u"1"_s}, {u"予約日"_s, u"2"_s}, {u"開始時"_s, u"9"_s}, {u"frm31_法要場所"_s, u"本堂"_s}});
    answer(u"入力された内容で法要を登録します。内容を確認して下さい。"_s, u"法要・回忌外登録"_s, true);
    expect(u"指定された法要は登録されました。"_s, u"法要・回忌外登録"_s);
    press(extra, u"登録"_s);
    EXPECT_EQ(query(u"SELECT tblhoy_no, tblhoy_zokunameg FROM tbl_hohyo WHERE tblhoy_kaiki_mei = '特別供養'"_s),
              u"7,山田　一"_s);
}

TEST_F(MemorialScreens, AnotherDeceasedIsAskedForAndNothingTypedIsLost) {
    const QString extra = u"法要外"_s;
    const QString deaths = u"過去登"_s;
    execute(u"INSERT INTO tbl_kakocho (tblkak_no, tblkak_dnknameg, tblkak_zokunameg, tblkak_mei_ymd) "
            "VALUES (7, '山田', '山田　三', '2025-12-01')"_s);
    workplace->context.publishHousehold(7);
    open(deaths);
    const auto ask = [&](const QString& name) {
        clickLine(deaths, u"frm11_kakocho"_s, name);
        press(deaths, u"回忌外"_s);
    };
    const auto shown = [&] { return control<QListWidget>(extra, u"frm31_zoknameg"_s).currentItem()->text(); };
    const auto told = [&] { return control<QLabel>(extra, u"お知らせ文"_s).text(); };
    ask(u"山田　一"_s);
    type(extra, u"frm31_hohyo_mei"_s, u"特別供養"_s);
    ask(u"山田　三"_s);
    EXPECT_EQ(shown(), u"山田　一"_s);
    EXPECT_TRUE(told().contains(u"7 山田　三"_s)) << told().toStdString();
    press(extra, u"表示する"_s);
    EXPECT_EQ(shown() + text(extra, u"frm31_hohyo_mei"_s), u"山田　三"_s);
    ask(u"山田　一"_s);
    press(extra, u"表示する"_s);
    EXPECT_EQ(told(), u"前に入力した内容が残っています"_s);
    press(extra, u"戻す"_s);
    EXPECT_EQ(shown() + text(extra, u"frm31_hohyo_mei"_s), u"山田　一特別供養"_s);

    // A registration ends the draft; what is typed for the next memorial is one again.
    fill(extra, {{u"予約年号"_s, u"令和"_s}, {u"予約年"_s, u"9"_s}, {u"予約月"_s, u"1"_s}, {u"予約日"_s, u"2"_s}});
    fill(extra, {{u"開始時"_s, u"9"_s}, {u"frm31_法要場所"_s, u"本堂"_s}});
    answer(u"入力された内容で法要を登録します。内容を確認して下さい。"_s, u"法要・回忌外登録"_s, true);
    expect(u"指定された法要は登録されました。"_s, u"法要・回忌外登録"_s);
    press(extra, u"登録"_s);
    EXPECT_EQ(workplace->drafts.all().size(), 0U);
    type(extra, u"frm31_hohyo_mei"_s, u"次の供養"_s);
    close(extra);
    ask(u"山田　一"_s);
    press(extra, u"戻す"_s);
    EXPECT_EQ(text(extra, u"frm31_hohyo_mei"_s), u"次の供養"_s);
}

} // namespace
