// hoshiren-documents: starts Hoshiren on the register in the user's own folder. The desktop's menu entry calls it,
// since a menu entry knows no current directory. Offers to bring an older register to the program's layout. A program
// that is open on the register already comes forward.
#include "app/application.h"
#include "app/first_start.h"
#include "desk/desk.h"
#include "ui/message_box.h"

#include <QApplication>
#include <QDir>
#include <QProcess>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    app::prepare(application);
    const QDir documents(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    const QString folder = documents.filePath(u"Hoshiren"_s);
    if (!app::offerRegister(folder) || !app::offerUpgrade(folder))
        return 0;
    const QString program = QDir(QCoreApplication::applicationDirPath()).filePath(u"hoshiren"_s);
    if (QProcess::startDetached(program, {u"--once"_s}, folder))
        return 0;
    ui::showMessage(
        nullptr,
        u"プログラム「%1」を起動できません。Hoshiren を入れ直して下さい。"_s.arg(QDir::toNativeSeparators(program)),
        u"Hoshiren"_s, desk::Icon::exclamation);
    return 1;
}
