#include "app/first_start.h"

#include "store/database.h"
#include "ui/message_box.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace app {

bool offerRegister(const QString& folder) {
    const QString title = u"Hoshiren"_s;
    const QString path = QDir(folder).filePath(u"Hoshiren.mdb"_s);
    const QString shownPath = QDir::toNativeSeparators(path);
    if (QFileInfo::exists(path))
        return true;
    if (!ui::askQuestion(
            nullptr,
            u"登録簿がまだありません。\n\n%1\n\nここに空の登録簿を新しく作りますか？\n"
            "控えから元に戻すときや、登録簿を別の場所に置いているときは「いいえ」を選んで下さい。"_s.arg(shownPath),
            title))
        return false;
    try {
        if (!QDir().mkpath(folder))
            throw store::Error(0, u"フォルダ「%1」を作れません。書き込みの許可を確認して下さい。"_s.arg(
                                      QDir::toNativeSeparators(folder)));
        // Another start may have been told the same meanwhile.
        if (!QFileInfo::exists(path))
            store::createRegister(path);
    } catch (const std::exception& failure) {
        ui::showMessage(nullptr, store::explain(failure), title, desk::Icon::exclamation);
        return false;
    }
    return true;
}

bool offerUpgrade(const QString& folder, const store::UpgradeSteps& steps) {
    const QString title = u"Hoshiren"_s;
    const QString path = QDir(folder).filePath(u"Hoshiren.mdb"_s);
    if (!store::isOlder(path))
        return true;
    if (!ui::askQuestion(nullptr,
                         u"登録簿はこのプログラムより古い版です。\n\n%1\n\n"
                         "控えを作ってから、新しい版に進めますか？\n"
                         "進めた登録簿は、前のプログラムでは開けません。"_s.arg(QDir::toNativeSeparators(path)),
                         title))
        return false;
    try {
        const store::Upgrade upgrade = store::upgradeRegister(path, QDateTime::currentDateTime(), steps);
        ui::showMessage(nullptr,
                        u"登録簿を新しい版に進めました。\n\n前の登録簿の控えはここにあります:\n%1"_s.arg(
                            QDir::toNativeSeparators(upgrade.copy)),
                        title, desk::Icon::none);
    } catch (const std::exception& failure) {
        ui::showMessage(nullptr, store::explain(failure), title, desk::Icon::exclamation);
        return false;
    }
    return true;
}

} // namespace app
