#pragma once

#include "memorials/service_form.h"

namespace memorials {

struct 法要外Form : ServiceForm {
    desk::List frm31_zoknameg; // the deceased to register for

    QStringList entryHouseholds;             // the household's name as the entry of each line bears it
    bool givenDeceased = false;              // opened for one deceased, not for all of the household
    desk::Held<store::tbl_hohyo> held;       // the new memorial
    desk::Held<store::tbl_hohyo> registered; // the one last registered here
};

// The operations of the extra memorial screen. Messages bear the title "法要・回忌外登録".
// Shows the context's deceased, read by his key; lists all of the household where none is given or he is not there.
void beginExtra(法要外Form& form, desk::ScreenContext& context, desk::Desk& desk);
// What an opening with this context asks for: another deceased or household than the one shown.
std::optional<desk::AskedRecord> askedExtra(const 法要外Form& form, const desk::ScreenContext& context);
// Names what the screen was opened for.
void nameOpened(const 法要外Form& form, desk::ScreenContext& context);
// After a choice in frm31_zoknameg: shows the deceased, read by the line's key, and publishes the entry whole.
void chooseDeceased(法要外Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 登録: writes the memorial of the deceased as the death register holds him now, new words in the same write.
void registerExtra(法要外Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 削除: the memorial of the deceased on the dates shown; while that is the one last registered here, only as it was
// registered.
void removeExtra(法要外Form& form, desk::ScreenContext& context, desk::Desk& desk);

} // namespace memorials
