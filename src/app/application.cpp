#include "app/application.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

using namespace Qt::StringLiterals;

namespace app {

void prepare(QApplication& application) {
    constexpr double smallestPointSize = 11.0;
    QApplication::setApplicationName(u"hoshiren"_s);
    QApplication::setApplicationDisplayName({});
    QApplication::setDesktopFileName(u"hoshiren"_s);
    QLocale::setDefault(QLocale(QLocale::Japanese, QLocale::Japan));
    auto* texts = new QTranslator(&application);
    if (texts->load(u"qtbase_ja"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(texts);
    QFont font = QApplication::font();
    if (font.pointSizeF() < smallestPointSize) {
        font.setPointSizeF(smallestPointSize);
        QApplication::setFont(font);
    }
}

} // namespace app
