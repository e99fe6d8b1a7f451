#include "app/settings_screen.h"

#include "desk/user_settings.h"
#include "ui/layout.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace app {

namespace {

struct 設定Form {
    desk::Option 標準;
    desk::Option 大;
    desk::Option 特大;
};

void showSize(設定Form& form) {
    const ui::TextSize size = ui::textSize();
    form.標準.chosen = size == ui::TextSize::standard;
    form.大.chosen = size == ui::TextSize::large;
    form.特大.chosen = size == ui::TextSize::largest;
}

ui::TextSize chosenSize(const 設定Form& form) {
    if (form.特大.chosen)
        return ui::TextSize::largest;
    return form.大.chosen ? ui::TextSize::large : ui::TextSize::standard;
}

QString notKept(const QString& what) {
    return u"%1、次に起動するときまでは残せません。設定のファイル「%2」に書き込めるか確認して下さい。"_s.arg(
        what, QDir::toNativeSeparators(desk::userSettings().fileName()));
}

} // namespace

std::unique_ptr<ui::Screen> 設定(ui::Workplace& workplace) {
    auto screen = std::make_unique<ui::FormScreen<設定Form>>(workplace, u"設定"_s, u"設定"_s, u"設定"_s);
    auto* raw = screen.get();
    auto& form = screen->form();
    const ui::Operation choose = [raw, &form] {
        if (!raw->workplace().chooseTextSize(chosenSize(form)))
            raw->desk().inform(notKept(u"文字の大きさを変えましたが"_s));
    };
    const ui::Operation reset = [raw] {
        raw->desk().inform(raw->workplace().resetWindows() ? u"窓の大きさと列の幅を、はじめの状態に戻しました。"_s
                                                           : notKept(u"窓の大きさと列の幅を戻しましたが"_s));
    };
    ui::Layout layout(*screen);
    layout.frame().row().options(u"文字の大きさ"_s, u"文字の大きさ"_s,
                                 {{HOSHIREN_CONTROL(form, 標準), u"標準"_s},
                                  {HOSHIREN_CONTROL(form, 大), u"大"_s},
                                  {HOSHIREN_CONTROL(form, 特大), u"特大"_s}},
                                 choose);
    layout.row().note(u"選ぶと、すぐに変わります。印刷の文字は変わりません。"_s);
    layout.frame(u"窓枠"_s, u"窓の大きさと列の幅"_s)
        .row()
        .note(u"変えた大きさは、次に開いたときも同じです。"_s)
        .row()
        .button(u"窓を戻す"_s, u"窓を戻す"_s, reset, u"すべての画面を、はじめの大きさと列の幅に戻します"_s);
    layout.closing().finish();
    screen->onOpen([&form] { showSize(form); });
    return screen;
}

} // namespace app
