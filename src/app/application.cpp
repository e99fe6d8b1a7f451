#include "app/application.h"

#include "ui/text_size.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QRawFont>
#include <QTranslator>

using namespace Qt::StringLiterals;

namespace app {

void prepare(QApplication& application) {
    constexpr double smallestPointSize = 11.0;
    const QString japaneseFont = u"Noto Sans CJK JP"_s;
    QApplication::setApplicationName(u"hoshiren"_s);
    QApplication::setApplicationDisplayName({});
    QApplication::setDesktopFileName(u"hoshiren"_s);
    QLocale::setDefault(QLocale(QLocale::Japanese, QLocale::Japan));
    auto* texts = new QTranslator(&application);
    if (texts->load(u"qtbase_ja"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(texts);
    QFont font = QApplication::font();
    // A font without kana would be helped out by whichever font comes next, often with Chinese letter forms.
    // A general alias is given its Japanese face at once; a font that the desktop chose is asked, which costs a start
    // less than asking the font database.
    if (font.family().startsWith(u"sans"_s, Qt::CaseInsensitive) || !QRawFont::fromFont(font).supportsCharacter(u'あ'))
        font.setFamilies({japaneseFont, font.family()});
    font.setPointSizeF(std::max(font.pointSizeF(), smallestPointSize));
    ui::beginWithFont(font);
}

} // namespace app
