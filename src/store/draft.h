#pragma once

#include "store/database.h"

// Files that appear whole or not at all, and stay when the power goes.
namespace store {

// What a path names where it is no regular file, in words for the user; empty for a regular file and where there is
// nothing. A pipe or a device must be found out before it is opened: that may never return.
QString notAFile(const QString& path);

// Throws Error where notAFile has something to say.
void requireFile(const QString& path);

// A file that could not be made or put in its place.
class DraftError : public Error {
  public:
    DraftError(const QString& sentence, const QString& systemWords);
    const QString& systemWords() const { return systemWords_; }

  private:
    QString systemWords_;
};

// Waits until the folder's entries are on the disk: a name just made, moved or removed. Throws DraftError.
void syncFolder(const QString& folder);

enum class Existing { refused, replaced };

// A file in the making, readable by its owner alone, beside the file that it is to become. Its name is like no other's
// and it is made by this program, never taken over. Removed on destruction, with what the engine keeps beside it,
// unless it has been moved.
class Draft {
  public:
    // Makes an empty one. Throws DraftError.
    explicit Draft(const QString& target);
    ~Draft();
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    const QString& path() const { return path_; }
    // Gives it its name in one step. Contents and name are on the disk when this returns. Throws DraftError; only a
    // failure to reach the disk may leave it under the name.
    void moveTo(const QString& path, Existing existing);

  private:
    QString path_;
    bool moved_ = false;
};

// Removes the drafts that killed programs have left in a folder: those that have not been written for an hour.
void removeLeftDrafts(const QString& folder);

} // namespace store
