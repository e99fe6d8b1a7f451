#include "app/daily_copy.h"
#include "support/screen_fixture.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

class DailyCopies : public ScreenFixture {
  protected:
    DailyCopies() { open(u"メニュー"_s); }
    QStringList copies() const { return QDir(path(u"backup"_s)).entryList({u"*-daily.mdb"_s}, QDir::Files); }
    // A start of the program on that day, and some time at its menu.
    void start(QDate day) {
        workplace->today = [day] { return day; };
        const app::DailyCopy copy(*workplace, std::chrono::milliseconds(0));
        QTest::qWait(200);
    }
};

} // namespace

TEST_F(DailyCopies, OneADayBetweenTheUsersDoings) {
    start(today);
    const QStringList first = copies();
    ASSERT_EQ(first.size(), 1);
    EXPECT_TRUE(first[0].startsWith(u"Hoshiren-2026-11-22-"_s)) << first[0].toStdString();
    start(today);
    EXPECT_EQ(copies(), first);
    // Nothing happens as long as a screen waits for an answer.
    screen(u"メニュー"_s).operate([&] { start(today.addDays(1)); });
    EXPECT_EQ(copies(), first);
    start(today.addDays(1));
    EXPECT_EQ(copies().size(), 2);
}

TEST_F(DailyCopies, FailureIsToldOnceAndAMissingRegisterNotAtAll) {
    ASSERT_TRUE(QFile::rename(store::Database::registerPath(), path(u"backup"_s)));
    start(today);
    ASSERT_TRUE(QFile::copy(path(u"backup"_s), store::Database::registerPath()));
    expect(
        u"今日の控えを作れませんでした。このまま仕事は続けられます。\n\n控えの場所「%1」を作れません。書き込みの許可を確認して下さい。"_s
            .arg(path(u"backup"_s)),
        u"メニュー"_s);
    start(today);
}
