#include "ui/window_keeper.h"

#include "desk/user_settings.h"
#include "ui/row_table.h"
#include "ui/workplace.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace ui {

namespace {

constexpr std::chrono::milliseconds endOfADrag{400};
constexpr int widest = 16384; // pixels: more than any window or column has
constexpr int narrowest = 8;  // narrower nobody sees a column
constexpr int highestLetters = 1000;

const QString windows = u"windows"_s;
const QString columns = u"columns"_s;

// Whole numbers from 1 to the widest; none at all where one is none.
std::vector<int> numbersOf(const QVariant& kept) {
    std::vector<int> numbers;
    for (const QString& text : kept.toStringList()) {
        const int number = text.toInt();
        if (number < 1 || number > widest)
            return {};
        numbers.push_back(number);
    }
    return numbers;
}

QStringList textsOf(const std::vector<int>& numbers) {
    QStringList texts;
    for (const int number : numbers)
        texts << QString::number(number);
    return texts;
}

// The widths kept under the key, for letters of this height; empty where none are.
std::vector<int> widthsKept(const QString& key, int letters) {
    std::vector<int> widths = numbersOf(desk::userSettings().value(key));
    if (widths.empty() || widths.front() > highestLetters)
        return {};
    const int then = widths.front();
    widths.erase(widths.begin());
    for (int& width : widths)
        width = std::min(width * letters / then, widest);
    return std::ranges::all_of(widths, [](int width) { return width >= narrowest; }) ? widths : std::vector<int>();
}

} // namespace

WindowKeeper::WindowKeeper(Screen& screen) : screen_(screen) {
    rest_.setSingleShot(true);
    rest_.setInterval(endOfADrag);
    rest_.callOnTimeout([this] { keep(); });
}

QString WindowKeeper::columnsKey(const QString& table) const {
    return columns + u'/' + screen_.objectName() + u'.' + table;
}

void WindowKeeper::add(RowTable& table, const QString& name) {
    std::vector<RowTable*>& alike = tables_[name];
    alike.push_back(&table);
    table.pulled = [this, name, &alike, &table] {
        for (RowTable* other : alike) {
            if (other != &table)
                other->useWidths(table.widthsShown());
        }
        if (!pulled_.contains(name))
            pulled_ << name;
        changed();
    };
    table.useWidths(widthsKept(columnsKey(name), screen_.fontMetrics().height()));
}

void WindowKeeper::showColumns() {
    for (const auto& [name, alike] : tables_) {
        const std::vector<int> widths = widthsKept(columnsKey(name), screen_.fontMetrics().height());
        for (RowTable* table : alike)
            table->useWidths(widths);
    }
}

std::optional<KeptWindow> WindowKeeper::window() const {
    const std::vector<int> kept = numbersOf(desk::userSettings().value(windows + u'/' + screen_.objectName()));
    if (kept.size() < 3 || kept.size() > 4 || kept[2] > highestLetters)
        return {};
    return KeptWindow{{kept[0], kept[1]}, kept[2], kept.size() == 4};
}

void WindowKeeper::keepNow() {
    if (!rest_.isActive())
        return;
    rest_.stop();
    keep();
}

void WindowKeeper::keep() {
    const bool maximised = screen_.isMaximized();
    const bool other = !screen_.isMinimized() && !screen_.isFullScreen() &&
                       (maximised != maximised_ || (!maximised && screen_.size() != settled_));
    if (!other && pulled_.isEmpty())
        return;
    QSettings settings = desk::userSettings();
    const int letters = screen_.fontMetrics().height();
    if (other) {
        maximised_ = maximised;
        // Of a window that fills the display, the size that it goes back to.
        if (!maximised)
            settled_ = screen_.size();
        std::vector<int> kept{settled_.width(), settled_.height() - screen_.grownBy(), letters};
        if (maximised)
            kept.push_back(1);
        settings.setValue(windows + u'/' + screen_.objectName(), textsOf(kept));
    }
    for (const QString& name : std::exchange(pulled_, {})) {
        std::vector<int> kept = tables_[name].front()->widthsShown();
        kept.insert(kept.begin(), letters);
        settings.setValue(columnsKey(name), textsOf(kept));
    }
    if (!desk::keep(settings))
        screen_.workplace().tellNotKept(screen_);
}

void WindowKeeper::forget() {
    rest_.stop();
    pulled_.clear();
    for (const auto& [name, alike] : tables_) {
        for (RowTable* table : alike)
            table->useWidths({});
    }
}

bool WindowKeeper::forgetKept() {
    QSettings settings = desk::userSettings();
    settings.remove(windows);
    settings.remove(columns);
    return desk::keep(settings);
}

} // namespace ui
