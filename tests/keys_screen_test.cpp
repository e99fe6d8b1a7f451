#include "support/screen_fixture.h"
#include "ui/key_button.h"
#include "ui/notice_bar.h"

#include <QApplication>
#include <QShortcut>
#include <QtTest>

#include <map>
#include <set>

using namespace Qt::StringLiterals;

namespace {

class Keys : public ScreenFixture {
  protected:
    // As a key of the keyboard goes: to whatever has it.
    void key(const QString& name, Qt::Key pressed, Qt::KeyboardModifiers with = {}) {
        screen(name).activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&screen(name)));
        QWidget* there = screen(name).focusWidget();
        QTest::keyClick(there ? there : &screen(name), pressed, with);
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
};

// Whether it looks other than a button without keys.
bool isDrawn(ui::KeyButton& button) {
    QPushButton plain(button.text());
    plain.setFont(button.font());
    plain.setPalette(button.palette());
    plain.setAutoDefault(false);
    plain.resize(button.size());
    const QImage with = button.grab().toImage();
    const QImage without = plain.grab().toImage();
    int other = 0;
    for (int x = with.width() * 2 / 3; x < with.width(); ++x)
        for (int y = 0; y < with.height(); ++y)
            other += with.pixel(x, y) != without.pixel(x, y);
    return other > 20;
}

TEST_F(Keys, EachIsDrawnUniqueAndTheSameOnEveryScreen) {
    const QStringList destroying = u"削除 檀家抹消 廃棄 予約取消 通知取消 実行 全部戻す"_s.split(u' ');
    std::map<QString, QString> keysOf; // by caption
    openEvery([&](ui::Screen& shown) {
        std::set<QString> used{u"F2"_s, u"F3"_s};
        for (const auto* button : shown.bar()->findChildren<QPushButton*>())
            used.insert(button->shortcut().toString());
        for (auto* button : control(shown.objectName(), u"終了"_s).parentWidget()->findChildren<QPushButton*>())
            EXPECT_TRUE(std::ranges::count(shown.keyButtons(), button)) << button->objectName().toStdString();
        EXPECT_GE(shown.keyButtons().size(), shown.objectName() == u"メニュー"_s ? 16U : 1U);
        for (ui::KeyButton* button : shown.keyButtons()) {
            SCOPED_TRACE(button->objectName().toStdString());
            const auto* shortcut = button->findChild<QShortcut*>();
            if (button->text() == u"廃棄"_s) { // it asks nothing
                EXPECT_FALSE(shortcut);
                continue;
            }
            ASSERT_TRUE(shortcut && !button->character().isNull());
            EXPECT_FALSE(button->text().contains(u'&'));
            for (const QKeySequence& one : shortcut->keys()) {
                EXPECT_TRUE(used.insert(one.toString()).second) << one.toString().toStdString();
                EXPECT_TRUE(button->accessibleDescription().contains(one.toString()));
            }
            const bool hasKey = !button->key().isEmpty();
            EXPECT_EQ(isDrawn(*button), hasKey);
            EXPECT_FALSE(hasKey && destroying.contains(button->text()));
            const QString keys = button->accessibleDescription();
            EXPECT_TRUE(!button->isKnown() || keysOf.try_emplace(button->text(), keys).first->second == keys);
            button->showCharacter(true);
            EXPECT_EQ(button->badge(), QString(button->character()));
            EXPECT_TRUE(isDrawn(*button));
        }
    });
}

TEST_F(Keys, DoWhatAClickDoes) {
    const QString list = u"法要一"_s;
    open(list);
    control(list, u"frm02_to"_s).setFocus();
    type(list, u"frm02_to"_s, u"あした"_s);
    // The box is left first; what is wrong with it keeps the list from being shown.
    expect(u"検索終了日ｴﾗｰです終了を再度入力して下さい"_s, u"法要 予定"_s);
    key(list, Qt::Key_F5);
    allShown();
    key(list, Qt::Key_J, Qt::AltModifier);
    EXPECT_EQ(screen(list).focusWidget()->objectName(), u"前ページ"_s);

    const QString name = u"檀家登"_s;
    open(name);
    auto& box = control(name, u"frm01_dankag"_s);
    box.setFocus();
    // While the input method composes, while it is held down, while the button is disabled: nothing.
    for (const QString& composed : {u"やまだ"_s, u""_s}) {
        QInputMethodEvent composing(composed, {});
        QApplication::sendEvent(&box, &composing);
        control(name, u"登録"_s).setEnabled(!composed.isEmpty());
        key(name, Qt::Key_F9);
        QTest::simulateEvent(&box, true, Qt::Key_Escape, {}, {}, true);
    }
    control(name, u"登録"_s).setEnabled(true);
    expect(u"ﾃﾞｰﾀにｴﾗｰがあり登録出来ません。入力した内容をﾁｪｯｸしてください"_s, u"檀家 登録"_s);
    key(name, Qt::Key_F9);
    QTest::keyPress(&box, Qt::Key_Alt);
    EXPECT_EQ(screen(name).keyButtons().back()->badge(), u"X"_s);
    QTest::keyRelease(&box, Qt::Key_Alt);
    EXPECT_EQ(screen(name).keyButtons().back()->badge(), u"Esc"_s);
}

TEST_F(Keys, EscapeEndsWhatIsInFrontAndLosesNothing) {
    const QString menu = u"メニュー"_s;
    const QString name = u"檀家登"_s;
    open(menu);
    open(name);
    auto& district = control<QComboBox>(name, u"frm01_地区"_s);
    type(name, u"frm01_地区"_s, u"東"_s);
    district.addItem(u"東"_s);
    district.showPopup();
    QTest::keyClick(district.view(), Qt::Key_Escape);
    ASSERT_TRUE(workplace->find(name) && !district.view()->isVisible());
    key(name, Qt::Key_Escape);
    EXPECT_EQ(workplace->find(name), nullptr);

    auto& search = control<QLineEdit>(menu, u"さがす"_s);
    search.setEnabled(true);
    search.setFocus();
    search.setText(u"山田"_s);
    key(menu, Qt::Key_Escape);
    EXPECT_EQ(search.text(), QString());
    // The last window with an unsaved input.
    for (const bool yes : {false, true}) {
        ASSERT_TRUE(workplace->find(menu));
        answer(u"保存していない入力があります。\n終了すると消えます。終了しますか？"_s, menu, yes);
        key(menu, Qt::Key_Escape);
    }
    EXPECT_EQ(workplace->find(menu), nullptr);
}

} // namespace
