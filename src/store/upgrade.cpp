#include "store/upgrade.h"

#include "store/backup.h"
#include "store/embedded_data.h"
#include "store/layout.h"

#include <functional>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace store {

namespace {

// Steps work inside the one write: they neither end it nor reach another file.
int refuseTransactions(void*, int action, const char*, const char*, const char*, const char*) {
    return action == SQLITE_TRANSACTION || action == SQLITE_SAVEPOINT || action == SQLITE_ATTACH ||
                   action == SQLITE_DETACH
               ? SQLITE_DENY
               : SQLITE_OK;
}

void run(SQLite::Database& engine, const char* step) {
    sqlite3_set_authorizer(engine.getHandle(), refuseTransactions, nullptr);
    const int result = sqlite3_exec(engine.getHandle(), step, nullptr, nullptr, nullptr);
    const QString words = QString::fromUtf8(sqlite3_errmsg(engine.getHandle()));
    sqlite3_set_authorizer(engine.getHandle(), nullptr, nullptr);
    if (result != SQLITE_OK)
        throw SQLite::Exception(words.toStdString(), result);
}

QString titleOf(const char* step) {
    const QString line = QString::fromUtf8(step).section(u'\n', 0, 0);
    return line.mid(line.startsWith(u"-- ") ? 3 : 0);
}

[[noreturn]] void notUpgraded(int number, const QString& why) {
    throw Error(0, u"登録簿を版 %1 に進められませんでした。登録簿は元のままです。次の内容を、プログラムを用意した人に"
                   "知らせて下さい。\n\n%2"_s.arg(number)
                       .arg(why));
}

void lookOver(SQLite::Database& engine) {
    const LayoutDifferences differences = compareLayout(engine);
    QStringList faults = differences.missing + differences.other;
    SQLite::Statement check(engine, "PRAGMA integrity_check(10)");
    while (check.executeStep())
        if (const std::string found = check.getColumn(0).getString(); found != "ok")
            faults << QString::fromStdString(found);
    if (!faults.isEmpty())
        notUpgraded(layoutVersion, faults.join(u'\n'));
}

} // namespace

const UpgradeSteps& upgradeSteps() {
    static const UpgradeSteps steps = [] {
        UpgradeSteps all;
        for (const char* const* step = embedded_upgrades; *step; ++step)
            all.push_back(*step);
        return all;
    }();
    return steps;
}

bool isOlder(const QString& path) {
    try {
        Database database(path, Layouts::olderToo);
        return layoutOf(database) < layoutVersion;
    } catch (const std::exception&) {
        return false;
    }
}

namespace {

// copied gives the path of the copy that is made before the first step.
Upgrade upgradeFile(const QString& path, const UpgradeSteps& steps, const std::function<QString()>& copied) {
    Database database(path, Layouts::olderToo);
    SQLite::Database& engine = database.engine();
    const int first = layoutVersion - static_cast<int>(steps.size());
    // A log that a killed import left behind.
    engine.exec("PRAGMA journal_mode = DELETE");
    // Others can read, the copy for one, but nobody writes between the copy and the first step.
    Write write(database);
    Upgrade upgrade{layoutOf(database), {}, {}};
    if (upgrade.from == layoutVersion)
        return upgrade;
    if (upgrade.from < first)
        throw Error(
            0, u"登録簿の版 %1 から進める手順がありません。登録簿のファイルか確認して下さい。"_s.arg(upgrade.from));
    upgrade.copy = copied();
    for (int number = upgrade.from; number < layoutVersion; ++number) {
        const char* step = steps[static_cast<std::size_t>(number - first)];
        try {
            run(engine, step);
        } catch (const SQLite::Exception& failure) {
            const int kind = failure.getErrorCode() & 0xff;
            if (kind != SQLITE_ERROR && kind != SQLITE_AUTH && kind != SQLITE_CONSTRAINT)
                throw Error(failure.getErrorCode(), explain(failure));
            notUpgraded(number + 1, QString::fromUtf8(failure.what()));
        }
        upgrade.done << titleOf(step);
    }
    engine.exec("PRAGMA user_version = " + std::to_string(layoutVersion));
    lookOver(engine);
    write.commit();
    return upgrade;
}

} // namespace

Upgrade upgradeRegister(const QString& path, const QDateTime& now, const UpgradeSteps& steps) {
    return upgradeFile(path, steps,
                       [&] { return makeBackup(path, BackupKind::beforeOperation, now).value_or(QString()); });
}

void upgradeDraft(const QString& path, const UpgradeSteps& steps) {
    upgradeFile(path, steps, [] { return QString(); });
}

} // namespace store
