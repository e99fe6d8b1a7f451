#include "support/screen_fixture.h"

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

using Program = ScreenFixture;

TEST_F(Program, MenuClearsTheRecordAndShowsFileAndDay) {
    workplace->context.dnk_no1 = 7;
    workplace->context.kak_kankeisha = u"残る"_s;
    open(u"メニュー"_s);
    EXPECT_EQ(workplace->context.dnk_no1, 0);
    EXPECT_EQ(workplace->context.kak_kankeisha, u"残る"_s);
    EXPECT_EQ(control<QLabel>(u"メニュー"_s, u"今日"_s).text(), u"令和8年11月22日"_s);
    EXPECT_EQ(control<QLabel>(u"メニュー"_s, u"登録簿"_s).text(), path(u"Hoshiren.mdb"_s));
    press(u"メニュー"_s, u"終了"_s);
    EXPECT_EQ(workplace->find(u"メニュー"_s), nullptr);
    QFile::remove(path(u"Hoshiren.mdb"_s));
    open(u"メニュー"_s);
    EXPECT_EQ(control<QLabel>(u"メニュー"_s, u"今日"_s).text(), u"2026/11/22"_s);
}

TEST_F(Program, AScreenIsOpenOnceAndComesForwardWithoutLoadingAgain) {
    open(u"メニュー"_s);
    press(u"メニュー"_s, u"マスター登録"_s);
    type(u"マスター登"_s, u"登録名称"_s, u"打ちかけ"_s);
    screen(u"マスター登"_s).showMinimized();
    press(u"メニュー"_s, u"マスター登録"_s);
    EXPECT_FALSE(screen(u"マスター登"_s).isMinimized());
    EXPECT_EQ(text(u"マスター登"_s, u"登録名称"_s), u"打ちかけ"_s);
    close(u"メニュー"_s);
    EXPECT_TRUE(screen(u"マスター登"_s).isVisible());
}

TEST_F(Program, TellsAFailureOfTheStoreUnderTheScreensTitle) {
    open(u"マスター登"_s);
    QFile::remove(path(u"Hoshiren.mdb"_s));
    expect(
        u"登録簿ファイル「%1」がありません。登録簿のある場所からプログラムを起動して下さい。\n\n（unable to open database file　コード 14）"_s
            .arg(path(u"Hoshiren.mdb"_s)),
        u"ｺｰﾄﾞﾏｽﾀｰ情報"_s);
    press(u"マスター登"_s, u"地区"_s);
}

TEST_F(Program, AModalScreenBlocksItsOpenerAndReportsItsEnd) {
    auto& opener = open(u"メニュー"_s);
    int ended = 0;
    // Open already: it is brought forward, modal from then on, and tells every opener that waits.
    auto& shown = open(u"マスター登"_s);
    for (int i = 0; i < 2; ++i)
        workplace->open(u"マスター登"_s, &opener, desk::Opening::modal, [&] { ++ended; });
    EXPECT_EQ(shown.windowModality(), Qt::WindowModal);
    EXPECT_TRUE(shown.isVisible());
    close(u"マスター登"_s);
    EXPECT_EQ(ended, 2);
}

// What every screen owes: a tab order that starts and ends where it should, and a form that survives being shown and
// read.
TEST_F(Program, EveryScreenKeepsThePromisesOfTheKit) {
    openEvery([&](ui::Screen& shown) {
        const auto& order = shown.tabOrder();
        ASSERT_FALSE(order.empty());
        EXPECT_EQ(order.back()->objectName(), u"終了"_s);
        QWidget* here = order.front();
        for (std::size_t i = 1; i < order.size(); ++i) {
            do
                here = here->nextInFocusChain();
            while (std::find(order.begin(), order.end(), here) == order.end());
            EXPECT_EQ(here, order[i]) << order[i]->objectName().toStdString();
        }

        const auto texts = [&] {
            QStringList all;
            for (const auto& binding : shown.bindings()) {
                const QVariant shownText = binding.widget->property("text");
                all << (shownText.isValid() ? shownText : binding.widget->property("currentText")).toString()
                    << binding.widget->property("checked").toString();
            }
            return all;
        };
        int number = 0;
        for (const auto& binding : shown.bindings()) {
            auto* edit = qobject_cast<QLineEdit*>(binding.widget);
            if (edit && !edit->isReadOnly())
                edit->setText(u"　値\uFA19 ㈱'\"%1"_s.arg(++number));
        }
        const QStringList before = texts();
        shown.readForm();
        shown.showForm();
        EXPECT_EQ(texts(), before);
    });
}

TEST_F(Program, EnterGoesOnAsTabDoesAndPressesButtons) {
    const QString name = u"マスター登"_s;
    open(name);
    const auto enter = [&](const QString& box) {
        control(name, box).setFocus();
        QTest::keyClick(&control(name, box), Qt::Key_Return);
        return screen(name).focusWidget()->objectName();
    };
    EXPECT_EQ(enter(u"登録NO"_s), u"登録名称"_s);
    expect(u"登録NOに正しく入力してください"_s, u"ｺｰﾄﾞﾏｽﾀｰ情報"_s);
    EXPECT_EQ(enter(u"更新"_s), u"登録NO"_s);
    // An option is chosen by the blank bar; Enter goes on from it.
    press(name, u"地区"_s);
    EXPECT_NE(enter(u"場所"_s), u"場所"_s);
    EXPECT_TRUE(control<QAbstractButton>(name, u"地区"_s).isChecked());
    // While the input method composes, Enter is its own.
    QInputMethodEvent composing(u"やまだ"_s, {});
    QApplication::sendEvent(&control(name, u"登録NO"_s), &composing);
    EXPECT_EQ(enter(u"登録NO"_s), u"登録NO"_s);
}

} // namespace
