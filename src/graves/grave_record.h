#pragma once

#include "desk/desk.h"
#include "desk/form.h"
#include "desk/held.h"
#include "desk/save_attempt.h"
#include "desk/screen_context.h"
#include "store/database.h"
#include "store/schema.h"

#include <cstdint>
#include <optional>
#include <vector>

// What the two grave screens share: the fields of one grave, how they are shown, checked and stored.
namespace graves {

struct GraveFields {
    desk::Text frm13_haka_no;
    desk::Text frm13_banchi1;
    desk::Text frm13_banchi2;
    desk::Option frm13_haka2; // 家
    desk::Option frm13_haka1; // 個
    desk::Text frm13_bohyo;
    desk::DateGroup 開始;
    desk::Text 墓地使用料;
    desk::DateGroup 受領;
    desk::Text 墓地管理費;
    desk::DateGroup 管受;
    desk::DateGroup 次回;
    desk::Text frm13_biko;

    // The grave last looked up or registered here.
    desk::Held<store::tbl_ohaka> held;
    // The number box still names it.
    bool namesGraveHeld() const;
};

// Fills the lists of the four date groups; once a screen.
void fillDateLists(store::Database& database, GraveFields& fields);

// The grave whose number the box names; nothing when there is none or the text is no 16-bit number.
std::optional<store::tbl_ohaka> findGrave(store::Database& database, const desk::Text& number);

// Empties the grave's part and shows the row in it. Kind and marker name of a vacant plot are not shown: the kind
// options keep their state. The grave becomes the one held.
void showGrave(store::Database& database, const store::tbl_ohaka& row, GraveFields& fields, desk::Desk& desk);

struct GraveDates {
    QDate start;
    QDate feeReceived;
    QDate upkeepReceived;
    QDate upkeepNext;
};

// The checks from the use start date on, in screen order; amounts that pass are shown with separators.
GraveDates checkDatesAndFees(store::Database& database, GraveFields& fields, desk::SaveAttempt& attempt,
                             desk::ScreenContext& context, desk::Desk& desk);

// Puts place, marker name, checked amounts and remarks into the row and clears the disposal flag. Dates that are absent
// leave the row's dates as they are.
void takeFields(const GraveFields& fields, const GraveDates& dates, store::tbl_ohaka& row);

// Every grave at the place that the boxes name, disposed ones too.
std::vector<store::tbl_ohaka> gravesAt(store::Database& database, const GraveFields& fields);

// Rewrites the grave held with what change(row) makes of it. Shows a message and writes nothing when it is gone or
// other than read; true when it was written.
bool editGrave(GraveFields& fields, const QString& title, desk::Desk& desk,
               const std::function<void(store::tbl_ohaka&)>& change);

// Deletes the grave held after the question, and clears hak_no where it names it; shows a message when the number box
// names another, or when it is gone or other than read.
void removeGrave(GraveFields& fields, const QString& question, const QString& title, desk::ScreenContext& context,
                 desk::Desk& desk);

// 廃棄: gives up the grave held; shows a message when the number box names another, or when it is gone or other than
// read.
void disposeGrave(GraveFields& fields, const QString& title, desk::Desk& desk);

// The grave that the context names; nothing where it names none.
std::optional<desk::AskedRecord> askedGrave(const desk::ScreenContext& context);
// Names the grave held in the context; none where there is none.
void nameShown(const GraveFields& fields, desk::ScreenContext& context);

// The message of a number box that names another grave than the one held.
void sayNumberChanged(const QString& title, desk::Desk& desk);

// 今日: the use starts today.
void startToday(GraveFields& fields, desk::Desk& desk);
// 受領今日: the management fee is received today.
void receiveToday(GraveFields& fields, desk::Desk& desk);
// 次回翌年: the fee is billed again a year after the next billing date that stands in the boxes or, where they are
// empty, after its receipt (of 29 February, on the 28th). Where there is no such date the bar says so.
void billNextYear(GraveFields& fields, desk::Desk& desk);

} // namespace graves
