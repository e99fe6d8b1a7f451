#pragma once

#include "desk/desk.h"
#include "desk/paging_list.h"
#include "desk/screen_context.h"

#include <QString>

#include <array>
#include <cstdint>
#include <vector>

namespace households {

// One line of a kana tab: the columns that the saved queries return.
struct KanaLine {
    std::int16_t no1 = 0;
    std::array<QString, 7> texts; // name, kana, head, district, address, telephone, remarks
};

struct KanaTab {
    QString caption;
    const char* query; // the saved query that the tab shows
};

// The eleven tabs in their order.
const std::array<KanaTab, 11>& kanaTabs();

// The households of all eleven tabs as they stand in the file now, each tab ordered as a Japanese reader expects: by
// reading, hiragana, katakana and half-width forms together; equal readings in number order.
std::array<std::vector<KanaLine>, 11> readKanaTabs();

// The columns that each tab shows.
const std::vector<desk::ListColumn<KanaLine>>& kanaColumns();

struct 檀家一覧Form {
    std::array<std::vector<KanaLine>, 11> tabs; // as they stood in the file when the screen opened
    // The household chosen last in any tab, 0 and empty until then; its tab, and its row there, from 1.
    std::int16_t chosenNo = 0;
    QString chosenName;
    std::size_t chosenTab = 0;
    int chosenRow = 0;
};

void beginKanaList(檀家一覧Form& form, desk::ScreenContext& context, desk::Desk& desk);
// A click into a tab. Beside its rows it is told under the title 檀家一覧, and the choice stays.
void chooseHousehold(檀家一覧Form& form, std::size_t tab, int row, desk::Desk& desk);

// A button of the list: clears the context, sets the chosen household and opens the screen.
void openChosen(const 檀家一覧Form& form, desk::ScreenContext& context, desk::Desk& desk, const QString& screen);

} // namespace households
