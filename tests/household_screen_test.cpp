#include "support/screen_fixture.h"

#include <QTabWidget>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

const QString list = u"檀家一覧"_s;
const QString household = u"檀家登"_s;

class HouseholdScreens : public ScreenFixture {
  protected:
    HouseholdScreens() {
        store::Database database;
        store::Table households(database, store::idxdnk_no);
        for (const std::int16_t number : {std::int16_t{3}, std::int16_t{8}}) {
            auto row = sampleHousehold(number);
            row.tbldnk_tel = u"03-%1"_s.arg(number);
            households.insert(row);
        }
    }
};

TEST_F(HouseholdScreens, AChosenLineOpensItsHouseholdAndOldChoicesStay) {
    open(list);
    control<QTabWidget>(list, u"SSTab1"_s).setCurrentIndex(7);
    press(list, u"照会"_s);
    EXPECT_EQ(text(household, u"frm01_no"_s) + text(household, u"frm01_eno"_s), u"00"_s);
    close(household);

    clickCell(list, u"DBGrid8"_s, 2, 5);
    expect(u"選択位置が有効でありません。"_s, list);
    clickCell(list, u"DBGrid8"_s, 0);
    auto& grid = control<QTableView>(list, u"DBGrid8"_s);
    expect(u"選択位置が有効でありません。"_s, list);
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, QPoint(20, grid.viewport()->height() - 3));
    allShown();
    press(list, u"照会"_s);
    EXPECT_EQ(text(household, u"frm01_no"_s), u"8"_s);
    EXPECT_EQ(text(household, u"frm01_tel"_s), u"03-8"_s);
}

TEST_F(HouseholdScreens, AScreenLeftOpenWorksOnItsOwnHousehold) {
    workplace->context.publishHousehold(3);
    open(household);
    // Another screen has gone on to another household meanwhile.
    workplace->context.publishHousehold(8);
    workplace->context.chooseDeceased(u"一郎"_s);
    type(household, u"frm01_tel"_s, u"090-3"_s);
    answer(u"入力された内容で檀家さんを変更します。内容を確認して下さい。"_s, u"檀家 登録"_s, true);
    expect(u"入力された内容で檀家さんは更新されました。"_s, u"檀家 登録"_s);
    press(household, u"更新"_s);
    EXPECT_EQ(query(u"SELECT tbldnk_tel FROM tbl_danka ORDER BY tbldnk_no1"_s), u"090-3|03-8"_s);
    EXPECT_EQ(workplace->context.dnk_no1, 3);
    EXPECT_EQ(workplace->context.kak_zokunameg, QString());
}

TEST_F(HouseholdScreens, TypedDistrictsStayAsTypedAndMarksLeadTheKeyboard) {
    execute(u"INSERT INTO マスタ VALUES (2, 1, '東の地区', '東の地区')"_s);
    workplace->context.publishHousehold(3);
    open(household);
    auto& district = control(household, u"frm01_地区"_s);
    district.setFocus();
    type(household, u"frm01_地区"_s, QString());
    QInputMethodEvent typed;
    typed.setCommitString(u"東"_s);
    QApplication::sendEvent(&district, &typed);
    type(household, u"frm01_dankak"_s, QString());
    type(household, u"frm01_tel"_s, QString());
    expect(u"ﾃﾞｰﾀにｴﾗｰがあり登録出来ません。入力した内容をﾁｪｯｸしてください"_s, u"檀家 登録"_s);
    press(household, u"更新"_s);
    EXPECT_EQ(screen(household).focusWidget()->objectName(), u"frm01_dankak"_s);
    EXPECT_EQ(screen(household).tabOrder().front()->objectName(), u"frm01_dankak"_s);
    EXPECT_EQ(colour(household, u"frm01_tel"_s), QColor(255, 0, 0));
    EXPECT_EQ(colour(household, u"frm01_toshug"_s), QColor(0, 0, 0));
    type(household, u"frm01_dankak"_s, u"ヤマダ"_s);
    type(household, u"frm01_tel"_s, u"03"_s);
    answer(u"入力された内容で檀家さんを変更します。内容を確認して下さい。"_s, u"檀家 登録"_s, true);
    expect(u"入力された内容で檀家さんは更新されました。"_s, u"檀家 登録"_s);
    press(household, u"更新"_s);
    EXPECT_EQ(query(u"SELECT tbldnk_chiku FROM tbl_danka WHERE tbldnk_no1 = 3"_s), u"東"_s);
    EXPECT_EQ(query(u"SELECT マ_略称 FROM マスタ WHERE マ_区分 = 2"_s), u"東の地区|東"_s);
}

} // namespace
