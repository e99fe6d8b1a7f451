#pragma once

#include "desk/screen_context.h"

#include <QHash>
#include <QString>

#include <functional>
#include <optional>
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

// The drafts of this run of the program. A record has at most one: what is typed later is added to it. New records may
// have several, the latest first found, for they are different ones.
class Drafts {
  public:
    // Runs whenever a draft comes or goes.
    std::function<void()> changed = [] {};

    void keep(Draft draft);
    // Takes the latest one out.
    std::optional<Draft> take(const QString& screen, const QString& key);
    // The record was saved or deleted. Of new ones, those end that hold no more than the boxes saved.
    void end(const QString& screen, const QString& key);
    void endSaved(const QString& screen, const QHash<QString, QString>& boxes);
    // The latest one; null when there is none. Stands until the next change.
    const Draft* find(const QString& screen, const QString& key) const;
    const std::vector<Draft>& all() const { return drafts_; }
    // The first goes behind the others: the next one is named first.
    void turn();

  private:
    std::vector<Draft> drafts_;
};

} // namespace ui
