#include "values/cp932.h"

#include "values/cp932_table.h"

#include <array>

namespace values::cp932 {

namespace {

constexpr int trailCount = 188;
constexpr char16_t unassigned = u' ';
constexpr char16_t undecodable = u'\uFFFD';
constexpr char16_t halfKatakana = u'\uFF61'; // at byte 0xA1
constexpr char16_t userDefined = u'\uE000';  // at bytes 0xF0 0x40

constexpr int firstUserLead = 0xF0;
constexpr int lastUserLead = 0xF9;

// The place of a trail byte in its row, -1 where the byte cannot end a character.
constexpr int trailIndex(int byte) {
    return byte < 0x40 || byte > 0xFC || byte == 0x7F ? -1 : byte - (byte < 0x7F ? 0x40 : 0x41);
}

constexpr int trailByte(int index) {
    return index + (index < 0x7F - 0x40 ? 0x40 : 0x41);
}

// The characters of each lead byte; null where the byte leads nothing from the table.
constexpr auto rowsByLead = [] {
    std::array<const char16_t*, 256> byLead{};
    for (const Row& row : rows)
        byLead[row.lead] = row.characters;
    return byLead;
}();

char16_t pair(int lead, int trail) {
    const int index = trailIndex(trail);
    if (index < 0)
        return undecodable;
    if (lead >= firstUserLead && lead <= lastUserLead)
        return static_cast<char16_t>(userDefined + (lead - firstUserLead) * trailCount + index);
    const char16_t* row = rowsByLead[static_cast<std::size_t>(lead)];
    return row && row[index] != unassigned ? row[index] : undecodable;
}

// Bytes by code unit, 0 where there are none (NUL itself apart).
const std::array<quint16, 0x10000>& inverse() {
    static const auto table = [] {
        std::array<quint16, 0x10000> bytes{};
        for (quint16 c = 1; c < 0x80; ++c)
            bytes[c] = c;
        for (quint16 byte = 0xA1; byte <= 0xDF; ++byte)
            bytes[static_cast<std::size_t>(halfKatakana + byte - 0xA1)] = byte;
        const auto fill = [&bytes](int lead) {
            for (int index = 0; index < trailCount; ++index) {
                const char16_t c = pair(lead, trailByte(index));
                if (c != undecodable && bytes[c] == 0)
                    bytes[c] = static_cast<quint16>(lead << 8 | trailByte(index));
            }
        };
        // The first place wins, except that NEC's selection of the IBM extensions (0xED, 0xEE) comes after IBM's own.
        for (int lead = 0x81; lead <= 0xFC; ++lead)
            if (lead != 0xED && lead != 0xEE)
                fill(lead);
        fill(0xED);
        fill(0xEE);
        return bytes;
    }();
    return table;
}

} // namespace

bool decode(QByteArrayView bytes, QString& text) {
    const qsizetype start = text.size();
    text.resize(start + bytes.size());
    char16_t* out = reinterpret_cast<char16_t*>(text.data()) + start;
    const auto* at = reinterpret_cast<const unsigned char*>(bytes.data());
    const auto* const end = at + bytes.size();
    bool good = true;
    while (at < end) {
        const int byte = *at++;
        if (byte < 0x80) {
            *out++ = static_cast<char16_t>(byte);
            continue;
        }
        char16_t c = undecodable;
        if (byte >= 0xA1 && byte <= 0xDF) {
            c = static_cast<char16_t>(halfKatakana + byte - 0xA1);
        } else if (at < end) {
            c = pair(byte, *at);
            if (c != undecodable)
                ++at;
        }
        good = good && c != undecodable;
        *out++ = c;
    }
    text.truncate(out - reinterpret_cast<const char16_t*>(text.constData()));
    return good;
}

std::optional<quint16> encode(char16_t unit) {
    const quint16 bytes = inverse()[unit];
    if (bytes == 0 && unit != 0)
        return std::nullopt;
    return bytes;
}

} // namespace values::cp932
