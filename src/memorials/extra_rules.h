#pragma once

#include "memorials/service_form.h"

#include <optional>

namespace memorials {

struct 法要外Form : ServiceForm {
    desk::List frm31_zoknameg; // the deceased to register for

    std::optional<MemorialKey> registered; // the memorial last registered here
};

// The operations of the extra memorial screen. Messages bear the title "法要・回忌外登録".
// Lists the context's deceased, or all of the household where none is given.
void openExtra(法要外Form& form, desk::ScreenContext& context, desk::Desk& desk);
// After a choice in frm31_zoknameg: shows the deceased and publishes the block.
void chooseDeceased(法要外Form& form, desk::ScreenContext& context, desk::Desk& desk);
void registerExtra(法要外Form& form, desk::ScreenContext& context, desk::Desk& desk); // 登録
// 削除: the memorial last registered here, else that of the deceased on the dates shown.
void deleteExtra(法要外Form& form, desk::ScreenContext& context, desk::Desk& desk);

} // namespace memorials
