#pragma once

#include "store/draft.h"
#include "transfer/bulk_record.h"

#include <QFile>

#include <optional>

// The files of a bulk run. What the program writes is readable by its owner alone.
namespace transfer {

// A bulk file that cannot be opened, read or written. The message names the file, says what happened and what the user
// can do, and ends with the system's own words.
class FileError : public store::Error {
  public:
    // The sentence holds %1 for the file's name.
    FileError(const QString& sentence, const QString& path, const QString& systemWords);
};

// Opens an input file for reading: a regular file and nothing else. Throws FileError.
void openInput(QFile& file);

// An export: written beside its name and moved into place by commit(); an existing file of the name stays as it is
// until then, and is on the disk afterwards. What is there and is no regular file is refused. All throw FileError.
class ExportFile {
  public:
    explicit ExportFile(const QString& path);

    Altered write(std::span<const QString> fields);
    void commit();

  private:
    [[noreturn]] void fail(const QString& systemWords) const;

    QString path_;
    std::optional<store::Draft> draft_;
    QFile file_;
    QByteArray bytes_;
};

// The file of the rejected records of an import; it grows with the run, each record at once.
class ErrorFile {
  public:
    explicit ErrorFile(const QString& path);

    // Throws FileError when the file could not be written; it is neither made nor touched.
    void check() const;
    // Puts an empty file in the place of what was there. Throws FileError.
    void open();
    // Throws FileError.
    void write(std::span<const QString> fields);

  private:
    [[noreturn]] void fail(const QString& systemWords) const;

    QString path_;
    QFile file_;
};

// Whether two paths name one file, whether it exists or not: links and other spellings of a folder make no difference.
bool sameFile(const QString& one, const QString& other);

// Whether the path names the register or one of the files that the engine keeps beside it.
bool belongsToRegister(const QString& path, const QString& registerPath);

// Whether the path lies in the folder of the register's copies or in one inside it.
bool inBackupFolder(const QString& path, const QString& registerPath);

} // namespace transfer
