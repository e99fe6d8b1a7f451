#include "desk/user_settings.h"

using namespace Qt::StringLiterals;

namespace desk {

QSettings userSettings() {
    return QSettings(u"hoshiren"_s, u"hoshiren"_s);
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
