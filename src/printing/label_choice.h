#pragma once

#include "desk/desk.h"
#include "desk/form.h"
#include "desk/paging_list.h"
#include "desk/screen_context.h"
#include "printing/label_stock.h"
#include "store/schema.h"

#include <QStringList>

#include <memory>
#include <optional>
#include <set>

// What the user chooses for the labels of a list of notices.
namespace printing {

// A row by its key, as one text.
QString rowKey(const store::tbl_hohyo& row);
QString rowKey(const store::tbl_ohaka& row);

struct LabelChoice {
    LabelStock stock = standardStock();
    int start = 0;                            // the first free label of the first sheet
    std::optional<QStringList> anniversaries; // of memorials; absent: all
    std::set<QString> unticked;               // rows left out, by their keys; all others are ticked

    bool takes(const store::tbl_hohyo& row) const { return takesAnniversary(row) && isTicked(row); }
    bool takes(const store::tbl_ohaka& row) const { return isTicked(row); }
    bool takesAnniversary(const store::tbl_hohyo& row) const {
        return !anniversaries || anniversaries->contains(row.tblhoy_kaiki_mei);
    }

  private:
    template <class Row> bool isTicked(const Row& row) const {
        return unticked.empty() || !unticked.contains(rowKey(row));
    }
};

// The column 通知選択 of a list.
inline const QString tickHeader = QStringLiteral("通知選択");
inline const QString ticked = QStringLiteral("☑");
inline const QString unticked = QStringLiteral("☐");
inline const QString leftOut = QStringLiteral("－"); // by its anniversary

// What the column shows of a row.
inline QString tickOf(const LabelChoice& choice, const store::tbl_hohyo& row) {
    return !choice.takesAnniversary(row) ? leftOut : choice.takes(row) ? ticked : unticked;
}
inline QString tickOf(const LabelChoice& choice, const store::tbl_ohaka& row) {
    return choice.takes(row) ? ticked : unticked;
}

// The column of a list's description.
template <class Row> desk::ListColumn<Row> tickColumn(std::shared_ptr<const LabelChoice> choice) {
    return {tickHeader, 900, [choice = std::move(choice)](const Row& row) { return tickOf(*choice, row); },
            desk::Align::center, desk::Align::center};
}

// The row last clicked was clicked on its tick: turns it over, in the choice and in the grid.
void turnTick(LabelChoice& choice, const QString& row, desk::Grid& grid);

// A click into the list, at a row shown: on a tick it turns it over.
template <class Row> void clickTick(LabelChoice& choice, const std::vector<Row>& rows, desk::Grid& grid) {
    if (grid.clickedColumn == grid.tickColumn && grid.clickedRow >= 1 && grid.clickedRow <= std::ssize(rows))
        turnTick(choice, rowKey(rows[static_cast<std::size_t>(grid.clickedRow - 1)]), grid);
}

// Shows the ticks of the rows shown anew.
template <class Row> void showTicks(const LabelChoice& choice, const std::vector<Row>& rows, desk::Grid& grid) {
    for (std::size_t i = 0; i < rows.size(); ++i)
        grid.rows[i][grid.tickColumn] = tickOf(choice, rows[i]);
}

// Opens 宛名設定 for a list; what it is left with is the choice from then on, and `changed` runs.
void openLabelSettings(LabelChoice& choice, desk::LabelBlock asked, desk::ScreenContext& context, desk::Desk& desk,
                       std::function<void()> changed);

// The sheets are out: the next ones begin with a whole one. Says so.
void startAnew(LabelChoice& choice, desk::Desk& desk);

} // namespace printing
