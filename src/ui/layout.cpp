#include "ui/layout.h"

#include "ui/flow_layout.h"
#include "ui/grid_view.h"
#include "ui/kana_reading.h"
#include "ui/notice_bar.h"
#include "ui/plain_text.h"
#include "values/single_line.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace ui {

namespace {

constexpr QSize largestScreen(1366, 740); // of 1366 x 768, room for a title bar left

void setTextIfOther(QLineEdit* edit, const QString& text) {
    if (edit->text() != text) {
        edit->setText(text);
        edit->setCursorPosition(0);
    }
}

// A box of one line takes no more than one, whatever the clipboard holds; the screen's bar says so.
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

// A frame with a title has a border; one without only holds its controls together.
QWidget* frameWidget(const QString& name, const QString& title) {
    QWidget* frame = title.isEmpty() ? new QWidget : new QGroupBox(title);
    frame->setObjectName(name);
    return frame;
}

// A list box whose lines are chosen by a click, by Enter and by moving the choice with the keys alike, so that the line
// shown as chosen is always the one whose record the boxes hold. A line that only has the keyboard is not chosen.
class ListBox : public QListWidget {
  public:
    using QListWidget::QListWidget;
    Operation chosen;

    int chosenRow() const { return currentItem() && currentItem()->isSelected() ? currentRow() : -1; }
    void choose() {
        currentItem()->setSelected(true);
        chosen();
    }

  protected:
    void keyPressEvent(QKeyEvent* event) override {
        const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
        if (enter && chosen && currentRow() >= 0) {
            choose();
            return;
        }
        const int before = chosenRow();
        QListWidget::keyPressEvent(event);
        if (chosen && chosenRow() >= 0 && chosenRow() != before)
            chosen();
    }
};

} // namespace

Layout::Layout(Screen& screen) : screen_(screen), body_(new QWidget), bar_(new QWidget) {
    bands_ = new QVBoxLayout(body_);
    bands_->setContentsMargins(10, 8, 10, 4);
    buttons_ = new FlowLayout(bar_);
}

Layout::~Layout() {
    if (!grid_)
        bands_->addStretch(1);
    // Rows stand together at the top of a frame that is taller than they are.
    for (QGridLayout* rows : shortFrames_)
        rows->setRowStretch(rows->rowCount(), 1);
    auto* whole = new QVBoxLayout(&screen_);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->setSpacing(0);
    whole->addWidget(screen_.bar());
    auto* area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(body_);
    whole->addWidget(area, 1);
    buttons_->setContentsMargins(10, 6, 10, 10);
    whole->addWidget(bar_);

    screen_.showAccent();
    // As large as the content needs once it is loaded, within the smallest screen that offices use and the one at hand.
    screen_.fit_ = [screen = &screen_, body = body_, bar = bar_] {
        const QSize largest =
            screen->screen() ? largestScreen.boundedTo(screen->screen()->availableSize()) : largestScreen;
        const int scrollBar = screen->style()->pixelMetric(QStyle::PM_ScrollBarExtent);
        // Sizes that were asked for before the controls had their contents have been kept.
        for (QWidget* inner : body->findChildren<QWidget*>())
            inner->updateGeometry();
        for (QLayout* inner : body->findChildren<QLayout*>())
            inner->invalidate();
        const QSize content = body->sizeHint() + QSize(4, 4);
        int width = std::max(content.width(), bar->layout()->sizeHint().width() + 16);
        const int notice = screen->bar()->isVisibleTo(screen) ? screen->bar()->sizeHint().height() : 0;
        const int height = notice + content.height() + bar->heightForWidth(std::min(width, largest.width()));
        if (height > largest.height())
            width += scrollBar;
        screen->resize(QSize(width, height).boundedTo(largest));
    };
}

Layout& Layout::frame(const QString& name, const QString& title) {
    QWidget* box = frameWidget(name, title);
    if (next_ == Next::band || !band_) {
        band_ = new QHBoxLayout;
        bands_->addLayout(band_);
    }
    if (next_ != Next::below || !column_) {
        column_ = new QVBoxLayout;
        band_->addLayout(column_);
    }
    column_->addWidget(box);
    next_ = Next::band;
    rows_ = new QGridLayout(box);
    shortFrames_.push_back(rows_);
    rows_->setColumnStretch(1, 1);
    rows_->setVerticalSpacing(5);
    rows_->setContentsMargins(title.isEmpty() ? QMargins(2, 2, 2, 2) : QMargins(8, 6, 8, 8));
    items_ = nullptr;
    return *this;
}

Layout& Layout::beside() {
    next_ = Next::beside;
    return *this;
}

Layout& Layout::below() {
    next_ = Next::below;
    return *this;
}

Layout& Layout::row(const QString& text, const QString& labelName) {
    if (!rows_)
        frame();
    const int at = rows_->rowCount();
    label_ = plainLabel(text);
    spoken_ = text;
    label_->setObjectName(labelName);
    label_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    rows_->addWidget(label_, at, 0, Qt::AlignTop);
    items_ = new QHBoxLayout;
    items_->setSpacing(6);
    rows_->addLayout(items_, at, 1);
    items_->addStretch(1);
    return *this;
}

int Layout::pixels(int width) const {
    return screen_.fontMetrics().horizontalAdvance(u'国') * width + 16;
}

void Layout::place(QWidget* widget, int stretch) {
    if (!items_)
        row();
    // Before the stretch that keeps a row's items at the left; an item that grows takes the stretch's place.
    items_->insertWidget(items_->count() - 1, widget, stretch);
    if (stretch)
        items_->setStretch(items_->count() - 1, 0);
    last_ = widget;
    label_->setMinimumHeight(std::max(label_->minimumHeight(), std::min(widget->sizeHint().height(), 36)));
}

void Layout::label(QWidget* widget) {
    if (widget->accessibleName().isEmpty())
        widget->setAccessibleName(std::exchange(spoken_, {}));
    if (label_ && !label_->text().isEmpty() && !label_->buddy())
        label_->setBuddy(widget);
}

Layout& Layout::note(const QString& text, const QString& name) {
    auto* note = plainLabel(text);
    note->setObjectName(name);
    spoken_ = text;
    place(note);
    return *this;
}

Layout& Layout::text(const QString& name, desk::Text& value, int width) {
    auto* edit = new QLineEdit;
    edit->setObjectName(name);
    edit->setFixedWidth(pixels(width));
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
    edit->setFixedWidth(pixels(width));
    edit->setReadOnly(true);
    edit->setFocusPolicy(Qt::ClickFocus);
    place(edit);
    label(edit);
    screen_.bind({edit, &value, [edit, &value] { value.text = edit->text(); },
                  [edit, &value] { setTextIfOther(edit, value.text); }});
    return *this;
}

Layout& Layout::combo(const QString& name, desk::Combo& value, int width, const Operation& picked) {
    auto* box = new QComboBox;
    box->setObjectName(name);
    box->setEditable(true);
    box->setInsertPolicy(QComboBox::NoInsert);
    // What is typed is stored as typed, also where it begins like an entry.
    box->setCompleter(nullptr);
    box->setMaxVisibleItems(20);
    box->setFixedWidth(pixels(width) + 24);
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

Layout& Layout::check(const QString& name, desk::Check& value, const QString& caption) {
    auto* box = new QCheckBox(caption);
    box->setObjectName(name);
    place(box);
    screen_.bind({box, &value, [box, &value] { value.chosen = box->isChecked(); },
                  [box, &value] { box->setChecked(value.chosen); }, [&value] { return value.chosen ? u"1"_s : u"0"_s; },
                  [&value](const QString& text) { value.chosen = text == u"1"; }});
    screen_.addToTabOrder(box);
    return *this;
}

Layout& Layout::list(const QString& name, desk::List& value, int width, int lines, const Operation& chosen,
                     const QString& heading) {
    auto* box = new ListBox;
    box->setObjectName(name);
    box->setFixedWidth(pixels(width));
    box->setFixedHeight((screen_.fontMetrics().height() + 3) * lines + 8);
    box->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    if (heading.isEmpty()) {
        place(box);
    } else {
        auto* holder = new QWidget;
        auto* column = new QVBoxLayout(holder);
        column->setContentsMargins(0, 0, 0, 0);
        column->setSpacing(2);
        column->addWidget(plainLabel(heading));
        column->addWidget(box);
        column->addStretch(1);
        box->setAccessibleName(heading);
        place(holder);
    }
    label(box);
    screen_.bind({box, &value, [box, &value] { value.current = box->chosenRow(); },
                  [box, &value] {
                      const QSignalBlocker quiet(box);
                      bool other = box->count() != value.items.size();
                      for (int i = 0; !other && i < box->count(); ++i)
                          other = box->item(i)->text() != value.items[i];
                      if (other) {
                          // A line that stays is not moved from under a double click.
                          const int top = box->verticalScrollBar()->value();
                          box->clear();
                          box->addItems(value.items);
                          for (int i = 0; i < box->count(); ++i) {
                              box->item(i)->setToolTip(plainToolTip(value.items[i]));
                              // Lists that stand side by side keep their lines level whatever the fonts.
                              box->item(i)->setSizeHint(QSize(0, box->fontMetrics().height() + 3));
                          }
                          box->verticalScrollBar()->setValue(top);
                      }
                      box->setCurrentRow(value.current);
                      if (value.current < 0)
                          box->clearSelection();
                  }});
    screen_.addToTabOrder(box);
    if (chosen) {
        box->chosen = [this_ = &screen_, chosen] { this_->operate(chosen); };
        QObject::connect(box, &QListWidget::itemClicked, &screen_, [box] { box->choose(); });
    }
    lists_.push_back(box);
    last_ = box;
    return *this;
}

Layout& Layout::parallel(int count) {
    const std::vector<QListWidget*> together(lists_.end() - count, lists_.end());
    for (QListWidget* leader : together) {
        for (QListWidget* follower : together) {
            if (leader == follower)
                continue;
            QObject::connect(leader->verticalScrollBar(), &QScrollBar::valueChanged, follower->verticalScrollBar(),
                             &QScrollBar::setValue);
            QObject::connect(leader, &QListWidget::itemSelectionChanged, follower, [leader, follower] {
                const QSignalBlocker quiet(follower);
                follower->setCurrentRow(leader->selectedItems().isEmpty() ? -1 : leader->currentRow());
            });
        }
        if (leader == together.front())
            continue;
        leader->setFocusPolicy(Qt::ClickFocus);
        std::erase(screen_.tabOrder_, leader);
    }
    return *this;
}

Layout& Layout::dates(const DateNames& names, desk::DateGroup& value) {
    combo(names.era, value.era, 4);
    QWidget* era = last_;
    const QString what = label_->text();
    combo(names.year, value.year, 2).numeric();
    last_->setAccessibleName(what + u"　年"_s);
    note(u"年"_s).combo(names.month, value.month, 2).numeric();
    last_->setAccessibleName(what + u"　月"_s);
    note(u"月"_s).combo(names.day, value.day, 2).numeric();
    last_->setAccessibleName(what + u"　日"_s);
    note(u"日"_s).note(u"西暦"_s).shown(names.western, value.western, 6);
    last_->setAccessibleName(what + u"　西暦"_s);
    last_ = era;
    return *this;
}

Layout& Layout::grid(const QString& name, desk::Grid& value, const GridEvents& events, int visibleRows) {
    auto* view = new GridView;
    view->setObjectName(name);
    place(view, 1);
    label(view);
    screen_.bind({view, &value, {}, [view, &value] { view->show(value); }});
    screen_.addToTabOrder(view);
    Screen* screen = &screen_;
    const auto operation = [screen](const Operation& run) {
        return [screen, run] {
            if (run)
                screen->operate(run);
        };
    };
    view->clickedAt = [screen, &value, run = events.clicked](int row, int column) {
        screen->operate([&] {
            value.clickedColumn = column;
            value.clickedRow = std::min(row, static_cast<int>(value.rows.size()) + 1);
            run();
        });
    };
    view->openRow = operation(events.opened);
    view->turnPage = [next = operation(events.nextPage), previous = operation(events.previousPage)](bool forward) {
        forward ? next() : previous();
    };
    view->setPreferredRows(visibleRows);
    view->show(value); // columns known beforehand count for the screen's first size
    grid_ = true;
    bands_->setStretchFactor(band_, 1);
    std::erase(shortFrames_, rows_);
    return *this;
}

Layout& Layout::widget(QWidget* widget) {
    place(widget);
    label(widget);
    return *this;
}

Layout& Layout::fill(QWidget* widget) {
    bands_->addWidget(widget, 1);
    grid_ = true;
    last_ = widget;
    return *this;
}

QPushButton* Layout::makeButton(const QString& name, const QString& caption, Operation operation,
                                const QString& tooltip) {
    auto* button = new QPushButton(caption);
    button->setObjectName(name);
    button->setToolTip(tooltip);
    button->setAutoDefault(false);
    QObject::connect(button, &QPushButton::clicked, &screen_,
                     [this_ = &screen_, operation = std::move(operation)] { this_->operate(operation); });
    screen_.addToTabOrder(button);
    return button;
}

Layout& Layout::button(const QString& name, const QString& caption, Operation operation, const QString& tooltip) {
    place(makeButton(name, caption, std::move(operation), tooltip));
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
    QPushButton* button = makeButton(name, caption, std::move(operation), tooltip);
    const QSize hint = button->sizeHint();
    button->setMinimumSize(std::max(pixels(4), hint.width()), std::max(hint.height(), 34));
    buttons_->addWidget(button);
    last_ = button;
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

Layout& Layout::onLeave(Operation operation) {
    screen_.onLeave(last_, std::move(operation));
    return *this;
}

} // namespace ui
