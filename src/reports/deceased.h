#pragma once

#include "reports/era_forms.h"
#include "reports/report.h"

#include <cstdint>
#include <optional>

// What the reports of the dead share.
namespace reports {

// An entry of the death register that bears a date of death.
struct Deceased {
    std::int16_t household = 0;
    QString householdName; // as the entry bears it
    QString secularName;
    QString posthumousName;
    QDate death;
    QString deathText; // in era form
    bool householdFound = false;
    QString head; // of the household
};

// The entries whose date of death fulfils a condition (SQL over tbl_kakocho, its values bound in order), by the
// household's kana and number, then by secular name.
std::vector<Deceased> selectDeceased(store::Database& database, EraForms& eras, const std::string& condition,
                                     const QStringList& values);

// Notes of what the list cannot show: entries without a date of death or with one that is none, and of those it shows
// (each once) the ones whose household cannot be found.
void noteDeceased(printing::Listing& list, store::Database& database, qint64 withoutHousehold);

// "山田（3）"
QString householdText(const Deceased& deceased);

} // namespace reports
