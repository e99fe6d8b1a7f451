#pragma once

#include <QString>

class QLineEdit;
class QWidget;

// What several families of a layout's controls share.
namespace ui {

class Screen;

// A frame with a title has a border; one without only holds its controls together.
QWidget* frameWidget(const QString& name, const QString& title);

// Pixels for this many full-width characters of the screen's font in a box.
int widthOf(const Screen& screen, int characters);

// A box of one line takes no more than one, whatever the clipboard holds; the screen's bar says so.
void keepToOneLine(QLineEdit* edit, Screen& screen);

} // namespace ui
