#include "transfer/household_transfer_rules.h"

#include "masters/master_rules.h"
#include "transfer/bulk_export.h"

using namespace Qt::StringLiterals;

namespace transfer {

namespace {

namespace codes = store::codes;

const QString exportTitle = u"檀家出力"_s;
const QString importTitle = u"檀家一括登録"_s;

} // namespace

const BulkLayout<store::tbl_danka>& householdLayout() {
    using store::tbl_danka;
    static const BulkLayout<tbl_danka> layout{
        .fields = {bulkField<&tbl_danka::tbldnk_no1>(), bulkField<&tbl_danka::tbldnk_no2>(),
                   bulkField<&tbl_danka::tbldnk_nameg>(), bulkField<&tbl_danka::tbldnk_namek>(),
                   bulkFlag<&tbl_danka::tbldnk_dnkkbn, codes::parishioner>(), bulkField<&tbl_danka::tbldnk_dnkkbn>(),
                   bulkField<&tbl_danka::tbldnk_yubin>(), bulkField<&tbl_danka::tbldnk_jyusho1>(),
                   bulkField<&tbl_danka::tbldnk_jyusho2>(), bulkField<&tbl_danka::tbldnk_tel>(),
                   bulkField<&tbl_danka::tbldnk_fax>(), bulkField<&tbl_danka::tbldnk_chiku>(),
                   bulkField<&tbl_danka::tbldnk_toshug>(), bulkField<&tbl_danka::tbldnk_toshuk>(),
                   bulkFlag<&tbl_danka::tbldnk_haka_basho, codes::withinGrounds>(),
                   bulkField<&tbl_danka::tbldnk_haka_basho>(), bulkField<&tbl_danka::tbldnk_bikou>()},
        .leftOut = {store::columnOf(&tbl_danka::tbldnk_kanaidx), store::columnOf(&tbl_danka::tbldnk_oyano),
                    store::columnOf(&tbl_danka::tbldnk_bunkekbn), store::columnOf(&tbl_danka::tbldnk_addymd)}};
    return layout;
}

int ExportHouseholds(const QString& path, desk::Desk& desk) {
    store::Database database;
    store::Table households(database, store::idxdnk_no);
    households.seek(store::Seek::atOrAfter, 0, 0);
    const ExportJob job{
        .title = exportTitle, .subject = u"檀家さん "_s, .none = u"檀家登録は 0 件です"_s, .path = path};
    return exportRecords(job, rowCount(database, "tbl_danka"), desk, [&households]() -> std::optional<ExportRecord> {
        if (households.eof())
            return {};
        const store::tbl_danka& row = households.row();
        ExportRecord record{u"%1-%2 %3"_s.arg(row.tbldnk_no1).arg(row.tbldnk_no2).arg(row.tbldnk_nameg),
                            householdLayout().record(row)};
        households.moveNext();
        return record;
    });
}

std::optional<ImportCounts> ImportHouseholds(const QString& input, const QString& errors, HouseholdOptions options,
                                             desk::Desk& desk) {
    ImportJob job{.title = importTitle,
                  .subject = u"檀家さん "_s,
                  .fieldCount = householdLayout().fieldCount(),
                  .errorFields = {1, 2, 3, 4, 6, 7, 8, 9, 10, 11, 12, 13, 14, 16, 17},
                  .input = input,
                  .errors = errors,
                  .open = [&](store::Database& database) {
                      return std::make_unique<HouseholdImport>(database, options, desk.today());
                  }};
    if (!options.numbered) {
        job.question = u"入力檀家番号は無視し、登録前に一旦全件削除します"_s;
        job.emptyingTable = "DELETE FROM tbl_danka";
        job.kind = codes::householdNumbers;
    }
    return importRecords(job, desk);
}

bool CheckImportOptions(const 檀家一括Form& form, desk::Desk& desk) {
    const auto refused = [&desk](bool wrong, const QString& message) {
        return refusedIf(wrong, message, importTitle, desk);
    };
    const bool automatic = form.自動.chosen;
    const bool numbered = form.入力.chosen;
    const bool update = form.更新.chosen;
    const bool refuse = form.エラー.chosen;
    return !(
        refused(form.OUT.name.text.isEmpty(), noOutput) || refused(form.IN.name.text.isEmpty(), noInput) ||
        refused(automatic && (numbered || update || refuse), u"自動採番を選択時は他のオプションの選択は出来ません"_s) ||
        refused(numbered && !update && !refuse, u"同一データ存在時の処理を選択して下さい"_s) ||
        refused(numbered && update && refuse, u"同一データ存在時の処理はどちらかを選択して下さい"_s) ||
        refused(!automatic && !numbered, u"自動採番又は番号入力のどちらかを選択して下さい"_s));
}

void CheckHouseholdRecord(BulkRecord& record, bool numbered) {
    const auto neither = [&record](int number, const QString& one, const QString& other) {
        const QString& text = record.field(number);
        return !text.isEmpty() && text != one && text != other;
    };
    if (record.rejectEmpty(3, u"檀家名は必須です"_s) || record.rejectEmpty(4, u"檀家名カナは必須です"_s) ||
        record.rejectIf(neither(6, codes::nonParishioner, codes::parishioner), u"檀家区分は必須です"_s, {6, 5}) ||
        record.rejectEmpty(7, u"郵便番号は必須です"_s) || record.rejectEmpty(8, u"住所1は必須です"_s) ||
        record.rejectEmpty(10, u"電話は必須です"_s) || record.rejectEmpty(13, u"当主名は必須です"_s) ||
        record.rejectEmpty(14, u"当主カナは必須です"_s) ||
        record.rejectIf(neither(16, codes::outsideGrounds, codes::withinGrounds), u"墓所を正しく入力して下さい"_s,
                        {16, 15}) ||
        !numbered || record.rejectEmpty(1, u"檀家番号入力を選択時は必須です"_s))
        return;
    const bool numberWrong = record.number(1).value_or(0) < 1;
    const bool branchWrong = record.number(2).value_or(-1) < 0;
    if (!record.rejectIf(numberWrong || branchWrong, badHouseholdNumber, {}))
        return;
    if (numberWrong)
        record.marked.push_back(1);
    if (branchWrong)
        record.marked.push_back(2);
}

HouseholdImport::HouseholdImport(store::Database& database, HouseholdOptions options, QDate today)
    : database_(database), options_(options), today_(today), households_(database, store::idxdnk_no),
      counter_(database, codes::householdNumbers) {}

Stored HouseholdImport::StoreHouseholdRecord(BulkRecord& record) {
    std::int16_t no1 = 0;
    std::int16_t no2 = 0;
    bool found = false;
    if (options_.numbered) {
        no1 = record.number(1).value_or(0);
        no2 = record.number(2).value_or(0);
        found = households_.seek(store::Seek::equal, no1, no2);
        if (found && !options_.update)
            return rejected(record, u"同一檀家番号が存在します"_s, {1, 2});
    } else if (const auto number = counter_.next()) {
        no1 = *number;
    } else {
        return rejected(record, desk::noNumberLeft, {1});
    }

    // What the file does not hold stays as it is.
    store::tbl_danka row = found ? households_.row() : store::tbl_danka();
    row.tbldnk_no1 = no1;
    row.tbldnk_no2 = no2;
    row.tbldnk_nameg = record.field(3);
    row.tbldnk_namek = record.field(4);
    row.tbldnk_dnkkbn = record.field(6);
    if (row.tbldnk_dnkkbn.isEmpty())
        row.tbldnk_dnkkbn = record.field(5) == flagSet ? codes::parishioner : codes::nonParishioner;
    row.tbldnk_yubin = record.field(7);
    row.tbldnk_jyusho1 = record.field(8);
    row.tbldnk_jyusho2 = record.field(9);
    row.tbldnk_tel = record.field(10);
    row.tbldnk_fax = record.field(11);
    row.tbldnk_chiku = record.field(12);
    row.tbldnk_bikou = record.field(17);
    row.tbldnk_kanaidx = store::kanaIndex(row.tbldnk_namek);
    const bool within = record.field(16) == codes::withinGrounds || record.field(15) == flagSet;
    row.tbldnk_haka_basho = within ? codes::withinGrounds : codes::outsideGrounds;
    row.tbldnk_toshug = record.field(13);
    row.tbldnk_toshuk = record.field(14);
    row.tbldnk_oyano = std::int16_t{0};
    row.tbldnk_bunkekbn = codes::noBranchFamily;
    row.tbldnk_addymd = today_;
    if (!found)
        households_.insert(row);
    else if (rewritten(households_, row, record) == Stored::rejected)
        return Stored::rejected;

    counter_.used(no1);
    if (!districts_.contains(row.tbldnk_chiku)) {
        masters::MST設定(database_, masters::Category::地区, row.tbldnk_chiku);
        districts_.insert(row.tbldnk_chiku);
    }
    return found ? Stored::asChange : Stored::asNew;
}

void HouseholdImport::settle() {
    households_.release();
    counter_.settle();
}

void runHouseholdExport(檀家出力Form& form, desk::ScreenContext&, desk::Desk& desk) {
    if (!refusedIf(form.OUT.name.text.isEmpty(), noOutput, exportTitle, desk))
        ExportHouseholds(form.OUT.path(), desk);
}

void runHouseholdImport(檀家一括Form& form, desk::ScreenContext&, desk::Desk& desk) {
    if (CheckImportOptions(form, desk))
        ImportHouseholds(form.IN.path(), form.OUT.path(), {form.入力.chosen, form.更新.chosen}, desk);
}

} // namespace transfer
