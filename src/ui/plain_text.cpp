#include "ui/plain_text.h"

#include <QEvent>

using namespace Qt::StringLiterals;

namespace ui {

namespace {

// One that is empty now makes room for what it will say in letters of another size, too.
class Label : public QLabel {
  public:
    using QLabel::QLabel;

  protected:
    void changeEvent(QEvent* event) override {
        QLabel::changeEvent(event);
        if (event->type() == QEvent::FontChange)
            setIndent(indent());
    }
};

} // namespace

// Tooltips know no plain text: one that looks like markup is rendered as such.
QString plainToolTip(const QString& text) {
    return Qt::mightBeRichText(text) ? u"<span>"_s + text.toHtmlEscaped() + u"</span>"_s : text;
}

QLabel* plainLabel(const QString& text) {
    auto* label = new Label(text);
    label->setTextFormat(Qt::PlainText);
    return label;
}

} // namespace ui
