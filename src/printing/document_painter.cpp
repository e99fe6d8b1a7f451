#include "printing/document_painter.h"

#include "desk/user_settings.h"
#include "printing/pdf_names_painter.h"
#include "printing/print_windows_screen.h"
#include "store/draft.h"

#include <QApplication>
#include <QBuffer>
#include <QDialog>
#include <QDir>
#include <QFileInfo>
#include <QFontDatabase>
#include <QFontInfo>
#include <QLabel>
#include <QPainter>
#include <QPdfWriter>
#include <QPrinter>
#include <QPrinterInfo>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
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
QFont japaneseFont(QFont::Weight weight) {
    QFont font = QApplication::font();
    font.setStyleName({});
    font.setWeight(weight);
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

// How a page lies in what is made of it: as it is read (a file), or upright for a printer's paper.
enum class Lying { asRead, upright };

template <class Device> void setPage(Device& device, const Paper& paper, Lying lying) {
    device.setPageSize(QPageSize(QSizeF(paper.width, paper.height), QPageSize::Millimeter, {}, QPageSize::ExactMatch));
    device.setPageOrientation(paper.landscape && lying == Lying::asRead ? QPageLayout::Landscape
                                                                        : QPageLayout::Portrait);
    device.setPageMargins(QMarginsF(0, 0, 0, 0));
}

// Paints every page; false when the device refuses.
template <class Device> bool paintPages(Device& device, const PrintedDocument& document, Lying lying) {
    QPainter painter;
    if (!painter.begin(&device))
        return false;
    const Paper paper = document.facts().paper;
    const double dotsAnInch = device.logicalDpiY();
    for (int page = 0; page < document.pages(); ++page) {
        if (page > 0 && !device.newPage())
            return false;
        painter.resetTransform();
        if (paper.landscape && lying == Lying::upright) {
            // The top of what is read lies along the right edge of the sheet.
            painter.translate(paper.width / millimetresAnInch * dotsAnInch, 0);
            painter.rotate(90);
        }
        document.paint(painter, page, dotsAnInch);
    }
    return painter.end();
}

// Empty when the document cannot be painted.
QByteArray pdfOf(const PrintedDocument& document, Lying lying) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    const DocumentFacts facts = document.facts();
    writer.setTitle(facts.noun);
    setPage(writer, facts.paper, lying);
    if (!paintPages(writer, document, lying))
        return {};
    nameCharacters(buffer.buffer(), japaneseFont(QFont::Normal));
    return buffer.data();
}

PrintedJob writePdfBesideRegister(const PrintedDocument& document, QDate today) {
    return writePdf(document, QFileInfo(store::Database::registerPath()).path(),
                    document.facts().noun + today.toString(u"_yyyyMMdd"_s));
}

// One page at a time, whole or as wide as the room. Without the toolkit's own preview, which asks the print server for
// its printers before it shows anything.
class PageView : public QWidget {
  public:
    explicit PageView(std::shared_ptr<const PrintedDocument> document)
        : document_(std::move(document)), paper_(document_->facts().paper) {
        setEnlarged(false);
    }

    int page() const { return page_; }
    void show(int page) {
        page_ = page;
        update();
    }

    void setEnlarged(bool enlarged) {
        enlarged_ = enlarged;
        QSizePolicy policy(QSizePolicy::Expanding, enlarged ? QSizePolicy::Preferred : QSizePolicy::Expanding);
        policy.setHeightForWidth(enlarged);
        setSizePolicy(policy);
        setMinimumWidth(enlarged ? 400 : 200);
        update();
    }

    bool hasHeightForWidth() const override { return enlarged_; }
    int heightForWidth(int width) const override {
        return 2 * edge + static_cast<int>((width - 2 * edge) * paper_.pageHeight() / paper_.pageWidth());
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        // In dots a millimetre.
        const double wide = (width() - 2 * edge) / paper_.pageWidth();
        const double scale = enlarged_ ? wide : std::min(wide, (height() - 2 * edge) / paper_.pageHeight());
        const QSizeF page(paper_.pageWidth() * scale, paper_.pageHeight() * scale);
        painter.translate((width() - page.width()) / 2, edge);
        painter.fillRect(QRectF(QPointF(), page), Qt::white);
        painter.save();
        document_->paintGuides(painter, page_, scale * millimetresAnInch);
        painter.restore();
        document_->paint(painter, page_, scale * millimetresAnInch);
    }

  private:
    static constexpr int edge = 16; // of the desk that the page lies on, pixels

    const std::shared_ptr<const PrintedDocument> document_;
    const Paper paper_;
    int page_ = 0;
    bool enlarged_ = false;
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

const QString chosenQueue = u"printing/queue"_s;

Queue chosenOf(const std::vector<Queue>& queues, const DocumentFacts& facts, ServerWindow& window, QWidget* opener) {
    if (const auto standard = std::ranges::find(queues, true, &Queue::standard); standard != queues.end())
        return *standard;
    if (queues.size() == 1)
        return queues.front();
    QSettings kept = desk::userSettings();
    const auto known = std::ranges::find(queues, kept.value(chosenQueue).toByteArray(), &Queue::name);
    if (known != queues.end())
        return *known;
    window.hide();
    const std::optional<Queue> chosen = chooseQueue(facts, opener, queues);
    if (!chosen)
        throw PrintFailure(facts.failure(printingStopped));
    kept.setValue(chosenQueue, chosen->name);
    return *chosen;
}
#endif

} // namespace

#ifdef HOSHIREN_PRINT_SERVER
PrintedJob printDocument(const PrintedDocument& document, QWidget* opener, QDate today,
                         std::chrono::milliseconds patience) {
    const DocumentFacts facts = document.facts();
    ServerWindow window(facts, opener);
    const auto queues =
        askServer<std::vector<Queue>>(window, u"プリンターを調べています。"_s, patience,
                                      [facts](Conversation& talk) { return queuesOfServer(facts, talk); });
    if (queues.empty())
        return writePdfBesideRegister(document, today);
    const Queue queue = chosenOf(queues, facts, window, opener);
    const QByteArray pdf = pdfOf(document, Lying::upright);
    if (pdf.isEmpty())
        throw PrintFailure(facts.failure(u"%1の印刷データを作れません。"_s.arg(facts.noun)));
    const auto print = [queue, facts, pdf](Conversation& talk) { return printOnQueue(queue, facts, pdf, talk); };
    try {
        const QString sending = u"%1をプリンター「%2」に送っています。"_s.arg(facts.noun, queue.description);
        const auto waiting = askServer<QString>(window, sending, patience, print);
        if (waiting.isEmpty())
            return {};
        return {{},
                u"%1はプリンター「%2」に送りましたが、まだ印刷されていません。\n理由：%3\n"
                "プリンターが動けば印刷されます。もう一度送る必要はありません。"_s.arg(facts.noun, queue.description,
                                                                                       waiting)};
    } catch (const QueueRefused& refusal) {
        QSettings kept = desk::userSettings();
        if (queue.standard || kept.value(chosenQueue).toByteArray() != queue.name)
            throw;
        kept.remove(chosenQueue);
        throw PrintFailure(refusal.message + u"\n次に印刷するときは、プリンターを選び直せます。"_s);
    }
}
#else
// The toolkit's own way, for a system without the print server's interface.
PrintedJob printDocument(const PrintedDocument& document, QWidget*, QDate today, std::chrono::milliseconds) {
    const QPrinterInfo chosen = QPrinterInfo::defaultPrinter();
    if (chosen.isNull())
        return writePdfBesideRegister(document, today);
    const DocumentFacts facts = document.facts();
    QPrinter printer(chosen, QPrinter::HighResolution);
    printer.setDocName(facts.noun);
    printer.setFullPage(true);
    setPage(printer, facts.paper, Lying::upright);
    const auto failed = [](QPrinter::PrinterState state) {
        return state == QPrinter::Error || state == QPrinter::Aborted;
    };
    if (failed(chosen.state()) || !paintPages(printer, document, Lying::upright) || failed(printer.printerState()))
        throw PrintFailure(u"プリンター「%1」に印刷できません。プリンターの状態を確認して下さい。"_s.arg(
            chosen.description().isEmpty() ? chosen.printerName() : chosen.description()));
    return {};
}
#endif

PrintedJob writePdf(const PrintedDocument& document, const QString& directory, const QString& name) {
    const QByteArray pdf = pdfOf(document, Lying::asRead);
    const QDir folder(directory);
    QString path = folder.absoluteFilePath(name + u".pdf"_s);
    for (int number = 2; QFileInfo::exists(path); ++number)
        path = folder.absoluteFilePath(u"%1_%2.pdf"_s.arg(name).arg(number));
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
    throw PrintFailure(u"%1のPDFファイルを書き出せません。\n%2\n%3"_s.arg(document.facts().noun,
                                                                          QDir::toNativeSeparators(path), words));
}

void showPreview(std::shared_ptr<const PrintedDocument> document, QWidget* opener, std::vector<PreviewButton> offered) {
    const int pages = document->pages();
    auto* window = new QDialog(opener);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setObjectName(document->facts().noun + u"プレビュー"_s);
    window->setWindowTitle(u"印刷プレビュー"_s);
    auto* remark = new QLabel(document->remark());
    remark->setObjectName(u"件数"_s);
    remark->setTextFormat(Qt::PlainText);
    auto* view = new PageView(std::move(document));
    auto* room = new QScrollArea;
    room->setWidget(view);
    room->setWidgetResizable(true);
    view->setBackgroundRole(QPalette::Mid);
    view->setAutoFillBackground(true);
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
    QPushButton* enlarge = button(u"拡大"_s);
    enlarge->setCheckable(true);
    QPushButton* close = button(u"終了"_s);
    const auto showPage = [view, room, count, previous, next, pages](int page) {
        view->show(page);
        room->verticalScrollBar()->setValue(0);
        count->setText(u"%1 / %2 枚目"_s.arg(page + 1).arg(pages));
        previous->setEnabled(page > 0);
        next->setEnabled(page + 1 < pages);
    };
    QObject::connect(previous, &QPushButton::clicked, window, [view, showPage] { showPage(view->page() - 1); });
    QObject::connect(next, &QPushButton::clicked, window, [view, showPage] { showPage(view->page() + 1); });
    QObject::connect(enlarge, &QPushButton::toggled, window, [view, room](bool enlarged) {
        room->setVerticalScrollBarPolicy(enlarged ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAsNeeded);
        view->setEnlarged(enlarged);
    });
    QObject::connect(close, &QPushButton::clicked, window, &QDialog::close);

    auto* whole = new QVBoxLayout(window);
    remark->setVisible(!remark->text().isEmpty());
    whole->addWidget(remark);
    whole->addWidget(room, 1);
    auto* buttons = new QHBoxLayout;
    for (QWidget* widget : std::initializer_list<QWidget*>{previous, next, enlarge, count})
        buttons->addWidget(widget);
    buttons->addStretch(1);
    for (PreviewButton& each : offered) {
        QPushButton* made = button(each.name);
        QObject::connect(made, &QPushButton::clicked, window,
                         [window, pressed = std::move(each.pressed)] { pressed(window); });
        buttons->addWidget(made);
    }
    buttons->addWidget(close);
    whole->addLayout(buttons);
    const double letters = window->font().pointSizeF() / 11;
    window->resize((QSizeF(900, 700) * letters).toSize().boundedTo(window->screen()->availableSize() * 0.95));
    window->setWindowModality(Qt::WindowModal);
    showPage(0);
    window->show();
}

PrintedFont::PrintedFont(QFont::Weight weight) : font_(japaneseFont(weight)), metrics_(font_) {}

double PrintedFont::width(const QString& text, double points) const {
    return metrics_.horizontalAdvance(text) * points / measuredPixels * millimetresAnInch / pointsAnInch;
}

bool PrintedFont::has(char32_t character) const {
    const auto known = known_.constFind(character);
    return known != known_.cend() ? *known : *known_.insert(character, metrics_.inFontUcs4(character));
}

void PrintedFont::use(QPainter& painter) const {
    painter.setFont(font_);
    painter.setPen(Qt::black);
}

void PrintedFont::draw(QPainter& painter, double dotsAnInch, const QString& text, double x, double top, double points,
                       double widthShare) const {
    const double dots = dotsAnInch / millimetresAnInch;
    drawAt(painter, dotsAnInch, text, points, widthShare, QTransform::fromTranslate(x * dots, top * dots));
}

void PrintedFont::drawTurned(QPainter& painter, double dotsAnInch, const QString& text, double x, double top,
                             double points) const {
    const double dots = dotsAnInch / millimetresAnInch;
    drawAt(painter, dotsAnInch, text, points, 1, QTransform(0, 1, -1, 0, x * dots, top * dots));
}

double PrintedFont::ascent() const {
    return metrics_.ascent() / measuredPixels;
}

void PrintedFont::drawAt(QPainter& painter, double dotsAnInch, const QString& text, double points, double widthShare,
                         const QTransform& place) const {
    const QTransform corner = painter.transform();
    // From the top of the line to its baseline, where a text is drawn.
    const double size = points / pointsAnInch * dotsAnInch;
    const double scale = size / measuredPixels;
    painter.setTransform(QTransform(scale * widthShare, 0, 0, scale, 0, ascent() * size) * place * corner);
    painter.drawText(QPointF(0, 0), text);
    painter.setTransform(corner);
}

} // namespace printing
