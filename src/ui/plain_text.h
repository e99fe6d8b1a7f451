#pragma once

#include <QLabel>
#include <QString>

// What stands in the register is shown as it stands there: nothing in it is taken for markup.
namespace ui {

QString plainToolTip(const QString& text);

QLabel* plainLabel(const QString& text = {});

} // namespace ui
