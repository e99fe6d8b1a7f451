#pragma once

#include "desk/desk.h"
#include "desk/form.h"
#include "desk/held.h"
#include "desk/screen_context.h"
#include "store/database.h"

namespace masters {

enum class Category : std::int16_t { 続柄 = 1, 地区 = 2, 場所 = 3 };

// Empties the drop-down list and fills it with the short names of the category in entry order; the text in the box
// stays.
void CMB設定(store::Database& database, Category category, desk::Combo& list);

// Makes sure that a word typed by the user is in the category: a text that equals no entry's full or short name is
// added behind the last entry, as both. An empty text adds nothing.
void MST設定(store::Database& database, Category category, const QString& text);

struct マスター登Form {
    desk::Option 続柄;
    desk::Option 地区;
    desk::Option 場所;
    desk::Grid マスタ一;
    desk::Text 登録NO;
    desk::Text 登録名称;
    desk::Text 登録略称;
    desk::Held<store::マスタ> held;
};

// The operations of the master screen. Messages bear the title "ｺｰﾄﾞﾏｽﾀｰ情報".
void beginMasters(マスター登Form& form, desk::ScreenContext& context, desk::Desk& desk); // chooses 続柄
// The category that the option buttons show has been chosen: empties the boxes and lists its entries.
void chooseCategory(マスター登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// Lists the category chosen and shows the entry that the number in the box names; where there is none, the boxes show a
// new one with that number.
void lookUpNamedEntry(マスター登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// After a click on the grid: shows the entry in the boxes.
void pickEntry(マスター登Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 確定 and 削除 write the entry that category and 登録NO name; one that the screen does not show is read when the
// button is pressed. Where it is another in the file after Yes, this is told and nothing is written.
void saveEntry(マスター登Form& form, desk::ScreenContext& context, desk::Desk& desk);
void removeEntry(マスター登Form& form, desk::ScreenContext& context, desk::Desk& desk);

} // namespace masters
