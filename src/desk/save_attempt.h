#pragma once

#include "desk/desk.h"
#include "desk/form.h"
#include "desk/screen_context.h"

namespace desk {

// One save attempt: every field is checked and coloured, the first failure gives the only message and comes first in
// the tab order. Works on the context's check state, which date checks share.
class SaveAttempt {
  public:
    // Resets the check state. Wrong fields are painted in the colour.
    explicit SaveAttempt(ScreenContext& context, Colour wrong = Colour::red);

    // Colours the control and records a failure: chk_errflg, and the message when it is the first.
    void check(bool good, Control& control, const QString& message);
    // A box that must not be empty.
    void required(Text& box, const QString& message) { check(!box.text.isEmpty(), box, message); }
    void required(Combo& box, const QString& message) { check(!box.text.isEmpty(), box, message); }
    // The same without a change of the tab order; the keyboard still goes to the first wrong field.
    void checkInPlace(bool good, Control& control, const QString& message);

    bool failed() const;
    // Shows the message when the attempt failed; true when it did.
    bool reported(Desk& desk, const QString& title) const;

  private:
    ScreenContext& context_;
    Colour wrong_;
};

// Records a failure in the check state: what both SaveAttempt and the date check do. True when it is the first one.
bool recordFailure(CheckState& state, const QString& message);

} // namespace desk
