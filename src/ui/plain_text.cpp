#include "ui/plain_text.h"

using namespace Qt::StringLiterals;

namespace ui {

// Tooltips know no plain text: one that looks like markup is rendered as such.
QString plainToolTip(const QString& text) {
    return Qt::mightBeRichText(text) ? u"<span>"_s + text.toHtmlEscaped() + u"</span>"_s : text;
}

QLabel* plainLabel(const QString& text) {
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    return label;
}

} // namespace ui
