#pragma once

#include "desk/screen_context.h"

#include <QHash>
#include <QString>

#include <functional>
#include <vector>

namespace ui {

// What stood in a screen's boxes and was not saved when the screen was closed or showed another record.
struct Draft {
    QString screen; // object name
    QString caption;
    QString key;   // of the record, or of the new one
    QString label; // what the user reads of it
    bool ofNew = false;
    desk::ScreenContext context;         // leads the screen to the record
    QHash<QString, QString> recordBoxes; // the boxes that name the record, by control name
    QHash<QString, QString> boxes;       // all the others
    QStringList typed;                   // those of them that differed from the row as read
};

// The drafts of this run of the program, at most one of a screen and record.
class Drafts {
  public:
    // Runs whenever a draft comes or goes.
    std::function<void()> changed = [] {};

    void keep(Draft draft);
    void drop(const QString& screen, const QString& key);
    // Null when there is none; stands until the next change.
    const Draft* find(const QString& screen, const QString& key) const;
    const std::vector<Draft>& all() const { return drafts_; }

  private:
    std::vector<Draft> drafts_;
};

} // namespace ui
