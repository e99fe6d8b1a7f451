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
        QTest::qWait(300);
    }
    // What the register cannot be copied for, in the words of the store.
    static QString fault() {
        try {
            store::makeBackup(store::Database::registerPath(), store::BackupKind::byHand, QDateTime::currentDateTime());
        } catch (const store::RegisterFault& fault) {
            return fault.message();
        }
        return {};
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
    // A clock that says the same day does not keep a changed register from being copied.
    execute(u"DELETE FROM tbl_nengo"_s);
    start(today.addDays(1));
    EXPECT_EQ(copies().size(), 3);
}

TEST_F(DailyCopies, FailureIsToldOnceAndTriedAgainAndAMissingRegisterNotToldAtAll) {
    ASSERT_TRUE(QFile::rename(store::Database::registerPath(), path(u"backup"_s)));
    start(today);
    ASSERT_TRUE(QFile::copy(path(u"backup"_s), store::Database::registerPath()));
    expect(
        u"今日の控えを作れませんでした。このまま仕事は続けられます。\n\n控えの場所「%1」を作れません。書き込みの許可を確認して下さい。"_s
            .arg(path(u"backup"_s)),
        u"メニュー"_s);
    workplace->today = [this] { return today; };
    const app::DailyCopy copy(*workplace, std::chrono::milliseconds(0), std::chrono::milliseconds(20));
    QTest::qWait(200);
    ASSERT_TRUE(QFile::remove(path(u"backup"_s)));
    EXPECT_TRUE(QTest::qWaitFor([this] { return copies().size() == 1; }));
}

TEST_F(DailyCopies, ARegisterAtFaultIsToldAtEveryStartAndWorkDoesNotGoOn) {
    start(today);
    const QStringList good = copies();
    for (const QByteArray& bytes : {QByteArray(4096, '\x7f'), QByteArray("\0\1\0\0Standard Jet DB\0", 20)}) {
        QFile file(store::Database::registerPath());
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        // The last page: the register opens. Then its beginning: an older file.
        file.seek(bytes.size() == 4096 ? file.size() - bytes.size() : 0);
        file.write(bytes);
        file.close();
        const QString words = fault();
        EXPECT_TRUE(words.contains(bytes.size() == 4096 ? u"壊れています"_s : u"開けません"_s)) << words.toStdString();
        EXPECT_FALSE(words.contains(u"続けられます"_s));
        expect(words, u"メニュー"_s);
        start(today);
    }
    EXPECT_EQ(copies(), good);
}
