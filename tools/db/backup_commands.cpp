#include "commands.h"

#include "store/backup.h"
#include "store/name_copies.h"
#include "store/upgrade.h"

#include <QDir>
#include <QFileInfo>
#include <QTextStream>

using namespace Qt::StringLiterals;

namespace {

void copyNow(store::BackupKind kind) {
    const auto made = store::makeBackup(store::Database::registerPath(), kind, QDateTime::currentDateTime());
    say(stdout, u"控えを作りました: %1"_s.arg(QDir::toNativeSeparators(made.value_or(QString()))));
}

void show(const store::NameCopy& copy) {
    say(stdout,
        u"檀家 %1　%2「%3」: %4"_s.arg(copy.household).arg(copy.kind, copy.name, copy.copied) +
            (copy.ambiguous ? u"（檀家名の異なる分家があり、どの檀家か決められません）"_s : u" → "_s + copy.own));
}

} // namespace

void say(FILE* where, const QString& text) {
    QTextStream(where) << text << Qt::endl;
}

int backUp() {
    copyNow(store::BackupKind::byHand);
    return 0;
}

int listBackups() {
    const auto backups = store::backupsOf(store::Database::registerPath());
    for (const store::Backup& backup : backups)
        say(stdout, u"%1　%2 バイト　%3　%4"_s.arg(backup.made.toString(u"yyyy/MM/dd HH:mm:ss"))
                        .arg(QFileInfo(backup.path).size())
                        .arg(store::reasonText(backup),
                             QDir::toNativeSeparators(QDir::current().relativeFilePath(backup.path))));
    if (backups.empty())
        say(stdout, u"控えはありません。"_s);
    return 0;
}

int restoreRegister(const QString& file) {
    const QString path = store::Database::registerPath();
    const QString kept = store::restore(file, path, QDateTime::currentDateTime());
    say(stdout,
        u"登録簿を「%1」に戻しました: %2"_s.arg(QDir::toNativeSeparators(file), QDir::toNativeSeparators(path)));
    if (!kept.isEmpty())
        say(stdout, u"置き換えた登録簿はここにあります: %1"_s.arg(QDir::toNativeSeparators(kept)));
    return 0;
}

int showNames() {
    store::Database database;
    const auto copies = store::findNameCopies(database);
    for (const store::NameCopy& copy : copies)
        show(copy);
    say(stdout, copies.empty() ? u"檀家名の写しはすべて檀家と同じです。"_s
                               : u"檀家名の写しが檀家と異なる行: %1 件"_s.arg(copies.size()));
    return 0;
}

int writeNames() {
    store::Database database;
    const auto copies = store::findNameCopies(database);
    if (copies.empty())
        return showNames();
    copyNow(store::BackupKind::beforeOperation);
    const auto left = store::writeNameCopies(database);
    say(stdout, u"檀家名の写しを檀家に合わせました: %1 件"_s.arg(copies.size() - left.size()));
    for (const store::NameCopy& copy : left)
        show(copy);
    if (!left.empty())
        say(stdout,
            u"上の %1 件はそのままです。同じ檀家に同じ名前の行があるか、檀家を決められません。"_s.arg(left.size()));
    return left.empty() ? 0 : 1;
}

int upgrade(const QString& file) {
    const store::Upgrade upgrade = store::upgradeRegister(file, QDateTime::currentDateTime());
    if (upgrade.from == store::layoutVersion) {
        say(stdout, u"登録簿は最新の版（%1）です。何も変えていません。"_s.arg(upgrade.from));
        return 0;
    }
    say(stdout, u"控えを作りました: %1"_s.arg(QDir::toNativeSeparators(upgrade.copy)));
    for (const QString& step : upgrade.done)
        say(stdout, step);
    say(stdout, u"登録簿を版 %1 から版 %2 に進めました: %3"_s.arg(upgrade.from)
                    .arg(store::layoutVersion)
                    .arg(QDir::toNativeSeparators(file)));
    return 0;
}
