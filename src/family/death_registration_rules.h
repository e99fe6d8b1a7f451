#pragma once

#include "desk/desk.h"
#include "desk/form.h"
#include "desk/screen_context.h"

// The death register of the context's household: screen 過去登, whose messages bear the title "過去帳登録".
namespace family {

struct 過去登Form {
    desk::Text frm11_no;
    desk::Text frm11_dankag;
    desk::Text frm11_dankak;
    desk::List frm11_kazoku;  // living members
    desk::List frm11_lzoku;   // their relationships, line for line
    desk::List frm11_kakocho; // the household's entries
    desk::Text frm11_zoknameg;
    desk::Text frm11_zoknamek;
    desk::DateGroup 生年;
    desk::DateGroup 命日;
    desk::Text frm11_kyounen;
    desk::Text frm11_kaimyoug;
    desk::Text frm11_kaimyouk;
    desk::Combo frm11_kankeisha;
    desk::Combo frm11_続柄;
    desk::Text frm11_bikou;
    desk::Option frm11_haka1; // 個人名, stored as 家
    desk::Option frm11_haka2; // 家, stored as 個
    desk::Option frm11_haka3; // 無し, stored as 無
    desk::Option frm11_haka_nai;
    desk::Option frm11_haka_soto;
    desk::List frm11_haka_abohyo; // marker names of the household's graves in use; keys: their numbers
    desk::Text frm11_haka_no;
    desk::Text frm11_haka_banchi;
    desk::Text frm11_haka_blk2;
};

// Fills the lists; shows the entry kak_zokunameg where one is given.
void openDeathRegister(過去登Form& form, desk::ScreenContext& context, desk::Desk& desk);

// After a choice in the lists: prepares a new entry from a living member, shows an entry (and publishes the deceased),
// takes a grave's number and place. Each shows a message when the register no longer holds what was chosen.
void takeMember(過去登Form& form, desk::ScreenContext& context, desk::Desk& desk);
void showEntry(過去登Form& form, desk::ScreenContext& context, desk::Desk& desk);
void takeGrave(過去登Form& form, desk::ScreenContext& context, desk::Desk& desk);

// 登録: writes the entry, marks the member deceased and, on request, writes the memorial schedule. Publishes the
// deceased.
void registerDeath(過去登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 更新, 削除: act on the entry last shown or registered, and on no other name.
void changeDeath(過去登Form& form, desk::ScreenContext& context, desk::Desk& desk);
void deleteDeath(過去登Form& form, desk::ScreenContext& context, desk::Desk& desk);

// 法要記録: publishes the deceased of the boxes and opens the list of the memorials.
void openMemorials(過去登Form& form, desk::ScreenContext& context, desk::Desk& desk);

} // namespace family
