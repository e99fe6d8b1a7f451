#include "support/screen_fixture.h"

using namespace Qt::StringLiterals;

namespace {

const QString title = u"年号登録"_s;
const QString screenName = u"年号登"_s;

using EraScreen = ScreenFixture;

TEST_F(EraScreen, AnEraChangedElsewhereIsReadAgain) {
    open(screenName);
    type(screenName, u"fnen_nengo"_s, u"平成"_s);
    press(screenName, u"西暦照会"_s);
    execute(u"UPDATE tbl_nengo SET tblnen_enen = 2020 WHERE tblnen_nengo = '平成'"_s);
    QEvent toTheFront(QEvent::WindowActivate);
    QApplication::sendEvent(&screen(screenName), &toTheFront);
    EXPECT_EQ(control<QLabel>(screenName, u"お知らせ文"_s).text(), u"この記録はほかの画面で変更されています。"_s);
    press(screenName, u"読み直す"_s);
    EXPECT_EQ(text(screenName, u"fnen_nengo"_s) + text(screenName, u"fnen_enen"_s), u"平成2020"_s);
    answer(u"入力ﾃﾞｰﾀで更新します。内容を確認して下さい。"_s, title, true);
    expect(u"指定された年号は更新されました。"_s, title);
    press(screenName, u"更新"_s);
}

// The year of a look-up stands in a box of the record: it is no input that waits to be saved, and the end year is.
TEST_F(EraScreen, TheYearAskedForIsNoUnsavedInput) {
    open(screenName);
    for (const QString& year : {u"1990"_s, u"1930"_s}) {
        type(screenName, u"fnen_snen"_s, year);
        press(screenName, u"年号照会"_s);
    }
    EXPECT_TRUE(workplace->drafts.all().empty());
    type(screenName, u"fnen_enen"_s, u"1999"_s);
    type(screenName, u"fnen_snen"_s, u"1990"_s);
    press(screenName, u"年号照会"_s);
    ASSERT_EQ(workplace->drafts.all().size(), 1U);
    EXPECT_EQ(workplace->drafts.all()[0].typed, QStringList{u"fnen_enen"_s});
    type(screenName, u"fnen_snen"_s, u"1980"_s);
    close(screenName);
    EXPECT_EQ(workplace->drafts.all().size(), 2U) << "left without a look-up it may be a correction";
}

} // namespace
