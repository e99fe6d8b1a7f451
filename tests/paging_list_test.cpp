#include "desk/paging_list.h"

#include <gtest/gtest.h>

#include <QStringList>

#include <memory>
#include <stdexcept>

using namespace Qt::StringLiterals;

namespace {

using Rows = std::vector<int>;
using List = desk::PagingList<int, int>;

struct Messages : desk::Desk {
    QStringList said;
    void notify(const QString& text, const QString& title, desk::Icon) override { said << title + u'|' + text; }
    bool ask(const QString&, const QString&) override { return false; }
    QDate today() const override { return {}; }
    void open(const QString&, desk::Opening, std::function<void()>) override {}
    void close() override {}
    std::unique_ptr<desk::Progress> progress(const QString&) override { return {}; }
};

// A list over whole numbers; a number is its own position key, and the list begins at 0.
struct Bench {
    explicit Bench(Rows records, std::function<bool(const int&)> listed = {}, std::size_t tableSlots = 10)
        : records(std::move(records)),
          list({.title = u"一覧"_s,
                .nothing = u"ありません"_s,
                .columns = {{u"番号"_s, 800, [](const int& row) { return QString::number(row); }}},
                .key = [](const int& row) { return row; },
                .listed = std::move(listed),
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
    Messages desk;
    int read = 0;
};

Rows upTo(int count) {
    Rows rows;
    for (int i = 1; i <= count; ++i)
        rows.push_back(i);
    return rows;
}

Rows times(int count, int value) {
    return Rows(static_cast<std::size_t>(count), value);
}

TEST(PagingList, PagesThroughNextAndPrevious) {
    struct Case {
        const char* name;
        Rows records;
        const char* steps;              // n = next page, p = previous page
        std::vector<std::string> pages; // after opening and after each step
        int counter;                    // at the end
    };
    Rows run = upTo(29);
    run.insert(run.end(), 3, 30); // 30 stands at places 30 to 32
    for (int i = 31; i <= 60; ++i)
        run.push_back(i);
    const std::vector<Case> cases = {
        {"one", {7}, "np", {"7-7", "7-7", "7-7"}, 1},
        {"29 end on the first page", upTo(29), "n", {"1-29", "1-29"}, 29},
        {"30 have a second page of one row", upTo(30), "nnp", {"1-30", "30-30", "30-30", "1-30"}, 30},
        {"31", upTo(31), "nn", {"1-30", "30-31", "30-31"}, 2},
        {"59 fill two pages exactly", upTo(59), "nnn", {"1-30", "30-59", "59-59", "59-59"}, 1},
        {"60", upTo(60), "nnn", {"1-30", "30-59", "59-60", "59-60"}, 2},
        {"61", upTo(61), "nnp", {"1-30", "30-59", "59-61", "30-59"}, 31},
        {"previous on the first page refills it", upTo(61), "p", {"1-30", "1-30"}, 31},
        {"back and forth", upTo(100), "nnppnn", {"1-30", "30-59", "59-88", "30-59", "1-30", "30-59", "59-88"}, 31},
        {"equal keys over the page end repeat from the first", run, "np", {"1-30", "30-57", "1-30"}, 31},
        {"more than thirty equal keys hold the list", times(40, 5), "nnp", {"5-5", "5-5", "5-5", "5-5"}, 31},
        {"beyond the tenth page both ways lead forward",
         upTo(400),
         "nnnnnnnnnnpn",
         {"1-30", "30-59", "59-88", "88-117", "117-146", "146-175", "175-204", "204-233", "233-262", "262-291",
          "291-320", "320-349", "349-378"},
         31},
        {"the tenth page still knows its way back",
         upTo(400),
         "nnnnnnnnnp",
         {"1-30", "30-59", "59-88", "88-117", "117-146", "146-175", "175-204", "204-233", "233-262", "262-291",
          "233-262"},
         31},
        {"the end beyond the tables shows the last row again",
         upTo(310),
         "nnnnnnnnnnn",
         {"1-30", "30-59", "59-88", "88-117", "117-146", "146-175", "175-204", "204-233", "233-262", "262-291",
          "291-310", "310-310"},
         1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Bench bench(c.records);
        bench.open();
        std::vector<std::string> seen{bench.page()};
        for (const char* step = c.steps; *step; ++step) {
            *step == 'n' ? bench.next() : bench.previous();
            seen.push_back(bench.page());
        }
        EXPECT_EQ(seen, c.pages);
        EXPECT_EQ(bench.list.rowCounter(), c.counter);
        EXPECT_TRUE(bench.desk.said.isEmpty());
    }
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

TEST(PagingList, NoRecordLeavesEverythingAsItWas) {
    Bench bench(upTo(61));
    bench.open();
    bench.next();
    bench.records.clear();
    bench.next();
    EXPECT_EQ(bench.page(), "30-59");
    EXPECT_EQ(bench.list.position(), 59);
    EXPECT_EQ(bench.list.rowCounter(), 31);
    EXPECT_EQ(bench.desk.said, QStringList{u"一覧|ありません"_s});
}

TEST(PagingList, FailingSourceLeavesEverythingAsItWas) {
    Bench bench(upTo(61));
    bench.open();
    const desk::Grid before = bench.grid;
    const List::Source broken = [](const int&, const List::Take& take) -> bool {
        take(99);
        throw std::runtime_error("gone");
    };
    EXPECT_THROW(bench.list.nextPage(broken, bench.grid, bench.desk), std::runtime_error);
    EXPECT_EQ(bench.grid.rows, before.rows);
    EXPECT_EQ(bench.list.position(), 30);
}

TEST(PagingList, ReadsNoFurtherThanTheThirtyFirstListedRow) {
    Bench bench(upTo(400), [](int row) { return row % 3 == 0; });
    bench.open();
    EXPECT_EQ(bench.page(), "3-90");
    EXPECT_EQ(bench.list.rowCounter(), 31);
    EXPECT_EQ(bench.read, 93);
    bench.next();
    EXPECT_EQ(bench.page(), "90-177");
}

TEST(PagingList, RowsAllPassedOverEmptyTheGridSilently) {
    bool listed = true;
    Bench bench(upTo(61), [&](int) { return listed; });
    bench.open();
    bench.click(2);
    listed = false;
    bench.open();
    EXPECT_EQ(bench.page(), "");
    EXPECT_EQ(bench.list.rowCounter(), 0);
    EXPECT_EQ(bench.list.selected(), nullptr);
    bench.next();
    EXPECT_TRUE(bench.desk.said.isEmpty());
    EXPECT_EQ(bench.click(1), nullptr);
    EXPECT_EQ(bench.desk.said.size(), 1);
}

TEST(PagingList, ClicksSelectOnlyRowsShown) {
    struct Case {
        int row;
        int selected; // 0 = out of range
    };
    for (const Case c : {Case{0, 0}, Case{-1, 0}, Case{1, 1}, Case{5, 5}, Case{6, 0}, Case{30, 0}}) {
        SCOPED_TRACE(c.row);
        Bench bench(upTo(5));
        bench.open();
        const int* row = bench.click(c.row);
        EXPECT_EQ(row ? *row : 0, c.selected);
        EXPECT_EQ(bench.list.selected() != nullptr, c.selected != 0);
        EXPECT_EQ(bench.grid.highlighted, c.selected);
        EXPECT_EQ(bench.desk.said,
                  c.selected ? QStringList{} : QStringList{u"一覧|有功範囲外を指定しています。やり直して下さい"_s});
    }
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
    EXPECT_NE(bench.list.selected(), nullptr);
    bench.click(4); // out of range: the colour stays, but nothing is chosen any more
    EXPECT_EQ(bench.list.highlightedRow(), 3);
    EXPECT_EQ(bench.list.selected(), nullptr);
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
    EXPECT_EQ(bench.page(), "50-79");
    bench.previous();
    EXPECT_EQ(bench.page(), "50-79");
}

TEST(PagingList, CompletesShownRowsOnlyAfterTheSourceIsDone) {
    bool reading = false;
    std::size_t completed = 0;
    desk::PagingList<int, int> list({.title = u"一覧"_s,
                                     .nothing = {},
                                     .columns = {{u"倍"_s, 0, [](const int& row) { return QString::number(row); }}},
                                     .key = [](const int& row) { return row; },
                                     .complete =
                                         [&](std::vector<int>& rows, desk::Desk&) {
                                             EXPECT_FALSE(reading);
                                             completed = rows.size();
                                             for (int& row : rows)
                                                 row *= 2;
                                         }},
                                    0);
    desk::Grid grid;
    Messages desk;
    const auto source = [&](const int&, const auto& take) {
        reading = true;
        for (int row = 1; take(row); ++row) {
        }
        reading = false;
        return true;
    };
    list.showFirstPage(source, grid, desk);
    EXPECT_EQ(completed, 30u);
    EXPECT_EQ(grid.rows[29][0], u"60"_s);
    EXPECT_FALSE(list.fill([](const int&, const auto&) { return false; }, grid, desk));
    EXPECT_TRUE(desk.said.isEmpty()); // a list without words for it says nothing
}

} // namespace
