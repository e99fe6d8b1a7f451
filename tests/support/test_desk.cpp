#include "support/test_desk.h"

#include <gtest/gtest.h>

namespace {

class TestProgress : public desk::Progress {
  public:
    explicit TestProgress(TestDesk& desk) : desk_(desk) {}
    bool advance(int percent, const QString&) override {
        desk_.progressShown.push_back(percent);
        return percent < desk_.cancelAt;
    }

  private:
    TestDesk& desk_;
};

} // namespace

TestDesk::~TestDesk() {
    for (const Expected& left : expected_)
        ADD_FAILURE() << "not shown: " << left.title.toStdString() << ": " << left.text.toStdString();
}

void TestDesk::expect(const QString& text, const QString& title) {
    expected_.push_back({text, title, false, false});
}

void TestDesk::expectBeginning(const QString& text, const QString& title) {
    expected_.push_back({text, title, false, false, false});
}

void TestDesk::answerBeginning(const QString& text, const QString& title, bool yes) {
    expected_.push_back({text, title, true, yes, false});
}

void TestDesk::answer(const QString& text, const QString& title, bool yes) {
    expected_.push_back({text, title, true, yes});
}

void TestDesk::finish() {
    for (const Expected& left : expected_)
        ADD_FAILURE() << "not shown: " << left.title.toStdString() << ": " << left.text.toStdString();
    expected_.clear();
    opened.clear();
    closed = false;
}

bool TestDesk::take(const QString& text, const QString& title, bool question) {
    if (expected_.empty()) {
        ADD_FAILURE() << "unexpected: " << title.toStdString() << ": " << text.toStdString();
        return false;
    }
    const Expected next = expected_.front();
    expected_.pop_front();
    EXPECT_EQ((next.whole ? text : text.left(next.text.size())).toStdString(), next.text.toStdString());
    EXPECT_EQ(title.toStdString(), next.title.toStdString());
    EXPECT_EQ(question, next.question) << text.toStdString();
    return next.yes;
}

void TestDesk::notify(const QString& text, const QString& title, desk::Icon icon) {
    lastIcon = icon;
    take(text, title, false);
}

bool TestDesk::ask(const QString& text, const QString& title, desk::Preset preset) {
    lastPreset = preset;
    whileAsked();
    return take(text, title, true);
}

void TestDesk::open(const QString& screen, desk::Opening how, std::function<void()> whenClosed) {
    opened.push_back({screen, how, std::move(whenClosed)});
}

std::unique_ptr<desk::Progress> TestDesk::progress(const QString&) {
    return std::make_unique<TestProgress>(*this);
}
