#include "store/kept_deletion.h"

#include "store/backup.h"
#include "store/draft.h"
#include "store/embedded_data.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace store {

namespace {

constexpr std::size_t numberKept = 200;
constexpr int daysKept = 90;
constexpr int attempts = 20; // at a number that another program takes at the same moment

const QString timeFormat = u"yyyy-MM-dd-HHmmss"_s;

// became: one row a field that a deletion changed. Fields that a later layout adds are not in it, and are then the same
// before and after. household: see HouseholdThen.
constexpr auto ownTables = R"(
CREATE TABLE kept_what (what TEXT, label TEXT);
CREATE TABLE kept_became (tbl TEXT, kept INTEGER, field TEXT, value);
CREATE TABLE kept_household (no1 INTEGER, nameg TEXT, namek TEXT, toshug TEXT, tel TEXT, jyusho1 TEXT, added TEXT);
)";

template <class... Values> void run(SQLite::Database& engine, const char* sql, const Values&... values) {
    SQLite::Statement statement(engine, sql);
    int at = 0;
    (bindValue(statement, ++at, values), ...);
    statement.exec();
}

template <class Row> void writeRows(Database& file, const std::vector<Was<Row>>& rows) {
    SQLite::Database& engine = file.engine();
    Table table(file, keyIndex<Row>);
    for (const Was<Row>& was : rows) {
        table.insertAsRead(was.row);
        if (!was.became)
            continue;
        const qint64 kept = engine.getLastInsertRowid();
        const auto writeField = [&](auto field) {
            if (was.row.*(field.member) == (*was.became).*(field.member))
                return;
            SQLite::Statement statement(engine, "INSERT INTO kept_became VALUES (?, ?, ?, ?)");
            bindValue(statement, 1, QString::fromUtf8(Description<Row>::table));
            bindValue(statement, 2, kept);
            bindValue(statement, 3, QString::fromUtf8(field.name));
            bindValue(statement, 4, (*was.became).*(field.member));
            statement.exec();
        };
        std::apply([&](auto... field) { (writeField(field), ...); }, Description<Row>::fields);
    }
}

template <class Row> void readRows(Database& file, std::vector<Was<Row>>& rows) {
    SQLite::Statement keys(file.engine(),
                           std::string("SELECT rowid FROM ") + Description<Row>::table + " ORDER BY rowid");
    SQLite::Statement changes(file.engine(), "SELECT field, value FROM kept_became WHERE tbl = ? AND kept = ?");
    for (const Row& row : selectAll<Row>(file, std::string("ORDER BY ") + Description<Row>::table + ".rowid")) {
        keys.executeStep();
        changes.reset();
        bindValue(changes, 1, QString::fromUtf8(Description<Row>::table));
        bindValue(changes, 2, static_cast<qint64>(keys.getColumn(0).getInt64()));
        std::optional<Row> became;
        while (changes.executeStep()) {
            if (!became)
                became = row;
            const std::string changed = changes.getColumn(0).getString();
            const auto readField = [&](auto field) {
                if (changed == field.name)
                    readValue(changes.getColumn(1), (*became).*(field.member));
            };
            std::apply([&](auto... field) { (readField(field), ...); }, Description<Row>::fields);
        }
        rows.push_back({row, became});
    }
}

// The file's first bytes are the engine's own: the number that tells a register from this is written last.
void write(const QString& path, const Records& records, const QString& what, const QString& label) {
    {
        SQLite::Database engine(QFile::encodeName(path).constData(), SQLite::OPEN_READWRITE);
        engine.exec("PRAGMA page_size = 1024; PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF");
        engine.exec("BEGIN");
        engine.exec(embedded_schema);
        engine.exec(ownTables);
        engine.exec("COMMIT");
    }
    Database file(path);
    SQLite::Database& engine = file.engine();
    engine.exec("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF");
    engine.exec("BEGIN");
    run(engine, "INSERT INTO kept_what VALUES (?, ?)", what, label);
    for (const HouseholdThen& household : records.households)
        run(engine, "INSERT INTO kept_household VALUES (?, ?, ?, ?, ?, ?, ?)", household.number, household.nameg,
            household.namek, household.toshug, household.tel, household.jyusho1, household.added);
    records.forEach([&file](const auto& rows) { writeRows(file, rows); });
    engine.exec("PRAGMA application_id = " + std::to_string(deletionId));
    engine.exec("COMMIT");
}

QString readyFolder(const QString& registerPath) {
    const QString folder = deletionFolder(registerPath);
    constexpr auto ownersOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner;
    for (const QString& path : {backupFolder(registerPath), folder}) {
        if (QFileInfo(path).isDir())
            continue;
        if (!QDir().mkdir(path, ownersOnly) && !QFileInfo(path).isDir())
            throw Error(0, u"控えの場所「%1」を作れません。書き込みの許可を確認して下さい。"_s.arg(
                               QDir::toNativeSeparators(path)));
        syncFolder(QFileInfo(path).absolutePath());
    }
    return folder;
}

QString nameOf(const QString& registerPath, const QDateTime& now, int number) {
    return u"%1-%2-%3-deleted.mdb"_s.arg(QFileInfo(registerPath).completeBaseName(), now.toString(timeFormat))
        .arg(number, 5, 10, QChar(u'0'));
}

// By their names alone, newest first.
std::vector<KeptDeletion> listed(const QString& registerPath) {
    const QRegularExpression pattern(u"^%1-(\\d{4}-\\d\\d-\\d\\d-\\d{6})-(\\d{5,9})-deleted\\.mdb$"_s.arg(
        QRegularExpression::escape(QFileInfo(registerPath).completeBaseName())));
    std::vector<KeptDeletion> found;
    for (const QFileInfo& file : QDir(deletionFolder(registerPath)).entryInfoList(QDir::Files)) {
        const auto match = pattern.match(file.fileName());
        if (match.hasMatch())
            found.push_back({file.absoluteFilePath(),
                             QDateTime::fromString(match.captured(1), timeFormat),
                             match.captured(2).toInt(),
                             {},
                             {}});
    }
    std::ranges::sort(found, [](const KeptDeletion& one, const KeptDeletion& other) {
        return std::tie(one.number, one.path) > std::tie(other.number, other.path);
    });
    return found;
}

} // namespace

QString deletionFolder(const QString& registerPath) {
    return backupFolder(registerPath) + u"/deleted"_s;
}

std::vector<KeptDeletion> deletionsOf(const QString& registerPath) {
    std::vector<KeptDeletion> all = listed(registerPath);
    for (KeptDeletion& one : all) {
        try {
            Database file(one.path, Layouts::olderToo, FileUse::asDeletion);
            SQLite::Statement what(file.engine(), "SELECT what, label FROM kept_what");
            if (what.executeStep()) {
                readValue(what.getColumn(0), one.what);
                readValue(what.getColumn(1), one.label);
            }
        } catch (const std::exception&) {
            // Told when it is chosen.
        }
    }
    return all;
}

QString keepDeletion(const QString& registerPath, const Records& records, const QString& what, const QString& label,
                     const QDateTime& now, const QString& replacing) {
    if (!records.readable)
        throw Error(0, u"消すものに読めない日付があり、元のままには残せません。"_s);
    const QString folder = readyFolder(registerPath);
    Draft draft(folder + u"/draft"_s);
    write(draft.path(), records, what, label);
    if (!replacing.isEmpty()) {
        draft.moveTo(replacing, Existing::replaced);
        return replacing;
    }
    const auto before = listed(registerPath);
    int number = before.empty() ? 1 : before.front().number + 1;
    QString path = folder + u'/' + nameOf(registerPath, now, number);
    for (int attempt = 1; QFileInfo::exists(path) && attempt < attempts; ++attempt)
        path = folder + u'/' + nameOf(registerPath, now, ++number);
    draft.moveTo(path, Existing::refused);
    removeOldDeletions(registerPath, now, path);
    return path;
}

Records takenBy(Database& deletion) {
    Records records;
    records.forEach([&deletion](auto& rows) { readRows(deletion, rows); });
    SQLite::Statement households(deletion.engine(),
                                 "SELECT no1, nameg, namek, toshug, tel, jyusho1, added FROM kept_household");
    while (households.executeStep()) {
        HouseholdThen household;
        readValue(households.getColumn(0), household.number);
        readValue(households.getColumn(1), household.nameg);
        readValue(households.getColumn(2), household.namek);
        readValue(households.getColumn(3), household.toshug);
        readValue(households.getColumn(4), household.tel);
        readValue(households.getColumn(5), household.jyusho1);
        readValue(households.getColumn(6), household.added);
        records.households.push_back(household);
    }
    return records;
}

void removeOldDeletions(const QString& registerPath, const QDateTime& now, const QString& justMade) {
    const auto all = listed(registerPath);
    for (std::size_t at = 0; at < all.size(); ++at)
        if (all[at].path != justMade && (at >= numberKept || all[at].made.daysTo(now) > daysKept))
            QFile::remove(all[at].path);
    removeLeftDrafts(deletionFolder(registerPath));
}

} // namespace store
