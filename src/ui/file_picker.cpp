#include "ui/file_picker.h"

#include <QFileDialog>
#include <QListWidget>

using namespace Qt::StringLiterals;

namespace ui {

namespace {

constexpr int listWidth = 14;
constexpr int lines = 9;

void browse(Screen& screen, desk::FilePicker& value, const FilePickerTexts& texts) {
    const QString filter = u"CSV (*.csv);;すべてのファイル (*)"_s;
    const QString path = texts.written ? QFileDialog::getSaveFileName(&screen, texts.label, value.path(), filter)
                                       : QFileDialog::getOpenFileName(&screen, texts.label, value.folder(), filter);
    if (!path.isEmpty())
        value.take(path);
}

} // namespace

void layOutFilePicker(Layout& layout, Screen& screen, desk::FilePicker& value, const FilePickerTexts& texts) {
    layout.frame(texts.frame, texts.title)
        .row(u"ドライブ"_s)
        .choice(texts.drive, value.drive, 2 * listWidth, [&value] { value.chooseDrive(); })
        .row()
        .list(
            texts.folders, value.folders, listWidth, lines, [&value] { value.chooseFolder(); }, u"フォルダー"_s);
    static_cast<QListWidget*>(layout.last())->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    layout.list(
        texts.files, value.files, listWidth, lines, [&value] { value.chooseFile(); }, u"ファイル"_s);
    static_cast<QListWidget*>(layout.last())->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    layout.row(texts.label).text(texts.name, value.name, 2 * listWidth - 4);
    layout.last()->setToolTip(texts.hints.join(u'\n'));
    layout.button(texts.browse, u"参照"_s, [&screen, &value, texts] { browse(screen, value, texts); });
    layout.row();
    for (const QString& hint : texts.hints)
        layout.note(hint);
}

} // namespace ui
