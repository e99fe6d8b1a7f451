#include "ui/printed_list.h"

#include "printing/listing_painter.h"

using namespace Qt::StringLiterals;

namespace ui {

namespace {

constexpr int sheetsUnasked = 30;

using Laid = std::shared_ptr<const printing::PrintedListing>;

// None, having said so, where there is nothing to print.
Laid laid(Screen& screen, printing::Listing list) {
    if (!list.nothing.isEmpty()) {
        screen.desk().notify(list.nothing, list.title);
        return {};
    }
    return std::make_shared<printing::PrintedListing>(std::move(list));
}

void print(Screen& screen, const printing::PrintedListing& list, QWidget* opener) {
    const QString& title = list.listing().title;
    if (list.pages() <= sheetsUnasked ||
        screen.desk().ask(u"%1は%2枚になります。印刷しますか？"_s.arg(title).arg(list.pages()), title))
        printing::printListing(list, opener, screen.desk());
}

} // namespace

void previewListing(Screen& screen, printing::Listing list) {
    const Laid shown = laid(screen, std::move(list));
    if (!shown)
        return;
    printing::showPreview(
        shown, &screen,
        {{u"印刷"_s, [&screen, shown](QWidget* window) { screen.operate([&] { print(screen, *shown, window); }); }},
         {u"PDF"_s,
          [&screen, shown](QWidget*) { screen.operate([&] { printing::writeListing(*shown, screen.desk()); }); }}});
}

void printListing(Screen& screen, printing::Listing list) {
    if (const Laid printed = laid(screen, std::move(list)))
        print(screen, *printed, &screen);
}

void writeListing(Screen& screen, printing::Listing list) {
    if (const Laid written = laid(screen, std::move(list)))
        printing::writeListing(*written, screen.desk());
}

printing::Listing listingOf(Screen& screen, const desk::AnyList& list) {
    printing::Listing listing{.title = screen.windowTitle(),
                              .range = list.printedRange(),
                              .date = screen.desk().today().toString(u"yyyy年M月d日"_s)};
    printing::ListingTable table;
    QList<qsizetype> printed;
    for (qsizetype at = 0; const desk::GridColumn& column : list.frm21_tbl.columns) {
        // One without a name holds what the screen finds its rows by.
        if (!column.header.isEmpty()) {
            printed << at;
            table.columns.push_back({column.header, column.align});
        }
        ++at;
    }
    std::vector<QStringList>& rows = table.groups.emplace_back().rows;
    // Before its first 表示 a list shows nothing, though its range has rows.
    const bool listed = !list.frm21_tbl.rows.empty();
    for (const QStringList& cells : listed ? list.allRows(screen.desk()) : std::vector<QStringList>()) {
        QStringList& row = rows.emplace_back();
        for (const qsizetype at : printed)
            row << cells.value(at);
    }
    listing.range += (listing.range.isEmpty() ? u"%1件"_s : u"　%1件"_s).arg(rows.size());
    if (rows.empty())
        listing.nothing = u"印刷する行がありません。一覧を表示してから印刷して下さい。"_s;
    listing.blocks = {std::move(table)};
    return listing;
}

} // namespace ui
