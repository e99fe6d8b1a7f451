#include "calendar/spoken_date.h"

#include "calendar/eras.h"
#include "store/table.h"
#include "values/dates.h"
#include "values/numbers.h"

#include <QMap>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace calendar {

namespace {

constexpr int firstYearOfShortNames = 1868; // 明治: older eras share their first characters

// Half-width digits and separators, also those of the input method's kana mode.
QString plain(QStringView text) {
    QString result = values::halfWidth(text.trimmed());
    for (QChar& c : result) {
        if (c == u'。' || c == u'｡')
            c = u'.';
        else if (c == u'・' || c == u'･')
            c = u'/';
        else if (c == u'ー' || c == u'ｰ')
            c = u'-';
    }
    return result;
}

// Katakana of either width as hiragana, letters as capitals, a squared era name as its two characters.
QString folded(const QString& text) {
    QString result = text.normalized(QString::NormalizationForm_KC).toUpper();
    for (QChar& c : result)
        if (c >= u'ァ' && c <= u'ヶ')
            c = QChar(c.unicode() - u'ァ' + u'ぁ');
    return result;
}

std::optional<store::tbl_nengo> eraNamed(store::Database& database, const QString& typed) {
    static const QMap<QString, QString> spoken{
        {u"M"_s, u"明治"_s},        {u"T"_s, u"大正"_s},      {u"S"_s, u"昭和"_s},          {u"H"_s, u"平成"_s},
        {u"R"_s, u"令和"_s},        {u"めいじ"_s, u"明治"_s}, {u"たいしょう"_s, u"大正"_s}, {u"しょうわ"_s, u"昭和"_s},
        {u"へいせい"_s, u"平成"_s}, {u"れいわ"_s, u"令和"_s}};
    const QString name = folded(typed);
    for (const QString& candidate : {typed, name, spoken.value(name)}) {
        if (candidate.isEmpty())
            continue;
        if (auto era = store::find(database, store::idxnen_nengo, candidate))
            return era;
    }
    if (name.size() != 1)
        return {};
    for (const auto& era : store::selectAll<store::tbl_nengo>(database, "ORDER BY tbl_nengo.tblnen_snen DESC"))
        if (era.tblnen_snen >= firstYearOfShortNames && era.tblnen_nengo.startsWith(name))
            return era;
    return {};
}

std::optional<SpokenDate> inItsEra(store::Database& database, std::optional<QDate> date) {
    const auto found = date ? eraOfYear(database, date->year()) : std::nullopt;
    if (!found || found->era.tblnen_nengo.isEmpty())
        return {};
    return SpokenDate{found->era.tblnen_nengo, date->year() - found->era.tblnen_snen + 1, *date};
}

std::optional<QDate> eightDigits(const QString& text) {
    static const QRegularExpression form(u"^[0-9]{8}$"_s);
    if (!form.match(text).hasMatch())
        return {};
    return values::makeDate(text.first(4).toInt(), text.sliced(4, 2).toInt(), text.last(2).toInt());
}

} // namespace

std::optional<SpokenDate> readSpoken(store::Database& database, QStringView typed, QDate today) {
    const QString text = plain(typed);
    if (const auto western = values::readDate(text))
        return inItsEra(database, western);
    if (const auto western = eightDigits(text))
        return inItsEra(database, western);
    static const QRegularExpression form(
        u"^(?<era>[^0-9\\s]*?)\\s*(?<y>[0-9]{1,3}|元)\\s*(?:年|[./-])\\s*(?<m>[0-9]{1,2})\\s*(?:月|[./-])\\s*"
        "(?<d>[0-9]{1,2})\\s*日?$"_s);
    const auto match = form.match(text);
    if (!match.hasMatch())
        return {};
    std::optional<store::tbl_nengo> era;
    if (const QString name = match.captured(u"era"_s); !name.isEmpty())
        era = eraNamed(database, name);
    else if (const auto present = today.isValid() ? eraOfYear(database, today.year()) : std::nullopt)
        era = present->era;
    const int year = match.captured(u"y"_s) == u"元" ? 1 : match.captured(u"y"_s).toInt();
    if (!era || year == 0)
        return {};
    const auto date =
        values::makeDate(era->tblnen_snen + year - 1, match.captured(u"m"_s).toInt(), match.captured(u"d"_s).toInt());
    return date ? std::optional(SpokenDate{era->tblnen_nengo, year, *date}) : std::nullopt;
}

namespace {

void fill(desk::DateGroup& group, const SpokenDate& date) {
    group.era.text = date.era;
    group.year.text = QString::number(date.year);
    group.month.text = QString::number(date.date.month());
    group.day.text = QString::number(date.date.day());
}

} // namespace

bool spreadSpoken(store::Database& database, desk::DateGroup& group, QDate today) {
    const auto spoken = readSpoken(database, group.era.text, today);
    if (spoken)
        fill(group, *spoken);
    return spoken.has_value();
}

void enterToday(store::Database& database, desk::DateGroup& group, desk::Desk& desk) {
    if (const auto today = inItsEra(database, desk.today())) {
        fill(group, *today);
        return;
    }
    EraDate none;
    西暦変換(database, desk.today(), none, desk);
}

std::optional<QDate> typedDate(store::Database& database, const desk::DateGroup& group, QDate today) {
    if (const auto spoken = readSpoken(database, group.era.text, today))
        return spoken->date;
    const auto year = westernYear(database, group.era.text, group.year.text);
    const auto month = values::readWhole(group.month.text);
    const auto day = values::readWhole(group.day.text);
    return year && month && day ? values::makeDate(*year, *month, *day) : std::nullopt;
}

QString weekday(QDate date) {
    return date.isValid() ? QString(u"月火水木金土日"_s[date.dayOfWeek() - 1]) : QString();
}

QString dateHint(QDate date, QDate today, bool birth) {
    const QString day = values::dateText(date) + u'（' + weekday(date) + u'）';
    const bool stillToCome = std::pair(today.month(), today.day()) < std::pair(date.month(), date.day());
    const int years = today.year() - date.year() - (stillToCome ? 1 : 0);
    if (birth && date <= today)
        return day + u" 満%1歳"_s.arg(years);
    return years > 0 ? day + u" %1年前"_s.arg(years) : day;
}

} // namespace calendar
