#pragma once

#include "desk/desk.h"
#include "printing/document_painter.h"
#include "printing/listing_pages.h"

namespace printing {

// A list laid out in the font of everything printed, ready for the three ways of a document.
class PrintedListing : public PrintedDocument {
  public:
    explicit PrintedListing(Listing listing);
    ~PrintedListing() override;

    const Listing& listing() const;
    DocumentFacts facts() const override;
    int pages() const override;
    void paint(QPainter& painter, int page, double dotsAnInch) const override;
    QString remark() const override; // of characters that stand as 〓

  private:
    struct Face;
    const std::unique_ptr<Face> face_;
    const ListingPages pages_;
};

// Prints the list, or writes it as a PDF beside the register, and tells under its title what became of it: a refusal,
// the file, why it waits at the printer, the characters that stand as 〓. A long list shows its progress and can be
// stopped.
void printListing(const PrintedListing& list, QWidget* opener, desk::Desk& desk);
void writeListing(const PrintedListing& list, desk::Desk& desk);

} // namespace printing
