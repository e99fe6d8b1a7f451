#pragma once

#include "desk/desk.h"
#include "desk/form.h"
#include "desk/held.h"
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

    QStringList entryHouseholds; // the household's name as each entry of frm11_kakocho bears it, line by line
    desk::Held<store::tbl_kakocho> held;
};

// Fills the lists from the household handed over, or that of the file; shows the entry kak_zokunameg where one is
// given.
void beginDeathRegister(過去登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// What an opening with this context asks for: an entry, or another household than the one shown.
std::optional<desk::AskedRecord> askedEntry(const 過去登Form& form, const desk::ScreenContext& context);
// Publishes the entry held; no deceased where there is none.
void publishShown(const 過去登Form& form, desk::ScreenContext& context);

// After a choice in the lists: prepares a new entry from a living member, shows an entry (and publishes the deceased),
// takes a grave's number and place. Each shows a message when the register no longer holds what was chosen.
void takeMember(過去登Form& form, desk::ScreenContext& context, desk::Desk& desk);
void loadEntry(過去登Form& form, desk::ScreenContext& context, desk::Desk& desk);
void takeGrave(過去登Form& form, desk::ScreenContext& context, desk::Desk& desk);

// 登録: writes the entry and marks the member deceased, as one write; one who is no member leaves the entry alone there
// and is told of. On request writes the memorial schedule. Publishes the deceased.
void registerDeath(過去登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 更新, 削除: act on the entry last shown or registered, on no other name, and only while the file holds it as read.
void updateDeath(過去登Form& form, desk::ScreenContext& context, desk::Desk& desk);
void removeDeath(過去登Form& form, desk::ScreenContext& context, desk::Desk& desk);

// 法要記録: hands the deceased of the boxes over to the list of the memorials and opens it.
void openMemorials(過去登Form& form, desk::ScreenContext& context, desk::Desk& desk);

} // namespace family
