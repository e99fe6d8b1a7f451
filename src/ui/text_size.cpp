#include "ui/text_size.h"

#include "desk/user_settings.h"

#include <QApplication>
#include <QEvent>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace ui {

namespace {

struct Size {
    TextSize size;
    QString kept;
    double factor;
};

const std::array<Size, 3>& sizes() {
    static const std::array<Size, 3> all{{{TextSize::standard, u"standard"_s, 1},
                                          {TextSize::large, u"large"_s, 1.2},
                                          {TextSize::largest, u"largest"_s, 1.45}}};
    return all;
}

const Size& sizeOf(TextSize size) {
    return sizes()[static_cast<std::size_t>(size)];
}

const QString setting = u"appearance/textSize"_s;

TextSize& inUse() {
    static TextSize size = TextSize::standard;
    return size;
}

QFont& standardFont() {
    static QFont font;
    return font;
}

} // namespace

TextSize keptTextSize() {
    const QString kept = desk::userSettings().value(setting).toString();
    const auto* known = std::ranges::find(sizes(), kept, &Size::kept);
    return known == sizes().end() ? TextSize::standard : known->size;
}

bool keepTextSize(TextSize size) {
    return desk::keepUserSetting(setting, sizeOf(size).kept);
}

void beginWithFont(const QFont& standard) {
    standardFont() = standard;
    useTextSize(keptTextSize());
}

void useTextSize(TextSize size) {
    inUse() = size;
    QFont font = standardFont();
    font.setPointSizeF(font.pointSizeF() * sizeOf(size).factor);
    if (font == QApplication::font())
        return;
    QApplication::setFont(font);
    // Widgets are told by events that wait: whoever measures next shall find the new letters.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::ApplicationFontChange);
}

TextSize textSize() {
    return inUse();
}

} // namespace ui
