#include "calendar/eras.h"

#include "store/table.h"
#include "values/dates.h"
#include "values/numbers.h"

#include <QMap>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace calendar {

namespace {

QStringList numbersUpTo(int last) {
    QStringList numbers;
    for (int number = 1; number <= last; ++number)
        numbers << QString::number(number);
    return numbers;
}

std::optional<int> firstYearOf(store::Database& database, const QString& era) {
    store::Table eras(database, store::idxnen_nengo);
    if (!eras.seek(store::Seek::equal, era))
        return {};
    return eras.row().tblnen_snen;
}

EraDate inEra(const store::tbl_nengo& era, QDate date) {
    if (era.tblnen_nengo.isEmpty())
        return {};
    const int year = date.year() - era.tblnen_snen + 1;
    return {eraText(era.tblnen_nengo, year, date.month(), date.day()), era.tblnen_nengo, QString::number(year)};
}

} // namespace

std::optional<EraOfYear> eraOfYear(store::Database& database, int year) {
    store::Table eras(database, store::idxnen_snen);
    std::optional<EraOfYear> result;
    for (eras.seek(store::Seek::atOrBefore, year); !eras.eof(); eras.moveNext()) {
        result = {eras.row(), eras.row().tblnen_enen >= year};
        if (result->covers)
            break;
    }
    return result;
}

std::optional<EraDate> eraDate(store::Database& database, QDate date) {
    const auto found = date.isValid() ? eraOfYear(database, date.year()) : std::nullopt;
    return found ? std::optional(inEra(found->era, date)) : std::nullopt;
}

void 西暦変換(store::Database& database, QDate date, EraDate& result, desk::Desk& desk) {
    if (!date.isValid()) {
        result = {};
        return;
    }
    if (const auto converted = eraDate(database, date))
        result = *converted;
    else
        desk.notify(u"該当する年号がありません。確認して下さい。"_s, u"和暦に変換"_s);
}

QString eraText(store::Database& database, QDate date, desk::Desk& desk) {
    EraDate era;
    西暦変換(database, date, era, desk);
    return era.full;
}

QString eraText(const QString& gname, std::optional<int> gyy, std::optional<int> gmm, std::optional<int> gdd) {
    return gname + values::shownNumber(gyy) + u'年' + values::shownNumber(gmm) + u'月' + values::shownNumber(gdd) +
           u'日';
}

QString EraTexts::of(QDate date) {
    if (!date.isValid())
        return {};
    auto known = eras_.find(date.year());
    if (known == eras_.end())
        known = eras_.emplace(date.year(), eraOfYear(database_, date.year())).first;
    // Without an era it is told of every date.
    return known->second ? inEra(known->second->era, date).full : eraText(database_, date, desk_);
}

QString 元号変換(store::Database& database, const QString& era, const QString& year, std::int16_t& error,
                 desk::Desk& desk) {
    const auto firstYear = firstYearOf(database, era);
    const auto eraYear = values::readInt16(year);
    if (!firstYear || !eraYear) {
        error = 1;
        desk.notify(u"元号の変換が出来ません。入力した元号・ﾃﾞｰﾀ･ﾍﾞｰｽの整合性をﾁｪｯｸしてください"_s, u"檀家 登録"_s);
        return {};
    }
    return QString::number(*firstYear + *eraYear - 1);
}

void CMB年号(store::Database& database, desk::DateGroup& group) {
    store::Selection<store::tbl_nengo> eras(database, "  ORDER BY tbl_nengo.tblnen_snen DESC;");
    while (eras.next())
        group.era.items << eras.row().tblnen_nengo;
    group.year.items << numbersUpTo(100);
    group.month.items << numbersUpTo(12);
    group.day.items << numbersUpTo(31);
}

std::optional<QDate> readDate(store::Database& database, QStringView text) {
    if (const auto western = values::readDate(text))
        return western;
    static const QRegularExpression form(
        u"^(?<era>[^0-9\\s]+?)\\s*(?<y>[0-9]{1,3}|元)\\s*(?:年|[./-])\\s*(?<m>[0-9]{1,2})\\s*(?:月|[./-])\\s*"
        "(?<d>[0-9]{1,2})\\s*日?$"_s);
    const auto match = form.match(values::halfWidth(text.trimmed()));
    if (!match.hasMatch())
        return {};
    static const QMap<QString, QString> initials{
        {u"M"_s, u"明治"_s}, {u"T"_s, u"大正"_s}, {u"S"_s, u"昭和"_s}, {u"H"_s, u"平成"_s}, {u"R"_s, u"令和"_s}};
    const QString typed = match.captured(u"era"_s);
    const QString initial = typed.normalized(QString::NormalizationForm_KC).toUpper();
    const auto firstYear = firstYearOf(database, initials.value(initial, typed));
    if (!firstYear)
        return {};
    const QString year = match.captured(u"y"_s);
    return values::makeDate(*firstYear + (year == u"元"_s ? 1 : year.toInt()) - 1, match.captured(u"m"_s).toInt(),
                            match.captured(u"d"_s).toInt());
}

} // namespace calendar
