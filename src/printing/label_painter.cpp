#include "printing/label_painter.h"

#include "printing/print_windows_screen.h"
#include "store/draft.h"

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
#include <QPrinter>
#include <QPrinterInfo>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSettings>
#include <QVBoxLayout>

#include <algorithm>
#include <future>
#include <thread>

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

    // Paints a sheet whose top left corner is the painter's origin.
    void paint(QPainter& painter, const LabelSheet& sheet, double dotsAnInch) const {
        const QTransform corner = painter.transform();
        painter.setFont(font_);
        painter.setPen(Qt::black);
        const double dots = dotsAnInch / millimetresAnInch;
        const double ascent = metrics_.ascent() / measuredPixels;
        for (const LabelLine& line : sheet) {
            // From the top of the line to its baseline, where a text is drawn.
            const double size = line.points / pointsAnInch * dotsAnInch;
            const double scale = size / measuredPixels;
            painter.setTransform(
                QTransform(scale * line.widthShare, 0, 0, scale, line.x * dots, line.top * dots + ascent * size) *
                corner);
            painter.drawText(QPointF(0, 0), line.text);
        }
        painter.setTransform(corner);
    }

    // Paints every sheet on a page of its own; false when the device refuses.
    template <class Device> bool paint(Device& device, const std::vector<LabelSheet>& sheets) const {
        QPainter painter;
        if (!painter.begin(&device))
            return false;
        bool first = true;
        for (const LabelSheet& sheet : sheets) {
            if (!first && !device.newPage())
                return false;
            first = false;
            paint(painter, sheet, device.logicalDpiY());
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

// The toolkit's own way, for a system without the print server's interface.
class PrinterJob : public PaintedPrinter {
  public:
    PrintedJob print(const std::vector<LabelSheet>& sheets) override {
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

// The sheets as one PDF; empty when they cannot be painted.
QByteArray pdfOf(const Face& face, const std::vector<LabelSheet>& sheets) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setTitle(u"宛名"_s);
    setPage(writer);
    if (!face.paint(writer, sheets))
        return {};
    nameCharactersNotRadicals(buffer.buffer());
    return buffer.data();
}

class PdfJob : public PaintedPrinter {
  public:
    PdfJob(QString directory, QString name) : directory_(std::move(directory)), name_(std::move(name)) {}

    PrintedJob print(const std::vector<LabelSheet>& sheets) override {
        const QByteArray pdf = pdfOf(face_, sheets);
        const QDir directory(directory_);
        QString path = directory.absoluteFilePath(name_ + u".pdf"_s);
        for (int number = 2; QFileInfo::exists(path); ++number)
            path = directory.absoluteFilePath(u"%1_%2.pdf"_s.arg(name_).arg(number));
        QString words;
        try {
            store::Draft draft(path);
            QFile file(draft.path());
            if (!pdf.isEmpty() && file.open(QIODevice::WriteOnly | QIODevice::ExistingOnly) &&
                file.write(pdf) == pdf.size() && file.flush()) {
                file.close();
                draft.moveTo(path, store::Existing::refused);
                return {path, {}};
            }
            words = file.errorString();
        } catch (const store::DraftError& failure) {
            words = failure.systemWords();
        }
        throw PrintFailure(u"宛名のPDFファイルを書き出せません。\n%1\n%2"_s.arg(QDir::toNativeSeparators(path), words));
    }

  private:
    QString directory_;
    QString name_;
};

PdfJob pdfBesideRegister(QDate today) {
    return {QFileInfo(store::Database::registerPath()).path(), u"宛名_"_s + today.toString(u"yyyyMMdd"_s)};
}

// One sheet at a time, as wide as the room. Without the toolkit's own preview, which asks the print server for its
// printers before it shows anything.
class SheetView : public QWidget {
  public:
    // At least one sheet.
    SheetView(Face face, std::vector<LabelSheet> sheets) : face_(std::move(face)), sheets_(std::move(sheets)) {
        QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
        policy.setHeightForWidth(true);
        setSizePolicy(policy);
        setMinimumWidth(400);
    }

    int count() const { return static_cast<int>(sheets_.size()); }
    int sheet() const { return sheet_; }
    void show(int sheet) {
        sheet_ = sheet;
        update();
    }

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override {
        return 2 * edge + static_cast<int>((width - 2 * edge) * paperHeight / paperWidth);
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const int wide = width() - 2 * edge;
        painter.fillRect(edge, edge, wide, heightForWidth(width()) - 2 * edge, Qt::white);
        painter.translate(edge, edge);
        face_.paint(painter, sheets_[static_cast<std::size_t>(sheet_)], wide / paperWidth * millimetresAnInch);
    }

  private:
    static constexpr int edge = 32;           // of the desk that the sheet lies on, pixels
    static constexpr double paperWidth = 210; // A4, millimetres
    static constexpr double paperHeight = 297;

    Face face_;
    std::vector<LabelSheet> sheets_;
    int sheet_ = 0;
};

class PreviewWindow : public PaintedPrinter {
  public:
    explicit PreviewWindow(QWidget* opener) : opener_(opener) {}

    PrintedJob print(const std::vector<LabelSheet>& sheets) override {
        auto* window = new QDialog(opener_);
        window->setAttribute(Qt::WA_DeleteOnClose);
        window->setObjectName(u"宛名プレビュー"_s);
        window->setWindowTitle(u"印刷プレビュー"_s);
        auto* view = new SheetView(face_, sheets);
        auto* room = new QScrollArea;
        room->setWidget(view);
        room->setWidgetResizable(true);
        view->setBackgroundRole(QPalette::Mid);
        view->setAutoFillBackground(true);
        room->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
        auto* count = new QLabel;
        count->setObjectName(u"枚目"_s);
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
        const auto showSheet = [view, room, count, previous, next](int sheet) {
            view->show(sheet);
            room->verticalScrollBar()->setValue(0);
            count->setText(u"%1 / %2 枚目"_s.arg(sheet + 1).arg(view->count()));
            previous->setEnabled(sheet > 0);
            next->setEnabled(sheet + 1 < view->count());
        };
        QObject::connect(previous, &QPushButton::clicked, window, [view, showSheet] { showSheet(view->sheet() - 1); });
        QObject::connect(next, &QPushButton::clicked, window, [view, showSheet] { showSheet(view->sheet() + 1); });
        QObject::connect(close, &QPushButton::clicked, window, &QDialog::close);

        auto* whole = new QVBoxLayout(window);
        whole->addWidget(room, 1);
        auto* buttons = new QHBoxLayout;
        for (QWidget* widget :
             {static_cast<QWidget*>(previous), static_cast<QWidget*>(next), static_cast<QWidget*>(count)})
            buttons->addWidget(widget);
        buttons->addStretch(1);
        buttons->addWidget(close);
        whole->addLayout(buttons);
        window->resize(900, 700);
        window->setWindowModality(Qt::WindowModal);
        showSheet(0);
        window->show();
        return {};
    }

  private:
    QWidget* opener_;
};

#ifdef HOSHIREN_PRINT_SERVER
// Asks the print server in a thread of its own while the user sees that it is being asked. The thread may outlive this
// call: it shares nothing with it but the conversation.
template <class Answer>
Answer askServer(ServerWindow& window, const QString& text, std::chrono::milliseconds patience,
                 std::function<Answer(Conversation&)> question) {
    const auto conversation = std::make_shared<Conversation>();
    std::promise<Answer> promise;
    std::future<Answer> answer = promise.get_future();
    std::thread([conversation, question = std::move(question), promise = std::move(promise)]() mutable {
        try {
            promise.set_value(question(*conversation));
        } catch (...) {
            promise.set_exception(std::current_exception());
        }
    }).detach();
    window.await(text, patience, *conversation,
                 [&answer] { return answer.wait_for(std::chrono::seconds(0)) == std::future_status::ready; });
    return answer.get();
}

class ServerJob : public PaintedPrinter {
  public:
    ServerJob(QWidget* opener, QDate today, std::chrono::milliseconds patience)
        : opener_(opener), today_(today), patience_(patience) {}

    PrintedJob print(const std::vector<LabelSheet>& sheets) override {
        ServerWindow window(opener_);
        const auto queues =
            askServer<std::vector<Queue>>(window, u"プリンターを調べています。"_s, patience_, queuesOfServer);
        if (queues.empty())
            return pdfBesideRegister(today_).print(sheets);
        const Queue queue = chosenOf(queues, window);
        const QByteArray pdf = pdfOf(face_, sheets);
        if (pdf.isEmpty())
            throw PrintFailure(u"宛名の印刷データを作れません。\n何も記録していません。"_s);
        const auto print = [queue, pdf](Conversation& conversation) { return printOnQueue(queue, pdf, conversation); };
        try {
            const QString sending = u"宛名をプリンター「%1」に送っています。"_s.arg(queue.description);
            const auto waiting = askServer<QString>(window, sending, patience_, print);
            return {{}, waiting.isEmpty() ? waiting : toldWaiting.arg(queue.description, waiting)};
        } catch (const QueueRefused& refusal) {
            QSettings kept(u"hoshiren"_s, u"hoshiren"_s);
            if (queue.standard || kept.value(chosenQueue).toByteArray() != queue.name)
                throw;
            kept.remove(chosenQueue);
            throw PrintFailure(refusal.message + u"\n次に印刷するときは、プリンターを選び直せます。"_s);
        }
    }

  private:
    static inline const QString chosenQueue = u"printing/queue"_s;
    static inline const QString toldWaiting =
        u"宛名はプリンター「%1」に送りましたが、まだ印刷されていません。\n理由：%2\nプリンターが動けば印刷されます。もう一度送る必要はありません。"_s;

    Queue chosenOf(const std::vector<Queue>& queues, ServerWindow& window) const {
        if (const auto standard = std::ranges::find(queues, true, &Queue::standard); standard != queues.end())
            return *standard;
        if (queues.size() == 1)
            return queues.front();
        QSettings kept(u"hoshiren"_s, u"hoshiren"_s);
        const auto known = std::ranges::find(queues, kept.value(chosenQueue).toByteArray(), &Queue::name);
        if (known != queues.end())
            return *known;
        window.hide();
        const std::optional<Queue> chosen = chooseQueue(opener_, queues);
        if (!chosen)
            throw PrintFailure(u"印刷を中止しました。\n何も記録していません。"_s);
        kept.setValue(chosenQueue, chosen->name);
        return *chosen;
    }

    QWidget* opener_;
    QDate today_;
    std::chrono::milliseconds patience_;
};
#endif

} // namespace

#ifdef HOSHIREN_PRINT_SERVER
std::unique_ptr<LabelPrinter> defaultPrinter(QWidget* opener, QDate today, std::chrono::milliseconds patience) {
    return std::make_unique<ServerJob>(opener, today, patience);
}
#else
std::unique_ptr<LabelPrinter> defaultPrinter(QWidget*, QDate today, std::chrono::milliseconds) {
    if (QPrinterInfo::defaultPrinter().isNull())
        return std::make_unique<PdfJob>(pdfBesideRegister(today));
    return std::make_unique<PrinterJob>();
}
#endif

std::unique_ptr<LabelPrinter> pdfFile(const QString& directory, const QString& name) {
    return std::make_unique<PdfJob>(directory, name);
}

std::unique_ptr<LabelPrinter> preview(QWidget* opener) {
    return std::make_unique<PreviewWindow>(opener);
}

} // namespace printing
