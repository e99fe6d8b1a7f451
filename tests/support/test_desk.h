#pragma once

#include "desk/desk.h"

#include <QStringList>

#include <deque>
#include <vector>

// A desk for rules without windows. Messages and questions must be announced in order; one that is not, or an answer
// that is left over, fails the test.
class TestDesk : public desk::Desk {
  public:
    explicit TestDesk(QDate today) : today_(today) {}
    ~TestDesk() override;

    // The next box is a message "title: text" / a question answered so.
    void expect(const QString& text, const QString& title);
    void answer(const QString& text, const QString& title, bool yes);
    // The same for texts that end as they will.
    void expectBeginning(const QString& text, const QString& title);
    void answerBeginning(const QString& text, const QString& title, bool yes);
    // Every expected box has been shown; clears the list and the record of opened screens.
    void finish();

    struct Opened {
        QString screen;
        desk::Opening how;
        std::function<void()> closed;
    };
    std::vector<Opened> opened;
    bool closed = false;
    // Answers of progress(): cancels when this many percent are reached; 101 never.
    int cancelAt = 101;
    std::vector<int> progressShown;

    void notify(const QString& text, const QString& title, desk::Icon icon) override;
    bool ask(const QString& text, const QString& title, desk::Preset preset) override;
    void inform(const QString& text) override { informed << text; }
    void offerUndo(const QString& text, std::function<void()> undone) override {
        informed << text;
        undo = std::move(undone);
    }
    QDate today() const override { return today_; }
    void open(const QString& screen, desk::Opening how, std::function<void()> whenClosed) override;
    void close() override { closed = true; }
    std::unique_ptr<desk::Progress> progress(const QString& title) override;

    desk::Icon lastIcon = desk::Icon::none;
    desk::Preset lastPreset = desk::Preset::yes;
    QStringList informed;                     // what was told in the bar
    std::function<void()> undo;               // the last one offered there
    std::function<void()> whileAsked = [] {}; // what others do while a question stands

  private:
    struct Expected {
        QString text;
        QString title;
        bool question;
        bool yes;
        bool whole = true;
    };
    bool take(const QString& text, const QString& title, bool question);

    QDate today_;
    std::deque<Expected> expected_;
};
