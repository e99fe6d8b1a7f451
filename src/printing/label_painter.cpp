#include "printing/label_painter.h"

using namespace Qt::StringLiterals;

namespace printing {
namespace {

class Face : public LabelFont {
  public:
    double width(const QString& text) const override { return font.width(text, LabelRun::fullPoints); }
    bool canPrint(char32_t character) const override { return font.has(character); }

    const PrintedFont font;
};

class LabelDocument : public PrintedDocument {
  public:
    LabelDocument(std::shared_ptr<const Face> face, std::vector<LabelSheet> sheets)
        : face_(std::move(face)), sheets_(std::move(sheets)) {}

    DocumentFacts facts() const override {
        return {.noun = u"宛名"_s, .jobTitle = "Hoshiren labels", .paper = a4, .marks = true};
    }
    int pages() const override { return static_cast<int>(sheets_.size()); }
    void paint(QPainter& painter, int page, double dotsAnInch) const override {
        face_->font.use(painter);
        for (const LabelLine& line : sheets_[static_cast<std::size_t>(page)])
            face_->font.draw(painter, dotsAnInch, line.text, line.x, line.top, line.points, line.widthShare);
    }

  private:
    const std::shared_ptr<const Face> face_;
    const std::vector<LabelSheet> sheets_;
};

class PaintedPrinter : public LabelPrinter {
  public:
    using Way = std::function<PrintedJob(std::shared_ptr<const PrintedDocument>)>;

    explicit PaintedPrinter(Way way) : way_(std::move(way)) {}
    const LabelFont& font() const override { return *face_; }
    PrintedJob print(const std::vector<LabelSheet>& sheets) override {
        return way_(std::make_shared<LabelDocument>(face_, sheets));
    }

  private:
    const Way way_;
    const std::shared_ptr<const Face> face_ = std::make_shared<Face>();
};

} // namespace

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
