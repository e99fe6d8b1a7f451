// hoshiren-tour: drives the program's own screens and leaves pictures of them.
//
//     hoshiren-tour FOLDER              the road of one death, from an empty register to the printed label
//     hoshiren-tour --documents FOLDER  the documents' other pictures, from a made-up register
//
// Needs no display. Exit status 1, with the reason, as soon as a step does not go as it should.
#include "app/application.h"
#include "store/database.h"
#include "tour/tour.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QSettings>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QTextStream>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

// A display of the size that offices have, for a program that runs without one.
constexpr auto display = R"({"screens": [{"name": "office", "x": 0, "y": 0, "width": 1366, "height": 768,
                             "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})";

} // namespace

int main(int argc, char* argv[]) {
    QTemporaryFile screens;
    if (!screens.open() || screens.write(display) < 0 || !screens.flush()) {
        std::fputs("hoshiren-tour: no temporary file can be written\n", stderr);
        return 1;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screens.fileName().toLocal8Bit());
    // The label goes into a PDF, never onto the printer of whoever runs the tour.
    qputenv("CUPS_SERVER", "/nonexistent");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) {
        // What a display that nobody sees cannot do is of no interest.
        if (!text.startsWith(u"This plugin does not support"_s))
            std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
    });
    QApplication application(argc, argv);

    QCommandLineParser parser;
    parser.setApplicationDescription(u"Drives the program's own screens and leaves pictures of them."_s);
    parser.addHelpOption();
    const QCommandLineOption documentsOption(u"documents"_s, u"The documents' pictures, from a made-up register."_s);
    parser.addOption(documentsOption);
    parser.addPositionalArgument(u"FOLDER"_s, u"Where the pictures go."_s);
    parser.process(application);
    const bool documents = parser.isSet(documentsOption);
    QTextStream errors(stderr);
    if (parser.positionalArguments().size() != 1) {
        errors << parser.helpText();
        return 2;
    }
    const QDir folder(parser.positionalArguments().constFirst());
    // What is chosen here is not what its user chose.
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    app::prepare(application);
    try {
        if (!folder.mkpath(u"."_s))
            throw std::runtime_error("the folder cannot be made: " + folder.path().toStdString());
        documents ? tour::documentPictures(folder) : tour::roadOfOneDeath(folder);
        return 0;
    } catch (const std::exception& failure) {
        const auto* store = dynamic_cast<const store::Error*>(&failure);
        errors << "hoshiren-tour: " << (store ? store->message() : QString::fromUtf8(failure.what())) << Qt::endl;
        return 1;
    }
}
