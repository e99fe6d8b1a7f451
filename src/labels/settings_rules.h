#pragma once

#include "desk/desk.h"
#include "desk/form.h"
#include "desk/screen_context.h"
#include "printing/label_stock.h"

#include <optional>
#include <vector>

namespace labels {

struct 宛名設定Form {
    desk::List 回忌選択;      // an anniversary a line, with the number of its memorials
    std::vector<bool> ticked; // each of them
    desk::Combo 用紙;
    desk::Text 列数;
    desk::Text 段数;
    desk::Text ラベル幅;
    desk::Text ラベル高さ;
    desk::Text 左余白;
    desk::Text 上余白;
    desk::Text 左右間隔;
    desk::Text 上下間隔;
    desk::Text 開始番号;                       // of the first free label, from 1
    std::optional<printing::LabelStock> sheet; // chosen; none while the measures of the own one are wrong

    bool memorials = false;
    std::vector<desk::LabelBlock::Offered> offered;
    // The place that 開始番号 names on the sheet, from 0; none where it names none.
    std::optional<int> start() const;
};

// The operations of 宛名設定: which anniversaries, which sheet, which label first. Opened modal by a list of notices
// with a LabelBlock; 設定 gives it back and keeps the sheet in the user's settings. Messages bear the title "宛名設定".
void beginSettings(宛名設定Form& form, desk::ScreenContext& context, desk::Desk& desk);
void chooseSheet(宛名設定Form& form, desk::ScreenContext& context, desk::Desk& desk);  // or its measures
void tickAll(宛名設定Form& form, desk::ScreenContext& context, desk::Desk& desk);      // 回忌全選択
void tickNone(宛名設定Form& form, desk::ScreenContext& context, desk::Desk& desk);     // 回忌全解除
void takeSettings(宛名設定Form& form, desk::ScreenContext& context, desk::Desk& desk); // 設定

} // namespace labels
