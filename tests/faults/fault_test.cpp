// What the register promises when things go wrong: the process killed at random points, system calls that fail, a full
// disk, a file-size limit, another process that holds the lock or saves meanwhile. HOSHIREN_FAULT_POINTS tells how many
// points are tried of each kind (8 unless told otherwise); from 100 on, every call of an operation is failed in turn.
#include "desk/bring_back.h"
#include "family/death_registration_rules.h"
#include "faults/faulty_calls.h"
#include "graves/fee_notice_rules.h"
#include "households/erasure_rules.h"
#include "households/registration_rules.h"
#include "sample/sample_register.h"
#include "store/backup.h"
#include "store/copy_source.h"
#include "store/layout.h"
#include "support/older_register.h"
#include "transfer/bulk_file.h"
#include "transfer/grave_transfer_rules.h"
#include "transfer/household_transfer_rules.h"

#include <QCryptographicHash>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <csignal>
#include <cstdio>
#include <random>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QDate today(2026, 11, 22);
const int points =
    qEnvironmentVariableIsSet("HOSHIREN_FAULT_POINTS") ? qEnvironmentVariableIntValue("HOSHIREN_FAULT_POINTS") : 8;
const int stride = points >= 100 ? 1 : 41;

enum class WithoutCopy { stop, goOn };

// A user who says yes to the operation's questions whose bits are set and no to the others.
class Desk : public desk::Desk {
  public:
    explicit Desk(unsigned yes = ~0U, WithoutCopy withoutCopy = WithoutCopy::stop)
        : yes_(yes), withoutCopy_(withoutCopy) {}
    bool stopped = false; // by the user, or by a failure that was told and gone on after

    void notify(const QString& text, const QString&, desk::Icon) override {
        stopped = stopped || text.contains(u"　コード "_s);
    }
    void inform(const QString&) override {}
    // What the bar offers is a question that need not be answered; what was done is not undone.
    void offer(const QString&, std::vector<desk::Offer> offers) override {
        for (const desk::Offer& offered : offers)
            if (offered.caption != u"元に戻す"_s && ask(offered.caption, {}, desk::Preset::no))
                offered.run();
    }
    bool ask(const QString& text, const QString&, desk::Preset) override {
        if (!text.contains(u"控え"_s))
            return (std::exchange(yes_, yes_ >> 1U) & 1U) != 0;
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
    unsigned yes_;
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

// Its family follows where that is offered.
void moveHousehold(desk::Desk& desk) {
    desk::ScreenContext context;
    context.publishHousehold(7);
    households::檀家登Form form;
    households::beginHousehold(form, context, desk);
    form.frm01_yubinno.text = u"220-0001"_s;
    form.frm01_jyusho1.text = u"港町1"_s;
    form.frm01_tel.text = u"045"_s;
    households::UpdateHousehold(form, context, desk);
}

void eraseHousehold(desk::Desk& desk) {
    desk::ScreenContext context;
    context.dnk_no1 = 7;
    store::Database database;
    context.dnk_nameg = store::find(database, store::idxdnk_no, std::int16_t{7}, std::int16_t{0})->tbldnk_nameg;
    households::EraseHousehold(context, desk);
}

// Entry and family flag, then the fourteen memorials.
void registerDeath(desk::Desk& desk) {
    desk::ScreenContext context;
    context.publishHousehold(7);
    family::過去登Form form;
    family::beginDeathRegister(form, context, desk);
    form.frm11_kazoku.current = 0;
    family::takeMember(form, context, desk);
    for (auto* date : {&form.生年, &form.命日}) {
        date->era.text = u"令和"_s;
        date->year.text = u"8"_s;
        date->month.text = date->day.text = u"1"_s;
    }
    form.frm11_kaimyoug.text = form.frm11_kaimyouk.text = u"カイミョウ"_s;
    form.frm11_kankeisha.text = u"太郎"_s;
    form.frm11_続柄.text = u"子"_s;
    family::registerDeath(form, context, desk);
}

// The fees of a whole page.
void receiveFees(desk::Desk& desk) {
    desk::ScreenContext context;
    graves::お墓通Form form;
    graves::beginFeeNotices(form, context, desk);
    graves::showFees(form, context, desk);
    form.frm21_tbl.clickedColumn = form.frm21_tbl.tickColumns.back();
    for (int row = 1; row <= form.list.rowsShown(); ++row) {
        form.frm21_tbl.clickedRow = row;
        form.click(context, desk);
    }
    graves::receiveFees(form, context, desk);
}

void restoreRegister(desk::Desk& desk) {
    if (desk.ask(u"?"_s, {}))
        store::restore(in(u"../other.mdb"_s), store::Database::registerPath(), {today, QTime(12, 0)});
}

void upgradeRegister(desk::Desk& desk) {
    if (desk.ask(u"?"_s, {}))
        store::upgradeRegister(store::Database::registerPath(), {today, QTime(12, 0)}, olderSteps);
}

void copyRegister(desk::Desk& desk) {
    if (desk.ask(u"?"_s, {}))
        store::makeBackup(store::Database::registerPath(), store::BackupKind::daily, {today, QTime(12, 0)});
}

// From a copy, under a new number: its own is another's by now.
void bringBackHousehold(desk::Desk& desk) {
    store::CopySource source(in(u"../copy.mdb"_s));
    const store::Records records = source.household(7);
    store::Database database;
    desk::bringBack(database, records, desk, {});
}

constexpr auto numberGivenAnew =
    "UPDATE tbl_danka SET tbldnk_nameg = '別', tbldnk_toshug = '別', tbldnk_tel = '別' WHERE tbldnk_no1 = 7; "
    "DELETE FROM tbl_kazoku WHERE tblkzk_no1 = 7; DELETE FROM tbl_kakocho WHERE tblkak_no = 7; "
    "DELETE FROM tbl_hohyo WHERE tblhoy_no = 7; DELETE FROM tbl_ohaka WHERE tblhak_dnk_no = 7";

constexpr auto copying = "copy"; // leaves the register as it is, and a copy beside it

struct Operation {
    const char* name;
    void (*run)(desk::Desk&);
    int steps; // writes of its own, each whole or not there whatever the others, one after each Yes
    const char* imported = nullptr; // a table whose rows may be the first of those that a whole run gives
    const char* counter = nullptr;
    int olderBy = 0;             // steps that the register lacks
    const char* since = nullptr; // what happened to the register since the copy that is read
};

void PrintTo(const Operation& operation, std::ostream* out) {
    *out << operation.name;
}

const Operation operations[] = {
    {"household import", importHouseholds, 1, "tbl_danka", "檀家"},
    {"grave import", importGraves, 1, "tbl_ohaka", "お墓"},
    {"registration", registerHousehold, 1},
    {"move", moveHousehold, 2},
    {"erasure", eraseHousehold, 5},
    {"death", registerDeath, 2},
    {"receipt", receiveFees, 1},
    {"restore", restoreRegister, 1},
    {"upgrade", upgradeRegister, 1, nullptr, nullptr, 3},
    {"bring back", bringBackHousehold, 1, nullptr, nullptr, 0, numberGivenAnew},
    {copying, copyRegister, 1},
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
    static void SetUpTestSuite() { std::signal(SIGXFSZ, SIG_IGN); }

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
        QFile::copy(directory.filePath(u"base.mdb"_s), directory.filePath(u"copy.mdb"_s));
        if (GetParam().since)
            store::Database(directory.filePath(u"base.mdb"_s)).engine().exec(GetParam().since);
        store::Database::setRegisterPath(in(u"Hoshiren.mdb"_s));
        for (unsigned yes = 0; yes < 1U << static_cast<unsigned>(GetParam().steps); ++yes) {
            startAnew();
            Desk desk(yes);
            GetParam().run(desk);
            states.push_back(stateOf(store::Database::registerPath()));
        }
        ASSERT_EQ(states.front() == states.back(), GetParam().name == copying) << "what the operation does";
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
            const auto copies = store::backupsOf(store::Database::registerPath());
            EXPECT_TRUE(!succeeded || GetParam().name != copying || copies.size() == 1) << "a copy that is not there";
            for (const store::Backup& backup : copies)
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
        Desk desk(~0U, withoutCopy);
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
    std::vector<QByteArray> states; // before the operation, after any of its steps, and last after all of them
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

TEST_P(Faults, CallThatFails) {
    prepare(70, 70);
    int tried = 0;
    for (const auto failing : {faults::Failing::oneCall, faults::Failing::writingSince}) {
        const bool lasting = failing == faults::Failing::writingSince;
        for (int nth = 1;; nth += stride) {
            startAnew();
            faults::failAt(nth, failing);
            const bool succeeded = runs(lasting ? WithoutCopy::goOn : WithoutCopy::stop);
            const bool met = faults::failed();
            faults::failAt(0);
            check(succeeded, "call " + std::to_string(nth) + (lasting ? " and all that write since" : ""));
            if (!met || HasFailure())
                break;
            ++tried;
        }
    }
    EXPECT_GT(tried, 2);
    report("failing calls", tried, tried);
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

namespace {

// A register of its own with another one to restore, anew for each round.
class Together : public ::testing::Test {
  protected:
    Together() {
        sample::makeRegister(directory.filePath(u"base.mdb"_s), 60, today);
        sample::makeRegister(other, 30, today);
        store::Database::setRegisterPath(place + u"/Hoshiren.mdb"_s);
    }
    void startAnew() const {
        QDir(place).removeRecursively();
        QDir().mkpath(place);
        ASSERT_TRUE(QFile::copy(directory.filePath(u"base.mdb"_s), store::Database::registerPath()));
    }

    QTemporaryDir directory;
    const QString place = directory.filePath(u"register"_s);
    const QString other = directory.filePath(u"other.mdb"_s);
};

// Saves one row after the other and tells the number of each that has been confirmed.
[[noreturn]] void saveOn(int confirmed) {
    for (int number = 1;; ++number) {
        try {
            store::Database database;
            store::Write write(database);
            database.engine().exec("INSERT INTO tbl_nengo (tblnen_nengo) VALUES ('" + std::to_string(number) + "')");
            write.commit();
        } catch (const std::exception&) {
            continue; // refused: nothing was promised
        }
        if (::write(confirmed, &number, sizeof number) != sizeof number)
            _exit(1);
        usleep(1000); // a lock that is never free is another test's matter
    }
}

bool holds(const QString& file, int number) {
    store::Database database(file);
    return word(database.engine(),
                "SELECT count(*) FROM tbl_nengo WHERE tblnen_nengo = '" + std::to_string(number) + "'") == "1";
}

} // namespace

TEST_F(Together, EverySaveThatWasConfirmedDuringARestoreIsInOneOfTheFiles) {
    std::mt19937 random(20261122);
    std::uniform_int_distribution<useconds_t> wait(0, 20'000);
    int saved = 0;
    int restored = 0;
    for (int point = 0; point < points && !HasFailure(); ++point) {
        startAnew();
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        const pid_t saving = fork();
        if (saving == 0)
            saveOn(ends[1]);
        close(ends[1]);
        usleep(wait(random));
        QString kept;
        try {
            kept = store::restore(other, store::Database::registerPath(), {today, QTime(12, 0)});
            ++restored;
        } catch (const store::Error& failure) {
            EXPECT_EQ(failure.code() & 0xff, SQLITE_BUSY) << failure.message().toStdString();
        }
        usleep(wait(random));
        kill(saving, SIGKILL);
        waitpid(saving, nullptr, 0);
        for (int number = 0; ::read(ends[0], &number, sizeof number) == sizeof number; ++saved)
            EXPECT_TRUE(holds(store::Database::registerPath(), number) || (!kept.isEmpty() && holds(kept, number)))
                << "the confirmed save " << number << " is lost";
        close(ends[0]);
    }
    EXPECT_GT(restored, points / 2);
    std::printf("saves during a restore: %d restores, %d saves, lost: %d\n", restored, saved, HasFailure() ? 1 : 0);
}

TEST_F(Together, TwoStartsMakeOneCopyAndNoFailure) {
    for (int point = 0; point < points && !HasFailure(); ++point) {
        startAnew();
        std::vector<pid_t> starts(2);
        for (pid_t& start : starts) {
            start = fork();
            if (start != 0)
                continue;
            try {
                store::makeBackup(store::Database::registerPath(), store::BackupKind::daily, {today, QTime(12, 0)});
            } catch (const std::exception& failure) {
                std::fprintf(stderr, "%s\n", store::explain(failure).toUtf8().constData());
                _exit(1);
            }
            _exit(0);
        }
        for (const pid_t start : starts) {
            int status = 0;
            waitpid(start, &status, 0);
            EXPECT_EQ(status, 0);
        }
        EXPECT_EQ(QDir(place + u"/backup"_s).entryList(QDir::Files).size(), 1);
    }
}

TEST_F(Together, NothingIsExportedWhereEverybodyCouldReadIt) {
    const QString file = directory.filePath(u"out.csv"_s);
    faults::keepNoPermissions(true);
    try {
        const transfer::ExportFile out(file);
        ADD_FAILURE() << "written";
    } catch (const transfer::FileError& failure) {
        EXPECT_TRUE(failure.message().contains(u"自分だけが読める"_s)) << failure.message().toStdString();
    }
    EXPECT_THROW(transfer::ErrorFile(file).check(), transfer::FileError);
    faults::keepNoPermissions(false);
    EXPECT_EQ(QDir(directory.path()).entryList(QDir::Files), (QStringList{u"base.mdb"_s, u"other.mdb"_s}));
}
