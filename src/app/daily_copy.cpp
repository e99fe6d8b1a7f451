#include "app/daily_copy.h"

#include "ui/message_box.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace app {

namespace {

constexpr std::chrono::milliseconds betweenParts{5};
constexpr std::chrono::minutes betweenLooks{10};

} // namespace

DailyCopy::DailyCopy(ui::Workplace& workplace, std::chrono::milliseconds wait) : workplace_(workplace) {
    timer_.callOnTimeout([this] { goOn(); });
    timer_.start(wait);
}

void DailyCopy::goOn() {
    // A part in the middle of an operation would meet what that has open.
    if (workplace_.operating())
        return;
    try {
        if (!copy_)
            begin();
        else if (!copy_->advance()) {
            store::removeOldBackups(store::Database::registerPath(), copy_->path());
            copy_.reset();
        }
    } catch (const std::exception& failure) {
        copy_.reset();
        tell(store::explain(failure));
    }
    if (copy_)
        timer_.start(betweenParts);
    else
        timer_.start(betweenLooks);
}

void DailyCopy::begin() {
    const QString path = store::Database::registerPath();
    const QDate today = workplace_.today();
    if (triedOn_ == today || !QFileInfo::exists(path))
        return;
    triedOn_ = today;
    const auto backups = store::backupsOf(path);
    if (std::any_of(backups.begin(), backups.end(), [today](const store::Backup& backup) {
            return backup.kind == store::BackupKind::daily && backup.made.date() == today;
        }))
        return;
    copy_.emplace(path, store::newBackupPath(path, store::BackupKind::daily, {today, QTime::currentTime()}));
}

void DailyCopy::tell(const QString& failure) {
    timer_.stop();
    const QString text = u"今日の控えを作れませんでした。このまま仕事は続けられます。\n\n"_s + failure;
    ui::showMessage(workplace_.find(u"メニュー"_s), text, u"メニュー"_s, desk::Icon::exclamation);
}

} // namespace app
