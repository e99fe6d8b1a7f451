#pragma once

#include "desk/desk.h"
#include "desk/form.h"
#include "desk/screen_context.h"

// The family of the context's household: screen 家族登, whose messages bear the title "家族登録".
namespace family {

struct 家族登Form {
    desk::Text frm12_no;
    desk::Text frm12_dankag;
    desk::Text frm12_dankak;
    desk::Text frm12_toshunameg;
    desk::List frm12_meibo; // living members
    desk::List frm12_mzkgr; // their relationships, line for line
    desk::Text frm12_nameg;
    desk::Text frm12_namek;
    desk::DateGroup 生年;
    desk::Combo frm12_続柄;
    desk::Option frm12_dohkyo;
    desk::Option frm12_bekkyo;
    desk::Text frm12_yubinno;
    desk::Text frm12_jyusho1;
    desk::Text frm12_jyusho2;
    desk::Text frm12_tel;
    desk::Text frm12_fax;
    desk::Combo frm12_地区;
    desk::Text frm12_bikou;
};

// Fills the lists and prepares a new member from the household; shows the member kzk_nameg where one is given.
void openFamily(家族登Form& form, desk::ScreenContext& context, desk::Desk& desk);

// Shows the member chosen in the list; a message when the register does not hold him under the household's name.
void showMember(家族登Form& form, desk::ScreenContext& context, desk::Desk& desk);

// Each asks before it writes, refuses with a message, refills the lists after a write. What is typed as relationship or
// district joins its master list. A member who is changed is living again; his name, being the key, is not changed.
void registerMember(家族登Form& form, desk::ScreenContext& context, desk::Desk& desk); // 登録
void changeMember(家族登Form& form, desk::ScreenContext& context, desk::Desk& desk);   // 更新
void deleteMember(家族登Form& form, desk::ScreenContext& context, desk::Desk& desk);   // 削除

} // namespace family
