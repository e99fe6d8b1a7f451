#include "booklet/booklet.h"

#include "booklet/phrases.h"
#include "printing/pdf_names_painter.h"

#include <QAbstractTextDocumentLayout>
#include <QFileInfo>
#include <QFontDatabase>
#include <QHash>
#include <QImage>
#include <QPageSize>
#include <QPainter>
#include <QRegularExpression>
#include <QTextBlock>
#include <QTextFrame>
#include <QTextList>
#include <QTextTable>
#include <QUrl>

#include <array>
#include <cmath>
#include <vector>

using namespace Qt::StringLiterals;

namespace booklet {

namespace {

constexpr int dotsAnInch = 600;
constexpr double documentDots = 96; // the measure of a document's own lengths, whatever its device
constexpr double millimetresAnInch = 25.4;
constexpr double margin = 14;    // millimetres
constexpr double footHeight = 6; // at the end of each page
constexpr QSizeF paper(210, 297);

constexpr double dots(double millimetres) {
    return millimetres / millimetresAnInch * dotsAnInch;
}
constexpr double lengths(double millimetres) {
    return millimetres / millimetresAnInch * documentDots;
}

template <class Each> void eachBlock(const QTextDocument& text, const Each& each) {
    for (QTextBlock block = text.begin(); block.isValid(); block = block.next())
        each(block);
}

bool isPicture(const QTextBlock& block) {
    return block.isValid() && block.begin() != block.end() && block.begin().fragment().charFormat().isImageFormat();
}

// As the place where the documents are read makes a heading's address.
QString addressOf(QString heading) {
    static const QRegularExpression dropped(u"[^\\w\\s-]"_s, QRegularExpression::UseUnicodePropertiesOption);
    heading.remove(QChar(u'\u2060')).replace(QChar(QChar::Nbsp), u' ');
    return u'#' + heading.toLower().remove(dropped).replace(u' ', u'-');
}

} // namespace

Booklet::Booklet(const QString& path, double points, double pictureDots)
    : points_(points), font_(u"Noto Sans CJK JP"_s), writer_(&pdf_) {
    if (!QFontDatabase::hasFamily(font_.family()))
        throw std::runtime_error("there is no font " + font_.family().toStdString());
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error(path.toStdString() + ": " + file.errorString().toStdString());
    pdf_.open(QIODevice::WriteOnly);
    writer_.setResolution(dotsAnInch);
    writer_.setPageSize(QPageSize(QPageSize::A4));
    writer_.setPageMargins(QMarginsF());
    QFont body = font_;
    body.setPointSizeF(points);
    text_.setDefaultFont(body);
    text_.documentLayout()->setPaintDevice(&writer_);
    text_.setUseDesignMetrics(true);
    text_.setDocumentMargin(0);
    text_.setIndentWidth(lengths(7));
    text_.setMarkdown(phrasesHeld(QString::fromUtf8(file.readAll())), QTextDocument::MarkdownDialectGitHub);
    QTextCursor whole(&text_);
    whole.beginEditBlock(); // laid out once
    setTexts();
    setTables();
    placePictures(QFileInfo(path).path(), pictureDots);
    whole.endEditBlock();
    text_.setPageSize(QSizeF(dots(paper.width() - 2 * margin), dots(paper.height() - 2 * margin - footHeight)));
    paginate();
    numberContents();
}

QByteArray Booklet::pdf() {
    writer_.setTitle(title_);
    QPainter painter(&writer_);
    painter.setRenderHint(QPainter::LosslessImageRendering);
    for (int page = 0; page < pages(); ++page) {
        if (page > 0)
            writer_.newPage();
        const QRectF part(0, page * height(), text_.pageSize().width(), height());
        painter.save();
        painter.translate(dots(margin), dots(margin) - part.top());
        painter.setClipRect(part.adjusted(-dots(2), 0, dots(2), -dots(0.2)));
        QAbstractTextDocumentLayout::PaintContext context;
        context.clip = part.adjusted(0, dots(0.5), 0, -dots(0.5)); // a line at the edge belongs to the other page
        context.palette.setColor(QPalette::Text, Qt::black);
        text_.documentLayout()->draw(&painter, context);
        painter.restore();
        foot(painter, page);
    }
    painter.end();
    printing::nameCharacters(pdf_.buffer(), font_);
    return pdf_.data();
}

int Booklet::pageOf(double y) const {
    return static_cast<int>(std::floor(y / height()));
}

void Booklet::foot(QPainter& painter, int page) const {
    QFont font = font_;
    font.setPointSizeF(9);
    painter.setFont(font);
    const QRectF place(dots(margin), dots(paper.height() - margin - 6), text_.pageSize().width(), dots(6));
    painter.drawText(place, Qt::AlignRight | Qt::AlignBottom, u"%1　%2／%3"_s.arg(title_).arg(page + 1).arg(pages()));
}

// Headings stand out by size and room; the first is the title.
void Booklet::setTexts() {
    static constexpr std::array sizes{1.7, 1.25, 1.08};
    eachBlock(text_, [this](const QTextBlock& block) {
        QTextCursor cursor(block);
        QTextBlockFormat format = block.blockFormat();
        format.setLineHeight(108, QTextBlockFormat::ProportionalHeight);
        format.setTopMargin(0);
        const bool goesOn = block.textList() && block.next().textList() == block.textList();
        format.setBottomMargin(goesOn || cursor.currentTable() ? 0 : lengths(1.6));
        if (const int level = format.headingLevel(); level > 0) {
            const auto depth = static_cast<std::size_t>(std::min(level, 3) - 1);
            static constexpr std::array room{0.0, 3.0, 2.0};
            format.setTopMargin(lengths(room[depth]));
            format.setBottomMargin(lengths(1.4));
            if (level == 2)
                format.setBackground(QColor(0xe8, 0xec, 0xf2));
            if (level == 1 && title_.isEmpty())
                title_ = block.text().remove(QChar(u'\u2060'));
            QTextCharFormat letters;
            letters.setFontPointSize(points_ * sizes[depth]);
            letters.setFontWeight(QFont::Bold);
            cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
            cursor.setCharFormat(letters);
        }
        cursor.setBlockFormat(format);
    });
    // What leads somewhere on a screen leads nowhere on paper. One font for everything, commands included: it is
    // the one that is sure to have its characters.
    QTextCursor all(&text_);
    all.select(QTextCursor::Document);
    QTextCharFormat plain;
    plain.setForeground(Qt::black);
    plain.setFontUnderline(false);
    plain.setFontFamilies(font_.families());
    all.mergeCharFormat(plain);
}

void Booklet::setTables() {
    for (QTextFrame* frame : text_.rootFrame()->childFrames()) {
        auto* table = qobject_cast<QTextTable*>(frame);
        if (!table)
            continue;
        QTextTableFormat format = table->format();
        format.setBorderCollapse(true);
        format.setBorder(1);
        format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
        format.setBorderBrush(Qt::gray);
        format.setCellPadding(lengths(0.8));
        format.setCellSpacing(0);
        format.setTopMargin(lengths(0.5));
        format.setBottomMargin(lengths(2.5));
        format.setWidth(QTextLength(QTextLength::PercentageLength, 100));
        table->setFormat(format);
    }
}

void Booklet::placePictures(const QString& folder, double pictureDots) {
    eachBlock(text_, [&](const QTextBlock& block) {
        for (auto at = block.begin(); !at.atEnd(); ++at) {
            QTextImageFormat format = at.fragment().charFormat().toImageFormat();
            if (!format.isValid())
                continue;
            const QString name = QUrl::fromPercentEncoding(format.name().toUtf8());
            const QImage picture(folder + u'/' + name);
            if (picture.isNull())
                throw std::runtime_error("no picture: " + name.toStdString());
            text_.addResource(QTextDocument::ImageResource, QUrl(format.name()), picture);
            const double width =
                std::min(picture.width() / pictureDots * documentDots, lengths(paper.width() - 2 * margin));
            format.setWidth(width);
            format.setHeight(width * picture.height() / picture.width());
            QTextCursor cursor(block);
            cursor.setPosition(at.fragment().position());
            cursor.movePosition(QTextCursor::NextCharacter, QTextCursor::KeepAnchor);
            cursor.setCharFormat(format);
            QTextBlockFormat line = block.blockFormat();
            line.setLineHeight(0, QTextBlockFormat::SingleHeight);
            cursor.setBlockFormat(line);
            break;
        }
    });
}

Booklet::Stand Booklet::standOf(const QTextBlock& block) const {
    Stand stand;
    const double top = text_.documentLayout()->blockBoundingRect(block).top();
    const QTextLayout& layout = *block.layout();
    stand.lines = layout.lineCount();
    for (int line = 0; line < stand.lines; ++line) {
        const int page = pageOf(top + layout.lineAt(line).y() + layout.lineAt(line).height() / 2);
        if (line == 0)
            stand.first = page;
        stand.last = page;
        stand.linesOnFirst += page == stand.first ? 1 : 0;
    }
    return stand;
}

// Whether a block makes no sense without the one that follows.
bool Booklet::leads(const QTextBlock& block) const {
    if (block.blockFormat().headingLevel() > 0)
        return true;
    const QTextBlock next = block.next();
    const bool toPicture = isPicture(next) && !isPicture(block);
    const bool toTable = next.isValid() && QTextCursor(next).currentTable() && !QTextCursor(block).currentTable();
    return (toPicture || toTable) && block.layout()->lineCount() <= 2;
}

// Has this block begin a page, with what leads to it.
void Booklet::breakBefore(QTextBlock block) {
    const int page = standOf(block).first;
    while (block.previous().isValid() && leads(block.previous()) && standOf(block.previous()).first >= page - 1 &&
           !QTextCursor(block.previous()).currentTable())
        block = block.previous();
    QTextBlockFormat format = block.blockFormat();
    format.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
    QTextCursor(block).setBlockFormat(format);
    text_.pageCount();
}

// Moves what should not be torn or end a page to the next one, from the top until everything stands well.
void Booklet::paginate() {
    text_.pageCount(); // lays out to the end: a change on the way would leave holes
    for (QTextBlock block = text_.begin(); block.isValid(); block = block.next()) {
        if (QTextTable* table = QTextCursor(block).currentTable()) {
            paginate(*table);
            block = text_.findBlock(table->lastPosition());
            continue;
        }
        const Stand stand = standOf(block);
        const bool torn = stand.first != stand.last && (stand.linesOnFirst < 2 || stand.lines - stand.linesOnFirst < 2);
        const bool left = leads(block) && block.next().isValid() && standOf(block.next()).first != stand.last;
        if ((torn || left) && block.blockFormat().pageBreakPolicy() != QTextFormat::PageBreak_AlwaysBefore)
            breakBefore(block);
    }
}

int Booklet::firstPage(const QTextTable& table, int row) const {
    return standOf(table.cellAt(row, 0).firstCursorPosition().block()).first;
}
int Booklet::lastPage(const QTextTable& table, int row) const {
    int last = 0;
    for (int column = 0; column < table.columns(); ++column)
        last = std::max(last, standOf(table.cellAt(row, column).lastCursorPosition().block()).last);
    return last;
}

// A small table is not torn, and none behind its headings. A row that would be torn begins the next page: the one
// above it grows to the end of its own.
void Booklet::paginate(QTextTable& table) {
    const int apart = table.rows() <= 7 ? table.rows() - 1 : 1;
    if (lastPage(table, apart) != firstPage(table, 0)) {
        const QTextBlock before = text_.findBlock(table.firstPosition()).previous();
        if (before.isValid() && leads(before)) {
            breakBefore(before);
        } else {
            QTextTableFormat format = table.format();
            format.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
            table.setFormat(format);
            text_.pageCount();
        }
    }
    for (int row = 1; row < table.rows(); ++row) {
        const QTextBlock begin = table.cellAt(row, 0).firstCursorPosition().block();
        const double top = text_.documentLayout()->blockBoundingRect(begin).top();
        const double free = (pageOf(top) + 1) * height() - top;
        if (lastPage(table, row) == pageOf(top) || free > height() / 3)
            continue;
        for (int column = 0; column < table.columns(); ++column) {
            QTextTableCell cell = table.cellAt(row - 1, column);
            QTextTableCellFormat format = cell.format().toTableCellFormat();
            format.setBottomPadding(table.format().cellPadding() + free / dotsAnInch * documentDots);
            cell.setFormat(format);
        }
        text_.pageCount();
    }
}

// The page of a heading goes behind an entry of a list that is nothing but a link to it.
void Booklet::numberContents() {
    QHash<QString, int> headings;
    eachBlock(text_, [&](const QTextBlock& block) {
        if (block.blockFormat().headingLevel() > 0)
            headings.insert(addressOf(block.text()), standOf(block).first + 1);
    });
    std::vector<std::pair<QTextBlock, int>> entries;
    eachBlock(text_, [&](const QTextBlock& block) {
        for (auto at = block.begin(); !at.atEnd(); ++at) {
            const QString target = at.fragment().charFormat().anchorHref();
            if (!target.startsWith(u'#'))
                continue;
            if (!headings.contains(target))
                throw std::runtime_error("no heading: " + target.toStdString());
            if (block.textList() && at.fragment().length() == block.length() - 1)
                entries.emplace_back(block, headings.value(target));
        }
    });
    for (const auto& [block, page] : entries) {
        QTextCursor cursor(block);
        QTextBlockFormat format = block.blockFormat();
        format.setTabPositions({QTextOption::Tab(lengths(150), QTextOption::RightTab)});
        cursor.setBlockFormat(format);
        cursor.movePosition(QTextCursor::EndOfBlock);
        cursor.insertText(u'\t' + QString::number(page));
    }
}

} // namespace booklet
