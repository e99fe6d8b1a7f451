#pragma once

#include <QSize>
#include <QTimer>

#include <map>
#include <optional>
#include <vector>

namespace ui {

class RowTable;
class Screen;

// What the user made of a window when the letters were so high.
struct KeptWindow {
    QSize size;      // pixels, without the bar
    int letters = 0; // pixels
    bool maximised = false;
};

// Keeps what the user makes of a screen's window, for him and not in the register: its size, and the widths of its
// columns. What the program makes of them itself is not kept; what is damaged is as if it had never been kept.
class WindowKeeper {
  public:
    explicit WindowKeeper(Screen& screen);

    // Gives the table the widths kept for it, and keeps those that the user gives it. Tables of one name share them.
    void add(RowTable& table, const QString& name);
    // Gives all tables the widths kept for them, for letters as high as they are now.
    void showColumns();

    std::optional<KeptWindow> window() const;
    // The program gave the window this size, or this state.
    void settle(QSize size) { settled_ = size; }
    void settle(bool maximised) { maximised_ = maximised; }
    // Somebody gave the window another size or state. What it comes to is kept a moment later.
    void changed() { rest_.start(); }
    // Keeps at once what is still to be kept.
    void keepNow();
    // What is still to be kept is not kept, and the columns share the width again.
    void forget();
    // Forgets the windows and columns of all screens for the next start; false where that cannot be.
    static bool forgetKept();

  private:
    QString columnsKey(const QString& table) const;
    void keep();

    Screen& screen_;
    QTimer rest_; // since something changed last
    QSize settled_;
    bool maximised_ = false;
    std::map<QString, std::vector<RowTable*>> tables_;
    QStringList pulled_; // names of tables with widths still to be kept
};

} // namespace ui
