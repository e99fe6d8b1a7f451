#pragma once

#include "desk/desk.h"

class QWidget;

namespace ui {

// A message box with an OK button; returns when it has been answered.
void showMessage(QWidget* parent, const QString& text, const QString& title, desk::Icon icon);

// A question with はい and いいえ; true on はい. Enter gives the preset answer; Escape and closing are
// いいえ.
bool askQuestion(QWidget* parent, const QString& text, const QString& title, desk::Preset preset = desk::Preset::yes);

} // namespace ui
