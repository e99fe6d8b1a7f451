#pragma once

#include "store/table.h"

#include <cstdint>
#include <vector>

// Selections that several rooms make.
namespace store {

// Counts the households that are no branch.
std::string householdCountSql();

// The members of a household, deceased ones included, by birth date, then name.
std::vector<tbl_kazoku> familyOf(Database& database, std::int16_t no1);

// The death-register entries of a household by date of death, then secular name.
std::vector<tbl_kakocho> deathRegisterOf(Database& database, std::int16_t no1);

// The graves of a household, disposed ones included, by marker name.
std::vector<tbl_ohaka> gravesOf(Database& database, std::int16_t no1);

} // namespace store
