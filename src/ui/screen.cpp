#include "ui/screen.h"

#include "store/database.h"
#include "ui/message_box.h"
#include "ui/notice_bar.h"
#include "ui/plain_text.h"
#include "ui/workplace.h"
#include "values/numbers.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QElapsedTimer>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace ui {

namespace {

template <class Block> void copyBlock(const desk::ScreenContext& from, desk::ScreenContext& to) {
    static_cast<Block&>(to) = static_cast<const Block&>(from);
}

QColor colourOf(desk::Colour colour) {
    switch (colour) {
    case desk::Colour::darkRed:
        return QColor(128, 0, 0);
    case desk::Colour::red:
        return QColor(255, 0, 0);
    case desk::Colour::black:
        break;
    }
    return QColor(0, 0, 0);
}

void paint(QWidget* widget, desk::Colour colour, bool restored) {
    QPalette palette = QApplication::palette(widget);
    const auto* edit = qobject_cast<QLineEdit*>(widget);
    if (edit && edit->isReadOnly())
        palette.setColor(QPalette::Base, palette.color(QPalette::Window));
    if (restored)
        palette.setColor(QPalette::Base, QColor(255, 246, 214));
    if (colour != desk::Colour::black) {
        palette.setColor(QPalette::Text, colourOf(colour));
        palette.setColor(QPalette::WindowText, colourOf(colour));
        // An empty box has no text to colour: a pale ground shows that it is meant.
        palette.setColor(QPalette::Base, QColor(255, 232, 232));
    }
    widget->setPalette(palette);
}

// Progress of a long run in a window of its own; the user can only cancel it.
class ProgressWindow : public desk::Progress {
  public:
    ProgressWindow(QWidget* parent, const QString& title) : dialog_(parent) {
        dialog_.setObjectName(u"進行状況"_s);
        dialog_.setLabel(plainLabel());
        dialog_.setWindowTitle(title);
        dialog_.setCancelButtonText(u"中止"_s);
        dialog_.setRange(0, 100);
        dialog_.setMinimumDuration(500);
        dialog_.setAutoReset(false);
        dialog_.setAutoClose(false);
        dialog_.setWindowModality(Qt::ApplicationModal);
        dialog_.setValue(0);
    }

    bool advance(int percent, const QString& text) override {
        constexpr qint64 pace = 40; // ms between two looks at the screen
        if (last_.isValid() && last_.elapsed() < pace)
            return !dialog_.wasCanceled();
        last_.start();
        dialog_.setLabelText(text);
        dialog_.setValue(percent);
        // While the window does not stand before the others yet, nobody may start something else.
        QApplication::processEvents(dialog_.isVisible() ? QEventLoop::AllEvents : QEventLoop::ExcludeUserInputEvents);
        return !dialog_.wasCanceled();
    }

  private:
    QProgressDialog dialog_;
    QElapsedTimer last_;
};

// Whether two texts of one box stand for the same.
bool same(const QString& one, const QString& other, bool numeric) {
    if (one == other)
        return true;
    const auto number = [](const QString& text) { return text.isEmpty() ? 0 : values::readWhole(text); };
    return numeric && number(one) && number(one) == number(other);
}

// The one quiet accent of a screen.
void wearAccent(QPushButton* button, bool worn) {
    if (!button)
        return;
    QPalette palette = QApplication::palette(button);
    if (worn)
        palette.setColor(QPalette::Button, QColor(214, 228, 240));
    button->setPalette(palette);
}

bool composing(const QObject* widget) {
    return widget->property("composing").toBool();
}

} // namespace

class Screen::ScreenDesk : public desk::Desk {
  public:
    explicit ScreenDesk(Screen& screen) : screen_(screen) {}

    void notify(const QString& text, const QString& title, desk::Icon icon) override {
        showForUser();
        showMessage(&screen_, text, title, icon);
    }
    bool ask(const QString& text, const QString& title, desk::Preset preset) override {
        showForUser();
        return askQuestion(&screen_, text, title, preset);
    }
    void inform(const QString& text) override { screen_.informed_ = text; }
    QDate today() const override { return screen_.workplace_.today(); }
    void open(const QString& screen, desk::Opening how, std::function<void()> closed) override {
        // From here on the record is the opened screen's.
        screen_.takeKept();
        screen_.handedOver_ = true;
        screen_.workplace_.open(screen, &screen_, how, std::move(closed));
    }
    void close() override { screen_.closing_ = true; }
    std::unique_ptr<desk::Progress> progress(const QString& title) override {
        return std::make_unique<ProgressWindow>(&screen_, title);
    }

  private:
    // The user sees the marks and numbers that the message speaks of.
    void showForUser() {
        screen_.showForm();
        if (!screen_.isVisible())
            screen_.show();
    }

    Screen& screen_;
};

Screen::Screen(Workplace& workplace, const QString& name, const QString& caption, const QString& title, Keeps keeps)
    : workplace_(workplace), title_(title), keeps_(keeps), desk_(std::make_unique<ScreenDesk>(*this)),
      bar_(new NoticeBar(this)) {
    setObjectName(name);
    setWindowTitle(caption);
    setWindowFlag(Qt::Window);
    bar_->pressed = [this](NoticeAction action) { barPressed(action); };
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget* from, QWidget* to) { focusMoved(from, to); });
}

// Qt hides the window only when no more than the widget is left of the screen: then the focus leaves no screen.
Screen::~Screen() {
    disconnect(qApp, nullptr, this, nullptr);
}

desk::Desk& Screen::desk() {
    return *desk_;
}

desk::ScreenContext& Screen::context() {
    return workplace_.context;
}

void Screen::operate(const Operation& operation) {
    if (busy_)
        return;
    busy_ = true;
    handedOver_ = false;
    informed_.clear();
    readForm();
    const std::optional<Draft> before = currentDraft();
    putBackKept();
    const int writes = store::writesCommitted();
    try {
        operation();
    } catch (const std::exception& failure) {
        const bool partly = store::writesCommitted() != writes;
        desk_->notify(partly ? store::explainAfterWrite(failure) : store::explain(failure), title_,
                      desk::Icon::exclamation);
    }
    if (!handedOver_)
        takeKept();
    workplace_.forgetDeleted();
    settle(before);
    if (!subject_.record && subject_.asked && listed_.key.isEmpty())
        listed_ = subject_.asked(kept_).value_or(desk::AskedRecord());
    showForm();
    for (const Binding& binding : bindings_) {
        if (!binding.control || !binding.control->keyboard)
            continue;
        binding.control->keyboard = false;
        binding.widget->setFocus(Qt::OtherFocusReason);
        if (auto* edit = qobject_cast<QLineEdit*>(binding.widget); edit && std::exchange(binding.control->whole, false))
            edit->selectAll();
        break;
    }
    busy_ = false;
    if (std::exchange(lookAgain_, false))
        lookAtFile();
    refreshBar();
    if (closing_)
        close();
}

void Screen::applyTabOrder() {
    for (std::size_t i = 1; i < tabOrder_.size(); ++i)
        QWidget::setTabOrder(tabOrder_[i - 1], tabOrder_[i]);
}

void Screen::open() {
    applyTabOrder();
    if (load_)
        operate(load_);
    else
        showForm();
    if (fit_)
        fit_();
}

void Screen::bind(Binding binding) {
    binding.widget->installEventFilter(this);
    bindings_.push_back(std::move(binding));
}

void Screen::addToTabOrder(QWidget* widget) {
    tabOrder_.push_back(widget);
    widget->installEventFilter(this);
}

void Screen::onLeave(QWidget* widget, Operation operation) {
    leaving_.emplace_back(widget, std::move(operation));
}

void Screen::onEnter(QWidget* widget, Operation operation) {
    entered_.emplace_back(widget, std::move(operation));
}

void Screen::readForm() {
    for (const Binding& binding : bindings_) {
        if (binding.intoForm)
            binding.intoForm();
    }
}

void Screen::showForm() {
    for (const Binding& binding : bindings_) {
        if (binding.intoWidget)
            binding.intoWidget();
        if (!binding.control)
            continue;
        paint(binding.widget, binding.control->colour, binding.restored);
        if (!binding.control->first)
            continue;
        binding.control->first = false;
        const auto place = std::find(tabOrder_.begin(), tabOrder_.end(), binding.widget);
        if (place == tabOrder_.end())
            continue;
        std::rotate(tabOrder_.begin(), place, place + 1);
        applyTabOrder();
    }
}

void Screen::putBackKept() {
    if (!keeping_)
        return;
    desk::ScreenContext& context = workplace_.context;
    if (keeps_.household)
        context.publishHousehold(static_cast<const desk::HouseholdBlock&>(kept_));
    if (keeps_.deceased)
        copyBlock<desk::DeceasedBlock>(kept_, context);
    if (keeps_.memorial)
        copyBlock<desk::MemorialBlock>(kept_, context);
    if (keeps_.grave)
        copyBlock<desk::GraveBlock>(kept_, context);
    context.endHandOver();
    // What the screen holds counts, not what it handed to another one from its boxes.
    if (subject_.publish)
        subject_.publish(context);
}

void Screen::takeKept() {
    kept_ = workplace_.context;
    keeping_ = true;
}

void Screen::focusMoved(QWidget* from, QWidget* to) {
    if (busy_ || !from || !to || to->window() != this || from->window() != this || to->objectName() == u"終了"_s)
        return;
    for (const auto& [widget, operation] : leaving_) {
        if (widget != from || widget == to)
            continue;
        // After the event that moved the keyboard: a message now would swallow the click that goes with it.
        QTimer::singleShot(0, this, [this, run = operation] {
            const QPointer<QWidget> there = QApplication::focusWidget();
            operate(run);
            if (there && there->window() == this)
                there->setFocus(Qt::OtherFocusReason);
        });
    }
}

void Screen::onIdleBar(std::function<QString()> text, std::function<void()> pressed) {
    idleText_ = std::move(text);
    idlePressed_ = std::move(pressed);
}

// The boxes in which something else stands than what filling them showed. Those that name the record do not count.
QStringList Screen::typedBoxes() const {
    QStringList names;
    if (!subject_.record)
        return names;
    for (const Binding& binding : bindings_) {
        const QString name = binding.widget->objectName();
        if (binding.typed && !binding.namesRecord && baseline_.contains(name) &&
            !same(binding.typed(), baseline_.value(name), binding.numeric))
            names << name;
    }
    return names;
}

// Whether the boxes that name the record name another one than it was filled from: a screen that looks up by them then
// holds input for a new record.
bool Screen::namesOther() const {
    return subject_.lookUp && std::ranges::any_of(bindings_, [this](const Binding& binding) {
               return binding.namesRecord && binding.typed &&
                      !same(binding.typed(), baseline_.value(binding.widget->objectName()), binding.numeric);
           });
}

Draft Screen::draftOf(const QStringList& typed) const {
    const desk::Record& record = subject_.record();
    Draft draft{objectName(), windowTitle(), record.key(), record.label(), record.isNew(), kept_, {}, {}, typed};
    if (!record.isNew() && namesOther()) {
        const desk::AskedRecord other = desk::Record::newRecord({});
        draft.key = other.key;
        draft.label = other.label;
        draft.ofNew = true;
    }
    draft.context.endHandOver();
    draft.context.allForgot();
    if (const auto& lead = subject_.name ? subject_.name : subject_.publish)
        lead(draft.context);
    for (const Binding& binding : bindings_) {
        if (binding.typed)
            (binding.namesRecord ? draft.recordBoxes : draft.boxes)[binding.widget->objectName()] = binding.typed();
    }
    return draft;
}

std::optional<Draft> Screen::currentDraft() const {
    const QStringList typed = typedBoxes();
    if (typed.isEmpty())
        return {};
    return draftOf(typed);
}

void Screen::takeBaseline() {
    baseline_.clear();
    for (Binding& binding : bindings_) {
        binding.restored = false;
        if (binding.typed)
            baseline_[binding.widget->objectName()] = binding.typed();
    }
}

// After an operation: what was typed for a record that is shown no more becomes a draft; a save or deletion ends it.
void Screen::settle(const std::optional<Draft>& before) {
    if (!subject_.record)
        return;
    const desk::Record& record = subject_.record();
    const bool ended = record.ending() > ending_;
    const bool filled = record.showing() > showing_;
    if (ended) {
        workplace_.drafts.end(objectName(), record.key());
        if (before)
            workplace_.drafts.endSaved(objectName(), before->boxes);
    } else if (filled && before) {
        Draft draft = *before;
        for (const Binding& binding : bindings_) {
            if (binding.control && binding.control->question)
                draft.typed.removeAll(binding.widget->objectName());
        }
        if (!draft.typed.isEmpty())
            workplace_.drafts.keep(std::move(draft));
    }
    if (ended || filled) {
        takeBaseline();
        standing_ = desk::Standing::asRead;
        asked_.reset();
        strayKey_.clear();
    }
    for (const Binding& binding : bindings_) {
        if (!binding.control || !std::exchange(binding.control->question, false))
            continue;
        // What was asked is no input, found or not.
        if (binding.typed)
            baseline_[binding.widget->objectName()] = binding.typed();
    }
    ending_ = std::max(ending_, record.ending());
    showing_ = std::max(showing_, record.showing());
    showAccent();
}

void Screen::showAccent() {
    const bool shown = subject_.record && !subject_.record().isNew();
    wearAccent(registers_, !shown || !updates_);
    wearAccent(updates_, shown || !registers_);
}

void Screen::load(const desk::ScreenContext& named, const QHash<QString, QString>& recordBoxes) {
    if (busy_)
        return;
    readForm();
    if (auto draft = currentDraft())
        workplace_.drafts.keep(std::move(*draft));
    takeBaseline();
    // The bar moves no keyboard, whatever the loading would like.
    const QPointer<QWidget> keyboard = isVisible() ? focusWidget() : nullptr;
    operate([&] {
        workplace_.context = named;
        workplace_.context.endHandOver();
        const auto putBack = emptyForm();
        const auto askedBefore = std::exchange(asked_, std::nullopt);
        const auto listedBefore = std::exchange(listed_, {});
        try {
            if (subject_.lookUp) {
                if (load_)
                    load_();
                for (const Binding& binding : bindings_) {
                    if (binding.namesRecord)
                        binding.type(recordBoxes.value(binding.widget->objectName()));
                }
                subject_.lookUp();
            } else {
                subject_.load();
            }
        } catch (...) {
            // Where the register cannot be read now, the screen stays as it was.
            putBack();
            asked_ = askedBefore;
            listed_ = listedBefore;
            throw;
        }
    });
    if (keyboard)
        keyboard->setFocus(Qt::OtherFocusReason);
}

void Screen::showFor(const Draft& draft) {
    const bool shown = isVisible();
    if (!shown)
        applyTabOrder();
    if (!shown || subject_.record().key() != draft.key)
        load(draft.context, draft.recordBoxes);
    if (subject_.record().key() != draft.key)
        strayKey_ = draft.key;
    refreshBar();
    if (!shown && fit_)
        fit_();
}

// The key of the draft that the bar offers: of the record shown, or of one that is gone.
QString Screen::offeredKey() const {
    return strayKey_.isEmpty() ? subject_.record().key() : strayKey_;
}

void Screen::askedAgain(const desk::ScreenContext& context) {
    asked_.reset();
    if (subject_.asked) {
        const auto record = subject_.asked(context);
        if (record && record->key != (subject_.record ? subject_.record().key() : listed_.key))
            asked_ = Asked{*record, context};
    }
    refreshBar();
}

void Screen::restore(const Draft& draft) {
    readForm();
    std::optional<Draft> typedOver = currentDraft();
    if (typedOver) {
        // What would be typed over is kept in its turn.
        typedOver->typed.removeIf([&](const QString& box) {
            return !draft.boxes.contains(box) || !(draft.ofNew || draft.typed.contains(box)) ||
                   draft.boxes.value(box) == typedOver->boxes.value(box);
        });
        if (!typedOver->typed.isEmpty())
            workplace_.drafts.keep(std::move(*typedOver));
    }
    for (Binding& binding : bindings_) {
        const QString name = binding.widget->objectName();
        const bool typed = draft.typed.contains(name);
        if (!binding.type)
            continue;
        // A new record is named by boxes of its own.
        if (binding.namesRecord && draft.ofNew && subject_.lookUp)
            binding.type(draft.recordBoxes.value(name));
        if (binding.namesRecord || !(typed || draft.ofNew) || !draft.boxes.contains(name))
            continue;
        binding.type(draft.boxes.value(name));
        binding.restored = typed;
    }
    strayKey_.clear();
    showForm();
    refreshBar();
}

// Asks without waiting for a lock: a bar that cannot tell now tells later.
void Screen::lookAtFile() {
    standing_ = desk::Standing::asRead;
    if (!subject_.record || subject_.record().isNew())
        return;
    try {
        store::Database database;
        database.engine().setBusyTimeout(0);
        standing_ = subject_.record().standing(database);
        replaced_ = standing_ != desk::Standing::asRead && subject_.record().registerReplaced();
    } catch (const std::exception&) {
        // The next operation says what is wrong with the register.
    }
}

void Screen::say(const QString& text) {
    informed_ = text;
    refreshBar();
}

void Screen::refreshBar() {
    using enum NoticeAction;
    const bool was = bar_->isVisibleTo(this);
    const Draft* draft = subject_.record && !busy_ ? workplace_.drafts.find(objectName(), offeredKey()) : nullptr;
    const QString idle = idleText_ ? idleText_() : QString();
    if (standing_ != desk::Standing::asRead && replaced_)
        bar_->tell(u"登録簿が入れ替わりました。画面を開き直して下さい"_s);
    else if (standing_ == desk::Standing::gone)
        bar_->tell(u"この記録はほかの画面で削除されています。"_s);
    else if (standing_ == desk::Standing::twice)
        bar_->tell(
            u"同じ番号・名前の記録が二つあります。端末で「hoshiren-db check」を実行して、登録簿を確認して下さい。"_s);
    else if (standing_ != desk::Standing::asRead)
        bar_->tell(u"この記録はほかの画面で変更されています。"_s, {読み直す});
    else if (asked_)
        bar_->tell(u"「%1」を表示しています。「%2」を開くには「表示する」を押して下さい。"_s.arg(
                       subject_.record ? subject_.record().label() : listed_.label, asked_->record.label),
                   {表示する});
    else if (draft && !strayKey_.isEmpty())
        bar_->tell(u"「%1」の記録はもうありません。前に入力した内容が残っています"_s.arg(draft->label), {戻す, 捨てる});
    else if (draft)
        bar_->tell(u"前に入力した内容が残っています"_s, {戻す, 捨てる});
    else if (!informed_.isEmpty())
        bar_->tell(informed_);
    else if (!idle.isEmpty())
        bar_->tell(idle, {表示する});
    else
        bar_->clear();
    if (bar_->isVisibleTo(this) != was)
        fitBar();
}

// The bar takes no room from the fields where the screen has room for both.
void Screen::fitBar() {
    if (!isVisible() || isMaximized() || !screen())
        return;
    if (!bar_->isVisibleTo(this)) {
        resize(width(), height() - std::exchange(grownBy_, 0));
        return;
    }
    const int needed = bar_->sizeHint().height();
    if (frameGeometry().bottom() + needed > screen()->availableGeometry().bottom())
        return;
    grownBy_ = needed;
    resize(width(), height() + needed);
}

void Screen::barPressed(NoticeAction action) {
    if (busy_)
        return;
    switch (action) {
    case NoticeAction::読み直す: {
        // By the boxes as they were filled, whatever is typed there now.
        readForm();
        load(draftOf({}).context, baseline_);
        break;
    }
    case NoticeAction::表示する:
        if (asked_) {
            const desk::ScreenContext context = asked_->context;
            load(context, {});
        } else if (idlePressed_) {
            idlePressed_();
        }
        break;
    case NoticeAction::戻す:
        if (const auto draft = workplace_.drafts.take(objectName(), offeredKey()))
            restore(*draft);
        break;
    case NoticeAction::捨てる:
        workplace_.drafts.take(objectName(), offeredKey());
        strayKey_.clear();
        refreshBar();
        break;
    case NoticeAction::元に戻す:
        break;
    }
}

bool Screen::event(QEvent* event) {
    if (event->type() == QEvent::WindowActivate) {
        lookAgain_ = busy_;
        if (!busy_) {
            lookAtFile();
            refreshBar();
        }
    }
    return QWidget::event(event);
}

void Screen::closeEvent(QCloseEvent* event) {
    if (busy_) {
        event->ignore();
        return;
    }
    readForm();
    if (auto draft = currentDraft())
        workplace_.drafts.keep(std::move(*draft));
    event->accept();
    workplace_.closed(this);
}

bool Screen::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::InputMethod:
        watched->setProperty("composing", !static_cast<QInputMethodEvent*>(event)->preeditString().isEmpty());
        break;
    case QEvent::Wheel:
        // A turn of the wheel over a closed list must not change a record.
        if (qobject_cast<QComboBox*>(watched)) {
            event->ignore();
            return true;
        }
        break;
    case QEvent::KeyPress: {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key != Qt::Key_Return && key != Qt::Key_Enter)
            break;
        if (auto* button = qobject_cast<QAbstractButton*>(watched)) {
            // A key held down presses once: it must not run through the questions that follow.
            if (!static_cast<QKeyEvent*>(event)->isAutoRepeat())
                button->click();
            return true;
        }
        if (qobject_cast<QAbstractItemView*>(watched) || composing(watched))
            break;
        for (const auto& [widget, operation] : entered_) {
            if (widget == watched) {
                operate(operation);
                return true;
            }
        }
        if (qobject_cast<QLineEdit*>(watched) || qobject_cast<QComboBox*>(watched)) {
            focusNextChild();
            return true;
        }
        break;
    }
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace ui
