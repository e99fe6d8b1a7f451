// What the register promises when things go wrong: the process killed at random points, writes that fail, a full disk,
// a file-size limit, another process that holds the lock. HOSHIREN_FAULT_POINTS tells how many points are tried of each
// kind (8 unless told otherwise); from 100 on, every write of an operation is failed in turn.
#include "faults/faulty_vfs.h"
#include "households/erasure_rules.h"
#include "households/registration_rules.h"
#include "sample/sample_register.h"
#include "store/backup.h"
#include "store/layout.h"
#include "support/older_register.h"
#include "transfer/grave_transfer_rules.h"
#include "transfer/household_transfer_rules.h"

#include <QCryptographicHash>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <random>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

const QDate today(2026, 11, 22);
const int points =
    qEnvironmentVariableIsSet("HOSHIREN_FAULT_POINTS") ? qEnvironmentVariableIntValue("HOSHIREN_FAULT_POINTS") : 8;
const int stride = points >= 100 ? 1 : 13;

enum class WithoutCopy { stop, goOn };

// A user who says yes to so many of the operation's questions and no to the others.
class Desk : public desk::Desk {
  public:
    explicit Desk(int yes = 100, WithoutCopy withoutCopy = WithoutCopy::stop) : yes_(yes), withoutCopy_(withoutCopy) {}
    bool stopped = false;

    void notify(const QString&, const QString&, desk::Icon) override {}
    bool ask(const QString& text, const QString&) override {
        if (!text.contains(u"控え"_s))
            return yes_-- > 0;
        stopped = withoutCopy_ == WithoutCopy::stop;
        return !stopped;
    }
    QDate today() const override { return ::today; }
    void open(const QString&, desk::Opening, std::function<void()>) override {}
    void close() override {}
    std::unique_ptr<desk::Progress> progress(const QString&) override {
        struct Silent : desk::Progress {
            bool advance(int, const QString&) override { return true; }
        };
        return std::make_unique<Silent>();
    }

  private:
    int yes_;
    WithoutCopy withoutCopy_;
};

QString folder; // of the register that the faults befall

QString in(const QString& name) {
    return QDir(folder).filePath(name);
}

void importHouseholds(desk::Desk& desk) {
    transfer::ImportHouseholds(in(u"../households.csv"_s), in(u"errors.csv"_s), {}, desk);
}

void importGraves(desk::Desk& desk) {
    transfer::ImportGraves(in(u"../graves.csv"_s), in(u"errors.csv"_s), transfer::GraveImportMode::afterEmptying, desk);
}

void registerHousehold(desk::Desk& desk) {
    desk::ScreenContext context;
    households::檀家登Form form;
    form.frm01_dankag.text = u"新田"_s;
    form.frm01_dankak.text = u"ニッタ"_s;
    form.frm01_yubinno.text = u"100-0001"_s;
    form.frm01_jyusho1.text = u"寺前"_s;
    form.frm01_tel.text = u"03"_s;
    form.frm01_toshug.text = u"新田　一"_s;
    form.frm01_toshuk.text = u"ニッタ ハジメ"_s;
    form.frm01_地区.text = u"新しい地区"_s;
    form.frm01_dnkkbn1.chosen = true;
    households::RegisterHousehold(form, context, desk);
}

void eraseHousehold(desk::Desk& desk) {
    desk::ScreenContext context;
    context.dnk_no1 = 7;
    store::Database database;
    context.dnk_nameg = store::find(database, store::idxdnk_no, std::int16_t{7}, std::int16_t{0})->tbldnk_nameg;
    households::EraseHousehold(context, desk);
}

void restoreRegister(desk::Desk& desk) {
    if (desk.ask(u"?"_s, {}))
        store::restore(in(u"../other.mdb"_s), store::Database::registerPath(), {today, QTime(12, 0)});
}

void upgradeRegister(desk::Desk& desk) {
    if (desk.ask(u"?"_s, {}))
        store::upgradeRegister(store::Database::registerPath(), {today, QTime(12, 0)}, olderSteps);
}

struct Operation {
    const char* name;
    void (*run)(desk::Desk&);
    int steps;                      // writes of its own, each whole or not there, one after each Yes
    const char* imported = nullptr; // a table whose rows may be the first of those that a whole run gives
    const char* counter = nullptr;
    int olderBy = 0; // steps that the register lacks
};

void PrintTo(const Operation& operation, std::ostream* out) {
    *out << operation.name;
}

const Operation operations[] = {
    {"household import", importHouseholds, 1, "tbl_danka", "檀家"},
    {"grave import", importGraves, 1, "tbl_ohaka", "お墓"},
    {"registration", registerHousehold, 1},
    {"erasure", eraseHousehold, 5},
    {"restore", restoreRegister, 1},
    {"upgrade", upgradeRegister, 1, nullptr, nullptr, 3},
};

std::string word(SQLite::Database& engine, const std::string& sql) {
    return engine.execAndGet(sql).getString();
}

// All that a register holds, in short.
QByteArray stateOf(const QString& path) {
    store::Database database(path, store::Layouts::olderToo);
    QCryptographicHash hash(QCryptographicHash::Sha1);
    SQLite::Statement tables(database.engine(), "SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name");
    while (tables.executeStep()) {
        SQLite::Statement rows(database.engine(),
                               "SELECT * FROM " + tables.getColumn(0).getString() + " ORDER BY rowid");
        while (rows.executeStep())
            for (int i = 0; i < rows.getColumnCount(); ++i)
                hash.addData(QByteArray(rows.getColumn(i).getText("(null)")) + '\n');
    }
    return hash.result();
}

class Faults : public ::testing::TestWithParam<Operation> {
  protected:
    static void SetUpTestSuite() {
        faults::installFaultyFiles();
        std::signal(SIGXFSZ, SIG_IGN);
    }

    // households, graves: records of the bulk files.
    void prepare(int households, int graves) {
        ASSERT_TRUE(directory.isValid());
        folder = directory.filePath(u"register"_s);
        firstLines(u"households.csv"_s, households);
        firstLines(u"graves.csv"_s, graves);
        sample::makeRegister(directory.filePath(u"base.mdb"_s), 60, today);
        if (GetParam().olderBy > 0)
            makeOlder(directory.filePath(u"base.mdb"_s), GetParam().olderBy);
        sample::makeRegister(directory.filePath(u"other.mdb"_s), 30, today);
        store::Database::setRegisterPath(in(u"Hoshiren.mdb"_s));
        for (int yes = 0; yes <= GetParam().steps; ++yes) {
            startAnew();
            Desk desk(yes);
            GetParam().run(desk);
            states.push_back(stateOf(store::Database::registerPath()));
        }
        ASSERT_NE(states.front(), states.back()) << "the operation does nothing";
        QFile::copy(store::Database::registerPath(), directory.filePath(u"full.mdb"_s));
    }

    void firstLines(const QString& name, int count) {
        QFile from(QStringLiteral(TEST_DATA "/") + name);
        QFile to(directory.filePath(name));
        ASSERT_TRUE(from.open(QIODevice::ReadOnly) && to.open(QIODevice::WriteOnly));
        for (int i = 0; i < count; ++i)
            to.write(from.readLine());
    }

    void startAnew() const {
        QDir(folder).removeRecursively();
        QDir().mkpath(folder);
        ASSERT_TRUE(QFile::copy(directory.filePath(u"base.mdb"_s), store::Database::registerPath()));
    }

    // Looks the register over as the next start finds it. succeeded: the operation has reported no failure.
    void check(bool succeeded, const std::string& where) const {
        SCOPED_TRACE(where);
        try {
            store::bringBackToOneFile(store::Database::registerPath());
            const QByteArray state = stateOf(store::Database::registerPath());
            const auto known = std::find(states.begin(), states.end(), state);
            store::Database database(store::Database::registerPath(), store::Layouts::olderToo);
            EXPECT_EQ(word(database.engine(), "PRAGMA integrity_check"), "ok");
            // Only a register of the program's own number has its layout, and that whole.
            EXPECT_EQ(store::layoutOf(database) == store::layoutVersion,
                      store::compareLayout(database.engine()).missing.isEmpty());
            if (known == states.end())
                checkBeginning(database);
            EXPECT_TRUE(!succeeded || state == states.back()) << "reported as done and not there";
            for (const store::Backup& backup : store::backupsOf(store::Database::registerPath()))
                EXPECT_TRUE(stateOf(backup.path) == states.front()) << "a copy that is none";
        } catch (const std::exception& failure) {
            ADD_FAILURE() << "lost: " << store::explain(failure).toStdString();
        }
    }

    // An import stopped on its way: the first rows of a whole run, their counter and their districts, nothing else.
    void checkBeginning(store::Database& database) const {
        const Operation& operation = GetParam();
        if (!operation.imported) {
            ADD_FAILURE() << "neither as before nor as after a step";
            return;
        }
        SQLite::Database& engine = database.engine();
        const std::string table = operation.imported;
        engine.exec("ATTACH '" + directory.filePath(u"full.mdb"_s).toStdString() + "' AS whole");
        engine.exec("ATTACH '" + directory.filePath(u"base.mdb"_s).toStdString() + "' AS base");
        const std::string count = word(engine, "SELECT count(*) FROM main." + table);
        EXPECT_EQ(word(engine, "SELECT count(*) FROM (SELECT * FROM main." + table +
                                   " EXCEPT SELECT * FROM (SELECT * FROM whole." + table + " ORDER BY rowid LIMIT " +
                                   count + "))"),
                  "0")
            << count << " rows that are not the first of a whole run";
        const auto last = [&](const std::string& file) {
            return std::stoi(word(engine, "SELECT tblno_sumino FROM " + file + ".tbl_hatsuban WHERE tblno_key2 = '" +
                                              operation.counter + "'"));
        };
        EXPECT_EQ(last("main"), last("base") + std::stoi(count)) << "the counter is out of step";
        EXPECT_EQ(word(engine, "SELECT count(*) FROM (SELECT * FROM main.マスタ EXCEPT SELECT * FROM whole.マスタ)"),
                  "0");
        EXPECT_EQ(word(engine, "SELECT count(*) FROM main.tbl_danka WHERE tbldnk_chiku <> '' AND tbldnk_chiku NOT IN "
                               "(SELECT マ_略称 FROM main.マスタ WHERE マ_区分 = 2)"),
                  "0");
    }

    // Runs the operation; false when it reported a failure or the user stopped it.
    bool runs(WithoutCopy withoutCopy = WithoutCopy::stop) const {
        Desk desk(100, withoutCopy);
        try {
            GetParam().run(desk);
        } catch (const std::exception& failure) {
            return false;
        }
        return !desk.stopped;
    }

    enum class Outcome { failed, done, notDone, impossible };

    // Part of a test in a process of its own, whose failures are this one's.
    template <class Body> static Outcome inAnotherProcess(const Body& body) {
        std::fflush(nullptr);
        const pid_t child = fork();
        if (child == 0) {
            const Outcome outcome = body();
            std::fflush(nullptr);
            _exit(static_cast<int>(HasFailure() ? Outcome::failed : outcome));
        }
        int status = 0;
        waitpid(child, &status, 0);
        const auto outcome = WIFEXITED(status) ? static_cast<Outcome>(WEXITSTATUS(status)) : Outcome::failed;
        EXPECT_NE(outcome, Outcome::failed) << "status " << status;
        return outcome;
    }

    void report(const char* kind, int tried, int met) const {
        std::printf("%s, %s: %d points, %d met, files lost: %d\n", GetParam().name, kind, tried, met,
                    HasFailure() ? 1 : 0);
    }

    QTemporaryDir directory;
    std::vector<QByteArray> states; // before the operation and after each of its steps
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Operations, Faults, ::testing::ValuesIn(operations), [](const auto& operation) {
    std::string name = operation.param.name;
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
});

TEST_P(Faults, KilledAtRandomPoints) {
    prepare(1000, 600);
    // The quickest of some whole runs, in processes of their own as those that are killed: no point lies behind it.
    qint64 whole = std::numeric_limits<qint64>::max();
    for (int run = 0; run < 4; ++run) {
        startAnew();
        QElapsedTimer timer;
        timer.start();
        EXPECT_EQ(inAnotherProcess([this] { return runs() ? Outcome::done : Outcome::notDone; }), Outcome::done);
        whole = std::min(whole, timer.nsecsElapsed() / 1000);
    }
    std::mt19937 random(20261122);
    std::uniform_int_distribution<qint64> wait(0, whole);
    int killed = 0;
    for (int point = 0; point < points && !HasFailure(); ++point) {
        startAnew();
        const qint64 after = wait(random);
        const pid_t child = fork();
        if (child == 0)
            _exit(runs() ? 0 : 1);
        usleep(static_cast<useconds_t>(after));
        kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        killed += WIFSIGNALED(status) ? 1 : 0;
        EXPECT_TRUE(WIFSIGNALED(status) || WEXITSTATUS(status) == 0);
        check(!WIFSIGNALED(status), "killed after " + std::to_string(after) + " us");
    }
    EXPECT_GT(killed, points / 4) << "the operation was over before it could be killed";
    report("killed", points, killed);
}

TEST_P(Faults, WriteOrSyncThatFails) {
    prepare(70, 70);
    int tried = 0;
    for (const bool andAllLater : {false, true}) {
        for (int nth = 1;; nth += stride) {
            startAnew();
            faults::failAt(nth, andAllLater);
            const bool succeeded = runs(andAllLater ? WithoutCopy::goOn : WithoutCopy::stop);
            const bool met = faults::failed();
            faults::failAt(0, false);
            check(succeeded, "write " + std::to_string(nth) + (andAllLater ? " and all later" : ""));
            if (!met || HasFailure())
                break;
            ++tried;
        }
    }
    EXPECT_GT(tried, 2);
    report("failing writes", tried, tried);
}

TEST_P(Faults, FullDisk) {
    prepare(70, 70);
    if (geteuid() != 0)
        GTEST_SKIP() << "a file system of its own needs root";
    // Room for the register and for more with every round, until the operation succeeds.
    const qint64 size = QFile(directory.filePath(u"base.mdb"_s)).size() / 1024 + 8;
    int tried = 0;
    for (auto outcome = Outcome::notDone; outcome == Outcome::notDone; ++tried) {
        startAnew();
        outcome = inAnotherProcess([&] {
            const std::string options = "size=" + std::to_string(size + qint64{8} * stride * tried) + "k";
            const QByteArray place = QFile::encodeName(folder);
            if (unshare(CLONE_NEWNS) || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) ||
                mount("tmpfs", place.constData(), "tmpfs", 0, options.c_str()))
                return Outcome::impossible;
            EXPECT_TRUE(QFile::copy(directory.filePath(u"base.mdb"_s), store::Database::registerPath()));
            const bool succeeded = runs(WithoutCopy::goOn);
            // An import may leave its log behind, which takes some room to be ended: the user makes it.
            EXPECT_EQ(mount("tmpfs", place.constData(), "tmpfs", MS_REMOUNT, "size=16m"), 0);
            check(succeeded, options);
            return succeeded ? Outcome::done : Outcome::notDone;
        });
        if (outcome == Outcome::impossible)
            GTEST_SKIP() << "no file system can be mounted here";
    }
    EXPECT_GT(tried, 1);
    report("full disk", tried, tried - 1);
}

TEST_P(Faults, FileSizeLimit) {
    prepare(70, 70);
    const qint64 size = QFile(directory.filePath(u"base.mdb"_s)).size();
    int tried = 0;
    int met = 0;
    for (qint64 limit = 4096; limit < 2 * size && !HasFailure(); limit += qint64{8192} * stride, ++tried) {
        startAnew();
        const auto outcome = inAnotherProcess([&] {
            const rlimit bound{static_cast<rlim_t>(limit), RLIM_INFINITY};
            EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &bound), 0);
            const bool succeeded = runs(WithoutCopy::goOn);
            const rlimit none{RLIM_INFINITY, RLIM_INFINITY};
            EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &none), 0);
            check(succeeded, "limit " + std::to_string(limit));
            return succeeded ? Outcome::done : Outcome::notDone;
        });
        met += outcome == Outcome::notDone ? 1 : 0;
    }
    EXPECT_GT(met, 1);
    report("file-size limit", tried, met);
}

TEST_P(Faults, AnotherProcessHoldsTheLock) {
    prepare(70, 70);
    for (const int seconds : {1, 10}) {
        startAnew();
        int ready[2];
        ASSERT_EQ(pipe(ready), 0);
        const pid_t holder = fork();
        if (holder == 0) {
            store::Database database(store::Database::registerPath(), store::Layouts::olderToo);
            database.engine().exec("BEGIN EXCLUSIVE");
            const bool told = ::write(ready[1], "x", 1) == 1;
            usleep(static_cast<useconds_t>(seconds) * 1'000'000);
            database.engine().exec("ROLLBACK");
            _exit(told ? 0 : 1);
        }
        char byte = 0;
        ASSERT_EQ(::read(ready[0], &byte, 1), 1);
        const bool succeeded = runs();
        // Two seconds are waited, ten are not: then nothing has happened.
        EXPECT_EQ(succeeded, seconds == 1);
        if (seconds == 10)
            kill(holder, SIGKILL);
        waitpid(holder, nullptr, 0);
        close(ready[0]);
        close(ready[1]);
        check(succeeded, std::to_string(seconds) + " s");
        EXPECT_TRUE(succeeded || stateOf(store::Database::registerPath()) == states.front());
    }
}
