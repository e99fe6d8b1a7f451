// hoshiren-booklet: a document in Markdown as a PDF of A4 pages, to be printed.
//
//     hoshiren-booklet [--points N] [--dots N] [--pages N] TEXT.md BOOKLET.pdf
//
// Its pictures lie beside the text. A list of contents that links to headings is given their pages. Exit status 1 where
// a picture or a heading that is linked to is missing, or where it does not come to so many pages, even with smaller
// pictures; nothing is written then.
#include "booklet/booklet.h"

#include <QCommandLineParser>
#include <QFile>
#include <QGuiApplication>

#include <cstdio>
#include <memory>

using namespace Qt::StringLiterals;

int main(int argc, char* argv[]) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Makes a PDF of A4 pages of a document in Markdown."_s);
    parser.addHelpOption();
    const QCommandLineOption points(u"points"_s, u"Size of the text."_s, u"N"_s, u"11"_s);
    const QCommandLineOption pictureDots(u"dots"_s, u"Dots of the pictures to an inch."_s, u"N"_s, u"160"_s);
    const QCommandLineOption pages(u"pages"_s, u"Pages that it must have; pictures are made smaller for it."_s, u"N"_s);
    parser.addOptions({points, pictureDots, pages});
    parser.addPositionalArgument(u"TEXT.md"_s, u"The document."_s);
    parser.addPositionalArgument(u"BOOKLET.pdf"_s, u"Where it goes."_s);
    parser.process(application);
    const QStringList files = parser.positionalArguments();
    if (files.size() != 2)
        parser.showHelp(2);
    try {
        const double wanted = parser.value(pictureDots).toDouble();
        const int room = parser.value(pages).toInt();
        std::unique_ptr<booklet::Booklet> made;
        for (double smaller = 1; !made || (room > 0 && made->pages() > room && smaller < 1.3); smaller += 0.03)
            made = std::make_unique<booklet::Booklet>(files[0], parser.value(points).toDouble(), wanted * smaller);
        if (room > 0 && made->pages() != room)
            throw std::runtime_error(files[0].toStdString() + " makes " + std::to_string(made->pages()) +
                                     " pages, not " + std::to_string(room));
        const QByteArray pdf = made->pdf();
        QFile file(files[1]);
        if (!file.open(QIODevice::WriteOnly) || file.write(pdf) != pdf.size() || !file.flush())
            throw std::runtime_error(files[1].toStdString() + ": " + file.errorString().toStdString());
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "hoshiren-booklet: %s\n", failure.what());
        return 1;
    }
}
