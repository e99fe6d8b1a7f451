#include "app/open_program.h"

#include "support/screen_fixture.h"

#include <QtTest>

#include <future>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Found = app::OpenProgram::Found;

namespace {

class OpenProgramTest : public ScreenFixture {
  protected:
    OpenProgramTest() {
        qputenv("XDG_RUNTIME_DIR", run.path().toLocal8Bit());
        QFile(run.path()).setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    ~OpenProgramTest() override { before.isNull() ? qunsetenv("XDG_RUNTIME_DIR") : qputenv("XDG_RUNTIME_DIR", before); }
    // A second start, beside this program.
    std::future<Found> second(std::chrono::milliseconds patience) {
        return std::async(std::launch::async, [this, patience] {
            return app::OpenProgram(path(u"Hoshiren.mdb"_s)).bringForward(patience);
        });
    }
    Found answered(std::future<Found> start) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return start.wait_for(0s) == std::future_status::ready; }));
        return start.get();
    }

    const QTemporaryDir run;
    const QByteArray before = qgetenv("XDG_RUNTIME_DIR");
};

TEST_F(OpenProgramTest, TheFirstComesForwardWithTheScreenUsedLastInFront) {
    app::OpenProgram first(path(u"Hoshiren.mdb"_s));
    EXPECT_EQ(first.bringForward(0ms), Found::none);
    open(u"マスター登"_s);
    open(u"メニュー"_s);
    open(u"マスター登"_s);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&screen(u"マスター登"_s)));
    for (const bool listening : {false, true}) {
        screen(u"マスター登"_s).showMinimized();
        screen(u"メニュー"_s).showMinimized();
        auto start = second(1500ms);
        // Who started the program twice at once has asked before it listens.
        if (!listening) {
            first.onAsked([this] { workplace->bringForward(); });
        }
        EXPECT_EQ(answered(std::move(start)), Found::forward);
        EXPECT_FALSE(screen(u"メニュー"_s).isMinimized());
        EXPECT_FALSE(screen(u"マスター登"_s).isMinimized());
        EXPECT_TRUE(QTest::qWaitForWindowActive(&screen(u"マスター登"_s)));
    }
}

TEST_F(OpenProgramTest, AProgramThatHangsIsNotWaitedForAndOneThatEndedOrCrashedIsNone) {
    std::optional<app::OpenProgram> first(path(u"Hoshiren.mdb"_s));
    EXPECT_EQ(first->bringForward(0ms), Found::none);
    QElapsedTimer waited;
    waited.start();
    EXPECT_EQ(answered(second(300ms)), Found::silent);
    EXPECT_LT(waited.elapsed(), 1500);
    EXPECT_EQ(app::OpenProgram(path(u"ほか.mdb"_s)).bringForward(0ms), Found::none);

    QDir folder(run.path());
    const auto folders = folder.entryList({u"hoshiren-*"_s}, QDir::Dirs);
    QFile lock;
    for (const QString& name : folders) {
        if (QFile::exists(folder.filePath(name + u"/first"_s)))
            lock.setFileName(folder.filePath(name + u"/first"_s));
    }
    ASSERT_TRUE(lock.open(QIODevice::ReadOnly));
    QByteArray held = lock.readAll();
    lock.close();
    auto start = second(1500ms);
    QTest::qWait(50);
    first.reset();
    EXPECT_EQ(answered(std::move(start)), Found::none);

    QProcess gone;
    gone.start(u"true"_s);
    const qint64 number = gone.processId();
    ASSERT_TRUE(gone.waitForFinished());
    held.replace(0, held.indexOf('\n'), QByteArray::number(number));
    ASSERT_TRUE(lock.open(QIODevice::WriteOnly) && lock.write(held) == held.size());
    lock.close();
    EXPECT_EQ(app::OpenProgram(path(u"Hoshiren.mdb"_s)).bringForward(0ms), Found::none);
}

} // namespace
