// Drop-down lists, option buttons and check boxes.
#include "ui/layout.h"
#include "ui/layout_parts.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QRadioButton>

using namespace Qt::StringLiterals;

namespace ui {

Layout& Layout::combo(const QString& name, desk::Combo& value, int width, const Operation& picked) {
    auto* box = new QComboBox;
    box->setObjectName(name);
    box->setEditable(true);
    box->setInsertPolicy(QComboBox::NoInsert);
    // What is typed is stored as typed, also where it begins like an entry.
    box->setCompleter(nullptr);
    box->setMaxVisibleItems(20);
    fixWidth(box, width, 24);
    keepToOneLine(box->lineEdit(), screen_);
    place(box);
    label(box);
    screen_.bind({box, &value, [box, &value] { value.text = box->currentText(); },
                  [box, &value] {
                      const QSignalBlocker quiet(box);
                      bool other = box->count() != value.items.size();
                      for (int i = 0; !other && i < box->count(); ++i)
                          other = box->itemText(i) != value.items[i];
                      if (other) {
                          box->clear();
                          box->addItems(value.items);
                      }
                      if (other || box->currentText() != value.text) {
                          box->setCurrentIndex(static_cast<int>(value.items.indexOf(value.text)));
                          if (QLineEdit* edit = box->lineEdit()) {
                              edit->setText(value.text);
                              edit->setCursorPosition(0);
                          }
                      }
                  },
                  [&value] { return value.text; }, [&value](const QString& text) { value.text = text; }});
    screen_.addToTabOrder(box);
    if (picked) {
        QObject::connect(box, &QComboBox::activated, &screen_, [this_ = &screen_, picked] { this_->operate(picked); });
        screen_.onEnter(box, picked);
    }
    return *this;
}

Layout& Layout::choice(const QString& name, desk::Combo& value, int width, const Operation& picked) {
    combo(name, value, width);
    auto* box = static_cast<QComboBox*>(last_);
    box->setEditable(false);
    QObject::connect(box, &QComboBox::activated, &screen_, [this_ = &screen_, picked] { this_->operate(picked); });
    return *this;
}

Layout& Layout::options(const QString& frameName, const QString& title, std::initializer_list<OptionItem> items,
                        const Operation& chosen) {
    QWidget* box = frameWidget(frameName, title);
    auto* line = new QHBoxLayout(box);
    line->setContentsMargins(title.isEmpty() ? QMargins(0, 0, 0, 0) : QMargins(8, 4, 8, 4));
    auto* group = new QButtonGroup(box);
    for (const OptionItem& item : items) {
        auto* button = new QRadioButton(item.caption);
        button->setObjectName(item.name);
        group->addButton(button);
        line->addWidget(button);
        desk::Option* value = &item.option;
        screen_.bind({button, value, [button, value] { value->chosen = button->isChecked(); },
                      [button, value, group] {
                          if (button->isChecked() == value->chosen)
                              return;
                          // A group lets its last button go only while it is not exclusive.
                          group->setExclusive(false);
                          button->setChecked(value->chosen);
                          group->setExclusive(true);
                      },
                      [value] { return value->chosen ? u"1"_s : u"0"_s; },
                      [value](const QString& text) { value->chosen = text == u"1"; }});
        screen_.addToTabOrder(button);
        if (chosen)
            QObject::connect(button, &QRadioButton::clicked, &screen_,
                             [this_ = &screen_, chosen] { this_->operate(chosen); });
    }
    place(box);
    return *this;
}

Layout& Layout::check(const QString& name, desk::Check& value, const QString& caption, const Operation& chosen) {
    auto* box = new QCheckBox(caption);
    box->setObjectName(name);
    place(box);
    screen_.bind({box, &value, [box, &value] { value.chosen = box->isChecked(); },
                  [box, &value] { box->setChecked(value.chosen); }, [&value] { return value.chosen ? u"1"_s : u"0"_s; },
                  [&value](const QString& text) { value.chosen = text == u"1"; }});
    screen_.addToTabOrder(box);
    if (chosen)
        QObject::connect(box, &QCheckBox::clicked, &screen_, [this_ = &screen_, chosen] { this_->operate(chosen); });
    return *this;
}

} // namespace ui
