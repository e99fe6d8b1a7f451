#include "transfer/grave_transfer_rules.h"

#include "transfer/bulk_export.h"
#include "values/dates.h"
#include "values/numbers.h"

using namespace Qt::StringLiterals;

namespace transfer {

namespace {

const QString exportTitle = u"お墓出力"_s;
const QString importTitle = u"お墓一括登録"_s;
constexpr std::int16_t disposed = store::codes::yes;

std::int16_t disposalFlag(const BulkRecord& record) {
    return record.field(15) == flagSet ? disposed : store::codes::no;
}

} // namespace

const BulkLayout<store::tbl_ohaka>& graveLayout() {
    using store::tbl_ohaka;
    static const BulkLayout<tbl_ohaka> layout{
        .fields = {bulkField<&tbl_ohaka::tblhak_banchi1>(), bulkField<&tbl_ohaka::tblhak_banchi2>(),
                   bulkField<&tbl_ohaka::tblhak_dnk_no>(), bulkField<&tbl_ohaka::tblhak_dnk_kbn>(),
                   bulkField<&tbl_ohaka::tblhak_dnk_nameg>(), bulkField<&tbl_ohaka::tblhak_dnk_namek>(),
                   bulkField<&tbl_ohaka::tblhak_bohyo_kbn>(), bulkField<&tbl_ohaka::tblhak_bohyo_mei>(),
                   bulkField<&tbl_ohaka::tblhak_shiyo_stymd>(), bulkField<&tbl_ohaka::tblhak_shiyo_ryokin>(),
                   bulkField<&tbl_ohaka::tblhak_shiyo_jrymd>(), bulkField<&tbl_ohaka::tblhak_kanri_ryokin>(),
                   bulkField<&tbl_ohaka::tblhak_kanri_jrymd>(), bulkField<&tbl_ohaka::tblhak_kanri_nxymd>(),
                   bulkField<&tbl_ohaka::tblhak_haiki_kbn>(), bulkField<&tbl_ohaka::tblhak_haiki_ymd>(),
                   bulkField<&tbl_ohaka::tblhak_biko>()},
        .leftOut = {store::columnOf(&tbl_ohaka::tblhak_no), store::columnOf(&tbl_ohaka::tblhak_kanaidx),
                    store::columnOf(&tbl_ohaka::tblhak_add_ymd)}};
    return layout;
}

int ExportGraves(const QString& path, desk::Desk& desk) {
    store::Database database;
    store::Table graves(database, store::idxhak_banchi12);
    graves.seek(store::Seek::atOrAfter, u""_s, u""_s);
    const ExportJob job{
        .title = exportTitle, .subject = u"お墓登録情報 "_s, .none = u"お墓登録は 0 件です"_s, .path = path};
    return exportRecords(job, rowCount(database, "tbl_ohaka"), desk, [&graves]() -> std::optional<ExportRecord> {
        if (graves.eof())
            return {};
        const store::tbl_ohaka& row = graves.row();
        ExportRecord record{u"%1 %2 %3"_s.arg(row.tblhak_banchi1, row.tblhak_banchi2, row.tblhak_bohyo_mei),
                            graveLayout().record(row)};
        graves.moveNext();
        return record;
    });
}

std::optional<ImportCounts> ImportGraves(const QString& input, const QString& errors, GraveImportMode mode,
                                         desk::Desk& desk) {
    ImportJob job{
        .title = importTitle,
        .subject = u"お墓登録 "_s,
        .fieldCount = graveLayout().fieldCount(),
        .errorFields = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17},
        .input = input,
        .errors = errors,
        .open = [&](store::Database& database) { return std::make_unique<GraveImport>(database, mode, desk.today()); }};
    if (mode == GraveImportMode::afterEmptying) {
        job.question = u"入力お墓番号は無視し、登録前に一旦全件削除します"_s;
        job.emptyingTable = "DELETE FROM tbl_ohaka";
        job.kind = store::codes::graveNumbers;
    }
    return importRecords(job, desk);
}

bool CheckGraveOptions(const お墓一括Form& form, desk::Desk& desk) {
    const auto refused = [&desk](bool wrong, const QString& message) {
        return refusedIf(wrong, message, importTitle, desk);
    };
    const int chosen = form.削除.chosen + form.更新.chosen + form.エラー.chosen;
    return !(refused(form.IN.name.text.isEmpty(), noInput) || refused(form.OUT.name.text.isEmpty(), noOutput) ||
             refused(chosen == 0, u"オプションを選択して下さい"_s) ||
             refused(chosen > 1, u"選択できるオプションは一個のみです"_s));
}

void CheckGraveRecord(BulkRecord& record) {
    const auto given = [&record](int number) { return !record.field(number).isEmpty(); };
    const auto noDate = [&record](int number) { return !values::readDate(record.field(number)); };
    const auto badDate = [&](int number, const QString& message) {
        return record.rejectIf(given(number) && noDate(number), message, {number});
    };
    const auto badFee = [&](int number, const QString& message) {
        return record.rejectIf(given(number) && !values::readInt16(record.field(number)), message, {number});
    };
    const bool household = given(4) && record.field(4) != flagClear;
    const bool marker = given(7) && record.field(7) != store::codes::vacantGrave;
    const bool flagged = disposalFlag(record) == disposed;

    record.rejectEmpty(1, u"お墓の区画は必須です"_s) || record.rejectEmpty(2, u"お墓の区画整理番号は必須です"_s) ||
        (household && (record.rejectEmpty(5, u"檀家区分入力時には檀家名は必須です"_s) ||
                       record.rejectEmpty(6, u"檀家区分入力時には檀家カナは必須です"_s))) ||
        (marker && record.rejectEmpty(8, u"墓標区分入力時には墓標名は必須です"_s)) ||
        badDate(9, u"使用開始日に正しく入力して下さい"_s) ||
        (marker && record.rejectEmpty(9, u"墓標区分入力時には使用開始日は必須です"_s)) ||
        badFee(10, u"使用料に正しく入力して下さい"_s) || badDate(11, u"使用開始日に正しく入力して下さい"_s) ||
        badFee(12, u"管理費に正しく入力して下さい"_s) || badDate(13, u"管理費受領日に正しく入力して下さい"_s) ||
        record.rejectIf(given(13) && noDate(14), u"管理費次回日に正しく入力して下さい"_s, {14}) ||
        record.rejectIf(!given(13) && given(14), u"管理費受領日に入力がなければ管理費次回日は無効です"_s, {14}) ||
        record.rejectIf(given(15) && !flagged && record.field(15) != flagClear, u"W_廃棄区分に正しく入力して下さい"_s,
                        {15}) ||
        badDate(16, u"W_廃棄日に正しく入力して下さい"_s) ||
        (flagged && record.rejectEmpty(16, u"墓標区分入力時にはW_廃棄日は必須です"_s)) ||
        record.rejectIf(!record.number(3), badHouseholdNumber, {3});
}

GraveImport::GraveImport(store::Database& database, GraveImportMode mode, QDate today)
    : mode_(mode), today_(today), places_(database, store::idxhak_banchi12), graves_(database, store::idxhak_no),
      counter_(database, store::codes::graveNumbers) {}

// The grave that a record of this place belongs to. A place may have several rows, a live one and disposed ones: the
// record is that of a row of its own disposal state, and of several such of one that no record of this file has changed
// yet. An update never takes a row that this file brought for the row of another of its records: neither one that it
// inserted, nor one that it changed to the other state.
std::optional<store::tbl_ohaka> GraveImport::graveAt(const BulkRecord& record) {
    const QString& section = record.field(1);
    const QString& lot = record.field(2);
    std::optional<store::tbl_ohaka> best;
    int bestRank = 0;
    for (places_.seek(store::Seek::equal, section, lot); !places_.eof(); places_.moveNext()) {
        const store::tbl_ohaka& row = places_.row();
        if (row.tblhak_banchi1 != section || row.tblhak_banchi2 != lot)
            break;
        const bool sameState = store::isDisposed(row) == (disposalFlag(record) == disposed);
        const bool changed = changed_.contains(row.tblhak_no);
        if (mode_ == GraveImportMode::update && (inserted_.contains(row.tblhak_no) || (changed && !sameState)))
            continue;
        const int rank = (sameState ? 0 : 2) + (changed ? 1 : 0);
        if (!best || rank < bestRank) {
            best = row;
            bestRank = rank;
        }
    }
    return best;
}

Stored GraveImport::StoreGraveRecord(BulkRecord& record) {
    std::optional<store::tbl_ohaka> found;
    if (mode_ != GraveImportMode::afterEmptying)
        found = graveAt(record);
    if (found && mode_ == GraveImportMode::reject)
        return rejected(record, u"同一区画+整理番号が存在します"_s, {1, 2});
    const auto number = found ? found->tblhak_no : counter_.next();
    if (!number)
        return rejected(record, desk::noNumberLeft, {});
    if (!found && graves_.seek(store::Seek::equal, *number))
        return rejected(record, u"指定されたお墓番号は既に登録されています"_s, {});

    store::tbl_ohaka row = found.value_or(store::tbl_ohaka());
    const auto take = [&record](QDate& date, int field) {
        if (!record.field(field).isEmpty())
            date = values::readDate(record.field(field)).value_or(QDate());
    };
    // An absent fee stays absent where the file says nothing about it.
    const auto takeFee = [&record, &found](std::optional<std::int32_t>& yen, int field) {
        if (!found || yen || !record.field(field).isEmpty())
            yen = values::readInt16(record.field(field)).value_or(0);
    };
    row.tblhak_no = *number;
    row.tblhak_banchi1 = record.field(1);
    row.tblhak_banchi2 = record.field(2);
    row.tblhak_dnk_no = record.number(3).value_or(0);
    row.tblhak_dnk_kbn = record.field(4) == flagClear ? QString() : record.field(4);
    row.tblhak_dnk_nameg = record.field(5);
    // A row without a kana name keeps its index, be it blank or absent.
    if (!found || !record.field(6).isEmpty() || !row.tblhak_dnk_namek.isEmpty())
        row.tblhak_kanaidx = store::kanaIndex(record.field(6));
    row.tblhak_dnk_namek = record.field(6);
    row.tblhak_bohyo_kbn = record.field(7);
    row.tblhak_bohyo_mei = record.field(8);
    take(row.tblhak_shiyo_stymd, 9);
    takeFee(row.tblhak_shiyo_ryokin, 10);
    take(row.tblhak_shiyo_jrymd, 11);
    takeFee(row.tblhak_kanri_ryokin, 12);
    take(row.tblhak_kanri_jrymd, 13);
    take(row.tblhak_kanri_nxymd, 14);
    row.tblhak_haiki_kbn = disposalFlag(record);
    take(row.tblhak_haiki_ymd, 16);
    row.tblhak_biko = record.field(17);
    row.tblhak_add_ymd = today_;
    if (!found) {
        graves_.insert(row);
        counter_.used(*number);
        inserted_.insert(*number);
        return Stored::asNew;
    }
    graves_.seek(store::Seek::equal, *number);
    const Stored stored = rewritten(graves_, row, record);
    if (stored == Stored::asChange)
        changed_.insert(*number);
    return stored;
}

void GraveImport::settle() {
    places_.release();
    graves_.release();
    counter_.settle();
}

void runGraveExport(お墓出力Form& form, desk::ScreenContext&, desk::Desk& desk) {
    if (!refusedIf(form.OUT.name.text.isEmpty(), noOutput, exportTitle, desk))
        ExportGraves(form.OUT.path(), desk);
}

void runGraveImport(お墓一括Form& form, desk::ScreenContext&, desk::Desk& desk) {
    if (!CheckGraveOptions(form, desk))
        return;
    const GraveImportMode mode = form.削除.chosen   ? GraveImportMode::afterEmptying
                                 : form.更新.chosen ? GraveImportMode::update
                                                    : GraveImportMode::reject;
    ImportGraves(form.IN.path(), form.OUT.path(), mode, desk);
}

} // namespace transfer
