#include "households/erasure_rules.h"

#include "desk/safety_copy.h"
#include "store/codes.h"
#include "store/table.h"
#include "values/dates.h"

using namespace Qt::StringLiterals;

namespace households {

namespace {

const QString title = u"檀家の抹消"_s;

// Whether the number is another family's by now: an import may have given it away while the screen stood open.
bool isAnothers(store::Database& database, const ErasedHousehold& household) {
    if (!household.asRead)
        return false;
    const auto stored =
        store::find(database, store::idxdnk_no, household.asRead->tbldnk_no1, household.asRead->tbldnk_no2);
    return stored && *stored != *household.asRead;
}

void sayChanged(desk::Desk& desk) {
    desk.notify(u"この記録はほかの画面で変更されています。照会し直して下さい"_s, title);
}

// Deletes from the row found on for as long as it bears the number. A row of another household counts as none found.
template <class Row, class... Fields, class... Keys>
void eraseFrom(const store::Index<Row, Fields...>& index, std::int16_t Row::*numberField,
               const ErasedHousehold& household, desk::Desk& desk, const QString& none, const QString& done,
               const Keys&... keys) {
    int erased = 0;
    {
        store::Database database;
        store::Write write(database);
        if (isAnothers(database, household)) {
            sayChanged(desk);
            return;
        }
        store::Table rows(database, index);
        rows.seek(store::Seek::atOrAfter, keys...);
        erased = rows.removeWhile([&](const Row& row) { return row.*numberField == household.number; });
        write.commit();
    }
    desk.notify(erased > 0 ? done : none, title);
}

store::tbl_ohaka givenBack(const store::tbl_ohaka& grave, QDate today) {
    store::tbl_ohaka vacant;
    vacant.tblhak_no = grave.tblhak_no;
    vacant.tblhak_banchi1 = grave.tblhak_banchi1;
    vacant.tblhak_banchi2 = grave.tblhak_banchi2;
    vacant.tblhak_shiyo_ryokin = grave.tblhak_shiyo_ryokin;
    vacant.tblhak_kanri_ryokin = grave.tblhak_kanri_ryokin;
    vacant.tblhak_bohyo_kbn = store::codes::vacantGrave;
    vacant.tblhak_haiki_kbn = store::codes::yes;
    vacant.tblhak_haiki_ymd = today;
    vacant.tblhak_dnk_no = store::codes::noHousehold;
    vacant.tblhak_add_ymd = today;
    return vacant;
}

} // namespace

ErasedHousehold::ErasedHousehold(const desk::ScreenContext& context, const std::optional<store::tbl_danka>& read)
    : number(context.dnk_no1), name(context.dnk_nameg), emptyName(u""_s), lowestDate(values::firstYear, 1, 1),
      asRead(read) {}

void EraseHousehold(desk::ScreenContext& context, desk::Desk& desk, const std::optional<store::tbl_danka>& asRead) {
    const ErasedHousehold household(context, asRead);
    const struct {
        QString question;
        void (*step)(const ErasedHousehold&, desk::Desk&);
    } steps[] = {{u"檀家さんの情報を抹消しますか　？"_s, EraseHouseholdRows},
                 {u"檀家さんの家族情報を抹消しますか　？"_s, EraseFamily},
                 {u"檀家さんの法要情報を抹消しますか　？"_s, EraseMemorials},
                 {u"檀家さんの過去帳を抹消しますか　？"_s, EraseDeathRegister},
                 {u"檀家さんのお墓情報を抹消しますか　？"_s, DisposeGraves}};
    bool copied = false;
    for (const auto& [question, step] : steps) {
        if (!desk.ask(question, title, desk::Preset::no))
            continue;
        if (!copied && !desk::copyBefore(desk, title))
            return;
        copied = true;
        try {
            step(household, desk);
        } catch (const std::exception& failure) {
            desk.notify(store::explain(failure), title);
        }
    }
}

void EraseHouseholdRows(const ErasedHousehold& household, desk::Desk& desk) {
    eraseFrom(store::idxdnk_no, &store::tbl_danka::tbldnk_no1, household, desk,
              u"指定された檀家さんの情報を読めません。DBの整合性を確認して下さい"_s,
              u"指定された檀家さんは削除されました。"_s, household.number, household.branch);
}

void EraseFamily(const ErasedHousehold& household, desk::Desk& desk) {
    eraseFrom(store::idxkzk_kazoku, &store::tbl_kazoku::tblkzk_no1, household, desk,
              u"指定された檀家の家族を読めません。DBの整合性を確認して下さい"_s,
              u"指定された檀家の家族は削除されました。"_s, household.number, household.name, household.emptyName);
}

void EraseMemorials(const ErasedHousehold& household, desk::Desk& desk) {
    eraseFrom(store::idxhoy_hohyo, &store::tbl_hohyo::tblhoy_no, household, desk,
              u"指定された檀家の法要を読めません。DBの整合性を確認して下さい"_s,
              u"指定された檀家の法要は削除されました。"_s, household.number, household.emptyName, household.lowestDate);
}

void EraseDeathRegister(const ErasedHousehold& household, desk::Desk& desk) {
    eraseFrom(store::idxkak_kakochou, &store::tbl_kakocho::tblkak_no, household, desk,
              u"指定された檀家の過去帳を読めません。DBの整合性を確認して下さい"_s,
              u"指定された檀家の過去帳は削除されました。"_s, household.number, household.name, household.emptyName);
}

void DisposeGraves(const ErasedHousehold& household, desk::Desk& desk) {
    bool found = false;
    {
        store::Database database;
        store::Write write(database);
        if (isAnothers(database, household)) {
            sayChanged(desk);
            return;
        }
        // Read to the end first: a replaced grave leaves the selection.
        const auto graves = store::selectAll<store::tbl_ohaka>(
            database, "WHERE tbl_ohaka.tblhak_dnk_no = ? ORDER BY tbl_ohaka.tblhak_bohyo_mei ASC", household.number);
        found = !graves.empty();
        store::Table table(database, store::idxhak_no);
        for (const store::tbl_ohaka& grave : graves) {
            table.seek(store::Seek::equal, grave.tblhak_no);
            table.remove();
            table.insert(givenBack(grave, desk.today()));
        }
        write.commit();
    }
    desk.notify(found ? u"指定されたお墓は廃棄されました。"_s
                      : u"指定された檀家さんのお墓はありません。登録内容を確認して下さい"_s,
                title);
}

} // namespace households
