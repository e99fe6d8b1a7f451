// List boxes and the grids of the list screens.
#include "ui/band_layout.h"
#include "ui/flow_layout.h"
#include "ui/grid_view.h"
#include "ui/layout.h"
#include "ui/plain_text.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QListWidget>
#include <QScrollBar>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace ui {

namespace {

// A list box whose lines are chosen by a click, by Enter and by moving the choice with the keys alike, so that the line
// shown as chosen is always the one whose record the boxes hold. A line that only has the keyboard is not chosen.
class ListBox : public QListWidget {
  public:
    using QListWidget::QListWidget;
    Operation chosen;

    int chosenRow() const { return currentItem() && currentItem()->isSelected() ? currentRow() : -1; }
    void choose() {
        currentItem()->setSelected(true);
        followed_ = currentRow();
        chosen();
    }
    // The form chose the line.
    void shownChosen(int row) { followed_ = row; }
    // Lists that stand side by side keep their lines level whatever the fonts.
    void level() {
        for (int i = 0; i < count(); ++i)
            item(i)->setSizeHint(QSize(0, fontMetrics().height() + 3));
    }

  protected:
    // A mouse that slips between press and release, or its other buttons, select a line without a click.
    void mouseReleaseEvent(QMouseEvent* event) override {
        QListWidget::mouseReleaseEvent(event);
        if (chosen && chosenRow() >= 0 && chosenRow() != followed_)
            choose();
    }
    void keyPressEvent(QKeyEvent* event) override {
        const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
        if (enter && chosen && currentRow() >= 0) {
            choose();
            return;
        }
        const int before = chosenRow();
        QListWidget::keyPressEvent(event);
        if (chosen && chosenRow() >= 0 && chosenRow() != before)
            choose();
    }

  private:
    int followed_ = -1; // the line whose record the boxes hold
};

} // namespace

Layout& Layout::list(const QString& name, desk::List& value, int width, int lines, const Operation& chosen,
                     const QString& heading) {
    auto* box = new ListBox;
    box->setObjectName(name);
    fixWidth(box, width);
    screen_.sized([screen = &screen_, box, lines] {
        box->setFixedHeight((screen->fontMetrics().height() + 3) * lines + 8);
        box->level();
    });
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
        speak(box, heading);
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
                          for (int i = 0; i < box->count(); ++i)
                              box->item(i)->setToolTip(plainToolTip(value.items[i]));
                          box->level();
                          box->verticalScrollBar()->setValue(top);
                      }
                      box->setCurrentRow(value.current);
                      box->shownChosen(value.current);
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

Layout& Layout::isInput() {
    auto& list = static_cast<desk::List&>(*screen_.lastBinding().control);
    screen_.lastBinding().typed = [&list] { return list.currentText(); };
    screen_.lastBinding().type = [&list](const QString& text) { list.choose(text); };
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
                // Qt selects the line before it makes it the current one.
                const auto selected = leader->selectedItems();
                follower->setCurrentRow(selected.isEmpty() ? -1 : leader->row(selected.front()));
            });
        }
        if (leader == together.front())
            continue;
        leader->setFocusPolicy(Qt::ClickFocus);
        std::erase(screen_.tabOrder_, leader);
    }
    items_->keepLastTogether(count);
    return *this;
}

Layout& Layout::grid(const QString& name, desk::Grid& value, const GridEvents& events, int visibleRows) {
    auto* view = new GridView;
    view->setObjectName(name);
    if (!label_ || items_)
        row();
    rows_->addWidget(view, rows_->rowCount() - 1, 1);
    last_ = view;
    if (spoken_.isEmpty())
        spoken_ = screen_.windowTitle();
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
    screen_.keepsColumns(*view, name);
    grid_ = true;
    bands_->setStretchFactor(band_, 1);
    std::erase(shortFrames_, rows_);
    return *this;
}

} // namespace ui
