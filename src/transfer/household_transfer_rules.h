#pragma once

#include "desk/file_picker.h"
#include "desk/screen_context.h"
#include "store/table.h"
#include "transfer/bulk_fields.h"
#include "transfer/bulk_import.h"

#include <QSet>

// Households in and out of the register as files of 17 fields a line (householdLayout): 1 number, 2 branch, 3 name, 4
// kana, 5 category code, 6 category, 7 postal code, 8 and 9 address, 10 telephone, 11 fax, 12 district, 13 head, 14
// head's kana, 15 grave-place code, 16 grave place, 17 remarks.
namespace transfer {

struct 檀家出力Form {
    desk::FilePicker OUT{QStringLiteral("*.csv")};
};

struct 檀家一括Form {
    desk::FilePicker IN;
    desk::FilePicker OUT;
    desk::Check 自動;   // number the households anew; empties the table first
    desk::Check 入力;   // take the numbers from the file
    desk::Check 更新;   // a household whose number is there is changed
    desk::Check エラー; // a household whose number is there is rejected
};

const BulkLayout<store::tbl_danka>& householdLayout();

struct HouseholdOptions {
    bool numbered = false; // numbers from the file, else from the counter
    bool update = false;   // of a household that is there; else its record is rejected
};

// Writes every household in number order to the path and reports it under "檀家出力". Gives the number written; 0, and
// no file, when there is none, when the user has cancelled, or when the path is the register's own. Throws store::Error
// when the file cannot be written; one that was there stays as it was.
int ExportHouseholds(const QString& path, desk::Desk& desk);

// Reads the file, stores its households and reports it under "檀家一括登録"; see importRecords.
std::optional<ImportCounts> ImportHouseholds(const QString& input, const QString& errors, HouseholdOptions options,
                                             desk::Desk& desk);

// True when file names and options can be used; shows what is wrong first.
bool CheckImportOptions(const 檀家一括Form& form, desk::Desk& desk);

// Rejects a record that lacks what a household must have.
void CheckHouseholdRecord(BulkRecord& record, bool numbered);

// The household table of one import, on the import's connection.
class HouseholdImport : public ImportTarget {
  public:
    HouseholdImport(store::Database& database, HouseholdOptions options, QDate today);

    void check(BulkRecord& record) override { CheckHouseholdRecord(record, options_.numbered); }
    Stored store(BulkRecord& record) override { return StoreHouseholdRecord(record); }
    void settle() override;

    // Writes a record that has passed its check, with its counter and its district; rejects one whose number is there,
    // or for which no number is left.
    Stored StoreHouseholdRecord(BulkRecord& record);

  private:
    store::Database& database_;
    const HouseholdOptions options_;
    const QDate today_;
    store::Table<store::tbl_danka, std::int16_t, std::int16_t> households_;
    ImportCounter counter_;
    QSet<QString> districts_; // known to be in the master list
};

// The button 確定 of both screens.
void runHouseholdExport(檀家出力Form& form, desk::ScreenContext& context, desk::Desk& desk);
void runHouseholdImport(檀家一括Form& form, desk::ScreenContext& context, desk::Desk& desk);

} // namespace transfer
