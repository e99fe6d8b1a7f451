#include "desk/paging_list.h"

#include "support/test_desk.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using Rows = std::vector<int>;
using List = desk::PagingList<int, int>;

const QString title = u"一覧"_s;
const QString outOfRange = u"有功範囲外を指定しています。やり直して下さい"_s;

// A list over whole numbers; a number is its own position key, and the list begins at 0. With places of a hundred, the
// numbers of one hundred stand at one place.
struct Bench {
    explicit Bench(Rows records, std::function<bool(const int&)> listed = {}, std::size_t tableSlots = 10,
                   bool hundreds = false)
        : records(std::move(records)),
          list({.title = title,
                .nothing = u"ありません"_s,
                .columns = {{u"番号"_s, 800, [](const int& row) { return QString::number(row); }}},
                .key = [](const int& row) { return row; },
                .place = hundreds ? [](const int& key) { return key / 100 * 100; } : std::function<int(const int&)>(),
                .listed = std::move(listed),
                .exists = [this](const int& row) { return std::ranges::count(this->records, row) > 0; },
                .tableSlots = tableSlots},
               0) {}

    List::Source source() {
        return [this](const int& from, const List::Take& take) {
            auto row = std::ranges::find_if(records, [&](int r) { return r >= from; });
            const bool found = row != records.end();
            while (row != records.end() && (++read, take(*row)))
                ++row;
            return found;
        };
    }
    void open() { list.showFirstPage(source(), grid, desk); }
    void next() { list.nextPage(source(), grid, desk); }
    void previous() { list.previousPage(source(), grid, desk); }
    void back() { list.pageBefore(source(), grid, desk); }
    const int* click(int row) {
        grid.clickedRow = row;
        return list.click(grid, desk);
    }
    // First and last row shown, as "1-30"; "" when the page is empty.
    std::string page() const {
        return grid.rows.empty() ? "" : (grid.rows.front()[0] + u'-' + grid.rows.back()[0]).toStdString();
    }

    Rows records;
    List list;
    desk::Grid grid;
    TestDesk desk{QDate()};
    int read = 0;
};

Rows upTo(int count) {
    Rows rows;
    for (int i = 1; i <= count; ++i)
        rows.push_back(i);
    return rows;
}

TEST(PagingList, PagesThroughNextAndPrevious) {
    Rows run = upTo(60);
    run.insert(run.begin() + 29, 2, 30); // 30 stands at places 30 to 32
    const struct {
        const char* name;
        Rows records;
        const char* steps; // n = next page, p = previous page
        std::string pages; // after opening and after each step
        int counter;       // at the end
    } cases[] = {
        {"one", {7}, "np", "7-7 7-7 7-7", 1},
        {"29 end on the first page", upTo(29), "n", "1-29 1-29", 29},
        {"30 have a second page of one row", upTo(30), "nnp", "1-30 30-30 30-30 1-30", 30},
        {"59 fill two pages exactly", upTo(59), "nnn", "1-30 30-59 59-59 59-59", 1},
        {"61", upTo(61), "nnp", "1-30 30-59 59-61 30-59", 31},
        {"back and forth", upTo(100), "pnnppn", "1-30 1-30 30-59 59-88 30-59 1-30 30-59", 31},
        {"equal keys over the page end repeat from the first", run, "np", "1-30 30-57 1-30", 31},
        {"more than thirty equal keys hold the list", Rows(40, 5), "nnp", "5-5 5-5 5-5 5-5", 31},
        {"beyond the tenth page both ways lead forward, and the end repeats the last row", upTo(360), "nnnnnnnnnnpnn",
         "1-30 30-59 59-88 88-117 117-146 146-175 175-204 204-233 233-262 262-291 291-320 320-349 349-360 360-360", 1},
        {"the tenth page still knows its way back", upTo(400), "nnnnnnnnnp",
         "1-30 30-59 59-88 88-117 117-146 146-175 175-204 204-233 233-262 262-291 233-262", 31},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Bench bench(c.records);
        bench.open();
        std::string seen = bench.page();
        for (const char* step = c.steps; *step; ++step) {
            *step == 'n' ? bench.next() : bench.previous();
            seen += ' ' + bench.page();
        }
        EXPECT_EQ(seen, c.pages);
        EXPECT_EQ(bench.list.rowCounter(), c.counter);
    }
}

TEST(PagingList, WheelAndKeyFindBackFromAnyPage) {
    Bench bench(upTo(360));
    bench.open();
    std::vector<std::string> pages{bench.page()};
    for (int page = 2; page <= 14; ++page) {
        bench.next();
        pages.push_back(bench.page());
    }
    EXPECT_EQ(pages.back(), "360-360"); // the described repetition of the last row
    bench.back();
    EXPECT_EQ(bench.page(), "331-360");
    EXPECT_EQ(bench.list.firstNumber(), 331);
    for (const char* page : {"302-331", "273-302"}) {
        bench.back();
        EXPECT_EQ(bench.page(), page);
    }
    while (bench.list.firstNumber() > 1)
        bench.back();
    EXPECT_EQ(bench.page(), "1-30");
    // Also where the list went on amid itself, and where the first row shown has left it meanwhile.
    bench.list.fillFromKey(88, bench.source(), bench.grid, bench.desk);
    bench.back();
    EXPECT_EQ(bench.page(), "59-88");
    std::erase(bench.records, 59);
    bench.list.fillFromKey(88, bench.source(), bench.grid, bench.desk);
    std::erase(bench.records, 88);
    bench.back();
    EXPECT_EQ(bench.page(), "58-89");
}

TEST(PagingList, FiftySlotsReachBackFromTheFiftiethPage) {
    Bench bench(upTo(2000), {}, 50);
    bench.open();
    for (int page = 2; page <= 50; ++page)
        bench.next();
    EXPECT_EQ(bench.page(), "1422-1451");
    bench.previous();
    EXPECT_EQ(bench.page(), "1393-1422");
}

TEST(PagingList, LosesNoneOfAPlaceThatIsLongerThanAPage) {
    Rows places = upTo(20); // place 0 on the first page
    for (int row = 100; row < 175; ++row)
        places.push_back(row); // place 100 over four
    places.push_back(200);
    Bench bench(places, {}, 10, true);
    bench.open();
    std::string seen = bench.page();
    for (const char step : {'n', 'n', 'n', 'n', 'p', 'p', 'p', 'p', 'n'}) {
        step == 'n' ? bench.next() : bench.previous();
        seen += ' ' + bench.page();
    }
    // Only a page of one place leads on from its own last row; the second begins with the first row of the place.
    EXPECT_EQ(seen, "1-109 100-129 129-158 158-200 158-200 129-158 100-129 1-109 1-109 100-129");
}

TEST(PagingList, NoRecordOrAFailingSourceLeavesEverythingAsItWas) {
    Bench bench(upTo(61));
    bench.open();
    bench.next();
    bench.records.clear();
    bench.desk.expect(u"ありません"_s, title);
    bench.next();
    const List::Source broken = [](const int&, const List::Take& take) -> bool {
        take(99);
        throw std::runtime_error("gone");
    };
    const auto broke = [&](auto turn) {
        EXPECT_THROW((bench.list.*turn)(broken, bench.grid, bench.desk), std::runtime_error);
        EXPECT_EQ(bench.page(), "30-59");
        EXPECT_EQ(bench.list.position(), 59);
        EXPECT_EQ(bench.list.rowCounter(), 31);
    };
    broke(&List::nextPage);
    broke(&List::previousPage);
    broke(&List::showFirstPage);
    bench.records = upTo(61);
    bench.next();
    EXPECT_EQ(bench.page(), "59-61");
    bench.previous();
    EXPECT_EQ(bench.page(), "30-59");
}

TEST(PagingList, ReadsNoFurtherThanTheThirtyFirstListedRow) {
    Bench bench(upTo(400), [](int row) { return row % 3 == 0; });
    bench.open();
    EXPECT_EQ(bench.page(), "3-90");
    EXPECT_EQ(bench.read, 93);
    bench.next();
    EXPECT_EQ(bench.page(), "90-177");
}

TEST(PagingList, ClicksSelectOnlyRowsShown) {
    bool listed = true;
    Bench bench(upTo(5), [&](int) { return listed; });
    bench.open();
    int chosen = 0;
    for (const auto& [row, selected] : {std::pair{0, 0}, {-1, 0}, {1, 1}, {5, 5}, {6, 0}}) {
        SCOPED_TRACE(row);
        if (!selected)
            bench.desk.expect(outOfRange, title);
        const int* clicked = bench.click(row);
        EXPECT_EQ(clicked ? *clicked : 0, selected);
        EXPECT_EQ(bench.list.selected() != nullptr, selected != 0);
        chosen = selected ? selected : chosen;
        EXPECT_EQ(bench.grid.highlighted, chosen);
    }
    // Rows all passed over empty the grid silently.
    bench.click(2);
    listed = false;
    bench.open();
    EXPECT_EQ(bench.page(), "");
    EXPECT_EQ(bench.list.rowCounter(), 0);
    EXPECT_EQ(bench.list.selected(), nullptr);
}

TEST(PagingList, SelectionOutlivesPagingTheColourDoesNot) {
    Bench bench(upTo(61));
    bench.open();
    bench.click(3);
    bench.next();
    EXPECT_EQ(bench.grid.highlighted, 0);
    EXPECT_EQ(bench.list.highlightedRow(), 3);
    ASSERT_NE(bench.list.selected(), nullptr);
    EXPECT_EQ(*bench.list.selected(), 3);
    bench.next(); // three rows only
    bench.desk.expect(outOfRange, title);
    bench.click(4); // out of range: the colour stays, but nothing is chosen any more
    EXPECT_EQ(bench.list.highlightedRow(), 3);
    EXPECT_EQ(bench.list.selected(), nullptr);
}

TEST(PagingList, LetsARowGoThatIsNoLongerThere) {
    Bench bench({1, 2, 3});
    bench.open();
    bench.click(2);
    bench.records = {1, 2};
    bench.open();
    ASSERT_NE(bench.list.selected(), nullptr); // one of the others was deleted
    bench.records = {1, 3};
    bench.open();
    EXPECT_EQ(bench.list.selected(), nullptr);
    bench.click(1);
    bench.records.clear(); // nothing is left to show: the grid stays, the choice does not
    bench.desk.expect(u"ありません"_s, title);
    bench.open();
    EXPECT_EQ(bench.page(), "1-3");
    EXPECT_EQ(bench.list.selected(), nullptr);
    bench.previous(); // it was said already
}

TEST(PagingList, ANewStartLeavesThePageTablesUnlessCleared) {
    Bench bench(upTo(100));
    bench.open();
    bench.next();
    bench.list.setStart(50);
    bench.list.fill(bench.source(), bench.grid, bench.desk);
    EXPECT_EQ(bench.page(), "50-79");
    bench.previous(); // 79 took the third slot: the page start before it is the second page's
    EXPECT_EQ(bench.page(), "30-59");
    bench.open();
    bench.previous();
    EXPECT_EQ(bench.page(), "50-79");
}

} // namespace
