#include "transfer/transfer_screen.h"

#include "transfer/grave_transfer_rules.h"
#include "transfer/household_transfer_rules.h"
#include "ui/file_picker.h"

using namespace Qt::StringLiterals;

namespace transfer {

namespace {

ui::FilePickerTexts outputTexts(const QStringList& moreHints = {}) {
    return {.frame = u"Frame2"_s,
            .title = u"CSV出力ファイル"_s,
            .drive = u"OUTDrive"_s,
            .folders = u"OUTDir"_s,
            .files = u"OUTFile"_s,
            .name = u"出力File"_s,
            .browse = u"OUT参照"_s,
            .label = u"出力ファイル名"_s,
            .hints = QStringList(u"出力ファイル名を指定又は入力して下さい"_s) + moreHints,
            .written = true};
}

void layOutButtons(ui::Layout& layout, ui::Operation run) {
    layout.mainAction(u"確定"_s, u"実行"_s, std::move(run)).closing().finish();
}

template <class Form>
std::unique_ptr<ui::Screen> exportScreen(ui::Workplace& workplace, const QString& name,
                                         void (*run)(Form&, desk::ScreenContext&, desk::Desk&)) {
    auto screen = std::make_unique<ui::FormScreen<Form>>(workplace, name, name, name);
    ui::Layout layout(*screen);
    desk::FilePicker& out = screen->form().OUT;
    ui::layOutFilePicker(layout, *screen, out, outputTexts());
    layOutButtons(layout, screen->run(run));
    screen->onOpen([&out] { out.start(); });
    return screen;
}

template <class Form> void layOutFiles(ui::Layout& layout, ui::FormScreen<Form>& screen) {
    Form& form = screen.form();
    ui::layOutFilePicker(layout, screen, form.IN,
                         {.frame = u"Frame1"_s,
                          .title = u"CSV入力ファイル"_s,
                          .drive = u"INDrive"_s,
                          .folders = u"INDir"_s,
                          .files = u"INFile"_s,
                          .name = u"入力File"_s,
                          .browse = u"IN参照"_s,
                          .label = u"入力ファイル名"_s,
                          .hints = {u"入力ファイル名を指定又は入力して下さい"_s}});
    layout.beside();
    ui::layOutFilePicker(layout, screen, form.OUT, outputTexts({u"エラー内容を出力します"_s}));
    screen.onOpen([&form] {
        form.IN.start();
        form.OUT.start();
    });
}

} // namespace

std::unique_ptr<ui::Screen> 檀家出力(ui::Workplace& workplace) {
    return exportScreen(workplace, u"檀家出力"_s, runHouseholdExport);
}

std::unique_ptr<ui::Screen> お墓出力(ui::Workplace& workplace) {
    return exportScreen(workplace, u"お墓出力"_s, runGraveExport);
}

std::unique_ptr<ui::Screen> 檀家一括(ui::Workplace& workplace) {
    auto screen =
        std::make_unique<ui::FormScreen<檀家一括Form>>(workplace, u"檀家一括"_s, u"檀家一括登録"_s, u"檀家一括登録"_s);
    auto& form = screen->form();
    ui::Layout layout(*screen);
    layOutFiles(layout, *screen);
    layout.frame()
        .row(u"檀家番号"_s)
        .check(HOSHIREN_CONTROL(form, 自動), u"自動採番"_s)
        .check(HOSHIREN_CONTROL(form, 入力), u"檀家番号入力"_s)
        .row(u"登録方法"_s)
        .check(HOSHIREN_CONTROL(form, 更新), u"同一データがあれば更新する"_s)
        .check(HOSHIREN_CONTROL(form, エラー), u"同一データがあればエラーとする"_s);
    layOutButtons(layout, screen->run(runHouseholdImport));
    return screen;
}

std::unique_ptr<ui::Screen> お墓一括(ui::Workplace& workplace) {
    auto screen =
        std::make_unique<ui::FormScreen<お墓一括Form>>(workplace, u"お墓一括"_s, u"お墓一括登録"_s, u"お墓一括登録"_s);
    auto& form = screen->form();
    ui::Layout layout(*screen);
    layOutFiles(layout, *screen);
    layout.frame()
        .row(u"登録方法"_s)
        .check(HOSHIREN_CONTROL(form, 削除), u"削除後に登録する"_s)
        .check(HOSHIREN_CONTROL(form, 更新), u"同一データがあれば更新する"_s)
        .check(HOSHIREN_CONTROL(form, エラー), u"同一データがあればエラーとする"_s);
    layOutButtons(layout, screen->run(runGraveImport));
    return screen;
}

} // namespace transfer
