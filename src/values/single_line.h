#pragma once

#include <QString>
#include <QStringView>

namespace values {

// The text as one line that can be printed: line breaks, tabs and the blanks beside them become one blank, at the ends
// none; control characters, halves of a character and what turns the direction of writing are left out. Names stay as
// they are otherwise, characters of one's own included.
[[nodiscard]] QString singleLine(QStringView text);

// Whether singleLine() would leave the text as it is.
[[nodiscard]] bool isSingleLine(QStringView text);

} // namespace values
