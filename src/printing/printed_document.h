#pragma once

#include <QByteArray>
#include <QString>

#include <stdexcept>

class QPainter;

// What any document is on its way to paper, whatever it holds: labels, lists, reports.
namespace printing {

// A sheet of paper, upright as it goes into the printer, in millimetres.
struct Paper {
    double width = 210; // A4
    double height = 297;
    bool landscape = false; // what stands on it is read with a long edge above

    double pageWidth() const { return landscape ? height : width; } // of the page as it is read
    double pageHeight() const { return landscape ? width : height; }

    bool operator==(const Paper&) const = default;
};

inline constexpr Paper a4;
inline constexpr Paper postcard{100, 148};     // はがき
inline constexpr Paper longEnvelope{120, 235}; // 長形3号

// What a document is called, and on what it is printed.
struct DocumentFacts {
    QString noun;        // in messages, window titles and file names: 宛名
    QByteArray jobTitle; // at the printer. ASCII: some servers hand a title on in the code page of the printer
    Paper paper = {};
    // Printing it is followed by marks in the register: a failure tells that there are none.
    bool marks = false;

    // A failure's message, with that remark where there are marks.
    QString failure(const QString& text) const {
        return marks ? text + QStringLiteral("\n何も記録していません。") : text;
    }
};

// A document of at least one page. Knows nothing of printers.
class PrintedDocument {
  public:
    virtual ~PrintedDocument() = default;

    virtual DocumentFacts facts() const = 0;
    virtual int pages() const = 0;
    // Paints a page (the first is 0), whose top left corner as it is read is the painter's origin. May be called for
    // any page at any time, in the window's thread.
    virtual void paint(QPainter& painter, int page, double dotsAnInch) const = 0;
    // What the preview alone shows on the page, under the text: where labels end, say.
    virtual void paintGuides(QPainter&, int /*page*/, double /*dotsAnInch*/) const {}
    // What the preview says beside the number of the page.
    virtual QString remark() const { return {}; }
};

// A job that could not be handed over; `message` is the Japanese sentence for the user.
class PrintFailure : public std::runtime_error {
  public:
    explicit PrintFailure(const QString& text) : std::runtime_error(text.toStdString()), message(text) {}

    const QString message;
};

// What became of a job that was handed over.
struct PrintedJob {
    QString file;    // the full path where it went into a file, else empty
    QString waiting; // where it waits at the printer: the whole message for the user, else empty
};

} // namespace printing
