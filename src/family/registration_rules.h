#pragma once

#include "desk/desk.h"
#include "desk/form.h"
#include "desk/held.h"
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

    desk::Held<store::tbl_kazoku> held;
};

// Fills the lists and prepares a new member from the household, the one handed over or that of the file; shows the
// member kzk_nameg where one is given.
void beginFamily(家族登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// What an opening with this context asks for: a member, or a new one of another household than the one shown.
std::optional<desk::AskedRecord> askedMember(const 家族登Form& form, const desk::ScreenContext& context);
// Names the member shown in the context; none for a new one.
void nameShown(const 家族登Form& form, desk::ScreenContext& context);

// Shows the member chosen in the list; a message when the register does not hold him under the household's name.
void loadMember(家族登Form& form, desk::ScreenContext& context, desk::Desk& desk);

// Each asks before it writes, refuses with a message, refills the lists after a write. What is typed as relationship or
// district joins its master list in the same write. A member who is changed is living again; his name, being the key,
// is not changed. Change and deletion act on the member of the name in the box, as he was read when he was shown, or
// else when the button was pressed.
void registerMember(家族登Form& form, desk::ScreenContext& context, desk::Desk& desk); // 登録
void updateMember(家族登Form& form, desk::ScreenContext& context, desk::Desk& desk);   // 更新
void removeMember(家族登Form& form, desk::ScreenContext& context, desk::Desk& desk);   // 削除

} // namespace family
