#include "support/screen_fixture.h"

#include "ui/grid_view.h"

#include <QLabel>
#include <QScrollBar>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

const QString listTitle = u"お墓一覧"_s;

class GraveScreens : public ScreenFixture {
  protected:
    GraveScreens() {
        store::Database database;
        store::Table(database, store::idxdnk_no).insert(sampleHousehold(7));
        // Every third grave of the section is the household's.
        execute(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 70) INSERT INTO tbl_ohaka "
                "(tblhak_no, tblhak_banchi1, tblhak_banchi2, tblhak_dnk_no, tblhak_bohyo_kbn, tblhak_bohyo_mei, "
                "tblhak_shiyo_ryokin, tblhak_kanri_ryokin) SELECT i, '東''', printf('%03d', i), "
                "iif(i % 3 = 0, 7, 0), '家', printf('墓%03d', i), 1000000, 12000 FROM n"_s);
    }
    void choose(const QString& screenName, const QString& section) {
        auto& box = control<QComboBox>(screenName, u"frm21_block"_s);
        box.setEditText(section);
        QTest::keyClick(&box, Qt::Key_Return);
    }
    void key(const QString& screenName, Qt::Key key) {
        auto& grid = control<ui::GridView>(screenName, u"frm21_tbl"_s);
        grid.setFocus();
        QTest::keyClick(&grid, key);
        QCoreApplication::processEvents();
    }
    // Turns the wheel down or up, or presses Page Down or Up, until the page is another; how often.
    int turn(const QString& screenName, bool forward, bool byWheel) {
        auto& grid = control<ui::GridView>(screenName, u"frm21_tbl"_s);
        const QString before = first(screenName);
        int times = 0;
        while (first(screenName) == before && times++ < 40) {
            if (!byWheel) {
                key(screenName, forward ? Qt::Key_PageDown : Qt::Key_PageUp);
                continue;
            }
            QWheelEvent notch(QPointF(50, 50), grid.viewport()->mapToGlobal(QPointF(50, 50)), {},
                              {0, forward ? -120 : 120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(grid.viewport(), &notch);
            QCoreApplication::processEvents();
        }
        return times;
    }
    // Row on the highlight colour in all its width, 0 none.
    int highlighted(const QString& screenName) {
        auto& model = *control<ui::GridView>(screenName, u"frm21_tbl"_s).model();
        const auto coloured = [&](int row, int column) {
            return model.index(row, column).data(Qt::BackgroundRole).value<QColor>() == QColor(128, 255, 128);
        };
        int row = model.rowCount();
        while (row > 0 && !coloured(row - 1, 0))
            --row;
        EXPECT_TRUE(row == 0 || coloured(row - 1, model.columnCount() - 1));
        return row;
    }
    QString first(const QString& screenName) { return cell(screenName, u"frm21_tbl"_s, 1, 2); }
};

TEST_F(GraveScreens, ListIsWorkedByMouseAndKeyboardAlike) {
    const QString name = u"お墓一"_s;
    open(name);
    auto& grid = control<ui::GridView>(name, u"frm21_tbl"_s);
    EXPECT_EQ(grid.model()->rowCount(), 30);
    expect(u"照会する区画を入力して下さい"_s, listTitle);
    choose(name, {});
    choose(name, u"東'"_s);
    key(name, Qt::Key_Up); // nothing is highlighted: the arrows stop in silence
    EXPECT_EQ(highlighted(name), 0);
    for (const Qt::Key step : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Up, Qt::Key_Up})
        key(name, step);
    EXPECT_EQ(highlighted(name), 1);
    clickCell(name, u"frm21_tbl"_s, 30, 4);
    key(name, Qt::Key_Down);
    EXPECT_EQ(highlighted(name), 30);
    expect(u"有功範囲外を指定しています。やり直して下さい"_s, listTitle);
    clickCell(name, u"frm21_tbl"_s, 0, 2);
    EXPECT_EQ(highlighted(name), 30);

    key(name, Qt::Key_Up);
    EXPECT_EQ(grid.currentIndex().row(), 28); // the mark goes with the row chosen

    // A page is read to its end before it is turned, and entered at its end when one reads backwards.
    screen(name).resize(1300, 500);
    EXPECT_EQ(grid.horizontalScrollBar()->maximum(), 0);
    for (const bool byWheel : {false, true}) {
        SCOPED_TRACE(byWheel);
        key(name, Qt::Key_Home);
        EXPECT_GT(turn(name, true, byWheel), 1);
        EXPECT_EQ(first(name), u"030"_s);
        EXPECT_EQ(grid.rowsInSight().first, 1);
        EXPECT_GT(turn(name, true, byWheel), 1);
        EXPECT_EQ(first(name), u"059"_s);
        EXPECT_EQ(control<QLabel>(name, u"件数表示"_s).text(), u"59–70／70件"_s);
        EXPECT_EQ(highlighted(name), 0);
        EXPECT_EQ(turn(name, false, byWheel), 1);
        EXPECT_EQ(first(name), u"030"_s);
        EXPECT_EQ(grid.rowsInSight().second, 30);
        if (!byWheel)
            turn(name, false, byWheel);
    }
    press(name, u"前ページ"_s);
    EXPECT_EQ(first(name), u"001"_s);
    clickCell(name, u"frm21_tbl"_s, 2, 0);
    key(name, Qt::Key_PageUp);
    EXPECT_EQ(highlighted(name), 2);
    allShown();

    clickCell(name, u"frm21_tbl"_s, 3, 0);
    key(name, Qt::Key_Return);
    EXPECT_EQ(text(u"お墓登"_s, u"frm13_banchi2"_s), u"003"_s);
    close(u"お墓登"_s);
    const QPoint unlinked = grid.visualRect(grid.model()->index(4, 1)).center();
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, unlinked);
    QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, unlinked);
    QCoreApplication::processEvents();
    EXPECT_EQ(text(u"お墓新"_s, u"frm13_haka_no"_s), u"5"_s);
}

TEST_F(GraveScreens, PickerLinksAFreeGraveToTheHousehold) {
    workplace->context.dnk_no1 = 7;
    open(u"お墓登"_s);
    const struct {
        QString picker;
        int row;
        QString leave; // 紐付け, 終了, or closing the window
        QString number;
    } cases[] = {{u"区画"_s, 2, u"終了"_s, {}},
                 {u"区画"_s, 2, u"閉じる"_s, {}},
                 {u"墓標"_s, 0, u"紐付け"_s, {}},
                 {u"区画"_s, 3, u"紐付け"_s, u"4"_s},
                 {u"墓標"_s, 5, u"紐付け"_s, u"5"_s}};
    for (const auto& c : cases) {
        SCOPED_TRACE((c.picker + c.leave).toStdString());
        const QString picker = u"紐"_s + c.picker;
        press(u"お墓登"_s, c.picker + u"紐付"_s);
        if (c.picker == u"区画"_s)
            choose(picker, u"東'"_s);
        if (c.row)
            clickCell(picker, u"frm21_tbl"_s, c.row, 1);
        if (c.leave == u"閉じる"_s)
            close(picker);
        else
            press(picker, c.leave);
        EXPECT_EQ(text(u"お墓登"_s, u"frm13_haka_no"_s), c.number);
        EXPECT_EQ(text(u"お墓登"_s, u"frm13_bohyo"_s), c.number.isEmpty() ? QString() : u"墓00"_s + c.number);
    }
    answer(u"入力された内容でお墓を変更します。内容を確認して下さい。"_s, u"お墓 登録"_s, true);
    expect(u"入力された内容でお墓は更新されました。"_s, u"お墓 登録"_s);
    press(u"お墓登"_s, u"更新"_s);
    EXPECT_EQ(query(u"SELECT tblhak_dnk_no, tblhak_dnk_nameg FROM tbl_ohaka WHERE tblhak_no = 5"_s), u"7,山田"_s);
}

TEST_F(GraveScreens, AReceiptTakesFourPresses) {
    execute(u"UPDATE tbl_ohaka SET tblhak_kanri_nxymd = '2026-04-01' WHERE tblhak_no IN (3, 6); "
            "UPDATE tbl_ohaka SET tblhak_kanri_nxymd = '2026-12-01' WHERE tblhak_no IN (9, 10)"_s);
    const QString name = u"お墓通"_s;
    const QString grid = u"frm21_tbl"_s;
    const auto ticks = [&](int row) { return cell(name, grid, row, 13) + cell(name, grid, row, 14); };
    open(name);
    press(name, u"未納のみ"_s);
    clickCell(name, grid, 1, 14);
    QTRY_COMPARE(control<QLabel>(name, u"合計表示"_s).text(), u"合計 24,000円　受領 1件 12,000円"_s);
    answer(u"1件、合計 12,000円の管理費を受領済みにしますか？\n受領日を今日にし、次回請求日を一年先に進めます。"_s,
           u"お墓管理費通知"_s, true);
    press(name, u"受領"_s);
    EXPECT_EQ(cell(name, grid, 1, 0), u"6"_s);
    for (const QString& button : {u"通知"_s, u"印刷プレビュー"_s}) {
        EXPECT_FALSE(control(name, button).isEnabled());
        EXPECT_EQ(control(name, button).toolTip().left(5), u"未納のみの"_s);
    }
    press(name, u"元に戻す"_s);
    EXPECT_EQ(ticks(1) + ticks(2), u"－☑－☐"_s);
    press(name, u"未納のみ"_s);
    EXPECT_TRUE(control(name, u"通知"_s).isEnabled());
    EXPECT_EQ(ticks(1) + ticks(2), u"☑☐☑－"_s);
    // Space turns the first tick of the row picked, Shift and Space the last; a second click is a turn back.
    auto& view = control<ui::GridView>(name, grid);
    clickCell(name, grid, 1);
    QTest::keyClick(&view, Qt::Key_Space);
    QTest::keyClick(&view, Qt::Key_Space, Qt::ShiftModifier);
    EXPECT_EQ(ticks(1), u"☐☑"_s);
    const QPoint tick = view.visualRect(view.model()->index(0, 14)).center();
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, tick);
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, tick);
    EXPECT_EQ(ticks(1), u"☐☑"_s);
    EXPECT_FALSE(workplace->find(u"お墓登"_s));
    // Ticks that would lie out of sight stand in front.
    for (const auto& [width, place] : {std::pair(500, 1), {3000, 14}, {500, 1}}) {
        view.setFixedWidth(width);
        QTRY_COMPARE(view.horizontalHeader()->visualIndex(14), place);
        EXPECT_EQ(view.horizontalHeader()->visualIndex(13), place - 1);
        EXPECT_EQ(ticks(1), u"☐☑"_s);
    }
}

TEST_F(GraveScreens, CopyButtonsAndMarksWork) {
    const QString name = u"お墓新"_s;
    workplace->context.hak_no = 1;
    open(name);
    for (const auto& button : {u"今日"_s, u"使用料受日"_s, u"管理受領"_s, u"管理次回"_s})
        press(name, button);
    EXPECT_EQ(text(name, u"次回YMD"_s), u"2026/11/22"_s);
    type(name, u"管受年"_s, u"7"_s);
    press(name, u"受領今日"_s);
    press(name, u"次回翌年"_s);
    EXPECT_EQ(text(name, u"管受YMD"_s) + text(name, u"管受年"_s) + text(name, u"次回YMD"_s),
              u"2026/11/2282027/11/22"_s);
    EXPECT_EQ(text(name, u"次回年号"_s), u"令和"_s);
    type(name, u"次回年"_s, u"十"_s);
    type(name, u"墓地管理費"_s, {});
    expect(u"墓地管理費に正しく入力して下さい"_s, u"お墓 新規登録"_s);
    press(name, u"更新"_s);
    EXPECT_EQ(colour(name, u"墓地管理費"_s), QColor(255, 0, 0));
    EXPECT_EQ(colour(name, u"次回年"_s), QColor(255, 0, 0));
    EXPECT_EQ(colour(name, u"次回月"_s), QColor(0, 0, 0));
    EXPECT_EQ(screen(name).tabOrder().front()->objectName(), u"墓地管理費"_s);
}

} // namespace
