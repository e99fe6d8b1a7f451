#include "values/dates.h"

#include "values/numbers.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace values {

std::optional<QDate> makeDate(qint64 year, qint64 month, qint64 day) {
    if (year < firstYear || year > lastYear || month < 1 || month > 12 || day < 1 || day > 31)
        return std::nullopt;
    const QDate date(static_cast<int>(year), static_cast<int>(month), static_cast<int>(day));
    return date.isValid() ? std::optional(date) : std::nullopt;
}

std::optional<QDate> readDate(QStringView text) {
    static const QRegularExpression form(
        u"^(?:(?<y>[0-9]{4})\\s*(?<sep>[-/.])\\s*(?<m>[0-9]{1,2})\\s*\\k<sep>\\s*(?<d>[0-9]{1,2})"
        "|(?<y2>[0-9]{4})\\s*年\\s*(?<m2>[0-9]{1,2})\\s*月\\s*(?<d2>[0-9]{1,2})\\s*日)$"_s,
        QRegularExpression::UseUnicodePropertiesOption);
    const auto match = form.match(halfWidth(text.trimmed()));
    if (!match.hasMatch())
        return std::nullopt;
    const auto number = [&match](const QString& name) {
        return (match.hasCaptured(name) ? match.captured(name) : match.captured(name + u'2')).toInt();
    };
    return makeDate(number(u"y"_s), number(u"m"_s), number(u"d"_s));
}

QString dateText(QDate date) {
    return date.toString(u"yyyy/MM/dd"_s);
}

QDate zeroDate() {
    return {1899, 12, 30};
}

} // namespace values
