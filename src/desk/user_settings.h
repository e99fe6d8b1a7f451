#pragma once

#include <QSettings>

namespace desk {

// What belongs to the user and not to the register (text size, windows, sheets of labels): a file of his, where the
// desktop keeps such things. What cannot be read there is as if it had never been kept.
QSettings userSettings();

// Writes what was set. False where it cannot be read again at the next start; in this run it can in any case.
bool keep(QSettings& settings);

// The same of one value alone.
bool keepUserSetting(const QString& key, const QVariant& value);

} // namespace desk
