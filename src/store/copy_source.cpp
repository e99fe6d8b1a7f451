#include "store/copy_source.h"

#include "store/consistency.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace store {

namespace {

// Places in the head of the engine's files: whether it keeps a write-ahead log, the layout, whose file it is.
constexpr qsizetype headSize = 100;
constexpr qsizetype logAt = 18;
constexpr qsizetype layoutAt = 60;
constexpr qsizetype ownerAt = 68;

QString shown(const QString& path) {
    return QDir::toNativeSeparators(path);
}

Error damaged(const QString& path, const QString& words) {
    return {SQLITE_CORRUPT,
            u"「%1」は壊れています。今の登録簿は変わっていません。別の控えを選んで下さい。\n\n（%2）"_s.arg(shown(path),
                                                                                                            words)};
}

bool hasJournal(const QString& path) {
    return QFileInfo(path + u"-journal"_s).size() > 0 || QFileInfo(path + u"-wal"_s).size() > 0;
}

void copyInto(const QString& from, const QString& to) {
    QFile source(from);
    QFile target(to);
    bool good = source.open(QIODevice::ReadOnly) && target.open(QIODevice::WriteOnly);
    while (good && !source.atEnd()) {
        const QByteArray part = source.read(1 << 20);
        good = !part.isEmpty() && target.write(part) == part.size();
    }
    if (good && target.flush())
        return;
    throw Error(0, u"控え「%1」を読むための写しを作れません。今の登録簿は変わっていません。ディスクの空き容量を確認し"
                   "て下さい。\n\n（%2）"_s.arg(shown(from), source.error() != QFileDevice::NoError
                                                                 ? source.errorString()
                                                                 : target.errorString()));
}

} // namespace

CopySource::CopySource(const QString& path, const UpgradeSteps& steps) : path_(path) {
    requireFile(path);
    QFile file(path);
    if (!file.exists())
        throw Error(SQLITE_CANTOPEN,
                    u"控え「%1」がありません。取り除かれたか、名前が変わりました。一覧から選び直して下さい。"_s.arg(
                        shown(path)));
    if (!file.open(QIODevice::ReadOnly))
        throw Error(SQLITE_CANTOPEN, u"控え「%1」を読めません。ファイルの許可を確認して下さい。\n\n（%2）"_s.arg(
                                         shown(path), file.errorString()));
    const QByteArray head = file.read(headSize);
    file.close();
    if (head.size() < headSize || !head.startsWith("SQLite format 3"))
        throw damaged(path, u"file is not a database"_s);
    const auto owner = qFromBigEndian<qint32>(head.constData() + ownerAt);
    deletion_ = owner == deletionId;
    if (!deletion_ && owner != applicationId)
        throw Error(SQLITE_NOTADB,
                    u"「%1」は登録簿の控えではありません。ファイルを確認して下さい。"_s.arg(shown(path)));
    const auto layout = qFromBigEndian<qint32>(head.constData() + layoutAt);
    reading([&] {
        if (layout < layoutVersion || head[logAt] != 1 || hasJournal(path))
            copyAndUpgrade(steps);
        database_.emplace(readPath(), Layouts::newest, deletion_ ? FileUse::asDeletion : FileUse::asCopy);
    });
}

void CopySource::copyAndUpgrade(const UpgradeSteps& steps) {
    draft_.emplace(path_);
    copyInto(path_, draft_->path());
    for (const QString& ending : {u"-journal"_s, u"-wal"_s})
        if (QFileInfo::exists(path_ + ending))
            copyInto(path_ + ending, draft_->path() + ending);
    const auto own = [this](int owner) {
        SQLite::Database engine(QFile::encodeName(draft_->path()).constData(),
                                SQLite::OPEN_READWRITE | SQLITE_OPEN_EXRESCODE);
        engine.exec("PRAGMA journal_mode = DELETE");
        engine.exec("PRAGMA application_id = " + std::to_string(owner));
    };
    own(applicationId);
    upgradeDraft(draft_->path(), steps);
    if (deletion_)
        own(deletionId);
}

void CopySource::refuseDamaged(const SQLite::Exception& failure) {
    const auto isDamage = [](const SQLite::Exception& one) {
        const int code = one.getErrorCode() & 0xff;
        return code == SQLITE_CORRUPT || code == SQLITE_NOTADB;
    };
    if (!isDamage(failure))
        return;
    if (!database_)
        throw damaged(path_, QString::fromUtf8(failure.what()));
    // The register may have been read together with the copy: which one is it?
    try {
        const std::string found = database_->engine().execAndGet("PRAGMA quick_check(1)").getString();
        if (found == "ok")
            return;
    } catch (const SQLite::Exception& own) {
        if (!isDamage(own))
            return;
    }
    throw damaged(path_, QString::fromUtf8(failure.what()));
}

void CopySource::prove() {
    reading([this] {
        const std::string found = database_->engine().execAndGet("PRAGMA integrity_check(1)").getString();
        if (found != "ok")
            throw damaged(path_, QString::fromStdString(found));
        if (const QStringList unreadable = findUnreadableTexts(database_->engine()); !unreadable.isEmpty())
            throw damaged(path_, unreadable.first());
    });
}

} // namespace store
