#pragma once

#include "printing/label_sheet.h"

namespace printing {

// Writes an address vertically on a card: the postal code in its boxes, the address in one or two columns with numbers
// as 一二三, the name large with 様. Its characters are such as the font has. Adds the lines to the sheet; true when a
// text had to be set smaller than is read with ease. A postal code that has not seven digits stands above the boxes'
// place as it is stored.
bool writeVertically(const LabelAddress& address, const CardPlaces& places, const LabelFont& font, LabelSheet& sheet);

} // namespace printing
