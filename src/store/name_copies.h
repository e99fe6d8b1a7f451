#pragma once

#include "store/database.h"

#include <QStringList>

#include <cstdint>
#include <optional>
#include <vector>

namespace store {

// A family, death-register, memorial or grave row whose copy of its household's names differs from the household's own.
struct NameCopy {
    QString kind; // 家族, 過去帳, 法要, お墓
    QString name; // what tells the row from the household's others
    int household = 0;
    QString copied; // written form and reading, as they stand in the row
    QString own;    // as they stand in the household
    // The number has branches of several names and the row does not tell which is its household: own is empty and the
    // row is left alone.
    bool ambiguous = false;
};

QStringList kindsOfNameCopies();

// Every such row, by household number, or those of one number. Rows without a household are no such rows.
std::vector<NameCopy> findNameCopies(Database& database, std::optional<std::int16_t> household = {});

// How many rows of a number bear exactly these names.
int countNameCopies(Database& database, std::int16_t household, const QString& nameg, const QString& namek);

// Brings them into step with their households, names and kana index, in one write. Gives those that were left: the
// ambiguous ones, and those that would become the same as another row of their household.
std::vector<NameCopy> writeNameCopies(Database& database, std::optional<std::int16_t> household = {});

} // namespace store
