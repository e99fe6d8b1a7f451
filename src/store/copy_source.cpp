#include "store/copy_source.h"

#include "store/consistency.h"
#include "store/kept_deletion.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
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

void copyInto(const QString& from, const QString& to, const CopySource::Step& step) {
    QFile source(from);
    QFile target(to);
    bool good = source.open(QIODevice::ReadOnly) && target.open(QIODevice::WriteOnly);
    while (good && !source.atEnd()) {
        const QByteArray part = source.read(1 << 20);
        good = !part.isEmpty() && target.write(part) == part.size();
        if (!step(static_cast<int>(100 * source.pos() / std::max(source.size(), qint64{1}))))
            throw Error(0, u"控えを読むのを中止しました。今の登録簿は変わっていません。"_s);
    }
    if (good && target.flush())
        return;
    throw Error(0, u"控え「%1」を読むための写しを作れません。今の登録簿は変わっていません。ディスクの空き容量を確認し"
                   "て下さい。\n\n（%2）"_s.arg(shown(from), source.error() != QFileDevice::NoError
                                                                 ? source.errorString()
                                                                 : target.errorString()));
}

} // namespace

CopySource::CopySource(const QString& path, const UpgradeSteps& steps, const Step& step) : path_(path) {
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
            copyAndUpgrade(steps, step);
        database_.emplace(readPath(), Layouts::newest, deletion_ ? FileUse::asDeletion : FileUse::asCopy);
    });
}

Records CopySource::household(std::int16_t number) {
    if (!deletion_)
        return householdIn(*database_, number);
    const Records all = takenBy(*database_);
    Records chosen;
    chosen.households = all.households;
    all.forEach([&](const auto& rows) {
        for (const auto& was : rows)
            if (numberOf(was.row) == number)
                chosen.of<std::decay_t<decltype(was.row)>>().push_back(was);
    });
    return chosen;
}

Records CopySource::record(RecordKind kind, qint64 rowid) {
    if (!deletion_)
        return recordIn(*database_, kind, rowid);
    // The rows of what was kept are counted from 1.
    const auto at = static_cast<std::size_t>(rowid - 1);
    const Records all = takenBy(*database_);
    if (kind == RecordKind::household)
        return at < all.of<tbl_danka>().size() ? household(all.of<tbl_danka>()[at].row.tbldnk_no1) : Records();
    Records chosen;
    chosen.households = all.households;
    all.forEach([&](const auto& rows) {
        if (at < rows.size() && kindOf(rows[at].row) == kind)
            chosen.of<std::decay_t<decltype(rows[at].row)>>().push_back(rows[at]);
    });
    if (!chosen.of<tbl_kakocho>().empty()) {
        const tbl_kakocho entry = chosen.of<tbl_kakocho>().front().row;
        for (const auto& was : all.of<tbl_hohyo>())
            if (was.row.tblhoy_no == entry.tblkak_no && was.row.tblhoy_danknameg == entry.tblkak_dnknameg &&
                was.row.tblhoy_zokunameg == entry.tblkak_zokunameg)
                chosen.of<tbl_hohyo>().push_back(was);
        for (const auto& was : all.of<tbl_kazoku>())
            if (was.became && was.row.tblkzk_no1 == entry.tblkak_no &&
                was.row.tblkzk_dnknameg == entry.tblkak_dnknameg && was.row.tblkzk_nameg == entry.tblkak_zokunameg)
                chosen.of<tbl_kazoku>().push_back(was);
    }
    return chosen;
}

void CopySource::copyAndUpgrade(const UpgradeSteps& steps, const Step& step) {
    draft_.emplace(path_);
    copyInto(path_, draft_->path(), step);
    for (const QString& ending : {u"-journal"_s, u"-wal"_s})
        if (QFileInfo::exists(path_ + ending))
            copyInto(path_ + ending, draft_->path() + ending, step);
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

bool CopySource::run(const Step& step, const int& percent, const std::function<void()>& work) {
    struct Watch {
        const Step& step;
        const int& percent;
        bool stopped = false;
    } watch{step, percent};
    sqlite3* engine = database_->engine().getHandle();
    constexpr int instructions = 200'000; // a few milliseconds
    sqlite3_progress_handler(
        engine, instructions,
        [](void* data) {
            auto* watching = static_cast<Watch*>(data);
            watching->stopped = watching->stopped || !watching->step(watching->percent);
            return watching->stopped ? 1 : 0;
        },
        &watch);
    const auto end = qScopeGuard([engine] { sqlite3_progress_handler(engine, 0, nullptr, nullptr); });
    try {
        reading(work);
    } catch (const SQLite::Exception& failure) {
        if (watch.stopped && (failure.getErrorCode() & 0xff) == SQLITE_INTERRUPT)
            return false;
        throw;
    }
    return true;
}

bool CopySource::prove(const Step& step) {
    int percent = 0;
    return run(step, percent, [&] {
        const std::string found = database_->engine().execAndGet("PRAGMA integrity_check(1)").getString();
        if (found != "ok")
            throw damaged(path_, QString::fromStdString(found));
        percent = 80;
        if (const QStringList unreadable = findUnreadableTexts(database_->engine()); !unreadable.isEmpty())
            throw damaged(path_, unreadable.first());
    });
}

} // namespace store
