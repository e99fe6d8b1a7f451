#include "printing/label_painter.h"

#include <QPainter>

using namespace Qt::StringLiterals;

namespace printing {
namespace {

// The square of a full-width character reaches so far above the baseline.
constexpr double squareAboveBaseline = 0.88;

class Face : public LabelFont {
  public:
    double width(const QString& text) const override { return font.width(text, LabelRun::fullPoints); }
    // To shape a text costs most of a label's time. Its characters' own widths are known after the first sheets;
    // together they are a little more or less than the text's, for some stand closer beside one another, or further
    // apart.
    bool surelyFits(const QString& text, double room) const override {
        constexpr double apart = 1.1;
        double width = 0;
        for (const char32_t character : text.toUcs4()) {
            auto known = widths_.constFind(character);
            if (known == widths_.cend())
                known = widths_.insert(character, this->width(QString::fromUcs4(&character, 1)));
            width += *known;
        }
        return width * apart <= room;
    }
    bool canPrint(char32_t character) const override { return font.has(character); }
    double squareTop() const override { return font.ascent() - squareAboveBaseline; }

    const PrintedFont font;

  private:
    mutable QHash<char32_t, double> widths_; // millimetres at 10 points
};

class LabelDocument : public PrintedDocument {
  public:
    LabelDocument(std::shared_ptr<const Face> face, const LabelRun& run)
        : face_(std::move(face)), sheets_(run.sheets()), stock_(run.stock()), start_(run.start()),
          labels_(run.labels()) {}

    DocumentFacts facts() const override {
        return {.noun = u"宛名"_s, .jobTitle = "Hoshiren labels", .paper = stock_.paper, .marks = true};
    }
    int pages() const override { return static_cast<int>(sheets_.size()); }
    void paint(QPainter& painter, int page, double dotsAnInch) const override {
        face_->font.use(painter);
        for (const LabelLine& line : sheets_[static_cast<std::size_t>(page)]) {
            if (line.turned)
                face_->font.drawTurned(painter, dotsAnInch, line.text, line.x, line.top, line.points);
            else
                face_->font.draw(painter, dotsAnInch, line.text, line.x, line.top, line.points, line.widthShare);
        }
    }
    void paintGuides(QPainter& painter, int page, double dotsAnInch) const override {
        paintLabels(painter, stock_, dotsAnInch, page == 0 ? start_ : 0);
    }
    QString remark() const override {
        return stock_.labels() == 1
                   ? u"%1　宛名 %2 件"_s.arg(stock_.name).arg(labels_)
                   : u"%1　宛名 %2 件、%3番目のラベルから"_s.arg(stock_.name).arg(labels_).arg(start_ + 1);
    }

  private:
    const std::shared_ptr<const Face> face_;
    const std::vector<LabelSheet> sheets_;
    const LabelStock stock_;
    const int start_;
    const int labels_;
};

class PaintedPrinter : public LabelPrinter {
  public:
    using Way = std::function<PrintedJob(std::shared_ptr<const PrintedDocument>)>;

    explicit PaintedPrinter(Way way) : way_(std::move(way)) {}
    const LabelFont& font() const override { return *face_; }
    PrintedJob print(const LabelRun& run) override { return way_(std::make_shared<LabelDocument>(face_, run)); }

  private:
    const Way way_;
    const std::shared_ptr<const Face> face_ = std::make_shared<Face>();
};

} // namespace

void paintLabels(QPainter& painter, const LabelStock& stock, double dotsAnInch, int start) {
    const double dots = dotsAnInch / 25.4;
    painter.setPen(QPen(QColor(170, 190, 210), 0));
    for (int label = 0; label < stock.labels(); ++label) {
        const QRectF place(stock.labelLeft(label) * dots, stock.labelTop(label) * dots, stock.width * dots,
                           stock.height * dots);
        painter.setBrush(label < start ? QBrush(QColor(190, 190, 190), Qt::BDiagPattern) : Qt::NoBrush);
        painter.drawRect(place);
    }
    if (!stock.card)
        return;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(220, 120, 110), 0));
    for (const double middle : stock.card->digits) {
        constexpr QSizeF box(5.7, 8.0);
        painter.drawRect(QRectF((middle - box.width() / 2) * dots, (stock.card->digitsMiddle - box.height() / 2) * dots,
                                box.width() * dots, box.height() * dots));
    }
}

std::unique_ptr<LabelPrinter> defaultPrinter(QWidget* opener, QDate today, std::chrono::milliseconds patience) {
    return std::make_unique<PaintedPrinter>(
        [=](const auto& labels) { return printDocument(*labels, opener, today, patience); });
}

std::unique_ptr<LabelPrinter> pdfFile(const QString& directory, const QString& name) {
    return std::make_unique<PaintedPrinter>([=](const auto& labels) { return writePdf(*labels, directory, name); });
}

std::unique_ptr<LabelPrinter> preview(QWidget* opener) {
    return std::make_unique<PaintedPrinter>([=](const auto& labels) {
        showPreview(labels, opener);
        return PrintedJob{};
    });
}

} // namespace printing
