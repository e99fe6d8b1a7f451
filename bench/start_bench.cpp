// The start of the program up to its main menu, beside the start of a program with one empty window and beside a start
// that makes no copy of the register, process by process.
//
//     start_bench REGISTER
#include "compare.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QProcess>

#include <cstdio>
#include <stdexcept>

namespace {

void start(const QString& program, const QString& folder, const QStringList& arguments = {}) {
    QProcess process;
    process.setWorkingDirectory(folder);
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(QCoreApplication::applicationDirPath() + QLatin1Char('/') + program, arguments);
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        throw std::runtime_error(program.toStdString() + " did not start");
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("start_bench REGISTER\n", stderr);
        return 2;
    }
    try {
        const QString folder = QFileInfo(QString::fromLocal8Bit(argv[1])).absolutePath();
        bench::compare(
            "main menu shown", 1.5, 15, 1, [&] { start(QStringLiteral("main_menu"), folder); },
            [&] { start(QStringLiteral("empty_window"), folder); });
        // It ends before the copy begins: what the copy costs the start is what is measured.
        bench::compare(
            "main menu shown, with the day's copy", 1.05, 25, 1, [&] { start(QStringLiteral("main_menu"), folder); },
            [&] { start(QStringLiteral("main_menu"), folder, {QStringLiteral("--without-copy")}); });
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
