#pragma once

#include "desk/desk.h"
#include "desk/form.h"
#include "desk/held.h"
#include "desk/save_attempt.h"
#include "desk/screen_context.h"
#include "store/database.h"
#include "store/schema.h"

// What 法要明 and 法要外 share: the deceased, the booking and the holding of one memorial service.
namespace memorials {

struct ServiceForm {
    desk::Text frm31_no;
    desk::Text frm31_dankag;
    desk::Text frm31_dankak;
    desk::Text frm31_zoknamek;
    desk::Text frm31_kaimyoug;
    desk::Text frm31_kaimyouk;
    desk::Text frm31_mei_gymd;
    desk::Text frm31_kyounen;
    desk::Text frm31_moshu;
    desk::Text frm31_mshzkgr;
    desk::Text frm31_kaak_bikou;

    desk::Text frm31_hohyo_mei;
    desk::Text frm31_ygymd;
    desk::DateGroup 予約;
    desk::Option frm31_am;
    desk::Option frm31_pm;
    desk::Combo 開始時;
    desk::Combo 開始分;
    desk::Combo frm31_法要場所;
    desk::DateGroup 実施;
    desk::List 施主; // living members of the household
    desk::Combo frm31_続柄;
    desk::Text frm31_ofuse;
    desk::Text frm31_hoybikou;
};

// Fills the drop-down lists and chooses 午前.
void fillServiceLists(store::Database& database, ServiceForm& form);

// The household's living members in the order of the selection's closing words.
void fillLiving(store::Database& database, desk::List& list, std::int16_t household, const std::string& order);

// Shows the context's household and deceased, the secular name apart.
void showHousehold(ServiceForm& form, const desk::ScreenContext& context);
void showDeceased(store::Database& database, ServiceForm& form, const desk::ScreenContext& context, desk::Desk& desk);

// The date of death in the era form that the entry stores beside it.
QString deathText(const store::tbl_kakocho& entry);

// Checks both dates, time, place, 施主 and offering as one save attempt, in screen order; rewrites an empty minute as
// "00" and the offering with separators. The caller adds its own checks and reports.
desk::SaveAttempt CheckMemorialInput(store::Database& database, ServiceForm& form, desk::ScreenContext& context,
                                     desk::Desk& desk);

// Writes a checked form into the memorial: a booking and a holding only where their date is given, so that no flag is
// lowered; place, 施主, relationship, offering and remarks always.
void writeService(const ServiceForm& form, store::tbl_hohyo& row);

// Adds relationship and place to the master lists when they are new; meant for the write of the memorial.
void keepWords(store::Database& database, const ServiceForm& form);

// 予約通り実施: the held date becomes the reservation's.
void holdAsBooked(ServiceForm& form);

// 削除: asks, deletes the memorial where the file holds it as read, and tells. True when it was deleted.
bool removeMemorial(store::Database& database, desk::Held<store::tbl_hohyo>& memorial, const QString& title,
                    desk::Desk& desk);

// The entry of the death register that the context names; nothing where there is none.
std::optional<store::tbl_kakocho> readEntry(store::Database& database, const desk::ScreenContext& context);

inline const QString memorialMissing = QStringLiteral("指定された法要を読めませんません。DBの整合性を確認して下さい");
inline const QString registerEntryMissing = QStringLiteral("過去帳が取出せません、ﾃﾞｰﾀﾍﾞｰｽの整合性を確認して下さい。");

} // namespace memorials
