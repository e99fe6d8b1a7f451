#include "desk/form.h"

namespace desk {

void List::clear() {
    items.clear();
    keys.clear();
    current = -1;
}

QString Grid::cell(int row, int column) const {
    if (row < 1 || row > static_cast<int>(rows.size()))
        return {};
    return rows[static_cast<std::size_t>(row - 1)].value(column);
}

void DateGroup::clear() {
    for (Combo* box : {&era, &year, &month, &day})
        box->text.clear();
    western.text.clear();
}

void DateGroup::copyFrom(const DateGroup& source) {
    era.text = source.era.text;
    year.text = source.year.text;
    month.text = source.month.text;
    day.text = source.day.text;
    if (!source.western.text.isEmpty())
        western.text = source.western.text;
}

} // namespace desk
