#include "printing/listing_painter.h"

#include "store/database.h"

#include <QDir>
#include <QFileInfo>
#include <QGlyphRun>
#include <QPainter>
#include <QRawFont>

using namespace Qt::StringLiterals;

namespace printing {

struct PrintedListing::Face : LabelFont {
    double width(const QString& text) const override { return font.width(text, LabelRun::fullPoints); }
    bool canPrint(char32_t character) const override { return font.has(character); }

    // A text of characters that stand for themselves side by side is drawn from their glyphs, which are looked up once:
    // shaping each of the thousands of texts of a long list takes three times as long. False where it is not so plain.
    bool drawPlain(QPainter& painter, double dotsAnInch, const PageText& text) const {
        QList<quint32> glyphs;
        QList<QPointF> places;
        double x = 0;
        for (const QChar c : text.text) {
            auto known = known_.constFind(c);
            if (known == known_.cend())
                known = known_.insert(c, look(c));
            if (known->index == 0)
                return false;
            glyphs << known->index;
            places << QPointF(x, 0);
            x += known->advance;
        }
        QGlyphRun run;
        run.setRawFont(raw_);
        run.setGlyphIndexes(glyphs);
        run.setPositions(places);
        const double dots = dotsAnInch / 25.4;
        const double size = text.points / 72 * dotsAnInch;
        const double scale = size / raw_.pixelSize();
        const QTransform corner = painter.transform();
        painter.setTransform(QTransform(scale, 0, 0, scale, text.x * dots, text.top * dots + ascent_ * scale) * corner);
        painter.drawGlyphRun(QPointF(), run);
        painter.setTransform(corner);
        return true;
    }

    const PrintedFont font;

  private:
    struct Glyph {
        quint32 index = 0; // 0: not plain
        double advance = 0;
    };
    Glyph look(QChar c) const {
        if (c.isSurrogate() || c.isMark() || c.category() == QChar::Other_Format)
            return {};
        const auto glyphs = raw_.glyphIndexesForString(c);
        if (glyphs.size() != 1 || glyphs.front() == 0)
            return {};
        return {glyphs.front(), QFontMetricsF(font.font()).horizontalAdvance(c)};
    }

    const QRawFont raw_ = QRawFont::fromFont(font.font(), QFontDatabase::Japanese);
    const double ascent_ = QFontMetricsF(font.font()).ascent();
    mutable QHash<QChar, Glyph> known_;
};

PrintedListing::PrintedListing(Listing listing) : face_(std::make_unique<Face>()), pages_(std::move(listing), *face_) {}
PrintedListing::~PrintedListing() = default;

const Listing& PrintedListing::listing() const {
    return pages_.listing();
}

DocumentFacts PrintedListing::facts() const {
    return {.noun = listing().title,
            .jobTitle = "Hoshiren list",
            .paper = {.landscape = pages_.paperWidth() > pages_.paperHeight()}};
}

int PrintedListing::pages() const {
    return pages_.count();
}

void PrintedListing::paint(QPainter& painter, int page, double dotsAnInch) const {
    const double dots = dotsAnInch / 25.4;
    const Page contents = pages_.page(page);
    for (const PageArea& area : contents.areas)
        painter.fillRect(QRectF(area.x * dots, area.top * dots, area.width * dots, area.height * dots),
                         QColor::fromRgbF(float(area.grey), float(area.grey), float(area.grey)));
    face_->font.use(painter);
    for (const PageText& text : contents.texts)
        if (!face_->drawPlain(painter, dotsAnInch, text))
            face_->font.draw(painter, dotsAnInch, text.text, text.x, text.top, text.points);
}

QString PrintedListing::remark() const {
    return pages_.missing().isEmpty() ? QString() : u"印刷できない文字は〓にしました："_s + pages_.missing();
}

namespace {

// A list on its way out, while its preview may be painted as well: before each page runs `beforePage`, and what it
// throws ends the painting.
class WatchedListing : public PrintedDocument {
  public:
    WatchedListing(const PrintedListing& list, std::function<void(int)> beforePage)
        : list_(list), beforePage_(std::move(beforePage)) {}

    DocumentFacts facts() const override { return list_.facts(); }
    int pages() const override { return list_.pages(); }
    void paint(QPainter& painter, int page, double dotsAnInch) const override {
        beforePage_(page);
        list_.paint(painter, page, dotsAnInch);
    }

  private:
    const PrintedListing& list_;
    const std::function<void(int)> beforePage_;
};

// Hands the list over and tells what became of it; file: what is said of a file that it went into.
void handOver(const PrintedListing& list, const QString& file, desk::Desk& desk,
              const std::function<PrintedJob(const PrintedDocument&)>& way) {
    const QString& title = list.listing().title;
    PrintedJob job;
    try {
        const auto progress = desk.progress(title);
        job = way(WatchedListing(list, [&](int page) {
            if (!progress->advance(page * 100 / list.pages(), u"%1 / %2 ページ"_s.arg(page + 1).arg(list.pages())))
                throw PrintFailure(u"%1の作成を中止しました。"_s.arg(title));
        }));
    } catch (const PrintFailure& failure) {
        desk.notify(failure.message, title);
        return;
    }
    if (!job.file.isEmpty())
        desk.notify(file + u'\n' + QDir::toNativeSeparators(job.file), title);
    if (!job.waiting.isEmpty())
        desk.notify(job.waiting, title);
    if (const QString remark = list.remark(); !remark.isEmpty())
        desk.notify(remark, title);
}

} // namespace

void printListing(const PrintedListing& list, QWidget* opener, desk::Desk& desk) {
    const QString& title = list.listing().title;
    handOver(list, u"プリンターがないため、%1をPDFファイルに書き出しました。"_s.arg(title), desk,
             [&](const PrintedDocument& document) { return printDocument(document, opener, desk.today()); });
}

void writeListing(const PrintedListing& list, desk::Desk& desk) {
    const QString& title = list.listing().title;
    handOver(list, u"%1をPDFファイルに書き出しました。"_s.arg(title), desk, [&](const PrintedDocument& document) {
        return writePdf(document, QFileInfo(store::Database::registerPath()).path(),
                        title + desk.today().toString(u"_yyyyMMdd"_s));
    });
}

} // namespace printing
