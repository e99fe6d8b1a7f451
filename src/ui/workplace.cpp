#include "ui/workplace.h"

#include "desk/user_settings.h"
#include "ui/message_box.h"
#include "ui/search_box.h"
#include "ui/window_keeper.h"

#include <QApplication>
#include <QDir>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace ui {

Workplace::Workplace(QHash<QString, ScreenMaker> makers) : makers_(std::move(makers)) {
    drafts.changed = [this] {
        for (Screen* screen : std::as_const(open_))
            screen->refreshBar();
    };
}

Workplace::~Workplace() {
    qDeleteAll(open_);
}

void Workplace::open(const QString& name, Screen* opener, desk::Opening how, Operation closed, const Draft* draft) {
    Screen* screen = open_.value(name);
    const bool fresh = !screen;
    if (fresh) {
        const auto maker = makers_.value(name);
        if (!maker) {
            showMessage(opener, u"「%1」の画面はまだありません。"_s.arg(name), opener ? opener->title() : name,
                        desk::Icon::exclamation);
            return;
        }
        if (first_.isEmpty())
            first_ = name;
        screen = maker(*this).release();
        open_.insert(name, screen);
    }
    if (how == desk::Opening::modal && opener) {
        waiting_[name].push_back({opener, std::move(closed)});
        // A visible window takes a change of modality only when it is shown anew.
        if (screen->isVisible())
            screen->hide();
        screen->setWindowModality(Qt::WindowModal);
        screen->winId();
        screen->windowHandle()->setTransientParent(opener->window()->windowHandle());
    }
    const QPointer<Screen> alive = screen;
    if (draft)
        screen->showFor(*draft);
    else if (fresh)
        screen->open();
    else if (opener && opener->asksForRecords())
        screen->askedAgain(context);
    context.endHandOver();
    if (!alive)
        return;
    screen->setWindowState(screen->windowState() & ~Qt::WindowMinimized);
    screen->show();
    screen->raise();
    screen->activateWindow();
}

void Workplace::showDraft() {
    if (drafts.all().empty())
        return;
    const Draft draft = drafts.all().front();
    for (const auto& [child, waiting] : waiting_.asKeyValueRange()) {
        for (const Waiting& one : waiting) {
            if (one.opener && one.opener == find(draft.screen)) {
                open(child);
                return;
            }
        }
    }
    drafts.turn();
    context = draft.context;
    open(draft.screen, nullptr, desk::Opening::modeless, {}, &draft);
}

void Workplace::goToSearch(Screen& from) {
    if (!finder || from.windowModality() != Qt::NonModal || operating())
        return;
    if (!from.searchBox())
        open(first_);
    const Screen* there = from.searchBox() ? &from : find(first_);
    if (there && there->searchBox())
        there->searchBox()->begin();
}

void Workplace::bringForward() {
    const auto raise = [](QWidget* window) {
        window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
        window->raise();
    };
    for (Screen* screen : std::as_const(open_)) {
        if (screen->isVisible())
            raise(screen);
    }
    QWidget* front = used_ ? used_.data() : find(first_);
    for (QWidget* window : {front, QApplication::activeModalWidget()}) {
        if (!window)
            continue;
        raise(window);
        window->activateWindow();
    }
}

void Workplace::forgetDeleted() {
    for (Screen* screen : std::as_const(open_))
        screen->forget(context);
    context.allForgot();
}

Screen* Workplace::find(const QString& name) const {
    return open_.value(name);
}

bool Workplace::operating() const {
    return std::any_of(open_.begin(), open_.end(), [](const Screen* screen) { return screen->operating(); });
}

bool Workplace::chooseTextSize(TextSize size) {
    for (Screen* screen : std::as_const(open_))
        screen->keepWindow();
    useTextSize(size);
    for (Screen* screen : std::as_const(open_))
        screen->followTextSize();
    return keepTextSize(size);
}

bool Workplace::resetWindows() {
    const bool forgotten = WindowKeeper::forgetKept();
    for (Screen* screen : std::as_const(open_))
        screen->resetWindow();
    return forgotten;
}

void Workplace::tellNotKept(Screen& screen) {
    if (!screen.tellsMore() && !std::exchange(toldNotKept_, true))
        screen.say(
            u"窓の大きさと列の幅を、次に起動するときまで残せません。設定のファイル「%1」に書き込めるか確認して下さい。"_s
                .arg(QDir::toNativeSeparators(desk::userSettings().fileName())));
}

void Workplace::closed(Screen* screen) {
    const QString name = screen->objectName();
    open_.remove(name);
    screen->deleteLater();
    const auto waitingOpeners = waiting_.take(name);
    // Hide first, so that the opener's next message does not open behind the screen that is closing.
    if (!waitingOpeners.empty())
        screen->hide();
    for (const Waiting& waiting : waitingOpeners) {
        if (waiting.opener && waiting.closed)
            waiting.opener->operate(waiting.closed);
    }
}

} // namespace ui
