#pragma once

#include <QByteArrayView>
#include <QString>

#include <optional>

// The Windows Japanese code page (932), strictly: JIS X 0208, the NEC and IBM extensions and the user-defined rows
// (U+E000 to U+E757). The bytes 0x80, 0xA0 and 0xFD to 0xFF denote nothing.
namespace values::cp932 {

// Appends the text of the bytes. Each byte that is part of no character becomes U+FFFD, which the code page itself does
// not hold; a lead byte takes nothing with it. False when there was such a byte.
bool decode(QByteArrayView bytes, QString& text);

// The bytes of a UTF-16 code unit: one byte below 0x100, else lead byte × 256 + trail byte. Of several places in the
// code page the one that Windows chooses. Nothing where the code page does not hold it.
std::optional<quint16> encode(char16_t unit);

} // namespace values::cp932
