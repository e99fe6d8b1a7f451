#include "printing/document_painter.h"
#include "support/pdf_words.h"
#ifdef HOSHIREN_PRINT_SERVER
#include "support/print_server.h"
#endif

#include <QDialog>
#include <QFile>
#include <QLabel>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

// Two pages with a word each, 20 mm from the left and 30 mm from the top as they are read.
class TwoPages : public printing::PrintedDocument {
  public:
    explicit TwoPages(printing::Paper paper) : paper_(paper) {}
    printing::DocumentFacts facts() const override { return {u"年回表"_s, "Hoshiren list", paper_}; }
    int pages() const override { return 2; }
    void paint(QPainter& painter, int page, double dotsAnInch) const override {
        font_.use(painter);
        font_.draw(painter, dotsAnInch, u"頁%1"_s.arg(page + 1), 20, 30, 12);
    }
    QString remark() const override { return u"二頁"_s; }

  private:
    printing::Paper paper_;
    printing::PrintedFont font_;
};

class DocumentPainter : public ::testing::Test {
  protected:
    void expectWords(const QString& pdf, double left, double top) {
        const std::vector<Word> words = wordsOf(pdf);
        ASSERT_EQ(words.size(), 2U);
        for (int page = 1; page <= 2; ++page) {
            const Word& word = words[static_cast<std::size_t>(page - 1)];
            EXPECT_EQ(word.page, page);
            EXPECT_EQ(word.text, u"頁%1"_s.arg(page));
            EXPECT_NEAR(word.left, left, 0.1);
            EXPECT_NEAR(word.top, top, 0.1);
        }
    }

    QTemporaryDir directory;
};

TEST_F(DocumentPainter, WritesAnyPaperAsItIsRead) {
    const printing::Paper papers[] = {
        printing::a4, {.landscape = true}, printing::postcard, printing::longEnvelope, {105, 210}};
    for (const auto& paper : papers) {
        const QString file = printing::writePdf(TwoPages(paper), directory.path(), u"年回表"_s).file;
        expectWords(file, 20, 30);
        QProcess info;
        info.start(u"pdfinfo"_s, {file});
        ASSERT_TRUE(info.waitForFinished());
        const QString told = QString::fromUtf8(info.readAllStandardOutput());
        static const QRegularExpression size(u"Page size: +([0-9.]+) x ([0-9.]+)"_s);
        EXPECT_NEAR(size.match(told).captured(1).toDouble() / 72 * 25.4, paper.pageWidth(), 0.3);
        EXPECT_NEAR(size.match(told).captured(2).toDouble() / 72 * 25.4, paper.pageHeight(), 0.3);
    }
}

// Characters whose glyph another one shares, alone and in the radicals' own order; a reader finds them as printed.
TEST_F(DocumentPainter, NamesWhatWasPrinted) {
    const QString texts[] = {u"西長青黄亀竜目母斉歯"_s, u"水火爪父爻爿片牙牛犬玄玉瓜瓦甘生用田"_s, u"髙﨑社神\uFA19"_s};
    class Line : public TwoPages {
      public:
        explicit Line(QString text) : TwoPages(printing::a4), text_(std::move(text)) {}
        int pages() const override { return 1; }
        void paint(QPainter& painter, int, double dotsAnInch) const override {
            const printing::PrintedFont font;
            font.use(painter);
            font.draw(painter, dotsAnInch, text_, 20, 30, 12);
        }

      private:
        QString text_;
    };
    for (const QString& text : texts) {
        QProcess reader;
        reader.start(u"pdftotext"_s, {printing::writePdf(Line(text), directory.path(), u"字"_s).file, u"-"_s});
        ASSERT_TRUE(reader.waitForFinished());
        EXPECT_EQ(QString::fromUtf8(reader.readAllStandardOutput()).trimmed(), text) << text.toStdString();
        EXPECT_EQ(reader.readAllStandardError(), QByteArray());
    }
}

TEST_F(DocumentPainter, ShowsItsOwnWords) {
    QWidget opener;
    printing::showPreview(std::make_shared<TwoPages>(printing::Paper{.landscape = true}), &opener);
    auto* window = opener.findChild<QDialog*>(u"年回表プレビュー"_s);
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->findChild<QLabel*>(u"枚目"_s)->text(), u"1 / 2 枚目"_s);
    EXPECT_EQ(window->findChild<QLabel*>(u"件数"_s)->text(), u"二頁"_s);
}

#ifdef HOSHIREN_PRINT_SERVER
TEST_F(DocumentPainter, PrintsOnItsPaperUpright) {
    const struct {
        printing::Paper paper;
        const char* media;
        double left, top;
    } cases[] = {
        {printing::a4, "iso_a4_210x297mm", 20, 30},
        // Turned to the right; the word's box, too.
        {{.landscape = true}, "iso_a4_210x297mm", 210 - 30 - 6.13, 20},
        {printing::postcard, "jpn_hagaki_100x148mm", 20, 30},
        {printing::longEnvelope, "jpn_chou3_120x235mm", 20, 30},
        {{105, 211}, "custom_105x211mm_105x211mm", 20, 30},
    };
    const TestPrintServer server({{"lists"}});
    for (const auto& each : cases) {
        const auto job = printing::printDocument(TwoPages(each.paper), nullptr, {2026, 11, 22});
        EXPECT_EQ(job.file + job.waiting, QString());
        const QByteArrayList arguments = server.arguments("lists");
        EXPECT_EQ(arguments[2], "Hoshiren list");
        const QByteArrayList options = arguments[4].split(' ');
        EXPECT_TRUE(options.contains(QByteArray("media=") + each.media)) << arguments[4].constData();
        EXPECT_TRUE(options.contains("orientation-requested=3"));
        QFile file(directory.filePath(u"sent.pdf"_s));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(server.document("lists"));
        file.close();
        expectWords(file.fileName(), each.left, each.top);
    }
}

TEST_F(DocumentPainter, SpeaksOfMarksOnlyWhereThereAreSome) {
    const TestPrintServer server({{"closed", "prints", "Accepting No\n"}});
    try {
        printing::printDocument(TwoPages(printing::a4), nullptr, {2026, 11, 22});
        FAIL();
    } catch (const printing::PrintFailure& failure) {
        EXPECT_FALSE(failure.message.contains(u"記録"_s)) << failure.message.toStdString();
    }
}
#endif

} // namespace
