#pragma once

#include "desk/desk.h"
#include "desk/form.h"
#include "desk/list_form.h"
#include "desk/screen_context.h"
#include "store/database.h"
#include "store/schema.h"

namespace graves {

// Fills the drop-down list with the sections that have graves, in index order, 100 at most; the box is emptied first.
void CMB区画(store::Database& database, desk::Combo& list);

// A place in the graves of one section.
struct PlaceKey {
    QString section; // tblhak_banchi1
    QString lot;     // tblhak_banchi2; empty: the start of the section

    bool operator==(const PlaceKey&) const = default;
};

PlaceKey placeOf(const store::tbl_ohaka& grave);

// Hands over the graves of the key's section, in the order of their lots, from the key's lot on; no grave at or after
// it: false.
bool walkSection(const PlaceKey& from, const std::function<bool(const store::tbl_ohaka&)>& take);

// The section that the box names becomes the one to list. An empty box is told under the title and gives nothing.
std::optional<PlaceKey> sectionChosen(const desk::Combo& block, const QString& title, desk::Desk& desk);

// A grave in a list of graves with its dates in era form.
struct ListedGrave : store::tbl_ohaka {
    QString startEra = {};
    QString billingEra = {};
    QString disposalEra = {}; // of disposed graves
};

// The thirteen columns of a list of graves under the headers of お墓一, and what fills the era texts of a page.
std::vector<desk::ListColumn<ListedGrave>> graveColumns();
void fillEraTexts(std::vector<ListedGrave>& page, desk::Desk& desk);

// Whether the register still holds a grave of this number.
bool graveExists(const store::tbl_ohaka& grave);

using GraveList = desk::PagingList<ListedGrave, PlaceKey>;

// The graves of the position's section, as walkSection gives them.
bool listedGraves(const PlaceKey& from, const GraveList::Take& take);

struct お墓一Form : desk::ListForm<ListedGrave, PlaceKey> {
    desk::Combo frm21_block;

    お墓一Form();

  protected:
    bool read(const PlaceKey& from, const Take& take) const override;
    int total() const override;
};

// The operations of the list of graves by section. Messages bear the title "お墓一覧".
void beginGraveList(お墓一Form& form, desk::ScreenContext& context, desk::Desk& desk);
// A section has been chosen in frm21_block.
void chooseSection(お墓一Form& form, desk::ScreenContext& context, desk::Desk& desk);
// お墓: opens the highlighted grave, one without household in お墓新. The list returns to its first page afterwards.
void openGrave(お墓一Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 檀家: opens the household of the highlighted grave; the same afterwards.
void openHousehold(お墓一Form& form, desk::ScreenContext& context, desk::Desk& desk);

} // namespace graves
