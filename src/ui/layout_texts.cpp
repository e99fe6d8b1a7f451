// Text boxes, plain text and what only shows.
#include "ui/flow_layout.h"
#include "ui/kana_reading.h"
#include "ui/layout.h"
#include "ui/layout_parts.h"
#include "ui/plain_text.h"
#include "values/single_line.h"

#include <QLineEdit>

using namespace Qt::StringLiterals;

namespace ui {

namespace {

void setTextIfOther(QLineEdit* edit, const QString& text) {
    if (edit->text() != text) {
        edit->setText(text);
        // Where somebody types, he goes on behind what was filled in.
        if (!edit->hasFocus())
            edit->setCursorPosition(0);
    }
}

} // namespace

void keepToOneLine(QLineEdit* edit, Screen& screen) {
    QObject::connect(edit, &QLineEdit::textEdited, &screen, [edit, &screen](const QString& text) {
        if (values::isSingleLine(text))
            return;
        const auto cursor = values::singleLine(text.left(edit->cursorPosition())).size();
        edit->setText(values::singleLine(text));
        edit->setCursorPosition(static_cast<int>(cursor));
        screen.say(u"貼り付けた改行・タブは空白に直し、印字できない文字は除きました。"_s);
    });
}

Layout& Layout::note(const QString& text, const QString& name) {
    auto* note = plainLabel(text);
    note->setObjectName(name);
    spoken_ = text;
    place(note);
    // What a text introduces does not stand without it.
    items_->keepNextTogether();
    return *this;
}

Layout& Layout::unit(const QString& text) {
    items_->keepNextTogether();
    QWidget* measured = last_;
    place(plainLabel(text));
    last_ = measured;
    return *this;
}

Layout& Layout::text(const QString& name, desk::Text& value, int width) {
    auto* edit = new QLineEdit;
    edit->setObjectName(name);
    fixWidth(edit, width);
    place(edit);
    label(edit);
    screen_.bind({edit, &value, [edit, &value] { value.text = edit->text(); },
                  [edit, &value] { setTextIfOther(edit, value.text); }, [&value] { return value.text; },
                  [&value](const QString& text) { value.text = text; }});
    keepToOneLine(edit, screen_);
    screen_.addToTabOrder(edit);
    text_ = &value;
    return *this;
}

Layout& Layout::kanaOf(const QString& name) {
    auto* kana = static_cast<QLineEdit*>(last_);
    auto* reading = new KanaReading(body_->findChild<QLineEdit*>(name), kana);
    screen_.bind({kana, nullptr, {}, [reading, value = text_] {
                      if (value->preset)
                          reading->goOn();
                      value->preset = false;
                  }});
    return *this;
}

Layout& Layout::number(const QString& name, desk::Text& value, int width) {
    text(name, value, width);
    static_cast<QLineEdit*>(last_)->setAlignment(Qt::AlignRight);
    return numeric();
}

Layout& Layout::numeric() {
    screen_.lastBinding().numeric = true;
    return *this;
}

Layout& Layout::namesRecord(int controls) {
    for (auto binding = screen_.bindings_.end() - controls; binding != screen_.bindings_.end(); ++binding)
        binding->namesRecord = true;
    return *this;
}

Layout& Layout::shown(const QString& name, desk::Text& value, int width) {
    auto* edit = new QLineEdit;
    edit->setObjectName(name);
    fixWidth(edit, width);
    edit->setReadOnly(true);
    edit->setFocusPolicy(Qt::ClickFocus);
    place(edit);
    label(edit);
    screen_.bind({edit, &value, [edit, &value] { value.text = edit->text(); },
                  [edit, &value] { setTextIfOther(edit, value.text); }});
    return *this;
}

} // namespace ui
