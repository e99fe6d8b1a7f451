#pragma once

#include "desk/form.h"

namespace desk {

// The values of one file picker: a drive list, a list of folders, a list of the chosen folder's files, and the box with
// the file's name. A drive is a mounted volume or the user's home folder.
struct FilePicker {
    Combo drive;
    List folders; // the drive's folder, and below each folder that was chosen the folders in it
    List files;
    Text name;

    // nameFilter, as "*.csv", limits the files listed; empty for all.
    explicit FilePicker(const QString& nameFilter = {}) : nameFilter_(nameFilter) {}

    // Finds the drives and shows the folder current when the program started.
    void start();
    // The drive in the box has been chosen: shows the folder that was last chosen on it.
    void chooseDrive();
    void chooseFolder(); // the current line of folders: shows its files, and its own folders below it
    void chooseFile();   // the current line of files: puts its name into the box

    // Shows the folder of this file and its name, as chosen in the platform's own dialog.
    void take(const QString& path);

    // The folder shown, absolute.
    const QString& folder() const { return folder_; }
    // The file named in the box, in the folder shown; a name with a full path is that file.
    QString path() const;

  private:
    struct Drive {
        QString caption;
        QString root;
        QString last; // the folder last chosen
    };
    struct Line {
        QString path;
        int depth;
    };

    void show(const QString& folder);
    void enter(const QString& folder);
    void expand(std::size_t line);
    void listFiles(const QString& folder);
    void insertLine(std::size_t at, const QString& path, int depth);

    QString nameFilter_;
    std::vector<Drive> drives_;
    std::size_t shownDrive_ = 0;
    QString folder_;
    std::vector<Line> lines_; // of folders
};

} // namespace desk
