#pragma once

#include <QFont>

namespace ui {

// How large the program's letters are, as the user chose it: for the screens, never for what is printed.
enum class TextSize { standard, large, largest };

// The size kept for this user; standard where none is.
TextSize keptTextSize();
// Whether it is there at the next start.
bool keepTextSize(TextSize size);

// The font of text of standard size; the program takes it in the size kept for this user.
void beginWithFont(const QFont& standard);
// Gives the program's letters this size, on all that is open.
void useTextSize(TextSize size);
TextSize textSize();

} // namespace ui
