#pragma once

#include "ui/layout.h"

#include <QLabel>

namespace ui {

// A label whose text follows from what stands in the form: see Layout::live.
class LiveLabel : public QLabel {
  public:
    LiveLabel(Screen& screen, const QString& name, std::function<LiveText()> text);
    // Typing into the control, or choosing in it, brings the label up to date.
    void follow(QWidget* control);

  private:
    void typed();
    void refresh();
    void mark(const QStringList& names);

    Screen& screen_;
    std::function<LiveText()> compute_;
    QStringList marked_;
};

} // namespace ui
