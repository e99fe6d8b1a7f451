#pragma once

namespace store {

// SQL texts (UTF-8) that make and fill a new register, from the files of the same names in data/.
extern const char* const embedded_schema;
extern const char* const embedded_nengo;
extern const char* const embedded_master;
// The table of data/variants.txt.
extern const char* const embedded_variants;
// The steps of data/upgrades/ in their order, ended by a null pointer.
extern const char* const embedded_upgrades[];

} // namespace store
