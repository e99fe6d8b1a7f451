#include "reports/era_forms.h"

#include "store/table.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace reports {

EraForms::EraForms(store::Database& database)
    : eras_(store::selectAll<store::tbl_nengo>(database, "ORDER BY tbl_nengo.tblnen_snen;")) {}

const std::vector<EraForms::Form>& EraForms::formsOf(int year) {
    auto known = known_.find(year);
    if (known == known_.end()) {
        std::vector<Form> forms;
        for (const store::tbl_nengo& era : eras_) {
            if (era.tblnen_snen > year || era.tblnen_enen < year || era.tblnen_nengo.isEmpty())
                continue;
            const int eraYear = year - era.tblnen_snen + 1;
            forms.push_back({era.tblnen_nengo, eraYear, era.tblnen_nengo + QString::number(eraYear) + u'年'});
        }
        known = known_.insert(year, std::move(forms));
    }
    return *known;
}

QString EraForms::year(int year) {
    QStringList texts;
    for (const Form& form : formsOf(year))
        texts << form.text;
    const QString western = QString::number(year) + u'年';
    return texts.isEmpty() ? western : texts.join(u'・') + u'（' + western + u'）';
}

QString EraForms::date(QDate date) {
    return this->date(date, {}, {});
}

QString EraForms::date(QDate date, const QString& era, std::optional<std::int16_t> eraYear) {
    if (!date.isValid())
        return {};
    const std::vector<Form>& forms = formsOf(date.year());
    const auto given = std::ranges::find_if(
        forms, [&](const Form& form) { return form.era == era && eraYear && form.eraYear == *eraYear; });
    const QString year = given != forms.end() ? given->text
                         : forms.empty()      ? QString::number(date.year()) + u'年'
                                              : forms.back().text;
    return year + QString::number(date.month()) + u'月' + QString::number(date.day()) + u'日';
}

} // namespace reports
