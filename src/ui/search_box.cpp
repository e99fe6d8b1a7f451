#include "ui/search_box.h"

#include "ui/plain_text.h"
#include "ui/row_table.h"
#include "ui/workplace.h"
#include "values/single_line.h"

#include <QAbstractTableModel>
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

const std::array<QString, 4>& headings() {
    static const std::array<QString, 4> all{u"種類"_s, u"番号"_s, u"名前"_s, u"見つかったところ"_s};
    return all;
}

} // namespace

// What was found; the row behind the last one says how much more there is.
class SearchBox::Lines : public QAbstractTableModel {
  public:
    using QAbstractTableModel::QAbstractTableModel;

    void set(desk::FoundList found) {
        const desk::FoundLine* before = line(picked_);
        const auto same = std::ranges::find_if(
            found.lines, [before](const desk::FoundLine& other) { return before && before->sameRow(other); });
        const int picked = same == found.lines.end() ? 1 : static_cast<int>(same - found.lines.begin()) + 1;
        beginResetModel();
        found_ = std::move(found);
        picked_ = found_.lines.empty() ? 0 : picked;
        endResetModel();
    }
    void clear() {
        picked_ = 0;
        set({});
    }
    int filled() const { return static_cast<int>(found_.lines.size()); }
    int picked() const { return picked_; }
    const QString& note() const { return found_.note; }
    // Counted from 1; null where there is none.
    const desk::FoundLine* line(int row) const {
        return row >= 1 && row <= filled() ? &found_.lines[static_cast<std::size_t>(row - 1)] : nullptr;
    }
    void pick(int row) {
        const int before = std::exchange(picked_, row);
        for (const int at : {before, row}) {
            if (at > 0)
                Q_EMIT dataChanged(index(at - 1, 0), index(at - 1, columnCount() - 1), {Qt::BackgroundRole});
        }
    }

    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : filled() + (found_.more > 0 ? 1 : 0);
    }
    int columnCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(headings().size());
    }
    QVariant data(const QModelIndex& index, int role) const override {
        const bool words = role == Qt::DisplayRole || role == Qt::ToolTipRole;
        const desk::FoundLine* found = line(index.row() + 1);
        if (!found)
            return words && index.column() == 2 ? u"ほか %1件"_s.arg(QLocale().toString(found_.more)) : QVariant();
        if (words) {
            const std::array<const QString*, 4> texts{&found->what, &found->number, &found->name, &found->matched};
            const QString& text = *texts[static_cast<std::size_t>(index.column())];
            return role == Qt::ToolTipRole ? plainToolTip(text) : text;
        }
        if (role == Qt::TextAlignmentRole)
            return QVariant::fromValue((index.column() == 1 ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
        return role == Qt::BackgroundRole && index.row() + 1 == picked_ ? QColor(128, 255, 128) : QVariant();
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        return role == Qt::DisplayRole && orientation == Qt::Horizontal ? headings()[static_cast<std::size_t>(section)]
                                                                        : QVariant();
    }

  private:
    desk::FoundList found_;
    int picked_ = 0;
};

class SearchBox::Table : public RowTable {
  public:
    explicit Table(Lines* lines) : lines_(lines) {
        setModel(lines);
        setColumnTwips({1300, 900, 4600, 0});
        horizontalHeader()->setStretchLastSection(true);
        setFocusPolicy(Qt::NoFocus);
    }
    int filledRows() const override { return lines_->filled(); }
    int pickedRow() const override { return lines_->picked(); }

  private:
    Lines* lines_;
};

SearchBox::SearchBox(Screen& screen)
    : screen_(screen), results_(new QFrame(&screen)), lines_(new Lines(this)), table_(new Table(lines_)),
      note_(plainLabel()) {
    setObjectName(u"さがす"_s);
    setAccessibleName(u"さがす"_s);
    setPlaceholderText(u"名前・戒名・電話番号・住所・お墓の区画など（F3）"_s);
    setMaxLength(longest);
    setClearButtonEnabled(true);
    setEnabled(screen.workplace().finder != nullptr);

    results_->setFrameShape(QFrame::StyledPanel);
    results_->setAutoFillBackground(true);
    results_->setVisible(false);
    auto* column = new QVBoxLayout(results_);
    column->setContentsMargins(6, 6, 6, 4);
    column->setSpacing(4);
    table_->setObjectName(u"さがす結果"_s);
    table_->setAccessibleName(u"さがす結果"_s);
    column->addWidget(table_, 1);
    note_->setObjectName(u"さがす案内"_s);
    note_->setWordWrap(true);
    column->addWidget(note_);

    screen.addToTabOrder(this);
    screen.searchedBy(this);
    screen.installEventFilter(this);
    screen.onEnter(this, [this] {
        if (results_->isVisible() && lines_->line(lines_->picked()))
            open(lines_->picked());
        else if (text().isEmpty())
            focusNextChild();
        else
            showResults();
    });
    table_->clickedAt = [this](int row, int) {
        if (lines_->line(row))
            screen_.operate([this, row] { open(row); });
    };
    connect(this, &QLineEdit::textChanged, this, [this](const QString& typed) {
        if (!values::isSingleLine(typed)) {
            // Pasted: what breaks the line parts two words.
            setText(values::singleLine(typed));
            return;
        }
        lines_->clear();
        find();
    });
    watch_.setInterval(betweenLooks);
    connect(&watch_, &QTimer::timeout, this, [this] {
        if (screen_.workplace().finder && screen_.workplace().finder->revision() != revision_)
            find();
    });
}

void SearchBox::begin() {
    setFocus(Qt::ShortcutFocusReason);
    selectAll();
    find();
}

void SearchBox::find() {
    desk::Finder* finder = screen_.workplace().finder.get();
    if (!finder || text().trimmed().isEmpty()) {
        hideResults();
        return;
    }
    desk::FoundList found = finder->find(text());
    revision_ = finder->revision();
    const bool nothing = found.lines.empty() && found.note.isEmpty();
    lines_->set(std::move(found));
    if (nothing)
        hideResults();
    else
        showResults();
}

void SearchBox::showResults() {
    if (text().trimmed().isEmpty())
        return;
    note_->setText(lines_->note().isEmpty() ? u"↑↓で選んで Enter で開きます。Esc で閉じます。"_s : lines_->note());
    table_->setVisible(lines_->filled() > 0);
    results_->show();
    results_->raise();
    place();
    pick(lines_->picked());
    watch_.start();
}

void SearchBox::hideResults() {
    watch_.stop();
    results_->hide();
}

// Below the box, as wide as the window, as high as the rows need or the window gives.
void SearchBox::place() {
    constexpr int margin = 10;
    const int top = mapTo(&screen_, QPoint(0, height() + 2)).y();
    const int room = screen_.height() - top - margin;
    const int rows = table_->isVisibleTo(results_)
                         ? table_->horizontalHeader()->sizeHint().height() + 2 * table_->frameWidth() + 2 +
                               lines_->rowCount() * table_->verticalHeader()->defaultSectionSize()
                         : 0;
    const int width = screen_.width() - 2 * margin;
    const QMargins inside = results_->layout()->contentsMargins();
    const int note = note_->heightForWidth(width - inside.left() - inside.right());
    results_->setGeometry(margin, top, width,
                          std::min(room, rows + note + inside.top() + inside.bottom() +
                                             results_->layout()->spacing() + 2 * results_->frameWidth()));
}

void SearchBox::pick(int row) {
    const desk::FoundLine* line = lines_->line(row);
    if (!line)
        return;
    lines_->pick(row);
    table_->scrollTo(lines_->index(row - 1, 0));
    // The keyboard stays in the box: what is picked is said there.
    setAccessibleDescription(QStringList{line->what, line->number, line->name, line->matched}.join(u' '));
    QAccessibleEvent event(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&event);
}

// Runs as an operation of the screen.
void SearchBox::open(int row) {
    const desk::FoundLine line = *lines_->line(row);
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
        if (!results_->isVisible())
            find();
        else
            pick(std::clamp(lines_->picked() + by, 1, std::max(1, lines_->filled())));
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

void SearchBox::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    if (event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason)
        hideResults();
}

bool SearchBox::eventFilter(QObject* watched, QEvent* event) {
    if (watched == &screen_ && event->type() == QEvent::Resize && results_->isVisible())
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
