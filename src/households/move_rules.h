#pragma once

#include "desk/desk.h"
#include "households/registration_rules.h"

#include <functional>
#include <optional>

// What a household's 更新 leaves behind in the rows that copy from it.
namespace households {

// The living members whose address (postal code and both lines) or telephone is still what the household's was before
// it was rewritten. Of a household with branches those of its own branch number only. 0 where nothing of it changed.
int membersLeftBehind(store::Database& database, const store::tbl_danka& before, const store::tbl_danka& after);

// Writes the household's address and telephone into those copies, nothing else, all in one write that first compares
// the household with the row held. Gives the number of members written; nothing, after telling why, where the household
// is other than held.
std::optional<int> moveFamily(store::Database& database, const desk::Held<store::tbl_danka>& household,
                              const store::tbl_danka& before, const desk::Refusal& words, desk::Desk& desk);

// After a household was rewritten: offers in the bar what concerns the members left behind (家族n人も直す) and, where
// the household's names changed, the rows that still bear the former ones (写しn件の檀家名も直す: after a copy of the
// register, what hoshiren-db names --write does, for this household). Says done before. Offers nothing where nothing is
// left. Copies of the former names that a branch of the number bears as well are told of and left. The household must
// outlive the offers; messages bear the title of the words. corrected runs when the names have been brought into step.
void offerCopies(const desk::Held<store::tbl_danka>& household, const store::tbl_danka& before,
                 const desk::Refusal& words, desk::Desk& desk, const QString& done = {},
                 const std::function<void()>& corrected = {});

} // namespace households
