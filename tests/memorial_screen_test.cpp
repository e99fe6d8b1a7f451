#include "support/screen_fixture.h"

#include <QDir>
#include <QPrintPreviewWidget>
#include <QPrinterInfo>
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
                "VALUES (7, '山田', '山田　二', '0')"_s);
        execute(
            u"INSERT INTO tbl_kakocho (tblkak_no, tblkak_dnknameg, tblkak_dnknamek, tblkak_zokunameg, "
            "tblkak_zokunamek, tblkak_mei_ymd) VALUES (7, '山田', 'ヤマダ', '山田　一', 'ヤマダ ハジメ', '2024-12-01')"_s);
        execute(u"INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_danknameg, tblhoy_zokunameg, tblhoy_kaiki_mei, "
                "tblhoy_kaiki_yymd) VALUES (7, '山田', '山田　一', '3回忌', '2026-12-01')"_s);
    }
    QString stored(const QString& fields) { return query(u"SELECT %1 FROM tbl_hohyo"_s.arg(fields)); }
};

// Notices of the coming year listed and printed, a booking entered, seen in the reservation book and recorded as held.
TEST_F(MemorialScreens, TheYearlyJob) {
    if (!QPrinterInfo::defaultPrinter().isNull())
        GTEST_SKIP() << "a printer is at hand: nothing is printed for a test";
    open(u"法要通"_s);
    press(u"法要通"_s, u"表示"_s);
    EXPECT_EQ(cell(u"法要通"_s, u"frm21_tbl"_s, 1, 2), u"山田　一"_s);
    press(u"法要通"_s, u"印刷プレビュー"_s);
    auto* preview = screen(u"法要通"_s).findChild<QDialog*>(u"宛名プレビュー"_s);
    ASSERT_NE(preview, nullptr);
    EXPECT_EQ(preview->findChild<QPrintPreviewWidget*>()->pageCount(), 1);
    preview->close();
    EXPECT_EQ(QDir(directory.path()).entryList({u"*.pdf"_s}).size(), 0);
    EXPECT_EQ(stored(u"tblhoy_tsuchi_s"_s), u"0"_s);
    expect(u"プリンターがないため、宛名をPDFファイルに書き出しました。\n"_s + path(u"宛名_20261122.pdf"_s),
           u"宛名印刷"_s);
    press(u"法要通"_s, u"通知"_s);
    EXPECT_TRUE(QFile::exists(path(u"宛名_20261122.pdf"_s)));
    EXPECT_EQ(stored(u"tblhoy_tsuchi_s, tblhoy_tsuchi_ymd"_s), u"1,2026-11-22"_s);

    workplace->context.publishHousehold(7);
    open(u"法要檀"_s);
    clickCell(u"法要檀"_s, u"frm21_tbl"_s, 1);
    press(u"法要檀"_s, u"個別照会"_s);
    EXPECT_EQ(text(u"法要明"_s, u"frm31_zoknamek"_s), u"ヤマダ ハジメ"_s);
    press(u"法要明"_s, u"予約日"_s);
    EXPECT_EQ(text(u"法要明"_s, u"予約YMD"_s), u"2026/12/01"_s);
    press(u"法要明"_s, u"frm31_pm"_s);
    type(u"法要明"_s, u"開始時"_s, u"25"_s);
    expect(u"予定時間に正しい数字を入力して下さい"_s, u"法要明細"_s);
    press(u"法要明"_s, u"更新"_s);
    EXPECT_EQ(colour(u"法要明"_s, u"開始時"_s), QColor(255, 0, 0));
    EXPECT_EQ(screen(u"法要明"_s).focusWidget()->objectName(), u"開始時"_s);
    type(u"法要明"_s, u"開始時"_s, u"１"_s);
    type(u"法要明"_s, u"frm31_法要場所"_s, u"本堂"_s);
    answer(u"入力された内容で法要を変更します。内容を確認して下さい。"_s, u"法要明細"_s, true);
    expect(u"入力された内容で法要は更新されました。"_s, u"法要明細"_s);
    press(u"法要明"_s, u"更新"_s);
    close(u"法要明"_s);
    EXPECT_EQ(cell(u"法要檀"_s, u"frm21_tbl"_s, 1, 4), u"予"_s);

    open(u"法要一"_s);
    press(u"法要一"_s, u"表示"_s);
    EXPECT_EQ(cell(u"法要一"_s, u"frm21_tbl"_s, 1, 1), u"PM 1：00"_s);

    clickCell(u"法要檀"_s, u"frm21_tbl"_s, 1);
    press(u"法要檀"_s, u"個別照会"_s);
    press(u"法要明"_s, u"実施日"_s);
    clickLine(u"法要明"_s, u"frm31_kankeisha"_s, u"山田　二"_s);
    type(u"法要明"_s, u"frm31_続柄"_s, u"甥"_s);
    type(u"法要明"_s, u"frm31_ofuse"_s, u"30000"_s);
    answer(u"入力された内容で法要を変更します。内容を確認して下さい。"_s, u"法要明細"_s, true);
    expect(u"入力された内容で法要は更新されました。"_s, u"法要明細"_s);
    press(u"法要明"_s, u"更新"_s);
    EXPECT_EQ(text(u"法要明"_s, u"frm31_ofuse"_s), u"30,000"_s);
    close(u"法要明"_s);
    EXPECT_EQ(cell(u"法要檀"_s, u"frm21_tbl"_s, 1, 4), u"済"_s);
    EXPECT_EQ(stored(u"tblhoy_kaiki_s, tblhoy_kaiki_jymd, tblhoy_kaiki_seshug, tblhoy_ofuse, tblhoy_tsuchi_s"_s),
              u"1,2026-12-01,山田　二,30000,1"_s);
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

TEST_F(MemorialScreens, AScreenLeftOpenKeepsItsDeceased) {
    workplace->context.publishHousehold(7);
    workplace->context.dnk_nameg = u"山田"_s;
    open(u"法要外"_s);
    clickLine(u"法要外"_s, u"frm31_zoknameg"_s, u"山田　一"_s);
    EXPECT_EQ(text(u"法要外"_s, u"frm31_zoknamek"_s), u"ヤマダ ハジメ"_s);
    workplace->context.publishHousehold(8); // another screen goes on to another household
    type(u"法要外"_s, u"frm31_hohyo_mei"_s, u"特別供養"_s);
    const std::pair<QString, QString> fields[] = {{u"予約年号"_s, u"令和"_s}, {u"予約年"_s, u"9"_s},
                                                  {u"予約月"_s, u"1"_s},      {u"予約日"_s, u"2"_s},
                                                  {u"開始時"_s, u"9"_s},      {u"frm31_法要場所"_s, u"本堂"_s}};
    for (const auto& [name, value] : fields)
        type(u"法要外"_s, name, value);
    answer(u"入力された内容で法要を登録します。内容を確認して下さい。"_s, u"法要・回忌外登録"_s, true);
    expect(u"指定された法要は登録されました。"_s, u"法要・回忌外登録"_s);
    press(u"法要外"_s, u"登録"_s);
    EXPECT_EQ(query(u"SELECT tblhoy_no, tblhoy_zokunameg FROM tbl_hohyo WHERE tblhoy_kaiki_mei = '特別供養'"_s),
              u"7,山田　一"_s);
}

} // namespace
