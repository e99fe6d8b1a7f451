#include "masters/master_rules.h"

#include "desk/save_attempt.h"
#include "store/table.h"
#include "values/numbers.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace masters {

namespace {

const QString title = u"ｺｰﾄﾞﾏｽﾀｰ情報"_s;

std::int16_t number(Category category) {
    return static_cast<std::int16_t>(category);
}

// Calls use(row) for the category's entries in entry order until it answers false.
template <class Use> void walk(store::Database& database, Category category, Use use) {
    store::Table entries(database, store::key_マスタ);
    for (entries.seek(store::Seek::atOrAfter, number(category), 0);
         !entries.eof() && entries.row().マ_区分 == number(category); entries.moveNext()) {
        if (!use(entries.row()))
            return;
    }
}

desk::Refusal refusal() {
    return {title, u"指定された名称は登録されていません。"_s};
}

Category chosen(const マスター登Form& form) {
    if (form.地区.chosen)
        return Category::地区;
    return form.場所.chosen ? Category::場所 : Category::続柄;
}

QString captionOf(Category category) {
    switch (category) {
    case Category::続柄:
        return u"続柄"_s;
    case Category::地区:
        return u"地区"_s;
    case Category::場所:
        return u"場所"_s;
    }
    return {};
}

// The number in the box, which must be whole and at least 1.
std::optional<std::int16_t> typedNumber(const マスター登Form& form) {
    const auto no = values::readKeyNumber(form.登録NO.text);
    return no && *no >= 1 ? no : std::nullopt;
}

void checkNumber(マスター登Form& form, desk::SaveAttempt& attempt) {
    attempt.check(typedNumber(form).has_value(), form.登録NO, u"登録NOに正しく入力してください"_s);
}

// The entry that category and number name: as the screen shows it, else as the file holds it now; a new one where there
// is none.
desk::Held<store::マスタ> addressed(const マスター登Form& form, std::int16_t no) {
    store::Database database;
    desk::Held<store::マスタ> entry;
    const auto stored = store::find(database, store::key_マスタ, number(chosen(form)), no);
    const bool shown = form.held && form.held.bears(number(chosen(form)), no);
    // One that another register does not have is no new one.
    if (shown && (stored || form.held.registerReplaced()))
        entry = form.held;
    else if (stored)
        entry.show(*stored);
    return entry;
}

void show(マスター登Form& form, const store::マスタ& entry) {
    form.登録NO.text = QString::number(entry.マ_NO);
    form.登録名称.text = entry.マ_名称;
    form.登録略称.text = entry.マ_略称;
    form.held.show(entry);
}

void fillGrid(store::Database& database, マスター登Form& form) {
    form.マスタ一.columns = {{u"区分"_s, 500, desk::Align::right, desk::Align::right},
                             {u"NO"_s, 500, desk::Align::right, desk::Align::right},
                             {u"略称"_s, 1000},
                             {u"名称"_s, 3000}};
    form.マスタ一.blankRows = 12;
    form.マスタ一.rows.clear();
    form.マスタ一.highlighted = 0;
    walk(database, chosen(form), [&](const store::マスタ& row) {
        form.マスタ一.rows.push_back(
            {QString::number(row.マ_区分), QString::number(row.マ_NO), row.マ_略称, row.マ_名称});
        return true;
    });
}

} // namespace

void CMB設定(store::Database& database, Category category, desk::Combo& list) {
    list.items.clear();
    walk(database, category, [&](const store::マスタ& row) {
        list.items.append(row.マ_略称);
        return true;
    });
}

void MST設定(store::Database& database, Category category, const QString& text) {
    if (text.isEmpty())
        return;
    std::int16_t last = 0;
    bool known = false;
    walk(database, category, [&](const store::マスタ& row) {
        last = row.マ_NO;
        known = row.マ_名称 == text || row.マ_略称 == text;
        return !known;
    });
    // Behind the last number there is none: the word is stored in its record and stays out of the list.
    if (known || last == std::numeric_limits<std::int16_t>::max())
        return;
    store::Table entries(database, store::key_マスタ);
    entries.insert({number(category), static_cast<std::int16_t>(last + 1), text, text});
}

void beginMasters(マスター登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    form.続柄.chosen = true;
    chooseCategory(form, context, desk);
}

void chooseCategory(マスター登Form& form, desk::ScreenContext&, desk::Desk&) {
    for (desk::Text* box : {&form.登録NO, &form.登録名称, &form.登録略称})
        box->text.clear();
    form.マスタ一.rows.clear();
    form.held.showNew(captionOf(chosen(form)));
    store::Database database;
    fillGrid(database, form);
}

void lookUpNamedEntry(マスター登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    const QString typed = form.登録NO.text;
    chooseCategory(form, context, desk);
    form.登録NO.text = typed;
    const auto no = typedNumber(form);
    store::Database database;
    const auto entry =
        no ? store::find(database, store::key_マスタ, number(chosen(form)), *no) : std::optional<store::マスタ>();
    if (entry)
        show(form, *entry);
}

void pickEntry(マスター登Form& form, desk::ScreenContext&, desk::Desk& desk) {
    const int clicked = form.マスタ一.clickedRow;
    const QString no = form.マスタ一.cell(clicked, 1);
    if (no.isEmpty()) {
        desk.notify(u"指示位置が有効範囲外です。"_s, title);
        return;
    }
    store::Database database;
    const auto entry = store::find(database, store::key_マスタ, form.マスタ一.cell(clicked, 0).toInt(), no.toInt());
    if (!entry) {
        desk.notify(refusal().gone, title);
        return;
    }
    form.マスタ一.highlighted = clicked;
    show(form, *entry);
}

void saveEntry(マスター登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    desk::SaveAttempt attempt(context);
    checkNumber(form, attempt);
    attempt.required(form.登録名称, u"登録名称に入力してください"_s);
    attempt.required(form.登録略称, u"登録略称に入力してください"_s);
    if (attempt.reported(desk, title))
        return;
    const store::マスタ row{number(chosen(form)), typedNumber(form).value(), form.登録名称.text, form.登録略称.text};
    auto entry = addressed(form, row.マ_NO);
    if (!desk.ask(u"入力内容で更新します。"_s, title))
        return;
    store::Database database;
    if (entry.isNew()) {
        bool appeared = false;
        {
            store::Write write(database);
            store::Table entries(database, store::key_マスタ);
            appeared = entries.seekKeysOf(row);
            if (!appeared) {
                entries.insert(row);
                write.commit();
            }
        }
        if (desk::refused(appeared ? desk::Standing::changed : desk::Standing::asRead, entry, refusal(), desk))
            return;
        entry.wrote(row);
    } else if (!desk::change(entry, database, refusal(), desk, [&row](store::マスタ& stored) { stored = row; })) {
        return;
    }
    form.held = entry;
    desk.notify(u"名称は更新(登録)されました。"_s, title);
    fillGrid(database, form);
}

void removeEntry(マスター登Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    desk::SaveAttempt attempt(context);
    checkNumber(form, attempt);
    if (attempt.reported(desk, title))
        return;
    auto entry = addressed(form, typedNumber(form).value());
    if (!desk.ask(u"入力内容を削除します。"_s, title, desk::Preset::no))
        return;
    store::Database database;
    if (!desk::remove(entry, database, refusal(), desk))
        return;
    form.held = entry;
    desk.notify(u"表示内容は削除されました。"_s, title);
    fillGrid(database, form);
}

} // namespace masters
