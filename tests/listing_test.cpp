// Lists laid out on pages.
#include "printing/listing_pages.h"
#include "support/label_printer.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using printing::Listing;
using printing::ListingPages;
using printing::PageText;

namespace {

struct Read {
    QStringList texts;  // of all pages, in the order of painting
    QStringList faults; // what lies outside its paper or over another text
    QList<QStringList> pages;
};

// Reads every page and looks at every place.
Read read(const ListingPages& list, const TestFont& font) {
    Read read;
    for (int at = 0; at < list.count(); ++at) {
        const printing::Page page = list.page(at);
        QStringList& texts = read.pages.emplace_back();
        std::vector<std::array<double, 4>> boxes;
        for (const PageText& text : page.texts) {
            texts << text.text;
            const double right = text.x + font.width(text.text) * text.points / 10;
            const double foot = text.top + text.points * 25.4 / 72;
            if (text.x < 5 || text.top < 5 || right > list.paperWidth() - 5 || foot > list.paperHeight() - 5)
                read.faults << u"page %1: %2 is cut"_s.arg(at + 1).arg(text.text);
            for (const auto& box : boxes)
                if (text.x < box[2] - 0.01 && right > box[0] + 0.01 && text.top < box[3] - 0.01 && foot > box[1] + 0.01)
                    read.faults << u"page %1: %2 lies over another"_s.arg(at + 1).arg(text.text);
            boxes.push_back({text.x, text.top, right, foot});
        }
        read.texts += texts;
    }
    return read;
}

Listing listOf(int rows, const QStringList& cells) {
    Listing list{.title = u"題"_s, .range = u"範囲"_s, .date = u"作成日"_s};
    printing::ListingTable table;
    for (qsizetype at = 0; at < cells.size(); ++at)
        table.columns.push_back({u"列%1"_s.arg(at + 1), at == 0 ? desk::Align::right : desk::Align::left});
    table.groups = {{u"組A"_s, std::vector<QStringList>(static_cast<std::size_t>(rows), cells)},
                    {u"組B"_s, std::vector<QStringList>(static_cast<std::size_t>(rows), cells)}};
    list.blocks = {table};
    return list;
}

TEST(Listing, CutsNothingWhateverTheCellsHold) {
    const QString word = QString(300, u'x');
    const struct {
        const char* what;
        int rows;
        QStringList cells;
        printing::Type type;
        bool across; // where the paper is to fit
    } cases[] = {
        {"short cells", 100, {u"1"_s, u"山田"_s}, printing::Type::normal, false},
        {"a name of sixty characters",
         30,
         {u"1"_s, QString(60, u'字'), u"平成20年2月12日"_s, QString(60, u'名')},
         printing::Type::large,
         true},
        {"a remark longer than a page", 2, {u"1"_s, u"注"_s, QString(9000, u'あ')}, printing::Type::normal, true},
        {"a word without a place to break", 3, {word, word, u"a\tb"_s}, printing::Type::normal, true},
        {"more columns than the paper is wide", 40, QStringList(20, u"平成20年2月12日"_s), printing::Type::normal,
         true},
        {"empty cells", 50, {QString(), QString()}, printing::Type::large, false},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.what);
        TestFont font;
        Listing list = listOf(each.rows, each.cells);
        list.type = each.type;
        const ListingPages pages(list, font);
        const Read found = read(pages, font);
        EXPECT_EQ(found.faults, QStringList());
        EXPECT_EQ(pages.paperWidth() > pages.paperHeight(), each.across);
        // Every cell is there to its last character.
        QString whole = found.texts.join(QString());
        const QStringList visible = QStringList(each.cells).replaceInStrings(u"\t"_s, QString());
        for (const QString& cell : visible)
            for (const QChar c : cell)
                EXPECT_GE(whole.count(c), cell.count(c) * each.rows * 2) << QString(c).toStdString();
        for (int at = 0; at < pages.count(); ++at)
            for (const QString& mark :
                 {u"題"_s, u"範囲"_s, u"作成日"_s, u"列1"_s, u"%1 / %2"_s.arg(at + 1).arg(pages.count())})
                EXPECT_TRUE(found.pages[at].contains(mark)) << at << mark.toStdString();
    }
}

TEST(Listing, AHeadingNeverStandsAloneAtTheFoot) {
    TestFont font;
    for (int rows = 1; rows < 60; ++rows) {
        Listing list = listOf(rows, {u"行"_s, u"字"_s});
        std::get<printing::ListingTable>(list.blocks[0]).sums = {{u"合計"_s, u"9"_s}};
        list.notes = {u"注"_s};
        const Read found = read(ListingPages(list, font), font);
        for (const QStringList& page : found.pages) {
            // The page number is painted with the frame, so the last text is the last line's.
            EXPECT_FALSE(page.back().startsWith(u"■"_s)) << rows;
            EXPECT_TRUE(page.contains(u"行"_s) || !page.contains(u"合計"_s)) << rows;
            const bool begins = page.contains(u"■ 組A"_s) || page.contains(u"■ 組B"_s);
            EXPECT_TRUE(begins || page.contains(u"■ 組A（続き）"_s) || page.contains(u"■ 組B（続き）"_s) ||
                        !page.contains(u"行"_s))
                << rows;
        }
        EXPECT_EQ(found.texts.count(u"行"_s), 2 * rows);
    }
}

TEST(Listing, ACalendarsDayTellsHowManyItCannotShow) {
    TestFont font;
    Listing list{.title = u"予定"_s, .lie = printing::Lie::across};
    printing::ListingCalendar calendar{QStringList(7, u"曜"_s), std::vector<printing::CalendarDay>(35)};
    for (std::size_t day = 0; day < 31; ++day) {
        calendar.days[day].label = QString::number(day + 1);
        for (std::size_t entry = 0; entry < day; ++entry)
            calendar.days[day].entries << u"AM 9：00 山田 3回忌"_s;
    }
    list.blocks = {calendar};
    const ListingPages pages(list, font);
    const Read found = read(pages, font);
    EXPECT_EQ(found.faults, QStringList());
    EXPECT_EQ(pages.count(), 1);
    qsizetype entries = found.texts.join(QString()).count(u"山田"_s);
    for (const QString& text : found.texts)
        if (text.startsWith(u"ほか "_s))
            entries += text.section(u' ', 1, 1).toInt();
    EXPECT_EQ(entries, 30 * 31 / 2);
}

TEST(Listing, CharactersOutsideTheFontStandAsGetaAndAreTold) {
    TestFont font;
    const ListingPages pages(listOf(1, {u"森鷗外"_s, u"𠮷田"_s}), font);
    const Read found = read(pages, font);
    EXPECT_TRUE(found.texts.contains(u"森〓外"_s));
    EXPECT_TRUE(found.texts.contains(u"〓田"_s));
    EXPECT_EQ(pages.missing(), u"鷗𠮷"_s);
}

} // namespace
