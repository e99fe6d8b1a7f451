#pragma once

#include "desk/deletion.h"
#include "desk/desk.h"
#include "desk/held.h"
#include "desk/screen_context.h"

#include <QDate>
#include <QString>

#include <cstdint>

// 檀家抹消: erases a household and what belongs to it. Each step is one write and is told of under the title
// 檀家の抹消; Enter answers none of its questions with はい.
namespace households {

// What the steps work on.
struct ErasedHousehold {
    std::int16_t number = 0; // at least 1
    QString name;            // the household's name, kanji
    std::int16_t branch = 0;
    QString emptyName;
    QDate lowestDate;
    // The household that a screen shows, a new one where none is stored under the number: a step that finds the number
    // to be another's by now deletes nothing. Null: not compared.
    const desk::Held<store::tbl_danka>* held = nullptr;
    bool rowsErased = false; // by a former step

    explicit ErasedHousehold(const desk::ScreenContext& context, const desk::Held<store::tbl_danka>* held = nullptr);
};

// Asks once for each kind of data and runs its step after a Yes; goes on to the next whatever the answer or the result,
// a failure that was told included.
// Before the first step the register is copied (desk::copyBefore); where the user stops there, nothing is erased and
// nothing more asked. Gives what was taken, whose undo the caller offers.
desk::Deletion EraseHousehold(desk::ScreenContext& context, desk::Desk& desk,
                              const desk::Held<store::tbl_danka>* held = nullptr);

// Deletes every branch of the number.
void EraseHouseholdRows(const ErasedHousehold& household, desk::Deletion& deletion, desk::Desk& desk);
// Deletes the number's rows from those that bear the household's name on, in index order; rows whose copy of the name
// sorts before it stay.
void EraseFamily(const ErasedHousehold& household, desk::Deletion& deletion, desk::Desk& desk);
void EraseDeathRegister(const ErasedHousehold& household, desk::Deletion& deletion, desk::Desk& desk);
// Deletes every memorial of the number.
void EraseMemorials(const ErasedHousehold& household, desk::Deletion& deletion, desk::Desk& desk);
// Gives the number's graves back: each becomes a vacant, disposed grave that keeps number, place and fees.
void DisposeGraves(const ErasedHousehold& household, desk::Deletion& deletion, desk::Desk& desk);

} // namespace households
