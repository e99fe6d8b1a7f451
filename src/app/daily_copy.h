#pragma once

#include "store/backup.h"
#include "ui/workplace.h"

#include <QElapsedTimer>
#include <QTimer>

namespace app {

// The day's copy of the register: begun some time after the start, so that the menu is there first, made in short parts
// between the user's doings and proven in a thread of its own. Each start and each new day copies and proves the
// register; the copy is kept where the day has none yet or the register has changed since the newest one. None is made
// where there is no register. What fails is tried again with every look while the program runs, and told once, under
// the menu's title: that there is no copy, or that the register itself is at fault.
class DailyCopy {
  public:
    explicit DailyCopy(ui::Workplace& workplace, std::chrono::milliseconds wait = std::chrono::seconds(1),
                       std::chrono::milliseconds betweenLooks = std::chrono::minutes(10));

  private:
    enum class Told { nothing, noCopy, registerFault };

    void goOn();
    void begin();
    void tell(Told what, const QString& text);

    ui::Workplace& workplace_;
    const std::chrono::milliseconds betweenLooks_;
    QTimer timer_;
    std::optional<store::Copy> copy_;
    QDate day_;          // of the copy in the making
    QDate doneOn_;       // the day of the last good one
    QElapsedTimer done_; // since then, whatever the clock says
    Told told_ = Told::nothing;
};

} // namespace app
