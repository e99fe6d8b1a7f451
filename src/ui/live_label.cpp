#include "ui/live_label.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>

namespace ui {

LiveLabel::LiveLabel(Screen& screen, const QString& name, std::function<LiveText()> text)
    : screen_(screen), compute_(std::move(text)) {
    setObjectName(name);
    setTextFormat(Qt::PlainText);
    setTextInteractionFlags(Qt::TextSelectableByMouse);
    setFocusPolicy(Qt::NoFocus);
    screen.bind({this, nullptr, {}, [this] { refresh(); }});
}

void LiveLabel::follow(QWidget* control) {
    if (auto* box = qobject_cast<QComboBox*>(control))
        connect(box, &QComboBox::editTextChanged, this, [this] { typed(); });
    else if (auto* edit = qobject_cast<QLineEdit*>(control))
        connect(edit, &QLineEdit::textChanged, this, [this] { typed(); });
    else if (auto* button = qobject_cast<QAbstractButton*>(control))
        connect(button, &QAbstractButton::toggled, this, [this] { typed(); });
}

void LiveLabel::typed() {
    if (screen_.operating() || screen_.filling())
        return; // brought up to date with the rest
    screen_.readForm();
    refresh();
}

void LiveLabel::refresh() {
    LiveText now;
    try {
        now = compute_();
    } catch (const std::exception&) {
        // The next operation says what is wrong with the register.
    }
    if (now.text != text())
        setText(now.text);
    setAccessibleName(now.text);
    QPalette colours = palette();
    colours.setColor(QPalette::WindowText, now.warns ? QColor(128, 0, 0) : QColor(60, 60, 60));
    if (colours != palette())
        setPalette(colours);
    mark(now.marked);
}

// A box that is wrong keeps the look of what is wrong.
void LiveLabel::mark(const QStringList& names) {
    const QColor ground(226, 238, 250);
    for (const Screen::Binding& binding : screen_.bindings()) {
        const QString name = binding.widget->objectName();
        if (!binding.control || !(names.contains(name) || marked_.contains(name)) ||
            binding.control->colour != desk::Colour::black)
            continue;
        QPalette colours = QApplication::palette(binding.widget);
        if (names.contains(name))
            colours.setColor(QPalette::Base, ground);
        binding.widget->setPalette(colours);
    }
    marked_ = names;
}

} // namespace ui
