#pragma once

#include <QFileSystemWatcher>
#include <QLockFile>
#include <QString>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>

namespace app {

// The program that a user has open on a register, known to one that is started after it. The two meet in a folder of
// the user's that lasts as long as he is at the computer: the first one holds a lock there, the second one puts a
// request beside it, and the first one takes that away when it has come forward.
//
// Nothing depends on it: the register may be open in several programs.
class OpenProgram {
  public:
    explicit OpenProgram(const QString& registerPath);

    enum class Found {
        none,    // this program is the first one now; so it is where nobody can tell
        forward, // the first one has come forward
        silent,  // there is one, and it did not answer in time
    };
    // Looks for the first one; a program that crashed is none. Where there is one, asks it to come forward.
    Found bringForward(std::chrono::milliseconds patience);
    // Runs when another program asks for it. Begins a moment later, so that the start costs nothing; this program is
    // the first one then, unless there is one.
    void onAsked(std::function<void()> comeForward);

  private:
    bool isFirst();
    void listen();
    void look();

    QString folder_; // empty where there is none for such things
    QString request_;
    std::unique_ptr<QLockFile> lock_;
    std::function<void()> comeForward_;
    std::unique_ptr<QFileSystemWatcher> watcher_;
    QTimer begin_;
};

} // namespace app
