#pragma once

#include "desk/desk.h"
#include "desk/form.h"
#include "store/database.h"
#include "store/schema.h"

#include <QDate>
#include <QString>
#include <QStringView>

#include <cstdint>
#include <map>
#include <optional>

// The era table and what it converts. Conversions go by year alone: a change-over year belongs wholly to the newer era.
namespace calendar {

// A date in era form, as texts.
struct EraDate {
    QString full; // 平成20年2月12日; the first year is written 1
    QString era;
    QString year;
};

struct EraOfYear {
    store::tbl_nengo era;
    bool covers = false; // the year is not after the era's last one
};

// The era that a Western year falls in: of the eras that begin in or before it the latest; from there on forward the
// first that has not ended before it, the last of the table when all have. Nothing when the year is before every era.
std::optional<EraOfYear> eraOfYear(store::Database& database, int year);

// The date in era form; nothing when its year is before every era or the date is absent.
std::optional<EraDate> eraDate(store::Database& database, QDate date);

// Western date to era. Without an era the outputs stay as they are and a message is shown; an absent date gives empty
// outputs.
void 西暦変換(store::Database& database, QDate date, EraDate& result, desk::Desk& desk);

// The full era text of 西暦変換; empty where there is none.
QString eraText(store::Database& database, QDate date, desk::Desk& desk);

// 平成20年2月12日 from the four stored fields of a date, as they are.
QString eraText(const QString& gname, std::optional<int> gyy, std::optional<int> gmm, std::optional<int> gdd);

// The first eraText for the dates of one page of a list, which lie in few years: looks up the era of each year once.
class EraTexts {
  public:
    EraTexts(store::Database& database, desk::Desk& desk) : database_(database), desk_(desk) {}
    QString of(QDate date);

  private:
    store::Database& database_;
    desk::Desk& desk_;
    std::map<int, std::optional<EraOfYear>> eras_;
};

// Era name and era year to the Western year as text. The last year of the era is not consulted; 0 and negative years
// count on. With an unknown name (or a year that is no 16-bit number) it shows a message, sets the error flag to 1 and
// gives an empty text; the flag is left alone otherwise.
QString 元号変換(store::Database& database, const QString& era, const QString& year, std::int16_t& error,
                 desk::Desk& desk);

// Appends to the group's boxes: the era names, newest first, and the years 1 to 100, months and days. Called once a
// group when its screen is loaded.
void CMB年号(store::Database& database, desk::DateGroup& group);

// A date as typed into a date-range box: Western, or in era form with the era's name or the initial of one of the last
// five (令和8年11月22日, R8.11.22). Nothing when it is no date of the calendar or its era is not in the table.
std::optional<QDate> readDate(store::Database& database, QStringView text);

} // namespace calendar
