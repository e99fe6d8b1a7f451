#include "memorials/notice_runs.h"

#include "store/draft.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace memorials {
namespace {

constexpr std::size_t mostRuns = 20;
constexpr std::size_t mostRows = 60000; // of all runs; the newest is kept whatever it has
constexpr qint64 mostBytes = 64 << 20;

// Named after the register, beside it: its runs are those of this file and of no other.
QString runsPath() {
    return store::Database::registerPath() + u".notices"_s;
}

[[noreturn]] void unreadable(const QString& words) {
    throw store::Error(
        0, u"通知処理の記録を読めません。このファイルを別の場所に移してから、もう一度処理して下さい。\n%1\n%2"_s.arg(
               QDir::toNativeSeparators(runsPath()), words));
}

} // namespace

NotifiedRow NotifiedRow::of(const store::tbl_hohyo& row) {
    return {row.tblhoy_no, row.tblhoy_zokunameg, row.tblhoy_kaiki_yymd};
}

std::vector<NoticeRun> noticeRuns() {
    QFile file(runsPath());
    if (!file.exists())
        return {};
    store::requireFile(runsPath());
    if (file.size() > mostBytes)
        unreadable(u"大き過ぎます。"_s);
    if (!file.open(QIODevice::ReadOnly))
        unreadable(file.errorString());
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    if (error.error != QJsonParseError::NoError || !document.isArray())
        unreadable(u"内容が壊れています。"_s);
    std::vector<NoticeRun> runs;
    for (const auto& each : document.array()) {
        const QJsonObject object = each.toObject();
        NoticeRun& run = runs.emplace_back();
        run.day = QDate::fromString(object[u"day"_s].toString(), Qt::ISODate);
        run.open = object[u"open"_s].toBool(true);
        for (const auto& row : object[u"rows"_s].toArray()) {
            const QJsonArray key = row.toArray();
            run.rows.push_back({static_cast<std::int16_t>(key[0].toInt()), key[1].toString(),
                                QDate::fromString(key[2].toString(), Qt::ISODate)});
        }
        if (!run.day.isValid())
            unreadable(u"内容が壊れています。"_s);
    }
    return runs;
}

void keepNoticeRuns(std::vector<NoticeRun> runs) {
    std::size_t rows = 0;
    auto oldest = runs.end();
    while (oldest != runs.begin() && static_cast<std::size_t>(runs.end() - oldest) < mostRuns) {
        rows += (oldest - 1)->rows.size();
        if (oldest != runs.end() && rows > mostRows)
            break;
        --oldest;
    }
    QJsonArray kept;
    for (auto run = oldest; run != runs.end(); ++run) {
        QJsonArray keys;
        for (const NotifiedRow& row : run->rows)
            keys.append(QJsonArray{row.household, row.deceased, row.scheduled.toString(Qt::ISODate)});
        kept.append(QJsonObject{{u"day"_s, run->day.toString(Qt::ISODate)}, {u"open"_s, run->open}, {u"rows"_s, keys}});
    }
    const QByteArray bytes = QJsonDocument(kept).toJson(QJsonDocument::Compact);
    store::Draft draft(runsPath());
    QFile file(draft.path());
    if (!file.open(QIODevice::WriteOnly | QIODevice::ExistingOnly) || file.write(bytes) != bytes.size() ||
        !file.flush())
        throw store::Error(
            0, u"通知処理の記録を書けません。\n%1\n%2"_s.arg(QDir::toNativeSeparators(runsPath()), file.errorString()));
    file.close();
    draft.moveTo(runsPath(), store::Existing::replaced);
}

} // namespace memorials
