#pragma once

#include <QBuffer>
#include <QFont>
#include <QPdfWriter>
#include <QString>
#include <QTextDocument>

class QPainter;
class QTextBlock;
class QTextTable;

namespace booklet {

// A document in Markdown on pages of A4. A list of contents that links to headings is given their pages.
class Booklet {
  public:
    // Sizes of the text in points and of its pictures in dots to an inch; no picture is wider than the text. Throws
    // std::runtime_error where the text, a picture beside it, a heading that is linked to or the font is missing.
    Booklet(const QString& path, double points, double pictureDots);

    int pages() const { return text_.pageCount(); }
    // The pages, each with the document's title and its number at the foot. Once only.
    QByteArray pdf();

  private:
    // The pages (the first is 0) on which a block's first and last line stand, and how many lines on the first one.
    struct Stand {
        int first = 0;
        int last = 0;
        int linesOnFirst = 0;
        int lines = 0;
    };

    void setTexts();
    void setTables();
    void placePictures(const QString& folder, double pictureDots);
    void paginate();
    void paginate(QTextTable& table);
    void breakBefore(QTextBlock block);
    void numberContents();
    void foot(QPainter& painter, int page) const;

    double height() const { return text_.pageSize().height(); }
    int pageOf(double y) const;
    Stand standOf(const QTextBlock& block) const;
    bool leads(const QTextBlock& block) const;
    int firstPage(const QTextTable& table, int row) const;
    int lastPage(const QTextTable& table, int row) const;

    const double points_;
    const QFont font_;
    QString title_;
    QBuffer pdf_;
    QPdfWriter writer_;
    QTextDocument text_;
};

} // namespace booklet
