#include "values/numbers.h"

#include <QLocale>

#include <limits>

using namespace Qt::StringLiterals;

namespace values {
namespace {

struct Decimal {
    bool negative = false;
    QString whole;
    QString fraction;
};

bool isDigit(QChar c) {
    return c >= u'0' && c <= u'9';
}

bool allDigits(QStringView text) {
    for (const QChar c : text)
        if (!isDigit(c))
            return false;
    return true;
}

// The whole part without its commas; nothing when a comma does not stand before a group of three digits.
std::optional<QString> ungrouped(QStringView text) {
    const auto groups = text.split(u',');
    QString digits;
    for (qsizetype i = 0; i < groups.size(); ++i) {
        const bool wrongLength =
            groups.size() > 1 && (i == 0 ? groups[i].isEmpty() || groups[i].size() > 3 : groups[i].size() != 3);
        if (wrongLength || !allDigits(groups[i]))
            return std::nullopt;
        digits += groups[i];
    }
    return digits;
}

std::optional<Decimal> parse(QStringView typed) {
    const QString text = halfWidth(typed.trimmed());
    QStringView rest = text;
    Decimal number;
    if (rest.startsWith(u'-') || rest.startsWith(u'+')) {
        number.negative = rest.front() == u'-';
        rest = rest.sliced(1);
    }
    const qsizetype point = rest.indexOf(u'.');
    const auto whole = ungrouped(point < 0 ? rest : rest.first(point));
    const QStringView fraction = point < 0 ? QStringView() : rest.sliced(point + 1);
    if (!whole || !allDigits(fraction) || (whole->isEmpty() && fraction.isEmpty()))
        return std::nullopt;
    number.whole = *whole;
    number.fraction = fraction.toString();
    return number;
}

bool roundsAwayFromZero(const Decimal& number) {
    const QStringView fraction = number.fraction;
    if (fraction.isEmpty() || fraction.front() < u'5')
        return false;
    const bool aboveHalf = fraction.front() > u'5' || fraction.sliced(1).toString().count(u'0') != fraction.size() - 1;
    const bool odd = !number.whole.isEmpty() && (number.whole.back().unicode() - u'0') % 2 != 0;
    return aboveHalf || odd;
}

template <typename Integer> std::optional<Integer> narrowed(std::optional<qint64> value) {
    if (!value || *value < std::numeric_limits<Integer>::min() || *value > std::numeric_limits<Integer>::max())
        return std::nullopt;
    return static_cast<Integer>(*value);
}

} // namespace

bool isNumeric(QStringView text) {
    return parse(text).has_value();
}

std::optional<qint64> readWhole(QStringView text) {
    const auto number = parse(text);
    if (!number)
        return std::nullopt;
    bool fits = false;
    const qint64 whole = (number->negative ? u"-0"_s : u"0"_s).append(number->whole).toLongLong(&fits);
    if (!fits || !roundsAwayFromZero(*number))
        return fits ? std::optional(whole) : std::nullopt;
    using Limits = std::numeric_limits<qint64>;
    if (whole == (number->negative ? Limits::min() : Limits::max()))
        return std::nullopt;
    return number->negative ? whole - 1 : whole + 1;
}

std::optional<std::int16_t> readInt16(QStringView text) {
    return narrowed<std::int16_t>(readWhole(text));
}

std::optional<std::int16_t> readKeyNumber(QStringView text) {
    return halfWidth(text).contains(u'.') ? std::nullopt : readInt16(text);
}

std::optional<std::int32_t> readMoney(QStringView text) {
    return narrowed<std::int32_t>(readWhole(text));
}

QString moneyText(qint64 yen) {
    return QLocale(QLocale::English, QLocale::UnitedStates).toString(yen);
}

QString halfWidth(QStringView text) {
    QString result = text.toString();
    for (QChar& c : result)
        if (c == u'\u2212')
            c = u'-';
        else if ((c >= u'０' && c <= u'９') || c == u'＋' || c == u'－' || c == u'，' || c == u'．' || c == u'／')
            c = QChar(c.unicode() - u'０' + u'0');
    return result;
}

QString shownNumber(std::optional<int> number) {
    return number ? QString::number(*number) : QString();
}

QString shownMoney(std::optional<std::int32_t> yen) {
    return yen ? moneyText(*yen) : QString();
}

} // namespace values
