#pragma once

#include "desk/desk.h"

#include <QRect>

class QWidget;

namespace ui {

// What a box leaves in sight where the display has room for that, in pixels of the display.
struct BoxPlace {
    QRect fields = {}; // all that the message speaks of
    QRect first = {};  // the one to be mended first
    QRect form = {};   // where it speaks of no field in particular, it opens below this
};

// A message box with an OK button; returns when it has been answered. It never leaves the display.
void showMessage(QWidget* parent, const QString& text, const QString& title, desk::Icon icon,
                 const BoxPlace& place = {});

// A question with はい and いいえ; true on はい. Enter gives the preset answer; Escape and closing are
// いいえ.
bool askQuestion(QWidget* parent, const QString& text, const QString& title, desk::Preset preset = desk::Preset::yes,
                 const BoxPlace& place = {});

} // namespace ui
