#pragma once

#include "desk/list_form.h"
#include "ui/layout.h"

namespace ui {

// The grid of a list with its place and total below it, bound to the list: click, double click and Enter (opened), Page
// keys and wheel.
void addList(Layout& layout, Screen& screen, desk::AnyList& list, const Operation& opened);
// The buttons that every list has: 前ページ, 後ページ.
void addListButtons(Layout& layout, Screen& screen, desk::AnyList& list);

} // namespace ui
