#include "desk/user_settings.h"

#include <memory>

using namespace Qt::StringLiterals;

namespace desk {

namespace {

const QString owner = u"hoshiren"_s;

} // namespace

QSettings userSettings() {
    // What was set in a file that cannot be written lasts as long as somebody has it open.
    static std::unique_ptr<const QSettings> open;
    const QString file = QSettings(owner, owner).fileName();
    if (!open || open->fileName() != file)
        open = std::make_unique<const QSettings>(owner, owner);
    return QSettings(owner, owner);
}

// A file that was damaged is written anew from what could be read of it: that is no failure.
bool keep(QSettings& settings) {
    settings.sync();
    return settings.status() != QSettings::AccessError;
}

bool keepUserSetting(const QString& key, const QVariant& value) {
    QSettings settings = userSettings();
    settings.setValue(key, value);
    return keep(settings);
}

} // namespace desk
