#pragma once

#include <QString>
#include <QStringView>

#include <cstdint>
#include <optional>

namespace values {

// True when the text denotes a decimal number as people type one: half-width or full-width digits, a sign in front,
// commas between groups of three digits of the whole part, a fraction, blanks around. Empty text, hexadecimal forms
// and exponents are not numbers.
[[nodiscard]] bool isNumeric(QStringView text);

// The whole number that the text denotes; a fraction is rounded to the nearest whole number, a half to the even one.
// Nothing when the text is not numeric or does not fit in 64 bits.
[[nodiscard]] std::optional<qint64> readWhole(QStringView text);

// readWhole() limited to -32768..32767; nothing outside.
[[nodiscard]] std::optional<std::int16_t> readInt16(QStringView text);

// The 16-bit number of a record: a text with a decimal point denotes none, for a number that names a record is never
// rounded.
[[nodiscard]] std::optional<std::int16_t> readKeyNumber(QStringView text);

// readWhole() limited to 32 bits; whole yen. Nothing outside.
[[nodiscard]] std::optional<std::int32_t> readMoney(QStringView text);

// The amount in whole yen with a comma between groups of three digits; 0 is "0".
[[nodiscard]] QString moneyText(qint64 yen);

// A stored number or amount as its box or cell shows it; empty where there is none.
[[nodiscard]] QString shownNumber(std::optional<int> number);
[[nodiscard]] QString shownMoney(std::optional<std::int32_t> yen);

// The text with full-width digits, signs, commas, full stops and slashes turned into their half-width forms. For
// numbers and dates only: names keep the characters they were typed with.
[[nodiscard]] QString halfWidth(QStringView text);

} // namespace values
