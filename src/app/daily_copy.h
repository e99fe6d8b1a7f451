#pragma once

#include "store/backup.h"
#include "ui/workplace.h"

#include <QTimer>

namespace app {

// The day's copy of the register: begun some time after the start, so that the menu is there first, and made in short
// parts between the user's doings. One a day, also where the program stays open overnight; none where there is no
// register. A copy that fails is told once, under the menu's title, and not tried again before the next day.
class DailyCopy {
  public:
    explicit DailyCopy(ui::Workplace& workplace, std::chrono::milliseconds wait = std::chrono::seconds(1));

  private:
    void goOn();
    void begin();
    void tell(const QString& failure);

    ui::Workplace& workplace_;
    QTimer timer_;
    std::optional<store::Copy> copy_;
    QDate triedOn_;
};

} // namespace app
