#include "support/screen_fixture.h"

using namespace Qt::StringLiterals;

namespace {

const QString title = u"ｺｰﾄﾞﾏｽﾀｰ情報"_s;
const QString screenName = u"マスター登"_s;

class MasterScreen : public ScreenFixture {
  protected:
    MasterScreen() { open(screenName); }
    void fill(const QString& no, const QString& full, const QString& brief) {
        type(screenName, u"登録NO"_s, no);
        type(screenName, u"登録名称"_s, full);
        type(screenName, u"登録略称"_s, brief);
    }
};

TEST_F(MasterScreen, ListsACategoryAndShowsTheEntryClicked) {
    clickCell(screenName, u"マスタ一"_s, 19, 0);
    EXPECT_EQ(text(screenName, u"登録NO"_s) + text(screenName, u"登録名称"_s) + text(screenName, u"登録略称"_s),
              u"19長男の妻嫁"_s);
    press(screenName, u"場所"_s);
    EXPECT_EQ(text(screenName, u"登録NO"_s), QString());
    EXPECT_EQ(cell(screenName, u"マスタ一"_s, 1, 2), u"本堂"_s);
    expect(u"指示位置が有効範囲外です。"_s, title);
    clickCell(screenName, u"マスタ一"_s, 8, 1);
    execute(u"DELETE FROM マスタ WHERE マ_区分 = 3 AND マ_NO = 2"_s);
    expect(u"指定された名称は登録されていません。"_s, title);
    clickCell(screenName, u"マスタ一"_s, 2, 1);
}

TEST_F(MasterScreen, SavesChangesAndDeletes) {
    press(screenName, u"地区"_s);
    fill(u"abc"_s, QString(), QString());
    expect(u"登録NOに正しく入力してください"_s, title);
    press(screenName, u"更新"_s);
    for (const QString& name : {u"登録NO"_s, u"登録名称"_s, u"登録略称"_s})
        EXPECT_EQ(colour(screenName, name), QColor(255, 0, 0));

    fill(u"５"_s, u"東の地区'"_s, u"東"_s);
    answer(u"入力内容で更新します。"_s, title, false);
    press(screenName, u"更新"_s);
    for (const QString& brief : {u"東"_s, u"東部"_s}) {
        type(screenName, u"登録略称"_s, brief);
        answer(u"入力内容で更新します。"_s, title, true);
        expect(u"名称は更新(登録)されました。"_s, title);
        press(screenName, u"更新"_s);
        EXPECT_EQ(query(u"SELECT マ_NO, マ_名称, マ_略称 FROM マスタ WHERE マ_区分 = 2"_s), u"5,東の地区',"_s + brief);
    }
    for (const auto& done : {u"表示内容は削除されました。"_s, u"指定された名称は登録されていません。"_s}) {
        answer(u"入力内容を削除します。"_s, title, true);
        expect(done, title);
        press(screenName, u"削除"_s);
        EXPECT_EQ(cell(screenName, u"マスタ一"_s, 1, 1), QString());
    }
}

TEST_F(MasterScreen, AnEntryChangedElsewhereIsReadAgain) {
    press(screenName, u"場所"_s);
    clickCell(screenName, u"マスタ一"_s, 2, 0);
    execute(u"UPDATE マスタ SET マ_名称 = '新しい名' WHERE マ_区分 = 3 AND マ_NO = 2"_s);
    QEvent toTheFront(QEvent::WindowActivate);
    QApplication::sendEvent(&screen(screenName), &toTheFront);
    EXPECT_EQ(control<QLabel>(screenName, u"お知らせ文"_s).text(), u"この記録はほかの画面で変更されています。"_s);
    press(screenName, u"読み直す"_s);
    EXPECT_EQ(text(screenName, u"登録NO"_s) + text(screenName, u"登録名称"_s), u"2新しい名"_s);
    EXPECT_EQ(cell(screenName, u"マスタ一"_s, 2, 3), u"新しい名"_s);
    answer(u"入力内容を削除します。"_s, title, true);
    expect(u"表示内容は削除されました。"_s, title);
    press(screenName, u"削除"_s);
}

} // namespace
