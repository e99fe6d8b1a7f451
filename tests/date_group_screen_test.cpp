#include "support/screen_fixture.h"

#include <QLabel>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

const QString family = u"家族登"_s;
const QString detail = u"法要明"_s;

class DateGroups : public ScreenFixture {
  protected:
    DateGroups() {
        store::Database database;
        store::Table(database, store::idxdnk_no).insert(sampleHousehold(7));
        workplace->context.publishHousehold(7);
    }
    QString boxes() {
        QStringList all;
        for (const auto& box : {u"生年元号"_s, u"生年"_s, u"生年月"_s, u"生年日"_s, u"生年日YMD"_s})
            all << text(family, box);
        return all.join(u'|');
    }
    QString told(const QString& screenName, const QString& label) { return control<QLabel>(screenName, label).text(); }
};

TEST_F(DateGroups, ASpokenDateIsToldWhileItIsTypedAndSpreadWhenItsBoxIsLeft) {
    ASSERT_TRUE(QTest::qWaitForWindowActive(&open(family)));
    auto& era = control(family, u"生年元号"_s);
    // typed; told; boxes after the box was left
    const std::tuple<QString, QString, QString> cases[] = {
        {u"令和8年11月31日"_s, {}, u"令和8年11月31日||||"_s},
        {u"昭20.8"_s, {}, u"昭20.8||||"_s},
        {u"8.11.20"_s, u"2026/11/20（金） 満0歳"_s, u"令和|8|11|20|"_s},
        {u"昭20.8.15"_s, u"1945/08/15（水） 満81歳"_s, u"昭和|20|8|15|"_s},
    };
    for (const auto& [typed, told_, spread] : cases) {
        era.setFocus();
        type(family, u"生年元号"_s, typed);
        EXPECT_EQ(told(family, u"生年元号曜日"_s), told_);
        QTest::keyClick(&era, Qt::Key_Return);
        EXPECT_EQ(screen(family).focusWidget()->objectName(), u"生年"_s);
        QTRY_COMPARE(boxes(), spread);
    }
    type(family, u"生年日"_s, u"16"_s);
    EXPECT_EQ(told(family, u"生年元号曜日"_s), u"1945/08/16（木） 満81歳"_s);

    // Enter passes 今日 by; its key and its button do not ask where the keyboard is.
    control(family, u"生年日"_s).setFocus();
    QTest::keyClick(&control(family, u"生年日"_s), Qt::Key_Return);
    EXPECT_EQ(boxes(), u"昭和|20|8|16|"_s);
    QTest::keyClick(&control(family, u"生年月"_s), Qt::Key_F2);
    EXPECT_EQ(boxes(), u"令和|8|11|22|"_s);
    type(family, u"生年元号"_s, u"S20.8.15"_s);
    press(family, u"生年元号今日"_s);
    EXPECT_EQ(boxes(), u"令和|8|11|22|"_s);

    // A button pressed without leaving the box finds the date spread; the check alone fills the Western box.
    type(family, u"生年元号"_s, u"20200229"_s);
    type(family, u"frm12_nameg"_s, u"山田　三"_s);
    type(family, u"frm12_namek"_s, u"ヤマダ ミ"_s);
    type(family, u"frm12_続柄"_s, u"子"_s);
    answer(u"入力された内容で家族の登録をします。内容を確認して下さい。"_s, u"家族登録"_s, true);
    expect(u"入力された内容で家族は登録されました。"_s, u"家族登録"_s);
    press(family, u"登録"_s);
    EXPECT_EQ(boxes(), u"令和|2|2|29|2020/02/29"_s);
    EXPECT_EQ(query(u"SELECT tblkzk_sei_gname, tblkzk_sei_gyy, tblkzk_sei_ymd FROM tbl_kazoku"_s),
              u"令和,2,2020-02-29"_s);
}

TEST_F(DateGroups, ABookingMeetsOthersAndIsTakenBackWithTwoPresses) {
    execute(
        u"INSERT INTO tbl_kakocho (tblkak_no, tblkak_dnknameg, tblkak_dnknamek, tblkak_zokunameg, tblkak_mei_ymd) "
        "VALUES (7, '山田', 'ヤマダ', '山田　一', '2024-12-01'); "
        "INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_danknameg, tblhoy_zokunameg, tblhoy_kaiki_mei, tblhoy_kaiki_yymd, "
        "tblhoy_kaiki_rs, tblhoy_kaiki_rymd, tblhoy_kaiki_ampm, tblhoy_kaiki_hour, tblhoy_kaiki_basho) VALUES "
        "(7, '山田', '山田　一', '3回忌', '2026-12-01', 1, '2026-12-06', '1', 10, '本堂'), "
        "(7, '山田', '山田　花', '1周忌', '2026-12-02', 1, '2026-12-05', '1', 11, '墓前')"_s);
    const QString book = u"法要一"_s;
    open(book);
    press(book, u"表示"_s);
    EXPECT_EQ(cell(book, u"frm21_tbl"_s, 2, 13), u"日"_s);
    auto& grid = control<QTableView>(book, u"frm21_tbl"_s);
    const QPoint line = grid.visualRect(grid.model()->index(1, 0)).center();
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, line);
    QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, line);
    QTRY_COMPARE(text(detail, u"frm31_hohyo_mei"_s), u"3回忌"_s);

    EXPECT_EQ(told(detail, u"予約状況"_s), u"この日にほかの予約はありません"_s);
    type(detail, u"予約日付"_s, u"5"_s);
    EXPECT_EQ(told(detail, u"予約状況"_s), u"この日のほかの予約 1件\n・AM 11：00 山田 山田　花（1周忌） 墓前"_s);
    type(detail, u"開始分"_s, u"30"_s);
    EXPECT_TRUE(told(detail, u"予約状況"_s).contains(u"【重なり】AM 11：00"_s));
    press(detail, u"frm31_pm"_s);
    EXPECT_FALSE(told(detail, u"予約状況"_s).contains(u"【重なり】"_s));

    // What was typed besides is not saved with it, and not lost.
    type(detail, u"frm31_hoybikou"_s, u"書きかけ"_s);
    answer(u"この法要の予約を取り消しますか？"_s, u"法要明細"_s, true);
    press(detail, u"予約取消"_s);
    EXPECT_EQ(query(u"SELECT tblhoy_kaiki_rs, tblhoy_kaiki_rymd, tblhoy_kaiki_basho, tblhoy_bikou FROM tbl_hohyo "
                    "WHERE tblhoy_zokunameg = '山田　一'"_s),
              u"0,NULL,本堂,NULL"_s);
    EXPECT_EQ(text(detail, u"予約年号"_s) + text(detail, u"開始時"_s) + text(detail, u"frm31_hoybikou"_s), QString());
    press(detail, u"戻す"_s);
    EXPECT_EQ(text(detail, u"frm31_hoybikou"_s), u"書きかけ"_s);
    close(detail);
    EXPECT_EQ(cell(book, u"frm21_tbl"_s, 1, 4) + cell(book, u"frm21_tbl"_s, 2, 4), u"山田　花"_s);
}

} // namespace
