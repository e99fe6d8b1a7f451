#pragma once

#include "desk/finder.h"
#include "desk/screen_context.h"
#include "ui/screen.h"
#include "ui/text_size.h"

#include <QDate>
#include <QHash>
#include <QString>

#include <functional>
#include <memory>

namespace ui {

using ScreenMaker = std::function<std::unique_ptr<Screen>(Workplace&)>;

// The open screens, each at most once, and the record they share.
class Workplace {
  public:
    // makers: every screen of the program by name; a screen without a maker is reported as not there when it is opened.
    explicit Workplace(QHash<QString, ScreenMaker> makers);
    ~Workplace();

    desk::ScreenContext context;
    Drafts drafts;
    std::unique_ptr<desk::Finder> finder; // null: the boxes of the search rest
    std::function<QDate()> today = [] { return QDate::currentDate(); };

    // Opens a screen or brings it forward without loading it again. modal: the opener is blocked until the screen
    // closes; closed then runs as the opener's operation. Reports a missing screen under the opener's title. With a
    // draft the screen shows what that was typed for.
    void open(const QString& name, Screen* opener = nullptr, desk::Opening how = desk::Opening::modeless,
              Operation closed = {}, const Draft* draft = nullptr);

    // Opens the screen of the first draft on the record that it was typed for; the screen's bar then offers it. The
    // next call shows the next one. A screen that waits for another one is left alone: that one comes forward.
    void showDraft();
    // Brings the keyboard to the search: on this screen where it has the box, else on the one that was opened first,
    // anew where it has been closed. Nothing while this screen is open before another one, or works.
    void goToSearch(Screen& from);
    // What the last operation deleted is kept by no other screen.
    void forgetDeleted();

    // The open screen of this name, null when it is not open.
    Screen* find(const QString& name) const;

    // Whether no screen but this one is open.
    bool isLast(const Screen& screen) const { return open_.size() == 1 && open_.contains(screen.objectName()); }
    // Brings all screens to the front, the one used last before the others and a box that is open before it.
    void bringForward();
    void usedNow(Screen& screen) { used_ = &screen; }

    // Whether a screen is in the middle of an operation, or waits in one for an answer.
    bool operating() const;

    // Gives all text this size, at once and at the next start; false where it cannot be kept for that.
    bool chooseTextSize(TextSize size);
    // All windows and columns are as if the user had never touched them; false where that cannot be kept.
    bool resetWindows();
    // Says in the bar of the screen, once a run, that what the user made of a window is not there at the next start.
    void tellNotKept(Screen& screen);

    // A screen has accepted its closing: it is let go and its waiting openers are told.
    void closed(Screen* screen);

  private:
    struct Waiting {
        QPointer<Screen> opener;
        Operation closed;
    };
    QHash<QString, ScreenMaker> makers_;
    QHash<QString, Screen*> open_;
    QString first_; // opened
    QPointer<Screen> used_;
    bool toldNotKept_ = false;
    QHash<QString, std::vector<Waiting>> waiting_;
};

} // namespace ui
