#pragma once

#include "desk/file_picker.h"
#include "ui/layout.h"

namespace ui {

struct FilePickerTexts {
    QString frame; // object name of the frame
    QString title;
    QString drive; // object names of the lists, of the box for the file's name and of the button
    QString folders;
    QString files;
    QString name;
    QString browse;
    QString label; // of the box for the file's name
    QStringList hints;
    bool written = false; // the file is written, so it need not exist
};

// Lays out a file picker in a frame of its own: drive, folder and file lists, the box for the file's name with its
// hints, and a button that opens the platform's own file dialog as a second way.
void layOutFilePicker(Layout& layout, Screen& screen, desk::FilePicker& value, const FilePickerTexts& texts);

} // namespace ui
