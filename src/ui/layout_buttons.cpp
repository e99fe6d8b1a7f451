// Buttons: inside rows, and those in the row at the bottom of a screen.
#include "ui/flow_layout.h"
#include "ui/key_button.h"
#include "ui/layout.h"
#include "ui/layout_parts.h"

using namespace Qt::StringLiterals;

namespace ui {

KeyButton* Layout::makeButton(const QString& name, const QString& caption, Operation operation,
                              const QString& tooltip) {
    auto* button = new KeyButton(caption);
    button->setObjectName(name);
    button->setToolTip(tooltip);
    button->setAutoDefault(false);
    QObject::connect(button, &QPushButton::clicked, &screen_,
                     [this_ = &screen_, operation = std::move(operation)] { this_->operate(operation); });
    screen_.addToTabOrder(button);
    return button;
}

Layout& Layout::button(const QString& name, const QString& caption, Operation operation, const QString& tooltip) {
    KeyButton* button = makeButton(name, caption, std::move(operation), tooltip);
    if (button->isKnown())
        screen_.addKeyButton(button);
    place(button);
    return *this;
}

Layout& Layout::mainAction(const QString& name, const QString& caption, Operation operation) {
    action(name, caption, std::move(operation));
    screen_.registers_ = static_cast<QPushButton*>(last_);
    return *this;
}

Layout& Layout::updating(const QString& name, const QString& caption, Operation operation) {
    action(name, caption, std::move(operation));
    screen_.updates_ = static_cast<QPushButton*>(last_);
    return *this;
}

Layout& Layout::action(const QString& name, const QString& caption, Operation operation, const QString& tooltip) {
    KeyButton* button = makeButton(name, caption, std::move(operation), tooltip);
    screen_.addKeyButton(button);
    screen_.sized([screen = &screen_, button] {
        const QSize hint = button->sizeHint();
        button->setMinimumSize(std::max(widthOf(*screen, 4), hint.width()), std::max(hint.height(), 34));
    });
    // As high as the highest of its line.
    button->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Preferred);
    buttons_->addWidget(button);
    last_ = button;
    return *this;
}

Layout& Layout::restsBecause(std::function<QString()> reason) {
    screen_.bind({last_, nullptr, {}, [button = last_, reason = std::move(reason), usual = last_->toolTip()] {
                      const QString why = reason();
                      button->setEnabled(why.isEmpty());
                      button->setToolTip(why.isEmpty() ? usual : why);
                  }});
    return *this;
}

Layout& Layout::gap() {
    buttons_->addGap();
    return *this;
}

Layout& Layout::closing(const QString& caption) {
    buttons_->addStretch();
    return action(u"終了"_s, caption, [this_ = &screen_] { this_->desk().close(); });
}

} // namespace ui
