#include "ui/search_box.h"

#include "ui/plain_text.h"
#include "ui/row_table.h"
#include "ui/workplace.h"
#include "values/single_line.h"

#include <QAccessible>
#include <QFrame>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace ui {

namespace {

constexpr int longest = 200; // characters
constexpr int aPage = 10;    // rows
constexpr std::chrono::milliseconds betweenLooks{200};

} // namespace

// What was found; the row behind the last one says how much more there is.
class SearchBox::Table : public RowTable {
  public:
    Table() {
        setColumns({{u"種類"_s, 1300},
                    {u"番号"_s, 800, desk::Align::right, desk::Align::right},
                    {u"名前"_s, 4000},
                    {u"見つかったところ"_s, 4600}});
        setFocusPolicy(Qt::NoFocus);
    }

    // The row that is picked stays so where it is found again.
    void show(desk::FoundList found, bool keepPicked) {
        const desk::FoundLine* before = keepPicked ? line(picked_) : nullptr;
        const auto same = std::ranges::find_if(
            found.lines, [before](const desk::FoundLine& other) { return before && before->sameRow(other); });
        const auto place = same == found.lines.end() ? 0 : same - found.lines.begin();
        picked_ = found.lines.empty() ? 0 : static_cast<int>(place) + 1;
        found_ = std::move(found);
        showRows();
    }
    void pick(int row) { showPicked(std::exchange(picked_, row)); }
    const QString& note() const { return found_.note; }
    // Counted from 1; null where there is none.
    const desk::FoundLine* line(int row) const {
        return row >= 1 && row <= filledRows() ? &found_.lines[static_cast<std::size_t>(row - 1)] : nullptr;
    }

    int filledRows() const override { return static_cast<int>(found_.lines.size()); }
    int shownRows() const override { return filledRows() + (found_.more > 0 ? 1 : 0); }
    int pickedRow() const override { return picked_; }
    QString cell(int row, int column) const override {
        const desk::FoundLine* found = line(row);
        if (!found)
            return column == 2 && row == filledRows() + 1 ? u"ほか %1件"_s.arg(QLocale().toString(found_.more))
                                                          : QString();
        return *std::array{&found->what, &found->number, &found->name,
                           &found->matched}[static_cast<std::size_t>(column)];
    }

  private:
    desk::FoundList found_;
    int picked_ = 0;
};

SearchBox::SearchBox(Screen& screen) : screen_(screen) {
    setObjectName(u"さがす"_s);
    setAccessibleName(u"さがす"_s);
    setPlaceholderText(u"名前・戒名・電話番号・住所・お墓の区画など（F3）"_s);
    setMaxLength(longest);
    setEnabled(screen.workplace().finder != nullptr);

    screen.addToTabOrder(this);
    screen.searchedBy(this);
    screen.installEventFilter(this);
    screen.onEnter(this, [this] {
        if (showsResults() && table_->line(table_->pickedRow()))
            open(table_->pickedRow());
        else if (text().isEmpty())
            focusNextChild();
        else
            find();
    });
    connect(this, &QLineEdit::textChanged, this, [this](const QString& typed) {
        if (!values::isSingleLine(typed)) {
            // Pasted: what breaks the line parts two words.
            setText(values::singleLine(typed));
            return;
        }
        find(false);
    });
    screen.sized([this] {
        if (showsResults())
            place();
    });
    watch_.setInterval(betweenLooks);
    connect(&watch_, &QTimer::timeout, this, [this] {
        if (screen_.workplace().finder && screen_.workplace().finder->revision() != revision_)
            find();
    });
}

void SearchBox::prepare() {
    if (results_)
        return;
    setClearButtonEnabled(true);
    results_ = new QFrame(&screen_);
    results_->setFrameShape(QFrame::StyledPanel);
    results_->setAutoFillBackground(true);
    results_->setVisible(false);
    auto* column = new QVBoxLayout(results_);
    column->setContentsMargins(6, 6, 6, 4);
    column->setSpacing(4);
    table_ = new Table;
    table_->setObjectName(u"さがす結果"_s);
    table_->setAccessibleName(u"さがす結果"_s);
    table_->clickedAt = [this](int row, int) {
        if (table_->line(row))
            screen_.operate([this, row] { open(row); });
    };
    column->addWidget(table_, 1);
    note_ = plainLabel();
    note_->setObjectName(u"さがす案内"_s);
    note_->setWordWrap(true);
    column->addWidget(note_);
    screen_.keepsColumns(*table_, table_->objectName());
}

bool SearchBox::showsResults() const {
    return results_ && results_->isVisible();
}

void SearchBox::begin() {
    setFocus(Qt::ShortcutFocusReason);
    selectAll();
    find();
}

void SearchBox::find(bool keepPicked) {
    desk::Finder* finder = screen_.workplace().finder.get();
    if (!finder || text().trimmed().isEmpty()) {
        hideResults();
        return;
    }
    prepare();
    desk::FoundList found = finder->find(text());
    revision_ = finder->revision();
    const bool nothing = found.lines.empty() && found.note.isEmpty();
    table_->show(std::move(found), keepPicked);
    if (nothing)
        hideResults();
    else
        showResults();
}

void SearchBox::showResults() {
    note_->setText(table_->note().isEmpty() ? u"↑↓で選んで Enter で開きます。Esc で閉じます。"_s : table_->note());
    table_->setVisible(table_->filledRows() > 0);
    results_->show();
    results_->raise();
    place();
    pick(table_->pickedRow());
    watch_.start();
}

void SearchBox::hideResults() {
    watch_.stop();
    if (results_)
        results_->hide();
}

// Below the box, as wide as the window, as high as the rows need or the window gives.
void SearchBox::place() {
    constexpr int margin = 10;
    const int top = mapTo(&screen_, QPoint(0, height() + 2)).y();
    const int room = screen_.height() - top - margin;
    const int rows = table_->isVisibleTo(results_)
                         ? table_->horizontalHeader()->sizeHint().height() + 2 * table_->frameWidth() + 2 +
                               table_->shownRows() * table_->verticalHeader()->defaultSectionSize()
                         : 0;
    const int width = screen_.width() - 2 * margin;
    const QMargins inside = results_->layout()->contentsMargins();
    const int note = note_->heightForWidth(width - inside.left() - inside.right());
    results_->setGeometry(margin, top, width,
                          std::min(room, rows + note + inside.top() + inside.bottom() + results_->layout()->spacing() +
                                             2 * results_->frameWidth()));
}

void SearchBox::pick(int row) {
    const desk::FoundLine* line = table_->line(row);
    if (!line)
        return;
    table_->pick(row);
    table_->scrollTo(table_->model()->index(row - 1, 0));
    // The keyboard stays in the box: what is picked is said there.
    setAccessibleDescription(QStringList{line->what, line->number, line->name, line->matched}.join(u' '));
    QAccessibleEvent event(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&event);
}

// Runs as an operation of the screen.
void SearchBox::open(int row) {
    const desk::FoundLine line = *table_->line(row);
    pick(row);
    hideResults();
    selectAll();
    screen_.askForRecord([&] { screen_.workplace().finder->open(line, screen_.context(), screen_.desk()); });
}

void SearchBox::inputMethodEvent(QInputMethodEvent* event) {
    composing_ = !event->preeditString().isEmpty();
    QLineEdit::inputMethodEvent(event);
}

void SearchBox::keyPressEvent(QKeyEvent* event) {
    const auto move = [this](int by) {
        if (!showsResults())
            find();
        else
            pick(std::clamp(table_->pickedRow() + by, 1, std::max(1, table_->filledRows())));
    };
    if (composing_ || event->modifiers() & ~Qt::KeypadModifier) {
        QLineEdit::keyPressEvent(event);
        return;
    }
    switch (event->key()) {
    case Qt::Key_Down:
        move(1);
        return;
    case Qt::Key_Up:
        move(-1);
        return;
    case Qt::Key_PageDown:
        move(aPage);
        return;
    case Qt::Key_PageUp:
        move(-aPage);
        return;
    case Qt::Key_Escape:
        if (text().isEmpty())
            break;
        clear();
        return;
    default:
        break;
    }
    QLineEdit::keyPressEvent(event);
}

bool SearchBox::event(QEvent* event) {
    // What was typed goes before the screen does.
    if (event->type() == QEvent::ShortcutOverride && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape &&
        !text().isEmpty()) {
        event->accept();
        return true;
    }
    return QLineEdit::event(event);
}

void SearchBox::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    if (event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason)
        hideResults();
}

bool SearchBox::eventFilter(QObject* watched, QEvent* event) {
    if (watched == &screen_ && event->type() == QEvent::Resize && showsResults())
        place();
    return QLineEdit::eventFilter(watched, event);
}

QWidget* searchLine(Screen& screen) {
    auto* line = new QWidget;
    auto* items = new QHBoxLayout(line);
    items->setContentsMargins(0, 0, 0, 0);
    auto* box = new SearchBox(screen);
    auto* label = plainLabel(u"さがす"_s);
    label->setBuddy(box);
    items->addWidget(label);
    items->addWidget(box, 1);
    line->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    return line;
}

} // namespace ui
