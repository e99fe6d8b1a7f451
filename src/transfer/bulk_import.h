#pragma once

#include "desk/desk.h"
#include "desk/numbering.h"
#include "store/database.h"
#include "transfer/bulk_record.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>

// What the imports of households and of graves have in common: files, question, progress, error file, counts.
namespace transfer {

// Messages of more than one run.
extern const QString noInput;
extern const QString noOutput;
extern const QString registersFile;
extern const QString backupsPlace;
extern const QString badHouseholdNumber;

// Shows the message, without an icon, when the condition holds; says whether it does.
bool refusedIf(bool wrong, const QString& message, const QString& title, desk::Desk& desk);

struct ImportCounts {
    int read = 0;
    int rejected = 0;
    int changed = 0; // of a row that was there; the others that were not rejected are new

    int stored() const { return read - rejected; }
};

// What became of a record.
enum class Stored { rejected, asNew, asChange };

// Rejects the record.
Stored rejected(BulkRecord& record, const QString& message, std::initializer_list<int> numbers);

// Rewrites the table's current row; rejects the record where what the row holds cannot be read and would be lost.
template <class Table, class Row> Stored rewritten(Table& table, const Row& row, BulkRecord& record) {
    try {
        table.edit(row);
    } catch (const store::Error& unreadable) {
        return rejected(record, unreadable.message(), {});
    }
    return Stored::asChange;
}

// What one import checks and stores; lives on the import's connection. Both reject the records that they do not accept.
class ImportTarget {
  public:
    virtual ~ImportTarget() = default;
    virtual void check(BulkRecord& record) = 0;   // writes nothing
    virtual Stored store(BulkRecord& record) = 0; // a rejected record has written nothing
    virtual void settle() = 0; // before each commit: writes the counter, ends every read that is still open
};

// The numbers of one import. What it has used is in the counter row with the commit that stores it, and written once
// a commit.
class ImportCounter {
  public:
    ImportCounter(store::Database& database, const QString& kind) : counter_(database, kind) {}

    // The number after the last one issued; nothing when none is left.
    std::optional<std::int16_t> next();
    // A row with this number has been written.
    void used(std::int16_t number) { last_ = std::max(last_.value_or(0), number); }
    void settle();

  private:
    desk::Counter counter_;
    std::optional<std::int16_t> last_; // highest number known since the last commit
};

struct ImportJob {
    QString title;
    QString subject;              // what the closing message counts, with what stands between it and the number
    int fieldCount = 0;           // of a record
    std::vector<int> errorFields; // numbers of the input's fields that the error file shows
    QString input;
    QString errors;
    std::function<std::unique_ptr<ImportTarget>(store::Database&)> open;
    QString question = {};          // asked before the table is emptied; empty: it is not
    std::string emptyingTable = {}; // SQL
    QString kind = {};              // of the numbers issued after emptying
};

// Runs the import and reports it under the title. Records are read, checked and stored one after the other; a rejected
// one goes to the error file at once. What the progress counts as stored is stored: neither a cancel nor the end of the
// process takes it back, and what is stored is always the beginning of the accepted records.
// The bar then tells how many records were new and how many changed one that was there.
// A register that holds anything is copied first (desk::copyBefore). The question whether to empty a table is answered
// No unless the user chooses otherwise.
// Nothing on No, and, with a message, when no number is left to issue after emptying, when input, error file and
// register are not different files, or when the error file is to lie among the register's copies. Throws store::Error
// when a file cannot be used or the register fails: where that happens before the first record, the files and the table
// are as they were; later, the message says how many records were stored.
std::optional<ImportCounts> importRecords(const ImportJob& job, desk::Desk& desk);

} // namespace transfer
