#pragma once

#include "printing/label_sheet.h"
#include "printing/listing.h"

#include <memory>

namespace printing {

// What stands on a page, in millimetres from the paper's top left corner.
struct PageText {
    double x;
    double top;
    double points;
    QString text;
};

struct PageArea {
    double x;
    double top;
    double width;
    double height;
    double grey; // 0 black to 1 white
};

struct Page {
    std::vector<PageArea> areas; // under the texts: rules are thin areas
    std::vector<PageText> texts;
};

// Lays a list out on A4 pages. Title, range, date and page number stand on each; columns are as wide as what they
// hold, and what is too wide for the paper goes on in further lines of its cell, onto the next page if need be.
// Headings of columns and groups are repeated, a heading never stands alone at a page's foot. Pure: prints and reads
// nothing. The places are found at once, the contents of a page when it is asked for.
class ListingPages {
  public:
    // The font is used for as long as this lives.
    ListingPages(Listing listing, const LabelFont& font);
    ~ListingPages();
    ListingPages(ListingPages&&) noexcept;

    const Listing& listing() const;
    double paperWidth() const; // millimetres
    double paperHeight() const;
    int count() const; // at least 1
    Page page(int at) const;
    // The characters that the font lacks, each once; they stand as 〓.
    const QString& missing() const;

  private:
    class Plan;
    std::unique_ptr<Plan> plan_;
};

} // namespace printing
