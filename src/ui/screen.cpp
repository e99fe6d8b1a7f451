#include "ui/screen.h"

#include "store/database.h"
#include "ui/message_box.h"
#include "ui/notice_bar.h"
#include "ui/plain_text.h"
#include "ui/window_keeper.h"
#include "ui/workplace.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QElapsedTimer>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QProgressDialog>
#include <QRadioButton>
#include <QScopeGuard>
#include <QShortcut>
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

bool composing(const QObject* widget) {
    return widget->property("composing").toBool();
}

} // namespace

class Screen::ScreenDesk : public desk::Desk {
  public:
    explicit ScreenDesk(Screen& screen) : screen_(screen) {}

    void notify(const QString& text, const QString& title, desk::Icon icon) override {
        showForUser();
        showMessage(&screen_, text, title, icon, screen_.boxPlace());
    }
    bool ask(const QString& text, const QString& title, desk::Preset preset) override {
        showForUser();
        return askQuestion(&screen_, text, title, preset, screen_.boxPlace());
    }
    void inform(const QString& text) override { offer(text, {}); }
    void offer(const QString& text, std::vector<desk::Offer> offers) override {
        screen_.informed_ = text;
        screen_.offers_ = std::move(offers);
        screen_.about_.clear();
    }
    void hint(const QString& text, std::vector<const desk::Control*> about, std::vector<desk::Offer> offers) override {
        offer(text, std::move(offers));
        screen_.about_ = std::move(about);
    }
    QDate today() const override { return screen_.workplace_.today(); }
    void open(const QString& screen, desk::Opening how, std::function<void()> closed) override {
        // From here on the context belongs to the opened screen.
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
        if (screen_.informed_.isEmpty())
            return;
        screen_.refreshBar();
        screen_.layout()->activate();
    }

    Screen& screen_;
};

Screen::Screen(Workplace& workplace, const QString& name, const QString& caption, const QString& title, Keeps keeps)
    : workplace_(workplace), title_(title), keeps_(keeps), desk_(std::make_unique<ScreenDesk>(*this)),
      keeper_(std::make_unique<WindowKeeper>(*this)), bar_(new NoticeBar(this)) {
    setObjectName(name);
    setWindowTitle(caption);
    setWindowFlag(Qt::Window);
    bar_->pressed = [this](NoticeAction action) { barPressed(action); };
    auto* search = new QShortcut(Qt::Key_F3, this);
    connect(search, &QShortcut::activated, this, [this] { workplace_.goToSearch(*this); });
    bar_->taken = [this](const Operation& run) { offerTaken(run); };
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

void Screen::askForRecord(const Operation& part) {
    const auto putBack = qScopeGuard([this, before = std::exchange(asks_, true)] { asks_ = before; });
    part();
}

bool Screen::operate(const Operation& operation) {
    if (busy_)
        return false;
    busy_ = true;
    bool done = true;
    handedOver_ = false;
    informed_.clear();
    offers_.clear();
    about_.clear();
    readForm();
    for (const auto& prepare : prepare_)
        prepare();
    const std::optional<Draft> before = currentDraft();
    putBackKept();
    const int writes = store::writesCommitted();
    try {
        operation();
    } catch (const std::exception& failure) {
        done = false;
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
    if (std::exchange(closing_, false) && (!keyPressed_ || keyMayClose()))
        close();
    return done;
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
    takeSize();
}

void Screen::bind(Binding binding) {
    binding.widget->installEventFilter(this);
    if (auto* edit = qobject_cast<QLineEdit*>(binding.widget))
        connect(edit, &QLineEdit::textChanged, this, [this, control = binding.control] {
            if (!busy_ && !filling_ && std::ranges::find(about_, control) != about_.end())
                say({});
        });
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
    filling_ = true;
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
    filling_ = false;
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
    // Publish the record that the screen holds, not the unsaved boxes that it handed to another screen.
    if (subject_.publish)
        subject_.publish(context);
}

void Screen::takeKept() {
    kept_ = workplace_.context;
    keeping_ = true;
}

// What the bar tells and offers stays unless the operation tells something itself or ends with another record.
void Screen::operateQuietly(const Operation& run) {
    if (busy_)
        return;
    const auto marks = [this] {
        return subject_.record ? std::pair(subject_.record().showing(), subject_.record().ending()) : std::pair(0, 0);
    };
    const auto before = marks();
    QString told = informed_;
    std::vector<desk::Offer> offers = offers_;
    std::vector<const desk::Control*> about = about_;
    operate(run);
    if (!informed_.isEmpty() || marks() != before)
        return;
    informed_ = std::move(told);
    offers_ = std::move(offers);
    about_ = std::move(about);
    refreshBar();
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
            operateQuietly(run);
            if (there && there->window() == this)
                there->setFocus(Qt::OtherFocusReason);
        });
    }
}

bool Screen::event(QEvent* event) {
    windowEvent(*event);
    if (event->type() == QEvent::WindowActivate) {
        workplace_.usedNow(*this);
        keepOnDisplay();
        lookAgain_ = busy_;
        if (!busy_) {
            lookAtFile();
            refreshBar();
        }
    }
    if (event->type() == QEvent::WindowDeactivate)
        showAltKeys(false);
    followAlt(event);
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
    keepWindow();
    event->accept();
    workplace_.closed(this);
}

bool Screen::eventFilter(QObject* watched, QEvent* event) {
    followAlt(event);
    switch (event->type()) {
    case QEvent::InputMethod:
        watched->setProperty("composing", !static_cast<QInputMethodEvent*>(event)->preeditString().isEmpty());
        break;
    case QEvent::ShortcutOverride:
        // While the input method composes, every key is its own.
        if (composing(watched)) {
            event->accept();
            return true;
        }
        break;
    case QEvent::FocusIn:
        // What the mouse reaches is in sight, and must not move away under it.
        if (static_cast<QFocusEvent*>(event)->reason() != Qt::MouseFocusReason)
            reveal(static_cast<QWidget*>(watched));
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
        if (qobject_cast<QRadioButton*>(watched) || qobject_cast<QCheckBox*>(watched)) {
            // These are fields: the blank bar chooses, Enter goes on.
            focusNextChild();
            return true;
        }
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
