#include "printing/label_painter.h"

#include "store/database.h"

#include <QApplication>
#include <QBuffer>
#include <QDialog>
#include <QDir>
#include <QFileInfo>
#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QHash>
#include <QLabel>
#include <QPainter>
#include <QPdfWriter>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QPrinterInfo>
#include <QPushButton>
#include <QSaveFile>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace printing {
namespace {

constexpr double millimetresAnInch = 25.4;
constexpr double pointsAnInch = 72.0;
// Metrics are taken at this size, where no rounding to pixels shows.
constexpr int measuredPixels = 1000;

// The program's own font where it holds Japanese by itself, else a Japanese one: one family for everything, since the
// top of a line is measured with its ascent.
QFont labelFont() {
    QFont font = QApplication::font();
    font.setStyleName({});
    font.setWeight(QFont::Normal);
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setPixelSize(measuredPixels);
    const auto japanese = [](const QString& family) {
        return QFontDatabase::writingSystems(family).contains(QFontDatabase::Japanese);
    };
    if (japanese(QFontInfo(font).family()))
        return font;
    // A family drawn for another country also holds these characters, in that country's forms.
    for (const QString& family : {u"Noto Sans CJK JP"_s, u"Noto Sans JP"_s, u"IPAexGothic"_s, u"IPAGothic"_s,
                                  u"Yu Gothic"_s, u"Meiryo"_s, u"MS Gothic"_s}) {
        if (!japanese(family))
            continue;
        font.setFamilies({family});
        return font;
    }
    if (const QStringList families = QFontDatabase::families(QFontDatabase::Japanese); !families.isEmpty())
        font.setFamilies({families.front()});
    return font;
}

class Face : public LabelFont {
  public:
    Face() : font_(labelFont()), metrics_(font_) {}

    double width(const QString& text) const override {
        return metrics_.horizontalAdvance(text) * LabelRun::fullPoints / measuredPixels * millimetresAnInch /
               pointsAnInch;
    }

    bool canPrint(char32_t character) const override {
        const auto known = known_.constFind(character);
        return known != known_.cend() ? *known : *known_.insert(character, metrics_.inFontUcs4(character));
    }

    // Paints every sheet on a page of its own; false when the device refuses.
    template <class Device> bool paint(Device& device, const std::vector<LabelSheet>& sheets) const {
        QPainter painter;
        if (!painter.begin(&device))
            return false;
        painter.setFont(font_);
        painter.setPen(Qt::black);
        const double dots = device.logicalDpiY() / millimetresAnInch;
        const double ascent = metrics_.ascent() / measuredPixels;
        bool first = true;
        for (const LabelSheet& sheet : sheets) {
            if (!first && !device.newPage())
                return false;
            first = false;
            for (const LabelLine& line : sheet) {
                // From the top of the line to its baseline, where a text is drawn.
                const double size = line.points / pointsAnInch * device.logicalDpiY();
                const double scale = size / measuredPixels;
                painter.setTransform(
                    {scale * line.widthShare, 0, 0, scale, line.x * dots, line.top * dots + ascent * size});
                painter.drawText(QPointF(0, 0), line.text);
            }
        }
        return painter.end();
    }

  private:
    QFont font_;
    QFontMetricsF metrics_;
    mutable QHash<char32_t, bool> known_;
};

class PaintedPrinter : public LabelPrinter {
  public:
    const LabelFont& font() const override { return face_; }

  protected:
    Face face_;
};

template <class Device> void setPage(Device& device) {
    device.setPageSize(QPageSize(QPageSize::A4));
    device.setPageMargins(QMarginsF(0, 0, 0, 0));
}

class PrinterJob : public PaintedPrinter {
  public:
    QString print(const std::vector<LabelSheet>& sheets) override {
        const QPrinterInfo chosen = QPrinterInfo::defaultPrinter();
        QPrinter printer(chosen, QPrinter::HighResolution);
        printer.setDocName(u"宛名"_s);
        printer.setFullPage(true);
        setPage(printer);
        const auto failed = [](QPrinter::PrinterState state) {
            return state == QPrinter::Error || state == QPrinter::Aborted;
        };
        if (failed(chosen.state()) || !face_.paint(printer, sheets) || failed(printer.printerState()))
            throw PrintFailure(u"プリンター「%1」に印刷できません。プリンターの状態を確認して下さい。"_s.arg(
                chosen.description().isEmpty() ? chosen.printerName() : chosen.description()));
        return {};
    }
};

// Qt names a glyph shared by a character and its radical (目, ⽬) by the radical: whoever searches or copies the text
// would not find what was printed. The names are four hexadecimal digits each way, so the file's offsets stay.
void nameCharactersNotRadicals(QByteArray& pdf) {
    for (qsizetype at = 0; (at = pdf.indexOf("beginbfrange", at)) >= 0; ++at) {
        const qsizetype end = pdf.indexOf("endbfrange", at);
        for (qsizetype open = pdf.indexOf("<2", at); open >= 0 && open < end; open = pdf.indexOf("<2", open + 1)) {
            const auto code = static_cast<char16_t>(pdf.sliced(open + 1, 4).toUShort(nullptr, 16));
            if (code < 0x2E80 || code > 0x2FD5)
                continue;
            const QString character = QString(QChar(code)).normalized(QString::NormalizationForm_KC);
            pdf.replace(open + 1, 4, QByteArray::number(character.front().unicode(), 16).rightJustified(4, '0'));
        }
    }
}

class PdfJob : public PaintedPrinter {
  public:
    PdfJob(QString directory, QString name) : directory_(std::move(directory)), name_(std::move(name)) {}

    QString print(const std::vector<LabelSheet>& sheets) override {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        QPdfWriter writer(&buffer);
        writer.setTitle(u"宛名"_s);
        setPage(writer);
        const bool painted = face_.paint(writer, sheets);
        nameCharactersNotRadicals(buffer.buffer());

        const QDir directory(directory_);
        QString path = directory.absoluteFilePath(name_ + u".pdf"_s);
        for (int number = 2; QFileInfo::exists(path); ++number)
            path = directory.absoluteFilePath(u"%1_%2.pdf"_s.arg(name_).arg(number));
        QSaveFile file(path);
        if (!painted || !file.open(QIODevice::WriteOnly) ||
            !file.setPermissions(QFile::ReadOwner | QFile::WriteOwner) ||
            file.write(buffer.buffer()) != buffer.size() || !file.commit())
            throw PrintFailure(u"宛名のPDFファイルを書き出せません。\n%1\n%2"_s.arg(QDir::toNativeSeparators(path),
                                                                                    file.errorString()));
        return path;
    }

  private:
    QString directory_;
    QString name_;
};

class PreviewWindow : public PaintedPrinter {
  public:
    explicit PreviewWindow(QWidget* opener) : opener_(opener) {}

    QString print(const std::vector<LabelSheet>& sheets) override {
        auto* window = new QDialog(opener_);
        window->setAttribute(Qt::WA_DeleteOnClose);
        window->setObjectName(u"宛名プレビュー"_s);
        window->setWindowTitle(u"印刷プレビュー"_s);
        auto printer = std::make_shared<QPrinter>(QPrinter::HighResolution);
        printer->setFullPage(true);
        setPage(*printer);
        auto* pages = new QPrintPreviewWidget(printer.get());
        // The window lives on after this job: it takes what it paints, and the printer that it paints on, with it.
        QObject::connect(pages, &QPrintPreviewWidget::paintRequested, window,
                         [face = face_, sheets, printer](QPrinter* device) { face.paint(*device, sheets); });
        auto* count = new QLabel;
        const auto button = [window](const QString& name) {
            auto* made = new QPushButton(name, window);
            made->setObjectName(name);
            made->setAutoDefault(false);
            made->setMinimumHeight(34);
            return made;
        };
        QPushButton* previous = button(u"前ページ"_s);
        QPushButton* next = button(u"後ページ"_s);
        QPushButton* close = button(u"終了"_s);
        const auto showPage = [pages, count, previous, next](int page) {
            pages->setCurrentPage(page);
            count->setText(u"%1 / %2 枚目"_s.arg(pages->currentPage()).arg(pages->pageCount()));
            previous->setEnabled(pages->currentPage() > 1);
            next->setEnabled(pages->currentPage() < pages->pageCount());
        };
        QObject::connect(pages, &QPrintPreviewWidget::previewChanged, window,
                         [pages, showPage] { showPage(pages->currentPage()); });
        QObject::connect(previous, &QPushButton::clicked, window,
                         [pages, showPage] { showPage(pages->currentPage() - 1); });
        QObject::connect(next, &QPushButton::clicked, window,
                         [pages, showPage] { showPage(pages->currentPage() + 1); });
        QObject::connect(close, &QPushButton::clicked, window, &QDialog::close);

        auto* whole = new QVBoxLayout(window);
        whole->addWidget(pages, 1);
        auto* buttons = new QHBoxLayout;
        for (QWidget* widget :
             {static_cast<QWidget*>(previous), static_cast<QWidget*>(next), static_cast<QWidget*>(count)})
            buttons->addWidget(widget);
        buttons->addStretch(1);
        buttons->addWidget(close);
        whole->addLayout(buttons);
        window->resize(900, 700);
        window->setWindowModality(Qt::WindowModal);
        pages->fitToWidth();
        window->show();
        return {};
    }

  private:
    QWidget* opener_;
};

} // namespace

std::unique_ptr<LabelPrinter> defaultPrinter(QDate today) {
    if (QPrinterInfo::defaultPrinter().isNull())
        return pdfFile(QFileInfo(store::Database::registerPath()).path(), u"宛名_"_s + today.toString(u"yyyyMMdd"_s));
    return std::make_unique<PrinterJob>();
}

std::unique_ptr<LabelPrinter> pdfFile(const QString& directory, const QString& name) {
    return std::make_unique<PdfJob>(directory, name);
}

std::unique_ptr<LabelPrinter> preview(QWidget* opener) {
    return std::make_unique<PreviewWindow>(opener);
}

} // namespace printing
