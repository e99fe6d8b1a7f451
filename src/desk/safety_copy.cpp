#include "desk/safety_copy.h"

#include "store/backup.h"

using namespace Qt::StringLiterals;

namespace desk {

bool copyBefore(Desk& desk, const QString& title) {
    {
        // Without a register there is nothing to copy: let the operation itself report that.
        const store::Database database;
    }
    QString reason = u"控えの作成を中止しました。"_s;
    try {
        const auto progress = desk.progress(title);
        const QDateTime now(desk.today(), QTime::currentTime());
        const auto made =
            store::makeBackup(store::Database::registerPath(), store::BackupKind::beforeOperation, now,
                              [&](int percent) { return progress->advance(percent, u"登録簿の控えを作っています"_s); });
        if (made)
            return true;
    } catch (const std::exception& failure) {
        reason = u"登録簿の控えを作れませんでした。\n\n"_s + store::explain(failure);
    }
    return desk.ask(reason + u"\n\n控えのないまま続けますか？"_s, title, Preset::no);
}

} // namespace desk
