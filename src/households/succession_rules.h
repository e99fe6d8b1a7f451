#pragma once

#include "desk/desk.h"
#include "desk/form.h"
#include "desk/screen_context.h"

// 代替当: a living member of the household becomes its head.
namespace households {

struct 代替当Form {
    desk::Text frm01_no;
    desk::Text frm01_eno;
    desk::Text frm01_dankag;
    desk::Text frm01_dankak;
    desk::Option frm01_dnkkbn1;
    desk::Option frm01_dnkkbn2;
    desk::List frm01_toshug;   // names of the living members
    desk::List frm01_tsh_zkgr; // their relationships, line by line
    desk::Text frm01_toshuk;
    desk::Text frm01_yubinno;
    desk::Text frm01_jyusho1;
    desk::Text frm01_jyusho2;
    desk::Text frm01_tel;
    desk::Text frm01_fax;
    desk::Combo frm01_地区;
    desk::Text frm01_biko;
};

// Messages bear the title 代替り処理.

// Shows the context's household, read from the file first when the context lacks its address, and lists its living
// members.
void LoadSuccession(代替当Form& form, desk::ScreenContext& context, desk::Desk& desk);
// A line of frm01_toshug has been chosen: shows the member's name, address and contacts.
void PickNewHead(代替当Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 更新: after a Yes writes tbl_danka, then, as a second write, the new head's row of tbl_kazoku. Emptied optional
// fields (second address line, fax, district, remarks) leave what is stored.
void CarryOutSuccession(代替当Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 家族一覧: hands the shown household over and opens its family list.
void openFamilyOfSuccession(代替当Form& form, desk::ScreenContext& context, desk::Desk& desk);

} // namespace households
