// Takes a picture of what a display shows, cut to what stands out from its empty background.
//
//     hoshiren-picture FILE
//
// Waits until something is shown and the picture has come to rest, half a minute at most. Exit status 1 where nothing
// comes or the file cannot be written.
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QScreen>
#include <QTextStream>
#include <QThread>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QRect shownPart(const QImage& image) {
    const QRgb background = image.pixel(image.width() - 1, image.height() - 1);
    int left = image.width();
    int top = image.height();
    int right = -1;
    int bottom = -1;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixel(x, y) != background) {
                left = std::min(left, x);
                right = std::max(right, x);
                top = std::min(top, y);
                bottom = y;
            }
    return {QPoint(left, top), QPoint(right, bottom)};
}

} // namespace

int main(int argc, char** argv) {
    const QGuiApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Takes a picture of what a display shows."_s);
    parser.addHelpOption();
    parser.addPositionalArgument(u"FILE"_s, u"The picture to write, as PNG."_s);
    parser.process(app);
    if (parser.positionalArguments().size() != 1) {
        QTextStream(stderr) << parser.helpText();
        return 2;
    }
    QImage last;
    QElapsedTimer waited;
    for (waited.start(); waited.elapsed() < 30'000; QThread::msleep(300)) {
        QCoreApplication::processEvents();
        const QImage image = QGuiApplication::primaryScreen()->grabWindow(0).toImage();
        const QRect shown = shownPart(image);
        if (shown.isValid() && image == last)
            return image.copy(shown).save(parser.positionalArguments().constFirst(), "PNG") ? 0 : 1;
        last = image;
    }
    return 1;
}
