#include "store/database.h"

#include "store/draft.h"
#include "store/embedded_data.h"
#include "store/own_changes.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace store {

namespace {

QString& pathInUse() {
    static QString path;
    return path;
}

QString withEngineWords(const QString& sentence, int code, const QString& words) {
    return u"%1\n\n（%2　コード %3）"_s.arg(sentence, words).arg(code);
}

// What happened and what to do, by the engine's primary code; the file-size limit has an extended one of its own.
QString sentenceFor(int code) {
    if (code == SQLITE_IOERR_WRITE || code == SQLITE_IOERR_FSYNC || code == SQLITE_IOERR_TRUNCATE)
        return u"登録簿ファイルに書き込めませんでした。今の処理は行われていません。ディスクの空き容量とファイルの大きさの制限を確認して、やり直して下さい。"_s;
    // No disk space for the index of the write-ahead log.
    if (code == SQLITE_IOERR_SHMSIZE)
        code = SQLITE_FULL;
    if (code == SQLITE_READONLY_DBMOVED)
        return u"登録簿が入れ替わりました。何も書き込まれていません。画面を開き直して下さい。"_s;
    switch (code & 0xff) {
    case SQLITE_CANTOPEN:
        return u"登録簿ファイルを開けません。ファイルがあるか、読み書きできるかを確認して下さい。"_s;
    case SQLITE_NOTADB:
        return u"登録簿ファイルの形式が違います。Hoshiren.mdb が登録簿のファイルか確認して下さい。"_s;
    case SQLITE_CORRUPT:
        return u"登録簿ファイルが壊れています。入力を中止し、控えのファイルから元に戻して下さい。"_s;
    case SQLITE_READONLY:
        return u"登録簿ファイルは読み取り専用です。何も書き込まれていません。ファイルの書き込み許可を確認して下さい。"_s;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return u"登録簿ファイルは他のプログラムが使用中です。何も書き込まれていません。しばらく待ってからやり直して下さい。"_s;
    case SQLITE_FULL:
        return u"ディスクの空きがありません。今の処理は行われていません。空きを作ってからやり直して下さい。"_s;
    case SQLITE_CONSTRAINT:
        return u"登録簿に書き込めない値があります。何も書き込まれていません。入力した内容を確認して下さい。"_s;
    case SQLITE_IOERR:
        return u"登録簿ファイルの読み書きに失敗しました。今の処理は行われていません。ディスクを確認して、やり直して下さい。"_s;
    case SQLITE_ERROR:
        return u"登録簿ファイルに必要な表がありません。Hoshiren.mdb が登録簿のファイルか確認して下さい。"_s;
    default:
        return u"登録簿ファイルの処理に失敗しました。今の処理は行われていません。"_s;
    }
}

// The engine reports a Jet file, an empty file and a missing one in words that help nobody: say it beforehand.
void refuseForeignFile(const QString& path) {
    const QFileInfo info(path);
    if (!info.exists())
        throw Error(
            SQLITE_CANTOPEN,
            withEngineWords(u"登録簿ファイル「%1」がありません。登録簿のある場所からプログラムを起動して下さい。"_s.arg(
                                QDir::toNativeSeparators(path)),
                            SQLITE_CANTOPEN, u"unable to open database file"_s));
    if (info.size() == 0)
        throw Error(
            SQLITE_NOTADB,
            u"登録簿ファイル「%1」は空です（0 バイト）。控えのファイルから元に戻すか、新しい登録簿を作って下さい。"_s
                .arg(QDir::toNativeSeparators(path)));
    QFile file(path);
    if (file.open(QIODevice::ReadOnly) && file.read(19).mid(4) == "Standard Jet DB")
        throw Error(
            SQLITE_NOTADB,
            u"登録簿ファイル「%1」は以前の形式（Jet データベース）です。このプログラムでは開けません。端末で「hoshiren-db convert %2」を実行して新しい形式の登録簿を作り、表示された手順で置き換えてから起動して下さい。"_s
                .arg(QDir::toNativeSeparators(path), info.fileName()));
}

int pragma(SQLite::Database& engine, const char* name) {
    SQLite::Statement statement(engine, std::string("PRAGMA ") + name);
    statement.executeStep();
    return statement.getColumn(0).getInt();
}

SQLite::Database openExisting(const QString& path) {
    requireFile(path);
    const QByteArray file = QFile::encodeName(path);
    try {
        // Each connection is used by one thread only.
        const int flags = SQLite::OPEN_READWRITE | SQLITE_OPEN_EXRESCODE | SQLITE_OPEN_NOMUTEX;
        return SQLite::Database(file.constData(), flags, 2000);
    } catch (const SQLite::Exception&) {
        refuseForeignFile(path);
        throw;
    }
}

} // namespace

Error::Error(int code, const QString& message)
    : std::runtime_error(message.toStdString()), code_(code), message_(message) {}

QString explain(const std::exception& failure) {
    if (const auto* own = dynamic_cast<const Error*>(&failure))
        return own->message();
    if (const auto* engine = dynamic_cast<const SQLite::Exception*>(&failure)) {
        const int code = engine->getExtendedErrorCode() > 0 ? engine->getExtendedErrorCode() : engine->getErrorCode();
        return withEngineWords(sentenceFor(code), code, QString::fromUtf8(engine->what()));
    }
    return u"処理に失敗しました。\n\n（%1）"_s.arg(QString::fromUtf8(failure.what()));
}

QString explainAfterWrite(const std::exception& failure) {
    QString text = explain(failure);
    const QString partly = u"この操作のうち、先に済んだ分は登録簿に書き込まれています。"_s;
    for (const QString& nothing : {u"何も書き込まれていません。"_s, u"今の処理は行われていません。"_s})
        text.replace(nothing, partly);
    return text.contains(partly) ? text : text + u"\n\n"_s + partly;
}

namespace {
int committed = 0;
}

int writesCommitted() {
    return committed;
}

Database::Database(const QString& path, Layouts layouts) : engine_(openExisting(path)) {
    sqlite3* handle = engine_.getHandle();
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
    // A register has no triggers, and its queries call nothing that reaches beyond it: what a file brings along does
    // not run. A prepared file could do anything in the user's name otherwise.
    sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    if (path == registerPath())
        watchChanges(handle);
    try {
        engine_.exec("PRAGMA synchronous = EXTRA");
        if (pragma(engine_, "application_id") != applicationId) {
            refuseForeignFile(path);
            throw Error(SQLITE_NOTADB, withEngineWords(sentenceFor(SQLITE_NOTADB), SQLITE_NOTADB, u"application_id"_s));
        }
        const int layout = layoutOf(*this);
        if (layout < layoutVersion && layouts == Layouts::newest)
            throw Error(
                0,
                u"登録簿ファイル「%1」はこのプログラムより古い版です。何も変えていません。端末で「hoshiren-db upgrade %2」を実行すると、控えを作ってから新しい版に進めます。そのあとで起動して下さい。"_s
                    .arg(QDir::toNativeSeparators(path), QFileInfo(path).fileName()));
        if (layout > layoutVersion)
            throw Error(
                0,
                u"登録簿ファイル「%1」はこのプログラムより新しい版で作られています。新しい版のプログラムで開いて下さい。"_s
                    .arg(QDir::toNativeSeparators(path)));
    } catch (const SQLite::Exception&) {
        refuseForeignFile(path);
        throw;
    }
}

int layoutOf(Database& database) {
    return pragma(database.engine(), "user_version");
}

QString Database::registerPath() {
    if (pathInUse().isEmpty())
        pathInUse() = QDir::current().absoluteFilePath(u"Hoshiren.mdb"_s);
    return pathInUse();
}

void Database::setRegisterPath(const QString& path) {
    pathInUse() = path;
}

// IMMEDIATE: a write that would meet a lock half-way waits for it at its start instead.
Write::Write(Database& database) : engine_(database.engine()) {
    engine_.exec("BEGIN IMMEDIATE");
}

Write::~Write() {
    // A failed statement may have ended the transaction already.
    if (open_ && !sqlite3_get_autocommit(engine_.getHandle()))
        engine_.tryExec("ROLLBACK");
}

void Write::commit() {
    engine_.exec("COMMIT");
    open_ = false;
    ++committed;
}

void createRegister(const QString& path) {
    if (QFileInfo::exists(path))
        throw Error(0, u"「%1」は既にあります。上書きはしません。"_s.arg(QDir::toNativeSeparators(path)));
    Draft draft(path);
    {
        SQLite::Database engine(QFile::encodeName(draft.path()).constData(), SQLite::OPEN_READWRITE);
        // What fails is thrown away whole, what succeeds is brought to the disk before it is moved.
        engine.exec("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF");
        engine.exec("BEGIN");
        engine.exec(embedded_schema);
        engine.exec(embedded_nengo);
        engine.exec(embedded_master);
        engine.exec("COMMIT");
    }
    draft.moveTo(path, Existing::refused);
}

void bringBackToOneFile(const QString& path) {
    // Two bytes of the file's head say that it keeps a write-ahead log, also where the log itself was never written.
    constexpr qint64 logBytes = 18;
    requireFile(path);
    const auto keepsLog = [&path] {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) && file.seek(logBytes) && file.read(2) == "\2\2";
    };
    // Another start may be at it.
    constexpr int patience = 2000; // ms
    for (const QDeadlineTimer end(patience); keepsLog(); QThread::msleep(20)) {
        try {
            Database database(path);
            database.engine().exec("PRAGMA journal_mode = DELETE");
            return;
        } catch (const SQLite::Exception& failure) {
            if ((failure.getErrorCode() & 0xff) != SQLITE_BUSY || end.hasExpired())
                throw;
        }
    }
}

} // namespace store
