#include "labels/settings_rules.h"

#include "values/numbers.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace labels {

using namespace printing;
namespace {

const QString title = u"宛名設定"_s;

OwnMeasures measuresOf(const 宛名設定Form& form) {
    return {form.列数.text,   form.段数.text,   form.ラベル幅.text, form.ラベル高さ.text,
            form.左余白.text, form.上余白.text, form.左右間隔.text, form.上下間隔.text};
}

QString keyOf(const 宛名設定Form& form) {
    const auto stocks = labelStocks();
    const auto chosen = std::ranges::find(stocks, form.用紙.text, &LabelStock::name);
    return chosen == stocks.end() ? ownStockKey : chosen->key;
}

} // namespace

std::optional<int> 宛名設定Form::start() const {
    const auto number = values::readKeyNumber(開始番号.text);
    if (!sheet || !number || *number < 1 || *number > sheet->labels())
        return std::nullopt;
    return *number - 1;
}

void beginSettings(宛名設定Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    form.memorials = context.lbl_memorials;
    form.offered = context.lbl_offered;
    form.回忌選択.clear();
    form.ticked.clear();
    for (const auto& [anniversary, memorials] : form.offered) {
        form.回忌選択.items << u"%1（%2件）"_s.arg(anniversary).arg(memorials);
        form.ticked.push_back(!context.lbl_anniversaries || context.lbl_anniversaries->contains(anniversary));
    }
    const KeptStock kept = keptStock();
    form.用紙.items.clear();
    for (const LabelStock& stock : labelStocks()) {
        form.用紙.items << stock.name;
        if (stock.key == kept.key)
            form.用紙.text = stock.name;
    }
    form.用紙.items << ownStockName;
    if (kept.key == ownStockKey)
        form.用紙.text = ownStockName;
    const OwnMeasures& own = kept.own;
    form.列数.text = own.columns;
    form.段数.text = own.rows;
    form.ラベル幅.text = own.width;
    form.ラベル高さ.text = own.height;
    form.左余白.text = own.left;
    form.上余白.text = own.top;
    form.左右間隔.text = own.columnGap;
    form.上下間隔.text = own.rowGap;
    form.開始番号.text = QString::number(context.lbl_start + 1);
    chooseSheet(form, context, desk);
}

void chooseSheet(宛名設定Form& form, desk::ScreenContext&, desk::Desk&) {
    form.sheet = stockOf(keyOf(form), measuresOf(form));
    // A card has no other place.
    if (form.sheet && form.sheet->labels() == 1)
        form.開始番号.text = u"1"_s;
}

void tickAll(宛名設定Form& form, desk::ScreenContext&, desk::Desk&) {
    std::fill(form.ticked.begin(), form.ticked.end(), true);
}

void tickNone(宛名設定Form& form, desk::ScreenContext&, desk::Desk&) {
    std::fill(form.ticked.begin(), form.ticked.end(), false);
}

void takeSettings(宛名設定Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    chooseSheet(form, context, desk);
    if (!form.sheet) {
        desk.notify(ownStock(measuresOf(form)).fault, title);
        return;
    }
    const auto start = form.start();
    if (!start) {
        form.開始番号.colour = desk::Colour::red;
        form.開始番号.keyboard = true;
        desk.notify(u"開始位置は1から%1の数字で入力して下さい"_s.arg(form.sheet->labels()), title);
        return;
    }
    form.開始番号.colour = desk::Colour::black;
    const bool all = std::ranges::all_of(form.ticked, [](bool each) { return each; });
    QStringList anniversaries;
    for (std::size_t i = 0; i < form.offered.size(); ++i) {
        if (form.ticked[i])
            anniversaries << form.offered[i].anniversary;
    }
    if (!all && anniversaries.isEmpty()) {
        desk.notify(u"通知する回忌を一つ以上選んで下さい"_s, title);
        return;
    }
    keepStock({keyOf(form), measuresOf(form)});
    context.lbl_memorials = form.memorials;
    context.lbl_anniversaries = all ? std::nullopt : std::optional(anniversaries);
    context.lbl_start = *start;
    context.lbl_taken = true;
    desk.close();
}

} // namespace labels
