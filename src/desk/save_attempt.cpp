#include "desk/save_attempt.h"

using namespace Qt::StringLiterals;

namespace desk {

bool recordFailure(CheckState& state, const QString& message) {
    state.chk_errflg = u"1"_s;
    if (state.chk_msgflg != u"0"_s)
        return false;
    state.chk_msg = message;
    state.chk_msgflg = u"1"_s;
    return true;
}

SaveAttempt::SaveAttempt(ScreenContext& context, Colour wrong) : context_(context), wrong_(wrong) {
    context.chk_msgflg = u"0"_s;
    context.chk_errflg = u"0"_s;
    context.chk_msg.clear();
}

void SaveAttempt::check(bool good, Control& control, const QString& message) {
    control.colour = good ? Colour::black : wrong_;
    if (!good && recordFailure(context_, message))
        control.moveToFront();
}

void SaveAttempt::checkInPlace(bool good, Control& control, const QString& message) {
    control.colour = good ? Colour::black : wrong_;
    if (!good && recordFailure(context_, message))
        control.keyboard = true;
}

bool SaveAttempt::failed() const {
    return context_.chk_errflg == u"1"_s;
}

bool SaveAttempt::reported(Desk& desk, const QString& title) const {
    if (!failed())
        return false;
    desk.notify(context_.chk_msg, title);
    return true;
}

} // namespace desk
