#pragma once

#include <QDate>
#include <QString>

#include <functional>
#include <memory>

namespace desk {

enum class Icon { none, exclamation };
enum class Opening { modeless, modal };
// The answer of a question that Enter gives: いいえ where はい would destroy something.
enum class Preset { yes, no };

// The progress of a long run. Nothing is shown for the first half second.
class Progress {
  public:
    virtual ~Progress() = default;
    // Shows how far the run is, 0 to 100 percent, and what it says of itself. False when the user has cancelled.
    virtual bool advance(int percent, const QString& text) = 0;
};

// What an operation reaches of the outside. Every operation gets one and talks to nothing else.
class Desk {
  public:
    virtual ~Desk() = default;

    // A message with an OK button. The form is shown first.
    virtual void notify(const QString& text, const QString& title, Icon icon = Icon::exclamation) = 0;
    // A question with Yes and No and no icon; true on Yes.
    virtual bool ask(const QString& text, const QString& title, Preset preset = Preset::yes) = 0;
    // Tells in the screen's bar what needs no answer; it stays until the screen's next operation.
    virtual void inform(const QString& text) = 0;
    // The same of what can be taken back: the bar has a button 元に戻す as long as it tells, on which undo runs as an
    // operation. A desk without such a button only tells.
    virtual void offerUndo(const QString& text, [[maybe_unused]] std::function<void()> undo) { inform(text); }

    virtual QDate today() const = 0;

    // Opens a screen by name. modal: the opener waits, and closed runs as an operation of the opener when the screen
    // has been closed.
    virtual void open(const QString& screen, Opening how = Opening::modeless, std::function<void()> closed = {}) = 0;
    // Closes the screen whose operation this is, when the operation ends.
    virtual void close() = 0;

    virtual std::unique_ptr<Progress> progress(const QString& title) = 0;
};

} // namespace desk
