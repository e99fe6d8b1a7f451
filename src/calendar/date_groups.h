#pragma once

#include "desk/desk.h"
#include "desk/form.h"
#include "desk/save_attempt.h"
#include "desk/screen_context.h"
#include "store/database.h"

#include <QDate>
#include <QString>

#include <cstdint>
#include <optional>

// Date input groups: showing, checking and storing the era form beside the Western date.
namespace calendar {

// Field numbers of the date groups, as the messages name them.
enum DateField : std::int16_t {
    使用開始日 = 1,
    使用料受領日,
    管理費受領日,
    管理費次回請求日,
    法要予定日,
    法要実施日,
    生年月日,
    命日,
};

// Checks one group on the context's check state, whose chk_dtidx (1 to 8) tells which it is: colours year, month and
// day, records a failure, and leaves the Western date in chk_ymd ("yyyy/mm/dd"; as built when it is no date of the
// calendar; empty when the group is empty or its era is unknown, of which a message tells). The out-value is the
// Western year with month and day as typed, and is not assigned when chk_ymd stays empty.
void CHK日付(store::Database& database, desk::DateGroup& group, QString& western, desk::ScreenContext& context,
             desk::Desk& desk);

// One date group at its place in a save attempt: checks it and puts chk_ymd into the Western box, red when it is no
// date. The date is optional: with an empty group or an unknown era the box is left empty and the attempt goes on.
// Gives the date, absent (invalid) where there is none.
QDate checkDate(store::Database& database, desk::DateGroup& group, DateField field, desk::ScreenContext& context,
                desk::Desk& desk);

// The same for a date that must be there: none is a failure of the attempt (生年月日に正しく入力して下さい).
QDate checkRequiredDate(store::Database& database, desk::DateGroup& group, DateField field,
                        desk::ScreenContext& context, desk::Desk& desk);

// The four era boxes as a row stores them; an empty number box is an absent number.
struct EraFields {
    QString gname;
    std::optional<std::int16_t> gyy;
    std::optional<std::int16_t> gmm;
    std::optional<std::int16_t> gdd;
};

EraFields eraFields(const desk::DateGroup& group);

// Shows a stored date with the era form stored beside it; both may be absent.
void showDate(desk::DateGroup& group, const EraFields& era, QDate date);

// Shows a stored date whose era form is not stored: derives it. Shows the message of 西暦変換 when there is no era.
void showDate(store::Database& database, desk::DateGroup& group, QDate date, desk::Desk& desk);

} // namespace calendar
