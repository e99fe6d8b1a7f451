#pragma once

#include <QString>

#include <vector>

namespace desk {

class Desk;
struct ScreenContext;

// A row that a search found: what it is, its number, its name, where what was typed stands in it.
struct FoundLine {
    QString what;
    QString number;
    QString name;
    QString matched;

    int kind = 0;     // with rowid: which row it is, for the search alone
    qint64 rowid = 0; // in the register
    bool sameRow(const FoundLine& other) const { return kind == other.kind && rowid == other.rowid; }
};

struct FoundList {
    std::vector<FoundLine> lines; // the best ones, in order
    int more = 0;                 // found beside them
    QString note;                 // what there is to say, empty where nothing
};

// The search over everything, as a screen sees it.
class Finder {
  public:
    virtual ~Finder() = default;
    // What is found now; never waits for a lock.
    virtual FoundList find(const QString& typed) = 0;
    // Another number than before says that find() may give something else.
    virtual int revision() const = 0;
    // Opens the screen of what was found, with the context that it asks for.
    virtual void open(const FoundLine& line, ScreenContext& context, Desk& desk) = 0;
};

} // namespace desk
