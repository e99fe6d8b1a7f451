#include "calendar/era_registration_rules.h"

#include "calendar/eras.h"
#include "desk/save_attempt.h"
#include "store/table.h"
#include "values/numbers.h"

using namespace Qt::StringLiterals;

namespace calendar {

namespace {

using desk::Colour;

constexpr int earliestYear = 1500;
constexpr int latestYear = 2050;
const QString title = u"年号登録"_s;
const QString noEraOfYear = u"該当する年号がありません。確認して下さい。"_s;
const QString eraMissing = u"年号が登録されていません。確認して下さい。"_s;

void checkYears(年号登Form& form, desk::SaveAttempt& attempt) {
    const QString message = u"入力された西暦年を確認して下さい。"_s;
    const auto first = values::readInt16(form.fnen_snen.text);
    const auto last = values::readInt16(form.fnen_enen.text);
    attempt.check(first && *first >= earliestYear && *first <= latestYear, form.fnen_snen, message);
    attempt.check(last && *last <= latestYear && *last >= first.value_or(*last), form.fnen_enen, message);
}

store::tbl_nengo typed(const 年号登Form& form) {
    return {form.fnen_nengo.text, values::readInt16(form.fnen_snen.text).value(),
            values::readInt16(form.fnen_enen.text).value()};
}

desk::Refusal refusal() {
    return {title, eraMissing};
}

std::optional<store::tbl_nengo> namedEra(store::Database& database, const 年号登Form& form) {
    return store::find(database, store::idxnen_nengo, form.fnen_nengo.text);
}

// The era of the name box: as the screen shows it, else as the file holds it now. Nothing, with the message, where
// there is none.
std::optional<desk::Held<store::tbl_nengo>> addressed(const 年号登Form& form, desk::Desk& desk) {
    store::Database database;
    const auto stored = namedEra(database, form);
    desk::Held<store::tbl_nengo> era;
    if (form.held && form.held.bears(form.fnen_nengo.text))
        era = form.held;
    else if (stored)
        era.show(*stored);
    if (desk::refused(stored ? desk::Standing::asRead : desk::Standing::gone, era, refusal(), desk))
        return {};
    return era;
}

void showYears(年号登Form& form, const store::tbl_nengo& era) {
    form.fnen_snen.text = QString::number(era.tblnen_snen);
    form.fnen_enen.text = QString::number(era.tblnen_enen);
    form.held.show(era);
}

} // namespace

void lookUpEra(年号登Form& form, desk::ScreenContext&, desk::Desk& desk) {
    const auto year = values::readInt16(form.fnen_snen.text);
    store::Database database;
    const auto found = year ? eraOfYear(database, *year) : std::nullopt;
    form.fnen_snen.question = true;
    if (found && found->covers) {
        form.fnen_snen.colour = Colour::black;
        form.fnen_nengo.text = found->era.tblnen_nengo;
        showYears(form, found->era);
        return;
    }
    form.fnen_snen.colour = Colour::darkRed;
    if (found) {
        form.fnen_nengo.text.clear();
        form.fnen_snen.text = QString::number(*year);
        form.fnen_enen.text.clear();
        form.held.showNew();
    }
    desk.notify(noEraOfYear, title);
}

void lookUpYears(年号登Form& form, desk::ScreenContext&, desk::Desk& desk) {
    store::Database database;
    const auto era = namedEra(database, form);
    if (!era) {
        desk.notify(eraMissing, title);
        return;
    }
    showYears(form, *era);
}

void beginEras(年号登Form& form, desk::ScreenContext&, desk::Desk&) {
    form.held.showNew();
}

void lookUpNamedEra(年号登Form& form, desk::ScreenContext&, desk::Desk&) {
    store::Database database;
    if (const auto era = namedEra(database, form))
        showYears(form, *era);
    else
        form.held.showNew();
}

void registerEra(年号登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    desk::SaveAttempt attempt(context, Colour::darkRed);
    attempt.check(!form.fnen_nengo.text.isEmpty(), form.fnen_nengo, u"年号を入力して下さい。"_s);
    if (attempt.reported(desk, title))
        return;
    const QString duplicate = u"この年号はすでに登録されています。確認して下さい。"_s;
    {
        store::Database database;
        attempt.check(!namedEra(database, form), form.fnen_nengo, duplicate);
    }
    checkYears(form, attempt);
    if (attempt.reported(desk, title) || !desk.ask(u"入力ﾃﾞｰﾀで登録します。内容を確認して下さい。"_s, title))
        return;
    const store::tbl_nengo row = typed(form);
    bool appeared = false;
    {
        store::Database database;
        store::Write write(database);
        store::Table eras(database, store::idxnen_nengo);
        appeared = eras.seekKeysOf(row);
        if (!appeared) {
            eras.insert(row);
            write.commit();
        }
    }
    attempt.check(!appeared, form.fnen_nengo, duplicate);
    if (attempt.reported(desk, title))
        return;
    form.held.wrote(row);
    desk.notify(u"指定された年号は登録されました。"_s, title);
}

void updateEra(年号登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    auto era = addressed(form, desk);
    if (!era)
        return;
    desk::SaveAttempt attempt(context, Colour::darkRed);
    checkYears(form, attempt);
    if (attempt.reported(desk, title) || !desk.ask(u"入力ﾃﾞｰﾀで更新します。内容を確認して下さい。"_s, title))
        return;
    store::Database database;
    if (!desk::change(*era, database, refusal(), desk, [&form](store::tbl_nengo& row) { row = typed(form); }))
        return;
    form.held = *era;
    desk.notify(u"指定された年号は更新されました。"_s, title);
}

void removeEra(年号登Form& form, desk::ScreenContext&, desk::Desk& desk) {
    auto era = addressed(form, desk);
    if (!era || !desk.ask(u"登録内容を削除します。内容を確認して下さい。"_s, title, desk::Preset::no))
        return;
    store::Database database;
    if (!desk::remove(*era, database, refusal(), desk))
        return;
    form.held = *era;
    desk.notify(u"指定された年号は削除されました。"_s, title);
}

} // namespace calendar
