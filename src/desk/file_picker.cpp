#include "desk/file_picker.h"

#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>

using namespace Qt::StringLiterals;

namespace desk {

namespace {

// Volumes of the system itself (memory, processes, packages) hold no user's files.
bool holdsFiles(const QStorageInfo& volume) {
    if (!volume.isValid() || !volume.isReady() || !QFileInfo(volume.rootPath()).isDir())
        return false;
    const QString device = QString::fromLocal8Bit(volume.device());
    const bool named = device.contains(u'/') || device.contains(u'\\') || device.contains(u':');
    return volume.isRoot() || (named && volume.fileSystemType() != "squashfs");
}

bool isWithin(const QString& folder, const QString& root) {
    return folder == root || folder.startsWith(root.endsWith(u'/') ? root : root + u'/');
}

} // namespace

void FilePicker::start() {
    drives_.clear();
    const QString home = QDir::homePath();
    drives_.push_back({u"ホーム (%1)"_s.arg(QDir::toNativeSeparators(home)), home, home});
    for (const QStorageInfo& volume : QStorageInfo::mountedVolumes()) {
        const QString root = volume.rootPath();
        if (!holdsFiles(volume) || root == home)
            continue;
        const QString shown = QDir::toNativeSeparators(root);
        drives_.push_back({volume.name().isEmpty() ? shown : volume.name() + u" ("_s + shown + u')', root, root});
    }
    drive.items.clear();
    for (const Drive& one : drives_)
        drive.items << one.caption;
    enter(QDir::currentPath());
}

void FilePicker::chooseDrive() {
    const qsizetype at = drive.items.indexOf(drive.text);
    if (at < 0)
        return;
    shownDrive_ = static_cast<std::size_t>(at);
    const Drive& chosen = drives_[shownDrive_];
    show(QFileInfo(chosen.last).isDir() ? chosen.last : chosen.root);
}

void FilePicker::chooseFolder() {
    const auto line = static_cast<std::size_t>(folders.current);
    if (folders.current < 0 || line >= lines_.size())
        return;
    expand(line);
    listFiles(lines_[line].path);
}

void FilePicker::chooseFile() {
    if (files.current >= 0)
        name.text = files.currentText();
}

void FilePicker::take(const QString& path) {
    const QFileInfo file(path);
    enter(file.absolutePath());
    name.text = file.fileName();
    files.choose(name.text);
}

QString FilePicker::path() const {
    return QDir::cleanPath(QDir(folder_).absoluteFilePath(name.text));
}

// Shows a folder on the drive that holds it: the one with the longest root.
void FilePicker::enter(const QString& folder) {
    std::size_t holder = drives_.size();
    for (std::size_t at = 0; at < drives_.size(); ++at)
        if (isWithin(folder, drives_[at].root) &&
            (holder == drives_.size() || drives_[at].root.size() > drives_[holder].root.size()))
            holder = at;
    // A folder on none of the listed drives (a volume mounted later, a hidden one) is added as a drive for this run.
    if (holder == drives_.size()) {
        drives_.push_back({QDir::toNativeSeparators(folder), folder, folder});
        drive.items << drives_.back().caption;
    }
    shownDrive_ = holder;
    show(folder);
}

// Lists the shown drive's folders from its root down to the given one.
void FilePicker::show(const QString& folder) {
    drive.text = drives_[shownDrive_].caption;
    lines_.clear();
    folders.clear();
    insertLine(0, drives_[shownDrive_].root, 0);
    std::size_t line = 0;
    expand(line);
    while (lines_[line].path != folder) {
        std::size_t below = line + 1;
        while (below < lines_.size() && lines_[below].depth > lines_[line].depth &&
               !isWithin(folder, lines_[below].path))
            ++below;
        if (below == lines_.size() || !isWithin(folder, lines_[below].path)) {
            // A hidden folder on the way is listed only when one is in it.
            const QString parent = lines_[line].path;
            const qsizetype slash = folder.indexOf(u'/', parent.size() + (parent.endsWith(u'/') ? 0 : 1));
            insertLine(below, slash < 0 ? folder : folder.first(slash), lines_[line].depth + 1);
        }
        line = below;
        expand(line);
    }
    folders.current = static_cast<int>(line);
    listFiles(folder);
}

// Lists the folders of a line below it, once; lines above keep their places, so that a double click stays on its line.
void FilePicker::expand(std::size_t line) {
    const Line parent = lines_[line];
    if (line + 1 < lines_.size() && lines_[line + 1].depth > parent.depth)
        return;
    const QDir folder(parent.path);
    for (const QString& child : folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name | QDir::IgnoreCase))
        insertLine(++line, folder.filePath(child), parent.depth + 1);
}

void FilePicker::insertLine(std::size_t at, const QString& path, int depth) {
    const QString shown = depth == 0 ? QDir::toNativeSeparators(path) : QFileInfo(path).fileName();
    lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(at), {path, depth});
    folders.items.insert(static_cast<qsizetype>(at), QString(depth, QChar(u'　')) + shown);
}

void FilePicker::listFiles(const QString& folder) {
    folder_ = folder;
    drives_[shownDrive_].last = folder;
    files.clear();
    const QStringList filters = nameFilter_.isEmpty() ? QStringList() : QStringList(nameFilter_);
    files.items = QDir(folder).entryList(filters, QDir::Files, QDir::Name | QDir::IgnoreCase);
}

} // namespace desk
