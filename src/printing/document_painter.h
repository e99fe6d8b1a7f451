#pragma once

#include "printing/printed_document.h"

#include <QDate>
#include <QFont>
#include <QFontMetricsF>
#include <QHash>

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

class QTransform;
class QWidget;

// The three ways out of a document: a printer, a PDF file, a window.
namespace printing {

// How long a print server may say nothing.
constexpr std::chrono::milliseconds serverPatience = std::chrono::seconds(10);

// Prints on the system's printer: the default one, or else the only one, or else the one that the user once chose (he
// is asked where several can be meant, and the choice is kept in his settings). Where there is none, writes a new PDF
// file of that day beside the register. Stays until the print server holds the whole job, showing a window over the
// opener that can stop it. Throws PrintFailure when nothing, or not everything, was handed over.
PrintedJob printDocument(const PrintedDocument& document, QWidget* opener, QDate today,
                         std::chrono::milliseconds patience = serverPatience);

// Writes a PDF file of this name in this directory, readable by its owner alone; an existing one is not touched, the
// name gets a number then. Throws PrintFailure; there is no file then.
PrintedJob writePdf(const PrintedDocument& document, const QString& directory, const QString& name);

struct PreviewButton {
    QString name; // and caption
    std::function<void(QWidget* window)> pressed;
};

// Shows it page by page in a window of the opener; nothing is printed or written, but by these buttons. Returns at
// once.
void showPreview(std::shared_ptr<const PrintedDocument> document, QWidget* opener,
                 std::vector<PreviewButton> buttons = {});

// The one font of everything printed. Holds Japanese by itself, in Japanese forms.
class PrintedFont {
  public:
    explicit PrintedFont(QFont::Weight weight = QFont::Normal);

    const QFont& font() const { return font_; }
    // Millimetres that a text takes at this size.
    double width(const QString& text, double points) const;
    bool has(char32_t character) const;

    // What follows is drawn in this font. Once a page, or whenever the font changes.
    void use(QPainter& painter) const;
    // Draws one line in black, its left edge and top in millimetres from the painter's origin, set in a share of its
    // natural width.
    void draw(QPainter& painter, double dotsAnInch, const QString& text, double x, double top, double points,
              double widthShare = 1) const;
    // The same, read with the right edge of the page above: it begins at `top` and runs down, its upper edge at x.
    void drawTurned(QPainter& painter, double dotsAnInch, const QString& text, double x, double top,
                    double points) const;
    // From the top of a line to its baseline, as a share of the text's size.
    double ascent() const;

  private:
    void drawAt(QPainter& painter, double dotsAnInch, const QString& text, double points, double widthShare,
                const QTransform& place) const;

    QFont font_;
    QFontMetricsF metrics_;
    mutable QHash<char32_t, bool> known_;
};

} // namespace printing
