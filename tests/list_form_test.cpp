#include "graves/fee_notice_rules.h"
#include "graves/picker_rules.h"
#include "memorials/notice_rules.h"
#include "memorials/reservation_rules.h"
#include "support/register_fixture.h"
#include "support/test_desk.h"

using namespace Qt::StringLiterals;

namespace {

// Whole numbers, listed unless negative; completing them tells the same thing of each page.
struct Numbers : desk::ListForm<int, int> {
    explicit Numbers(std::vector<int> records)
        : ListForm({.title = u"一覧"_s,
                    .nothing = {},
                    .columns = {{u"番号"_s, 800, [](const int& row) { return QString::number(row); }}},
                    .key = [](const int& row) { return row; },
                    .listed = [](const int& row) { return row > 0; },
                    .complete =
                        [this](std::vector<int>&, desk::Desk& desk) {
                            if (troubled)
                                desk.notify(u"不明"_s, u"一覧"_s);
                        }},
                   0),
          records(std::move(records)) {}

    std::vector<int> records;
    bool troubled = false;
    bool unreadable = false;

  protected:
    bool read(const int& from, const Take& take) const override {
        if (unreadable)
            throw std::runtime_error("locked");
        bool found = false;
        for (const int row : records) {
            found = found || row >= from;
            if (found && !take(row))
                break;
        }
        return found;
    }
};

std::vector<int> upTo(int count) {
    std::vector<int> rows;
    for (int i = 1; i <= count; ++i)
        rows.push_back(i);
    return rows;
}

TEST(ListForm, TellsPlaceAndTotal) {
    const QString after = u"　これより後の行はありません。"_s;
    const QString before = u"　これより前の行はありません。"_s;
    const struct {
        std::vector<int> records;
        const char* steps; // n next page, p previous page, r refilled
        QString places;    // after opening and after each step, once counted
    } cases[] = {
        {{}, "", u""_s},
        {{0, 0}, "", u"0件"_s},
        {upTo(29), "np", u"1–29／29件 1–29／29件%1 1–29／29件%2"_s},
        {upTo(61), "nnnrp", u"1–30／61件 30–59／61件 59–61／61件 59–61／61件%1 61–61／61件 30–59／61件"_s},
        {std::vector<int>(40, 5), "n",
         u"1–30／40件 1–30／40件　並び順の同じ行が続くため、これより後は表示できません。"_s},
        {upTo(360), "nnnnnnnnnnp",
         u"1–30／360件 30–59／360件 59–88／360件 88–117／360件 117–146／360件 146–175／360件 175–204／360件 "
         "204–233／360件 233–262／360件 262–291／360件 291–320／360件 320–349／360件"_s},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.places.toStdString());
        Numbers form(c.records);
        TestDesk desk{QDate()};
        form.showFirstPage(desk);
        QStringList places;
        const auto note = [&] {
            if (!form.isCounted())
                form.count();
            places << form.件数表示.text;
        };
        note();
        for (const char* step = c.steps; *step; ++step) {
            *step == 'n' ? form.nextPage(desk) : *step == 'p' ? form.previousPage(desk) : form.refill(desk);
            note();
        }
        EXPECT_EQ(places.join(u' '), QString(c.places).replace(u"%1"_s, after).replace(u"%2"_s, before));
    }
}

TEST(ListForm, CountsAnewWhenTheRegisterHasChanged) {
    Numbers form(upTo(61));
    TestDesk desk{QDate()};
    form.showFirstPage(desk);
    form.count();
    form.records.resize(56);
    form.nextPage(desk);
    EXPECT_FALSE(form.isCounted()); // the last row, but not the 61st
    form.refill(desk);
    form.unreadable = true;
    form.count();
    EXPECT_EQ(form.件数表示.text, u"（件数を読めませんでした）"_s);
    EXPECT_TRUE(form.isCounted());
    form.unreadable = false;
    form.refill(desk);
    form.count();
    EXPECT_EQ(form.件数表示.text, u"56–56／56件"_s);
}

TEST(ListForm, GivesAllRowsAndTellsATroubleOnce) {
    std::vector<int> records = upTo(75);
    records[3] = -1;
    Numbers form(records);
    form.troubled = true;
    TestDesk desk{QDate()};
    desk.expect(u"不明"_s, u"一覧"_s);
    const auto rows = form.allRows(desk);
    ASSERT_EQ(rows.size(), 74U);
    EXPECT_EQ(rows[3], QStringList(u"5"_s));
    EXPECT_EQ(rows.back(), QStringList(u"75"_s));
}

using Totals = RegisterFixture;

// The counts that ask an index agree with what the lists show, whatever rows they pass over.
TEST_F(Totals, AreThoseOfTheRowsListed) {
    TestDesk desk{today};
    execute(u"DELETE FROM tbl_ohaka; DELETE FROM tbl_hohyo"_s);
    execute(uR"(
        WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 90)
        INSERT INTO tbl_danka (tbldnk_no1) SELECT i FROM n)"_s);
    execute(uR"(
        WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 90)
        INSERT INTO tbl_ohaka (tblhak_no, tblhak_banchi1, tblhak_banchi2, tblhak_dnk_no, tblhak_bohyo_kbn,
          tblhak_bohyo_mei, tblhak_kanri_nxymd)
          SELECT i, '東', iif(i % 9, i, NULL), i % 2, iif(i % 5, '家', '空'), iif(i % 4, '家', ''),
            iif(i % 7, date('2026-11-22', (i * 10 - 50) || ' days'), NULL) FROM n)"_s);
    execute(uR"(
        WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 90)
        INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_zokunameg, tblhoy_kaiki_yymd, tblhoy_kaiki_s, tblhoy_kaiki_rs,
          tblhoy_tsuchi_s, tblhoy_kaiki_rymd, tblhoy_kaiki_ampm, tblhoy_kaiki_hour)
          SELECT i, '俗', date('2026-11-22', (i * 5 - 30) || ' days'), i % 5 = 0, i % 2, i % 7 = 0,
            iif(i % 2, date('2026-11-22', (i / 3 - 2) || ' days'), NULL), i % 4 / 2, iif(i % 3, i % 12, NULL) FROM n)"_s);
    graves::お墓一Form section;
    graves::紐区画Form free;
    graves::紐墓標Form markers;
    graves::お墓通Form fees;
    memorials::法要一Form reservations;
    memorials::法要通Form notices;
    section.frm21_block.text = free.frm21_block.text = u"東"_s;
    graves::chooseSection(section, context, desk);
    graves::chooseSection(free, context, desk);
    graves::beginPicker(markers, context, desk);
    graves::beginFeeNotices(fees, context, desk);
    graves::showFees(fees, context, desk);
    memorials::beginReservations(reservations, context, desk);
    memorials::showReservations(reservations, context, desk);
    memorials::beginNotices(notices, context, desk);
    memorials::showNotices(notices, context, desk);
    int at = 0;
    for (desk::AnyList* list :
         std::initializer_list<desk::AnyList*>{&section, &free, &markers, &fees, &reservations, &notices}) {
        SCOPED_TRACE(at++);
        list->count();
        const auto rows = list->allRows(desk).size();
        EXPECT_GT(rows, 5U);
        EXPECT_TRUE(list->件数表示.text.endsWith(u"／%1件"_s.arg(rows)))
            << rows << ' ' << list->件数表示.text.toStdString();
    }
}

} // namespace
