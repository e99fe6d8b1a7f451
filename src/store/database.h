#pragma once

#include <QString>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Exception.h>
#include <SQLiteCpp/Statement.h>

#include <exception>
#include <optional>
#include <stdexcept>

namespace store {

constexpr int applicationId = 0x486F7368; // "Hosh"
constexpr int layoutVersion = 1;          // the newest layout's number

// A failure of the register's file. The message is one Japanese text: what happened and what the user can do, the
// engine's own words and code behind it.
class Error : public std::runtime_error {
  public:
    Error(int code, const QString& message);

    int code() const { return code_; } // the engine's extended result code; 0 where the engine was not asked
    const QString& message() const { return message_; }

  private:
    int code_;
    QString message_;
};

// Turns a failure of the engine, of this store, or any other standard exception into the text shown to the user.
QString explain(const std::exception& failure);
// The same for what failed after an earlier write of the same operation: that one is in the file.
QString explainAfterWrite(const std::exception& failure);

// Incremented by every committed write.
int writesCommitted();

enum class Layouts { newest, olderToo };

// The register's file, open read-write. Throws Error when the file is missing, of another format (a Jet file is named
// as such), empty, of a newer layout, of an older one where that is not asked for, no regular file, or cannot be
// opened; it is never created or altered in its layout here. Waits up to two seconds for locks. Triggers that the file
// may hold do not run. Everything is released on destruction.
class Database {
  public:
    Database() : Database(registerPath()) {}
    explicit Database(const QString& path, Layouts layouts = Layouts::newest);

    SQLite::Database& engine() { return engine_; }

    // The file that every operation opens: "Hoshiren.mdb" in the directory current when this is first asked, unless
    // setRegisterPath named another.
    static QString registerPath();
    static void setRegisterPath(const QString& path);

  private:
    SQLite::Database engine_;
};

// The number of the register's layout.
int layoutOf(Database& database);

// One write that is undone whole unless commit() is reached.
class Write {
  public:
    explicit Write(Database& database);
    ~Write();
    Write(const Write&) = delete;
    Write& operator=(const Write&) = delete;
    void commit();

  private:
    SQLite::Database& engine_;
    bool open_ = true;
};

// Makes a new register at the path: schema, standard eras, counters, first master entries; readable by its owner alone,
// whole and on the disk when this returns. Throws Error when a file of that name exists or cannot be made; leaves no
// partial file.
void createRegister(const QString& path);

// Brings a register that a killed import left with a write-ahead log back to one file. Throws Error when that fails;
// does nothing where there is no register or no log.
void bringBackToOneFile(const QString& path);

} // namespace store
