#include "households/erasure_rules.h"

#include "desk/safety_copy.h"
#include "store/codes.h"
#include "store/selections.h"
#include "store/table.h"
#include "values/dates.h"

using namespace Qt::StringLiterals;

namespace households {

namespace {

const QString title = u"檀家の抹消"_s;

const QString householdMissing = u"指定された檀家さんの情報を読めません。DBの整合性を確認して下さい"_s;

// How the file stands to the household that the screen shows: an import may have given its number to another family.
desk::Standing standing(store::Database& database, const ErasedHousehold& household) {
    using desk::Standing;
    if (!household.held)
        return Standing::asRead;
    store::Table households(database, store::idxdnk_no);
    if (household.held->isNew())
        return households.seek(store::Seek::equal, household.number) ? Standing::changed : Standing::asRead;
    const Standing found = household.held->seek(households);
    const bool goneByUs = household.rowsErased || household.held->deletedHere();
    return found == Standing::gone && goneByUs ? Standing::asRead : found;
}

// True, with the message, when a step must not run.
bool refused(desk::Standing standing, const ErasedHousehold& household, desk::Desk& desk) {
    return household.held && desk::refused(standing, *household.held, {title, householdMissing}, desk);
}

// Runs erase(database, taken), which gives how many rows it met, as one write. What it met is told of, or why it did
// not run.
template <class Erase>
void run(const ErasedHousehold& household, desk::Deletion& deletion, desk::Desk& desk, const QString& none,
         const QString& done, Erase erase) {
    int erased = 0;
    desk::Standing found = desk::Standing::asRead;
    store::Database database;
    const bool written = deletion.write(database, [&](store::Records& taken) {
        found = standing(database, household);
        if (found == desk::Standing::asRead)
            erased = erase(database, taken);
        return erased > 0;
    });
    if (!refused(found, household, desk) && (written || erased == 0))
        desk.notify(erased > 0 ? done : none, title);
}

// Deletes from the row found on for as long as it bears the number. A row of another household counts as none found.
template <class Row, class... Fields, class... Keys>
void eraseFrom(const store::Index<Row, Fields...>& index, std::int16_t Row::*numberField,
               const ErasedHousehold& household, desk::Deletion& deletion, desk::Desk& desk, const QString& none,
               const QString& done, const Keys&... keys) {
    run(household, deletion, desk, none, done, [&](store::Database& database, store::Records& taken) {
        store::Table rows(database, index);
        rows.seek(store::Seek::atOrAfter, keys...);
        return rows.removeWhile([&](const Row& row) {
            if (row.*numberField != household.number)
                return false;
            taken.take(rows);
            return true;
        });
    });
}

} // namespace

ErasedHousehold::ErasedHousehold(const desk::ScreenContext& context, const desk::Held<store::tbl_danka>* shown)
    : number(context.dnk_no1), name(context.dnk_nameg), emptyName(u""_s), lowestDate(values::firstYear, 1, 1),
      held(shown) {}

desk::Deletion EraseHousehold(desk::ScreenContext& context, desk::Desk& desk,
                              const desk::Held<store::tbl_danka>* held) {
    ErasedHousehold household(context, held);
    desk::Deletion deletion(desk, title, u"抹消"_s);
    const struct {
        QString question;
        void (*step)(const ErasedHousehold&, desk::Deletion&, desk::Desk&);
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
            break;
        copied = true;
        try {
            step(household, deletion, desk);
        } catch (const std::exception& failure) {
            desk.notify(store::explain(failure), title);
        }
        if (step == EraseHouseholdRows) {
            store::Database database;
            household.rowsErased = !store::find(database, store::idxdnk_no, household.number);
        }
    }
    return deletion;
}

void EraseHouseholdRows(const ErasedHousehold& household, desk::Deletion& deletion, desk::Desk& desk) {
    eraseFrom(store::idxdnk_no, &store::tbl_danka::tbldnk_no1, household, deletion, desk, householdMissing,
              u"指定された檀家さんは削除されました。"_s, household.number, household.branch);
}

void EraseFamily(const ErasedHousehold& household, desk::Deletion& deletion, desk::Desk& desk) {
    eraseFrom(store::idxkzk_kazoku, &store::tbl_kazoku::tblkzk_no1, household, deletion, desk,
              u"指定された檀家の家族を読めません。DBの整合性を確認して下さい"_s,
              u"指定された檀家の家族は削除されました。"_s, household.number, household.name, household.emptyName);
}

void EraseMemorials(const ErasedHousehold& household, desk::Deletion& deletion, desk::Desk& desk) {
    eraseFrom(store::idxhoy_hohyo, &store::tbl_hohyo::tblhoy_no, household, deletion, desk,
              u"指定された檀家の法要を読めません。DBの整合性を確認して下さい"_s,
              u"指定された檀家の法要は削除されました。"_s, household.number, household.emptyName, household.lowestDate);
}

void EraseDeathRegister(const ErasedHousehold& household, desk::Deletion& deletion, desk::Desk& desk) {
    eraseFrom(store::idxkak_kakochou, &store::tbl_kakocho::tblkak_no, household, deletion, desk,
              u"指定された檀家の過去帳を読めません。DBの整合性を確認して下さい"_s,
              u"指定された檀家の過去帳は削除されました。"_s, household.number, household.name, household.emptyName);
}

void DisposeGraves(const ErasedHousehold& household, desk::Deletion& deletion, desk::Desk& desk) {
    run(household, deletion, desk, u"指定された檀家さんのお墓はありません。登録内容を確認して下さい"_s,
        u"指定されたお墓は廃棄されました。"_s, [&](store::Database& database, store::Records& taken) {
            // Read to the end first: a replaced grave leaves the selection.
            const auto graves = store::gravesOf(database, household.number);
            store::Table table(database, store::idxhak_no);
            for (const store::tbl_ohaka& grave : graves) {
                const store::tbl_ohaka vacant = store::givenBack(grave, desk.today());
                table.seek(store::Seek::equal, grave.tblhak_no);
                taken.take(table, vacant);
                table.remove();
                table.insert(vacant);
            }
            return static_cast<int>(graves.size());
        });
}

} // namespace households
