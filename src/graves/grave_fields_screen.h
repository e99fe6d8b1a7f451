#pragma once

#include "graves/grave_record.h"
#include "ui/layout.h"

namespace graves {

// The frames of one grave on a grave screen: number with 照会, place, marker, remarks; beside them dates and fees with
// their copy buttons. kinds: the options of the marker kind.
void addGraveFields(ui::Layout& layout, ui::Screen& screen, GraveFields& fields,
                    std::initializer_list<ui::OptionItem> kinds, ui::Operation lookUp);

} // namespace graves
