#include "transfer/bulk_export.h"

#include "transfer/bulk_file.h"
#include "transfer/bulk_import.h"

using namespace Qt::StringLiterals;

namespace transfer {

namespace {

constexpr int recordsPerStep = 32;
constexpr qsizetype mostListed = 20;
constexpr qsizetype mostNamed = 3; // in the bar, which is one line

// The characters that the code page holds under another code point, and the records that had them.
struct LookAlikes {
    int count = 0;
    QStringList names;

    QString text() const {
        QString named = names.first(std::min(names.size(), mostNamed)).join(u'、');
        if (names.size() > mostNamed)
            named += u" ほか"_s;
        return u"形の似た文字 %1 字を、シフトJISにある ￥ ― － ～ ∥ に置き換えて出力しました（%2 件：%3）"_s.arg(
            QString::number(count), QString::number(names.size()), named);
    }
};

QString referredText(const QStringList& names) {
    QString text =
        u"次の %1 件にはシフトJISにない文字又は改行があります。文字参照（&#x5409; の形）で出力しました。\n\n"_s.arg(
            names.size()) +
        names.first(std::min(names.size(), mostListed)).join(u'\n');
    if (names.size() > mostListed)
        text += u"\nほか %1 件"_s.arg(names.size() - mostListed);
    return text;
}

} // namespace

int exportRecords(const ExportJob& job, qint64 expected, desk::Desk& desk,
                  const std::function<std::optional<ExportRecord>()>& next) {
    const QString registered = store::Database::registerPath();
    if (refusedIf(belongsToRegister(job.path, registered), registersFile, job.title, desk) ||
        refusedIf(inBackupFolder(job.path, registered), backupsPlace, job.title, desk))
        return 0;
    auto record = next();
    if (refusedIf(!record, job.none, job.title, desk))
        return 0;
    ExportFile file(job.path);
    QStringList referred;
    LookAlikes lookAlikes;
    int count = 0;
    {
        const auto progress = desk.progress(job.title);
        for (; record; record = next()) {
            const Altered altered = file.write(record->fields);
            if (altered.referred)
                referred << record->name;
            if (altered.lookAlikes > 0) {
                lookAlikes.count += altered.lookAlikes;
                lookAlikes.names << record->name;
            }
            if (++count % recordsPerStep == 0 &&
                !progress->advance(static_cast<int>(qint64{count} * 100 / std::max(expected, qint64{count})),
                                   u"出力 %1 件"_s.arg(count))) {
                desk.notify(u"中止しました。ファイルは出力されていません"_s, job.title, desk::Icon::none);
                return 0;
            }
        }
    }
    file.commit();
    desk.notify(job.subject + u"%1 件を出力しました"_s.arg(count), job.title, desk::Icon::none);
    if (!referred.isEmpty())
        desk.notify(referredText(referred), job.title, desk::Icon::none);
    if (lookAlikes.count > 0)
        desk.inform(lookAlikes.text());
    return count;
}

qint64 rowCount(store::Database& database, const std::string& table) {
    return database.engine().execAndGet("SELECT count(*) FROM " + table).getInt64();
}

} // namespace transfer
