#pragma once

#include "desk/desk.h"
#include "desk/form.h"
#include "desk/screen_context.h"
#include "households/registration_rules.h"

// 代替当: a living member of the household becomes its head.
namespace households {

struct 代替当Form : HouseholdFields {
    desk::List frm01_toshug;   // names of the living members
    desk::List frm01_tsh_zkgr; // their relationships, line by line

    QStringList householdNames; // the household's name as each of them bears it, line by line

    desk::Held<store::tbl_kazoku> newHead; // as read when its line was chosen
};

// Messages bear the title 代替り処理.

// Reads the household of dnk_no1 and dnk_no2, shows it, or the boxes that were handed over for it, and lists its living
// members.
void LoadSuccession(代替当Form& form, desk::ScreenContext& context, desk::Desk& desk);
// A line of frm01_toshug has been chosen: shows the member's name, address and contacts. One who has died, or who is
// not found under the household's name, is told of and chosen no more; the boxes stay.
void PickNewHead(代替当Form& form, desk::ScreenContext& context, desk::Desk& desk);
// The boxes that show something else than the household opened, by their object names, and what is to be known of them:
// their labels, and which empty ones leave what is stored. The head himself apart; nothing before a household is shown.
struct Differences {
    QStringList boxes;
    QString text;
};
Differences differences(const 代替当Form& form);
// 更新: after a Yes writes the household that was opened in tbl_danka, then, as a second write, the new head's row of
// tbl_kazoku; neither where household or member is other than read. Emptied optional fields (second address line, fax,
// district, remarks) leave what is stored. After a change of names the bar offers to bring their copies into step.
void CarryOutSuccession(代替当Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 家族一覧: hands the shown household over and opens its family list.
void openFamilyOfSuccession(代替当Form& form, desk::ScreenContext& context, desk::Desk& desk);

} // namespace households
