#pragma once

#include <QByteArray>
#include <QFont>

namespace printing {

// The toolkit names a glyph that two characters share by the first of them: 目 by its radical ⽬. Whoever searches or
// copies the text of such a PDF would not find what was printed. Appends the right names to a PDF of the toolkit,
// painted in this font; one that needs none stays as it is.
void nameCharacters(QByteArray& pdf, const QFont& font);

} // namespace printing
