#pragma once

#include <QDate>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

namespace desk {

struct Control;

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

// Something that follows from what was just done, offered in the bar: a button with this object name and caption,
// pressed with the mouse or with Alt and its key, on which run is an operation of the screen.
struct Offer {
    QString name;
    QString caption;
    QChar key;
    std::function<void()> run;
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
    // The same with what follows from it, if the user likes; a desk without buttons only tells.
    virtual void offer(const QString& text, [[maybe_unused]] std::vector<Offer> offers) { inform(text); }

    // The same about what stands in some boxes: it goes as soon as one of them is typed into.
    virtual void hint(const QString& text, [[maybe_unused]] std::vector<const Control*> about,
                      std::vector<Offer> offers) {
        offer(text, std::move(offers));
    }

    virtual QDate today() const = 0;

    // Opens a screen by name. modal: the opener waits, and closed runs as an operation of the opener when the screen
    // has been closed.
    virtual void open(const QString& screen, Opening how = Opening::modeless, std::function<void()> closed = {}) = 0;
    // Closes the screen whose operation this is, when the operation ends.
    virtual void close() = 0;

    virtual std::unique_ptr<Progress> progress(const QString& title) = 0;
};

} // namespace desk
