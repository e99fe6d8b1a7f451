#include "support/screen_fixture.h"
#include "ui/notice_bar.h"

#include <QLabel>
#include <QTabWidget>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

const QString list = u"檀家一覧"_s;
const QString household = u"檀家登"_s;
const QString title = u"檀家 登録"_s;

class HouseholdScreens : public ScreenFixture {
  protected:
    HouseholdScreens() {
        store::Database database;
        store::Table households(database, store::idxdnk_no);
        households.insert(sampleHousehold(3));
        households.insert(sampleHousehold(8));
        execute(uR"(
            UPDATE tbl_danka SET tbldnk_tel = '03-' || tbldnk_no1;
            INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_nameg, tblkzk_zokugara, tblkzk_seishikbn,
              tblkzk_sei_ymd, tblkzk_yubin, tblkzk_jusho1) VALUES
              (3, '山田', '太郎', '本人', '0', '1950-01-01', '', ''),
              (3, '山田', '次郎', '長男', '0', '1980-01-01', '200-0002', '川端2');
            INSERT INTO tbl_kakocho (tblkak_no, tblkak_dnknameg, tblkak_zokunameg, tblkak_mei_ymd) VALUES
              (3, '山田', 'ハナ', '2000-01-01'))"_s);
        workplace->context.publishHousehold(3);
        workplace->context.dnk_nameg = u"山田"_s;
    }
    void change() {
        answer(u"入力された内容で檀家さんを変更します。内容を確認して下さい。"_s, title, true);
        expect(u"入力された内容で檀家さんは更新されました。"_s, title);
        press(household, u"更新"_s);
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
    press(list, u"照会"_s);
    EXPECT_EQ(text(household, u"frm01_no"_s) + text(household, u"frm01_tel"_s), u"803-8"_s);
}

// Another screen has gone on to another household meanwhile.
TEST_F(HouseholdScreens, AScreenLeftOpenWorksOnItsOwnHousehold) {
    for (const QString& name : {household, u"家族一"_s, u"過去一"_s})
        open(name);
    auto& context = workplace->context;
    context.publishHousehold(8);
    context.nameDeceased(u"他"_s, u"一郎"_s);
    type(household, u"frm01_tel"_s, u"090-3"_s);
    change();
    EXPECT_EQ(query(u"SELECT tbldnk_tel FROM tbl_danka ORDER BY tbldnk_no1"_s), u"090-3|03-8"_s);
    EXPECT_EQ(QString::number(context.dnk_no1) + context.kak_zokunameg, u"3"_s);

    context.publishHousehold(8);
    press(u"家族一"_s, u"前ページ"_s);
    EXPECT_EQ(cell(u"家族一"_s, u"frm21_tbl"_s, 1, 1), u"太郎"_s);
    context.publishHousehold(8);
    clickCell(u"過去一"_s, u"frm21_tbl"_s, 1, 0);
    EXPECT_EQ(QString::number(context.dnk_no1) + context.kak_zokunameg, u"3ハナ"_s);
}

TEST_F(HouseholdScreens, TypedDistrictsStayAsTypedAndMarksLeadTheKeyboard) {
    execute(u"INSERT INTO マスタ VALUES (2, 1, '東の地区', '東の地区')"_s);
    open(household);
    auto& district = control(household, u"frm01_地区"_s);
    district.setFocus();
    QInputMethodEvent typed;
    typed.setCommitString(u"東"_s);
    QApplication::sendEvent(&district, &typed);
    type(household, u"frm01_dankak"_s, QString());
    type(household, u"frm01_tel"_s, QString());
    expect(u"ﾃﾞｰﾀにｴﾗｰがあり登録出来ません。入力した内容をﾁｪｯｸしてください"_s, title);
    press(household, u"更新"_s);
    EXPECT_EQ(screen(household).focusWidget()->objectName(), u"frm01_dankak"_s);
    EXPECT_EQ(screen(household).tabOrder().front()->objectName(), u"frm01_dankak"_s);
    EXPECT_EQ(colour(household, u"frm01_tel"_s), QColor(255, 0, 0));
    EXPECT_EQ(colour(household, u"frm01_toshug"_s), QColor(0, 0, 0));
    type(household, u"frm01_dankak"_s, u"ヤマダ"_s);
    type(household, u"frm01_tel"_s, u"03"_s);
    change();
    EXPECT_EQ(query(u"SELECT tbldnk_chiku FROM tbl_danka WHERE tbldnk_no1 = 3"_s), u"東"_s);
    EXPECT_EQ(query(u"SELECT マ_略称 FROM マスタ WHERE マ_区分 = 2"_s), u"東の地区|東"_s);
}

TEST_F(HouseholdScreens, TheSameHouseholdIsToldWhileTheQuestionStands) {
    open(household);
    const QString told = u"同じ檀家名と電話番号の檀家があります：3 山田 山田　太郎"_s;
    const auto said = [&] {
        return screen(household).bar()->isVisible() ? screen(household).bar()->text() : QString();
    };
    const auto refuse = [&](const QString& name, const QString& telephone, const QString& hint) {
        type(household, u"frm01_dankag"_s, name);
        type(household, u"frm01_tel"_s, telephone);
        EXPECT_EQ(said(), QString()); // what is typed ends what was told
        answer(u"入力された内容で檀家さんを登録します。内容を確認して下さい。"_s, title, false);
        QTimer::singleShot(0, &screen(household), [&] { EXPECT_EQ(said(), hint); });
        press(household, u"登録"_s);
        EXPECT_EQ(said(), hint);
    };
    refuse(u"山田"_s, u"03-３"_s, told);
    refuse(u"山田"_s, u"03-33"_s, {});
    refuse(u"山\uFA19"_s, u"03-3"_s, {});
    refuse(u"山田"_s, u"(03)3"_s, told);
    press(household, u"同じ檀家"_s);
    EXPECT_EQ(text(household, u"frm01_no"_s), u"3"_s);
}

TEST_F(HouseholdScreens, TheBarOffersWhatAMoveLeavesBehind) {
    execute(u"UPDATE tbl_kazoku SET tblkzk_tel = '03-3'"_s);
    open(household);
    type(household, u"frm01_tel"_s, u"045"_s);
    change();
    EXPECT_EQ(control<QAbstractButton>(household, u"家族も直す"_s).text(), u"家族2人も直す(&F)"_s);
    press(household, u"家族も直す"_s);
    EXPECT_EQ(query(u"SELECT DISTINCT tblkzk_tel FROM tbl_kazoku"_s), u"045"_s);
    EXPECT_EQ(control<QLabel>(household, u"お知らせ文"_s).text(), u"家族2人の住所・電話番号を直しました"_s);
    EXPECT_EQ(screen(household).findChild<QAbstractButton*>(u"家族も直す"_s), nullptr);
}

TEST_F(HouseholdScreens, ANewHeadIsChosenWithHisRelationship) {
    open(u"代替当"_s);
    EXPECT_EQ(text(u"代替当"_s, u"frm01_jyusho1"_s), u"寺前1丁目2-3"_s);
    // The mouse slips from the first line to the second: the boxes follow the line that is shown as chosen.
    const auto& heads = control<QListWidget>(u"代替当"_s, u"frm01_toshug"_s);
    const auto middle = [&heads](int line) { return heads.visualItemRect(heads.item(line)).center(); };
    QTest::mousePress(heads.viewport(), Qt::LeftButton, {}, middle(0));
    QMouseEvent slip(QEvent::MouseMove, middle(1), heads.viewport()->mapToGlobal(middle(1)), Qt::NoButton,
                     Qt::LeftButton, {});
    QApplication::sendEvent(heads.viewport(), &slip);
    QTest::mouseRelease(heads.viewport(), Qt::LeftButton, {}, middle(1));
    ASSERT_EQ(heads.currentItem()->text(), u"次郎"_s);
    EXPECT_EQ(control<QListWidget>(u"代替当"_s, u"frm01_tsh_zkgr"_s).currentRow(), 1);
    EXPECT_EQ(text(u"代替当"_s, u"frm01_jyusho1"_s), u"川端2"_s);
    const auto ground = [this](const QString& box) {
        return control(u"代替当"_s, box).palette().color(QPalette::Base);
    };
    EXPECT_NE(ground(u"frm01_jyusho1"_s), ground(u"frm01_dankag"_s));
    EXPECT_TRUE(
        control<QLabel>(u"代替当"_s, u"檀家との違い"_s).text().contains(u"：カナ、郵便番号、住所１、電話番号"_s));
    type(u"代替当"_s, u"frm01_jyusho1"_s, u"寺前1丁目2-3"_s);
    EXPECT_EQ(ground(u"frm01_jyusho1"_s), ground(u"frm01_dankag"_s));
    type(u"代替当"_s, u"frm01_jyusho1"_s, u"川端2"_s);
    press(u"代替当"_s, u"家族一覧"_s);
    EXPECT_EQ(text(u"家族一"_s, u"frm12_jyusho1"_s), u"川端2"_s);
}

} // namespace
