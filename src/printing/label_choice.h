#pragma once

#include "desk/desk.h"
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
    QString rests;                            // why nothing that is listed now is labelled; empty: it is

    template <class Row> bool takes(const Row& row) const {
        return takesAnniversary(row) && (unticked.empty() || !unticked.contains(rowKey(row)));
    }
    bool takesAnniversary(const store::tbl_hohyo& row) const {
        return !anniversaries || anniversaries->contains(row.tblhoy_kaiki_mei);
    }
    bool takesAnniversary(const store::tbl_ohaka&) const { return true; }
};

// The column 通知選択 of a list. A row left out by its anniversary cannot be ticked.
template <class Row> desk::TickColumn<Row> labelTicks(std::shared_ptr<LabelChoice> choice) {
    const auto isTicked = [choice](const Row& row) {
        const bool offered = choice->rests.isEmpty() && choice->takesAnniversary(row);
        return offered ? std::optional(choice->takes(row)) : std::nullopt;
    };
    const auto turn = [choice, isTicked](const Row& row, desk::Desk& desk) {
        if (!choice->rests.isEmpty())
            desk.inform(choice->rests);
        else if (isTicked(row) && choice->unticked.erase(rowKey(row)) == 0)
            choice->unticked.insert(rowKey(row));
    };
    return {QStringLiteral("通知選択"), isTicked, turn};
}

// Opens 宛名設定 for a list; what it is left with is the choice from then on, and `changed` runs.
void openLabelSettings(LabelChoice& choice, desk::LabelBlock asked, desk::ScreenContext& context, desk::Desk& desk,
                       std::function<void()> changed);

// The sheets are out: the next ones begin with a whole one. Says so.
void startAnew(LabelChoice& choice, desk::Desk& desk);

} // namespace printing
