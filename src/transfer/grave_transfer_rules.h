#pragma once

#include "desk/file_picker.h"
#include "desk/screen_context.h"
#include "store/table.h"
#include "transfer/bulk_fields.h"
#include "transfer/bulk_import.h"

#include <QSet>

// Graves in and out of the register as files of 17 fields a line (graveLayout): 1 section, 2 lot, 3 to 6 household
// number, category, name and kana, 7 marker kind, 8 marker name, 9 start of use, 10 and 11 use fee and its receipt, 12
// to 14 management fee, its receipt and its next billing date, 15 disposal flag, 16 disposal date, 17 remarks. Grave
// numbers are not in the file.
namespace transfer {

struct お墓出力Form {
    desk::FilePicker OUT{QStringLiteral("*.csv")};
};

struct お墓一括Form {
    desk::FilePicker IN;
    desk::FilePicker OUT;
    desk::Check 削除;   // empty the table first
    desk::Check 更新;   // a grave whose place is there is changed
    desk::Check エラー; // a grave whose place is there is rejected
};

const BulkLayout<store::tbl_ohaka>& graveLayout();

enum class GraveImportMode { afterEmptying, update, reject };

// Writes every grave in the order of section and lot to the path and reports it under "お墓出力"; see ExportHouseholds.
int ExportGraves(const QString& path, desk::Desk& desk);

// Reads the file, stores its graves and reports it under "お墓一括登録"; see importRecords.
std::optional<ImportCounts> ImportGraves(const QString& input, const QString& errors, GraveImportMode mode,
                                         desk::Desk& desk);

// True when file names and options can be used; shows what is wrong first.
bool CheckGraveOptions(const お墓一括Form& form, desk::Desk& desk);

// Rejects a record that no grave can be made of.
void CheckGraveRecord(BulkRecord& record);

// The grave table of one import, on the import's connection.
class GraveImport : public ImportTarget {
  public:
    GraveImport(store::Database& database, GraveImportMode mode, QDate today);

    void check(BulkRecord& record) override { CheckGraveRecord(record); }
    Stored store(BulkRecord& record) override { return StoreGraveRecord(record); }
    void settle() override;

    // Writes a record that has passed its check; a new grave with the next number. Rejects one whose place is there, or
    // for which no number is left.
    Stored StoreGraveRecord(BulkRecord& record);

  private:
    std::optional<store::tbl_ohaka> graveAt(const BulkRecord& record);

    const GraveImportMode mode_;
    const QDate today_;
    store::Table<store::tbl_ohaka, QString, QString> places_;
    store::Table<store::tbl_ohaka, std::int16_t> graves_;
    ImportCounter counter_;
    QSet<std::int16_t> inserted_; // numbers of the graves that this import has brought
    QSet<std::int16_t> changed_;  // and of those that it has changed
};

// The button 確定 of both screens.
void runGraveExport(お墓出力Form& form, desk::ScreenContext& context, desk::Desk& desk);
void runGraveImport(お墓一括Form& form, desk::ScreenContext& context, desk::Desk& desk);

} // namespace transfer
