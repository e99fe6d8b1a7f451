#pragma once

#include "desk/file_picker.h"
#include "ui/layout.h"

namespace ui {

struct FilePickerTexts {
    QString frame; // object name of the frame
    QString title;
    QString prefix; // of the object names: IN or OUT, before Drive, Dir, File and 参照
    QString name;   // object name of the box for the file's name
    QString label;  // of that box
    QStringList hints;
    bool written = false; // the file is written, so it need not exist
};

// Lays out a file picker in a frame of its own: drive, folder and file lists, the box for the file's name with its
// hints, and a button that opens the platform's own file dialog as a second way.
void layOutFilePicker(Layout& layout, Screen& screen, desk::FilePicker& value, const FilePickerTexts& texts);

} // namespace ui
