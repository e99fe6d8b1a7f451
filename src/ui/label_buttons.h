#pragma once

#include "printing/label_choice.h"
#include "printing/label_printer.h"
#include "ui/layout.h"

namespace ui {

struct LabelOperations {
    Operation setUp;
    std::function<void(printing::LabelPrinter&)> preview;
    std::function<void(printing::LabelPrinter&)> print;
};

// The buttons of a list whose rows get labels: 宛名設定, 印刷プレビュー and 通知, the latter two as long as nothing in
// the choice speaks against it. The choice begins with the sheet that the user chose last.
void addLabelButtons(Layout& layout, Screen& screen, printing::LabelChoice& choice, LabelOperations run);

} // namespace ui
