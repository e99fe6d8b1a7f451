// hoshiren-documents: starts Hoshiren on the register in the user's own folder. The desktop's menu entry calls it,
// since a menu entry knows no current directory. Offers to bring an older register to the program's layout. A program
// that is open on the register already comes forward.
#include "app/application.h"
#include "app/first_start.h"
#include "desk/desk.h"
#include "ui/message_box.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

int failed(const QString& message) {
    ui::showMessage(nullptr, message, u"Hoshiren"_s, desk::Icon::exclamation);
    return 1;
}

bool shown(const QString& path) {
    const QString opener = QStandardPaths::findExecutable(u"xdg-open"_s);
    // It ends with whether there is a program for such files, which the toolkit does not wait for.
    return opener.isEmpty() ? QDesktopServices::openUrl(QUrl::fromLocalFile(path))
                            : QProcess::execute(opener, {path}) == 0;
}

// --open NAME: one of the documents that are installed with the program, in the desktop's own program for PDF files.
int openDocument(const QString& name) {
    const QDir programs(QCoreApplication::applicationDirPath());
    const QString path = QDir::cleanPath(programs.filePath(u"../share/doc/hoshiren/%1.pdf"_s.arg(name)));
    const QString shownPath = QDir::toNativeSeparators(path);
    if (!QFileInfo::exists(path))
        return failed(u"「%1」がありません。Hoshiren を入れ直して下さい。\n%2"_s.arg(name, shownPath));
    if (!shown(path))
        return failed(u"「%1」を開けません。\nPDF を見るプログラムを入れて下さい。\n%2"_s.arg(name, shownPath));
    return 0;
}

} // namespace

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    app::prepare(application);
    QCommandLineParser parser;
    const QCommandLineOption open(u"open"_s, u"Shows a document that is installed with the program."_s, u"NAME"_s);
    parser.addOption(open);
    parser.addHelpOption();
    parser.process(application);
    if (parser.isSet(open))
        return openDocument(parser.value(open));
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
