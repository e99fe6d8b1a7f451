#include "memorials/deceased_list_rules.h"
#include "memorials/household_list_rules.h"
#include "memorials/notice_rules.h"
#include "memorials/reservation_rules.h"
#include "support/label_printer.h"
#include "support/register_fixture.h"
#include "support/test_desk.h"
#include "values/dates.h"

using namespace Qt::StringLiterals;
using namespace memorials;

namespace {

const QString noHousehold = u"檀家情報を取得出来ません。DBの整合性を確認して下さい"_s;
const QString wrongStart = u"検索開始日ｴﾗｰです開始日を再度入力して下さい"_s;
const QString wrongEnd = u"検索終了日ｴﾗｰです終了を再度入力して下さい"_s;
const QString outOfRange = u"有功範囲外を指定しています。やり直して下さい"_s;

QString column(const desk::Grid& grid, int at) {
    QStringList cells;
    for (const QStringList& row : grid.rows)
        cells << row.value(at);
    return cells.join(u'|');
}

QString cells(const desk::Grid& grid, std::size_t row) {
    return grid.rows.at(row - 1).join(u'|');
}

class MemorialLists : public RegisterFixture {
  protected:
    MemorialLists() {
        store::Database database;
        store::tbl_danka row = sampleHousehold(7);
        row.tbldnk_bikou = u"檀家備考"_s;
        store::Table(database, store::idxdnk_no).insert(row);
    }
    // Rows "(household, deceased, scheduled, reserved, half day, hour, minute, held, notified)"; a date sets its flag.
    void add(const QString& rows) {
        execute(u"INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_zokunameg, tblhoy_kaiki_yymd, tblhoy_kaiki_rymd, "
                "tblhoy_kaiki_ampm, tblhoy_kaiki_hour, tblhoy_kaiki_mint, tblhoy_kaiki_jymd, tblhoy_tsuchi_ymd, "
                "tblhoy_kaiki_rs, tblhoy_kaiki_s, tblhoy_tsuchi_s, tblhoy_danknameg, tblhoy_kaimyog, "
                "tblhoy_kaiki_mei, tblhoy_kaiki_basho, tblhoy_kaiki_seshug, tblhoy_bikou) "
                "SELECT *, column4 IS NOT NULL, column8 IS NOT NULL, column9 IS NOT NULL, "
                "'山田', '釈', '3回忌', '本堂', '施主', '備考' FROM (VALUES %1)"_s.arg(rows));
    }
    // As many memorials as asked for, a day each from that one on, of deceased "001", "002" and so on.
    void addDaily(int count, const QString& first, bool reserved, int days = 1) {
        execute(u"WITH RECURSIVE n(i, day) AS (SELECT 1, '%1' UNION ALL SELECT i + 1, date(day, '+%4 day') FROM n "
                "WHERE i < %2) INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_danknameg, tblhoy_zokunameg, "
                "tblhoy_kaiki_yymd, tblhoy_kaiki_rymd, tblhoy_kaiki_rs, tblhoy_kaiki_ampm, tblhoy_kaiki_hour) "
                "SELECT 7, '山田', substr('00' || i, -3), day, iif(%3, day, NULL), %3, '1', 10 FROM n"_s.arg(first)
                    .arg(count)
                    .arg(int{reserved})
                    .arg(days));
    }
    // The names that a list shows, page after page to its end, those of a page's last row once; and back again.
    QString throughout(desk::AnyList& form, int nameColumn) {
        const auto page = [&] { return column(form.frm21_tbl, nameColumn); };
        QStringList pages{page()};
        for (int turn = 0; turn < 20; ++turn) {
            form.nextPage(desk);
            if (page() == pages.back())
                break;
            pages << page();
        }
        QStringList names = pages.join(u'|').split(u'|');
        names.removeDuplicates();
        for (qsizetype at = pages.size() - 2; at >= 0; --at) {
            form.previousPage(desk);
            EXPECT_EQ(page(), pages[at]);
        }
        return names.join(u'|');
    }
    void click(desk::AnyList& form, int row) {
        form.frm21_tbl.clickedRow = row;
        form.click(context, desk);
    }
    template <class Form>
    void show(void (*rule)(Form&, desk::ScreenContext&, desk::Desk&), Form& form, const QString& from,
              const QString& to) {
        form.frm02_from.text = from;
        form.frm02_to.text = to;
        rule(form, context, desk);
    }

    TestDesk desk{today};
};

// --- 法要一

class Reservations : public MemorialLists {
  protected:
    Reservations() { beginReservations(form, context, desk); }
    void show(const QString& from, const QString& to) { MemorialLists::show(showReservations, form, from, to); }
    QString deceased() const { return column(form.frm21_tbl, 4); }

    const QString title = u"法要 予定"_s;
    法要一Form form;
};

TEST_F(Reservations, ListWhatIsBookedAndNotYetHeldByDayAndTime) {
    add(u"(7, '午後', '2027-01-10', '2026-12-01', '2', 1, 0, NULL, NULL), "
        "(7, '午前', '2027-01-11', '2026-12-01', '1', 10, 30, NULL, NULL), "
        "(8, '早い', '2027-01-12', '2026-12-01', '1', 9, 5, NULL, NULL), "
        "(7, '済み', '2027-01-13', '2026-12-01', '1', 8, 0, '2026-11-01', NULL), "
        "(7, '終わり', '2027-01-14', '2026-12-23', '1', 24, 60, NULL, NULL), "
        "(7, '過ぎ', '2027-01-15', '2026-12-24', '1', 8, 0, NULL, NULL), "
        "(7, '前', '2027-01-16', '2026-11-21', '1', 8, 0, NULL, NULL), "
        "(7, '未予約', '2026-12-01', NULL, '1', 0, 0, NULL, NULL)"_s);
    EXPECT_EQ(form.frm02_from.text + form.frm02_to.text, u"2026/11/222026/12/23"_s);
    desk.expect(noHousehold, title);
    showReservations(form, context, desk);
    EXPECT_EQ(deceased(), u"早い|午前|午後|終わり"_s);
    EXPECT_EQ(column(form.frm21_tbl, 1), u"AM 9：5|AM 10：30|PM 1：00|AM 24：60"_s);
    EXPECT_EQ(cells(form.frm21_tbl, 1),
              u"令和8年12月1日|AM 9：5|山田|8|早い|3回忌|令和9年1月12日|本堂|施主|||備考|2027/01/12|火"_s);
    EXPECT_EQ(cells(form.frm21_tbl, 3), u"令和8年12月1日|PM 1：00|山田|7|午後|3回忌|令和9年1月10日|本堂|施主|"
                                        "寺前1丁目2-3|03-1234-5678|備考|2027/01/10|火"_s);

    click(form, 2);
    openReservationDeceased(form, context, desk);
    EXPECT_EQ(context.dnk_nameg + context.kak_zokunameg + context.dnk_kbn, u"山田午前檀家"_s);
    execute(u"DELETE FROM tbl_hohyo WHERE tblhoy_zokunameg = '終わり'"_s);
    add(u"(7, '新', '2027-01-14', '2026-12-23', '2', 30, 0, NULL, NULL)"_s);
    desk.opened.back().closed(); // from the current position: the last row shown was 終わり
    EXPECT_EQ(deceased(), u"新"_s);
    show(u"2030/1/1"_s, u"2030/1/2"_s); // where nothing is booked, the grid stays
    EXPECT_EQ(deceased(), u"新"_s);
    desk.expect(outOfRange, title);
    click(form, 2);
}

TEST_F(Reservations, StartTheirPagesAnewWith表示) {
    addDaily(70, u"2027-01-01"_s, true);
    show(u"2027/1/1"_s, u"2028/1/1"_s);
    form.nextPage(desk);
    EXPECT_TRUE(deceased().startsWith(u"030|"_s));
    show(u"2027/1/1"_s, u"2028/1/1"_s);
    EXPECT_TRUE(deceased().startsWith(u"001|"_s));
    // The range now starts amid what was the first page: its first page is this one.
    show(u"2027/1/15"_s, u"2028/1/1"_s);
    form.previousPage(desk);
    EXPECT_TRUE(deceased().startsWith(u"015|"_s));
    form.nextPage(desk);
    EXPECT_TRUE(deceased().startsWith(u"044|"_s));
}

TEST_F(Reservations, LoseNoneOfAnHour) {
    add(u"(7, '前日', '2026-12-01', '2026-12-31', '2', 1, 0, NULL, NULL)"_s);
    addDaily(95, u"2027-01-01"_s, true, 0);
    // Two memorials of one deceased in that hour are told apart by the day they are scheduled on.
    add(u"(7, '050', '2028-02-01', '2027-01-01', '1', 10, 0, NULL, NULL), "
        "(7, '096', '2027-01-01', '2027-01-02', '1', 9, 0, NULL, NULL)"_s);
    show(u"2026/12/1"_s, u"2027/2/1"_s);
    QStringList all{u"前日"_s};
    for (int i = 1; i <= 96; ++i)
        all << u"%1"_s.arg(i, 3, 10, QChar(u'0'));
    EXPECT_EQ(throughout(form, 4), all.join(u'|'));

    // Within one hour the page is filled again as it was.
    form.nextPage(desk);
    form.nextPage(desk);
    const QString page = deceased();
    click(form, 2);
    openReservedService(form, context, desk);
    EXPECT_EQ(desk.opened.back().screen, u"法要明"_s);
    EXPECT_EQ(context.kak_zokunameg + values::dateText(context.hoy_kaiki_yymd),
              deceased().section(u'|', 1, 1) + cells(form.frm21_tbl, 2).section(u'|', 12, 12));
    desk.opened.back().closed();
    EXPECT_EQ(deceased(), page);
    // A booking taken back leaves the page, and none behind it does, though the next day begins at an earlier hour.
    click(form, 1);
    openReservedService(form, context, desk);
    execute(u"UPDATE tbl_hohyo SET tblhoy_kaiki_rs = 0 WHERE tblhoy_zokunameg = '%1'"_s.arg(context.kak_zokunameg));
    desk.opened.back().closed();
    EXPECT_TRUE(deceased().startsWith(page.section(u'|', 1, 20)));
    form.nextPage(desk);
    EXPECT_TRUE(deceased().endsWith(u"|096"_s) || (form.nextPage(desk), deceased().endsWith(u"|096"_s)));
}

TEST_F(Reservations, RefuseAWrongRange) {
    desk.expect(wrongStart, title);
    show(u"2027/13/1"_s, u"2027/1/1"_s);
    EXPECT_EQ(form.frm02_from.colour, desk::Colour::red);
    desk.expect(wrongEnd, title);
    show(u"2027/1/2"_s, u"2027/1/1"_s);
    EXPECT_EQ(form.frm02_to.colour, desk::Colour::red);
    show(u"令和9年1月1日"_s, u"Ｒ９．１．１"_s);
    EXPECT_EQ(form.frm02_to.colour, desk::Colour::black);
    EXPECT_EQ(form.to, QDate(2027, 1, 1));
    desk.expect(wrongEnd, title);
    MemorialLists::show(leaveReservationsTo, form, {}, u"2026/12/31"_s);
    desk.expect(wrongStart, title);
    leaveReservationsFrom(form, context, desk);
}

// --- 法要個, 法要檀

TEST_F(MemorialLists, TheDeceasedsMemorialsAreAllInOneGrid) {
    const QString title = u"法要 記録"_s;
    context.publishHousehold(7);
    context.nameDeceased(u"山田"_s, u"故人"_s);
    法要個Form form;
    desk.expect(u"過去帳が取出せません、ﾃﾞｰﾀﾍﾞｰｽの整合性を確認して下さい。"_s, u"過去帳登録"_s);
    desk.expect(u"照会者の法要は登録されていません"_s, title);
    beginDeceasedMemorials(form, context, desk);

    execute(u"INSERT INTO tbl_kakocho (tblkak_no, tblkak_dnknameg, tblkak_zokunameg, tblkak_mei_gname, tblkak_mei_gyy, "
            "tblkak_mei_gmm, tblkak_mei_gdd, tblkak_kaimyoug) VALUES (7, '山田', '故人', '慶長', 5, 9, 15, '釈')"_s);
    add(u"(7, '故人', '2027-01-10', '2026-12-01', '1', 9, 0, NULL, '2026-10-01'), "
        "(7, '故人', '1849-02-01', NULL, '1', 0, 0, '1849-02-02', NULL), "
        "(7, '麗人', '2027-01-11', NULL, '1', 0, 0, NULL, NULL)"_s);
    form = {};
    beginDeceasedMemorials(form, context, desk);
    EXPECT_EQ(form.frm21_meigymd.text, u"慶長5年9月15日"_s);
    EXPECT_EQ(column(form.frm21_tbl, 2), u"嘉永2年2月2日|"_s);
    EXPECT_EQ(form.frm21_tbl.inSight, 2);
    EXPECT_EQ(cells(form.frm21_tbl, 2),
              u"3回忌|令和9年1月10日||令和8年10月1日|令和8年12月1日|AM 9：00|施主|本堂|備考"_s);
    for (const int row : {0, 3}) {
        desk.expect(outOfRange, title);
        click(form, row);
        openDeceasedMemorial(form, context, desk);
    }
    EXPECT_TRUE(desk.opened.empty());
    click(form, 1);
    EXPECT_EQ(form.frm21_tbl.highlighted, 1);
    EXPECT_EQ(context.hoy_kaiki_yymd, QDate(1849, 2, 1));
    openDeceasedMemorial(form, context, desk);
    EXPECT_FALSE(context.kak_handedOver);
    // Deleted meanwhile: the row that took its place is not opened in its stead.
    execute(u"DELETE FROM tbl_hohyo WHERE tblhoy_kaiki_yymd = '1849-02-01'"_s);
    desk.opened.back().closed();
    openDeceasedMemorial(form, context, desk);
    EXPECT_EQ(desk.opened.size(), 1U);

    // An entry with an empty 戒名 is read all the same; boxes handed over are shown, and handed on, as they are.
    execute(u"UPDATE tbl_kakocho SET tblkak_kaimyoug = ''"_s);
    context.kak_kaimyoug = u"前の戒名"_s;
    form = {};
    beginDeceasedMemorials(form, context, desk);
    EXPECT_EQ(form.frm21_kaimyog.text + context.kak_kaimyoug, QString());
    context.kak_kaimyoug = u"書きかけ"_s;
    context.kak_handedOver = true;
    form = {};
    beginDeceasedMemorials(form, context, desk);
    EXPECT_EQ(form.frm21_kaimyog.text, u"書きかけ"_s);
    context.endHandOver();
    click(form, 1);
    openDeceasedMemorial(form, context, desk);
    EXPECT_TRUE(context.kak_handedOver);
}

TEST_F(MemorialLists, TheFirstRowThatIsDueComesIntoSight) {
    add(u"(7, '過', '2025-01-01', NULL, '1', 0, 0, NULL, NULL), "
        "(7, '実施', '2026-12-01', '2026-11-01', '1', 9, 0, '2026-11-01', NULL), "
        "(7, '今日', '2026-11-22', NULL, '1', 0, 0, NULL, NULL)"_s);
    context.publishHousehold(7);
    const auto inSight = [this] {
        法要檀Form form;
        beginHouseholdMemorials(form, context, desk);
        EXPECT_EQ(form.frm21_tbl.highlighted, 0);
        return form.frm21_tbl.cell(form.frm21_tbl.inSight, 0);
    };
    EXPECT_EQ(inSight(), u"今日"_s);
    execute(u"DELETE FROM tbl_hohyo WHERE tblhoy_zokunameg = '今日'"_s);
    EXPECT_EQ(inSight(), QString());
    // Booked for a day to come, though its own has passed.
    execute(u"UPDATE tbl_hohyo SET tblhoy_kaiki_rs = 1, tblhoy_kaiki_rymd = '2026-12-06' WHERE tblhoy_kaiki_s = 0"_s);
    EXPECT_EQ(inSight(), u"過"_s);
}

TEST_F(MemorialLists, TheHouseholdsMemorialsReturnToTheFirstPage) {
    const QString title = u"檀家法要一覧"_s;
    const QString none = u"照会の檀家に法要はありません。登録内容を確認して下さい"_s;
    context.publishHousehold(9);
    法要檀Form unknown;
    desk.expect(noHousehold, title);
    desk.expect(none, title);
    beginHouseholdMemorials(unknown, context, desk);

    addDaily(31, u"2027-01-01"_s, true);
    add(u"(7, '古い', '1590-01-01', '1590-01-01', '2', 1, 0, '1590-01-02', NULL), "
        "(8, '他家', '2027-01-01', NULL, '1', 0, 0, NULL, NULL)"_s);
    context.publishHousehold(7);
    context.dnk_namek = u"カナ"_s; // a block filled by halves is no household
    法要檀Form form;
    beginHouseholdMemorials(form, context, desk);
    EXPECT_EQ(form.frm21_dankag.text + form.frm21_toshug.text + form.frm21_bikou.text, u"山田山田　太郎檀家備考"_s);
    EXPECT_EQ(cells(form.frm21_tbl, 1),
              u"古い|釈|3回忌|天正18年1月1日|済|天正18年1月2日|本堂|施主|||備考|1590/01/01"_s);
    EXPECT_EQ(cells(form.frm21_tbl, 2), u"001|||令和9年1月1日|予||||令和9年1月1日|AM 10：00||2027/01/01"_s);
    form.nextPage(desk);
    EXPECT_EQ(column(form.frm21_tbl, 0), u"029|030|031"_s);
    click(form, 2);
    context.publishHousehold(8);
    openHouseholdDeceased(form, context, desk);
    EXPECT_EQ(context.dnk_no1, 7);
    context.kak_zokunamek = u"カナ"_s;
    openHouseholdMemorial(form, context, desk);
    EXPECT_EQ(context.dnk_nameg + context.kak_zokunameg + context.kak_zokunamek, u"山田030"_s);
    EXPECT_EQ(context.hoy_kaiki_yymd, QDate(2027, 1, 30));
    execute(u"DELETE FROM tbl_hohyo WHERE tblhoy_zokunameg = '030'"_s);
    desk.opened.back().closed();
    EXPECT_TRUE(column(form.frm21_tbl, 0).startsWith(u"古い|"_s));
    openHouseholdMemorial(form, context, desk); // the memorial chosen is gone
    EXPECT_EQ(desk.opened.size(), 2U);
}

// --- 法要通

class Notices : public MemorialLists {
  protected:
    Notices() { beginNotices(form, context, desk); }
    void show(const QString& from, const QString& to) { MemorialLists::show(showNotices, form, from, to); }
    QString deceased() const { return column(form.frm21_tbl, 2); }
    QString marked() {
        return query(u"SELECT tblhoy_zokunameg || tblhoy_tsuchi_ymd FROM tbl_hohyo WHERE tblhoy_tsuchi_s = 1 "
                     "ORDER BY tblhoy_kaiki_yymd"_s);
    }

    const QString title = u"法要通知"_s;
    const QString printing = u"宛名印刷"_s;
    法要通Form form;
    TestPrinter printer;
};

TEST_F(Notices, ListPrintAndMarkTheSameMemorialsOnce) {
    add(u"(7, '初日', '2026-11-22', NULL, '1', 0, 0, NULL, NULL), "
        "(7, '末日', '2027-11-22', NULL, '1', 0, 0, NULL, NULL), "
        "(7, '前日', '2026-11-21', NULL, '1', 0, 0, NULL, NULL), "
        "(7, '翌日', '2027-11-23', NULL, '1', 0, 0, NULL, NULL), "
        "(7, '予約', '2026-12-01', '2026-12-01', '1', 0, 0, NULL, NULL), "
        "(7, '実施', '2026-12-02', NULL, '1', 0, 0, '2026-11-01', NULL), "
        "(7, '通知', '2026-12-03', NULL, '1', 0, 0, NULL, '2026-10-01'), "
        "(8, '家無', '2026-12-04', NULL, '1', 0, 0, NULL, NULL)"_s);
    EXPECT_EQ(form.frm02_from.text + form.frm02_to.text, u"2026/11/222027/11/22"_s);
    desk.expect(noHousehold, title);
    showNotices(form, context, desk);
    EXPECT_EQ(deceased(), u"初日|家無|末日"_s);
    EXPECT_EQ(cells(form.frm21_tbl, 1),
              u"7|山田|初日|3回忌|令和8年11月22日|山田　太郎|寺前1丁目2-3|03-1234-5678|檀家備考|☑"_s);
    EXPECT_EQ(cells(form.frm21_tbl, 2), u"8|山田|家無|3回忌|令和8年12月4日|||||☑"_s);

    // A preview or a printer that fails marks nothing.
    desk.expect(noHousehold, printing);
    previewNotices(form, printer, desk);
    printer.refusal = u"紙詰まり"_s;
    desk.expect(noHousehold, printing);
    desk.expect(u"紙詰まり"_s, printing);
    notifyRange(form, printer, desk);
    EXPECT_EQ(marked(), u"通知2026-10-01"_s);

    printer.refusal.clear();
    desk.expect(noHousehold, printing);
    notifyRange(form, printer, desk);
    ASSERT_EQ(printer.jobs.size(), 2U);
    EXPECT_EQ(printer.lines(0, 5).size(), 2);
    EXPECT_EQ(printer.lines(1, 5).size(), 2);
    EXPECT_EQ(marked(), u"初日2026-11-22|通知2026-10-01|家無2026-11-22|末日2026-11-22"_s);
    EXPECT_EQ(deceased(), u"初日|家無|末日"_s); // not filled again

    notifyRange(form, printer, desk); // the same range again: nothing left to print or mark
    EXPECT_EQ(printer.jobs.size(), 2U);
    desk.expect(u"印刷する宛名はありません。"_s, printing);
    previewNotices(form, printer, desk);
}

TEST_F(Notices, SayTwiceThatNothingLiesAhead) {
    const QString nothing = u"法要予定はありません"_s;
    desk.expect(nothing, title);
    showNotices(form, context, desk);
    desk.expect(nothing, printing);
    desk.expect(nothing, title);
    notifyRange(form, printer, desk);
}

TEST_F(Notices, LeaveOutWhatIsNotTicked) {
    addDaily(40, u"2026-12-01"_s, false);
    show(u"2026/12/01"_s, u"2027/12/01"_s);
    const auto turn = [&](int row) {
        form.frm21_tbl.clickedRow = row;
        form.frm21_tbl.clickedColumn = form.frm21_tbl.tickColumns.front();
        form.click(context, desk);
    };
    turn(1);
    turn(2);
    turn(2);
    turn(30); // the first row of the next page
    form.nextPage(desk);
    EXPECT_EQ(form.frm21_tbl.cell(1, 9) + form.frm21_tbl.cell(2, 9), u"☐☑"_s);
    form.previousPage(desk);
    EXPECT_EQ(form.frm21_tbl.cell(1, 9) + form.frm21_tbl.cell(2, 9) + form.frm21_tbl.cell(30, 9), u"☐☑☐"_s);
    previewNotices(form, printer, desk);
    notifyRange(form, printer, desk);
    for (const std::size_t job : {0, 1})
        EXPECT_EQ(printer.lines(job, 5).size(), 38);
    EXPECT_EQ(query(u"SELECT tblhoy_zokunameg FROM tbl_hohyo WHERE tblhoy_tsuchi_s = 0 ORDER BY 1"_s), u"001|030"_s);
    // What is left is not chosen.
    desk.expect(u"印刷する宛名が一つも選ばれていません。通知選択と宛名設定を確認して下さい。"_s, printing);
    notifyRange(form, printer, desk);
    EXPECT_EQ(printer.jobs.size(), 2U);
    EXPECT_EQ(query(u"SELECT count(*) FROM tbl_hohyo WHERE tblhoy_tsuchi_s = 0"_s), u"2"_s);
}

TEST_F(Notices, TakeTheAnniversariesAndTheStartThatWereSet) {
    addDaily(3, u"2026-12-01"_s, false);
    execute(u"UPDATE tbl_hohyo SET tblhoy_kaiki_mei = iif(tblhoy_zokunameg = '002', '13回忌', '3回忌')"_s);
    show(u"2026/12/01"_s, u"2027/12/01"_s);
    setUpNotices(form, context, desk);
    ASSERT_EQ(context.lbl_offered.size(), 2U);
    EXPECT_EQ(context.lbl_offered[1].anniversary, u"13回忌"_s); // in the order of the years
    EXPECT_EQ(context.lbl_offered[0].memorials, 2);
    ASSERT_EQ(desk.opened.back().screen, u"宛名設定"_s);
    context.lbl_anniversaries = QStringList{u"13回忌"_s};
    context.lbl_start = 4;
    context.lbl_taken = true;
    desk.opened.back().closed();
    EXPECT_EQ(form.frm21_tbl.cell(1, 9) + form.frm21_tbl.cell(2, 9), u"－☑"_s);
    notifyRange(form, printer, desk);
    EXPECT_EQ(marked(), u"0022026-11-22"_s);
    EXPECT_NEAR(printer.jobs[0][0][0].top, 21.6 + 2 * 43.2 + 5, 1e-9);
    EXPECT_EQ(form.choice->start, 0); // the next sheet is a whole one
}

TEST_F(Notices, AreTakenBackAsTheLastRunLeftThem) {
    const QString none = u"取り消せる通知処理はありません。"_s;
    desk.expect(none, title);
    takeBackNotices(form, context, desk);
    addDaily(5, u"2026-12-01"_s, false);
    execute(u"UPDATE tbl_hohyo SET tblhoy_tsuchi_s = 1, tblhoy_tsuchi_ymd = '2026-11-22' "
            "WHERE tblhoy_zokunameg = '005'"_s); // by hand, on the same day
    form.choice->unticked = {u"7\t2026-12-01\t001"_s};
    notifyRange(form, printer, desk);
    EXPECT_EQ(QFile::permissions(path(u"Hoshiren.mdb.notices"_s)) & (QFile::ReadGroup | QFile::ReadOther),
              QFile::Permissions());
    execute(u"UPDATE tbl_hohyo SET tblhoy_kaiki_rs = 1 WHERE tblhoy_zokunameg = '003'"_s);
    // Another start of the program.
    法要通Form later;
    const QString question = u"2026/11/22の通知処理を取り消します。\n2件の法要を通知前に戻します。よろしいですか？\n"
                             "（ほかの1件は、予約や実施などでその後に変わったため、そのままです。）"_s;
    desk.answer(question, title, false);
    takeBackNotices(later, context, desk);
    EXPECT_EQ(desk.lastPreset, desk::Preset::no);
    EXPECT_EQ(marked(), u"0022026-11-22|0032026-11-22|0042026-11-22|0052026-11-22"_s);
    desk.answer(question, title, true);
    takeBackNotices(later, context, desk);
    EXPECT_EQ(marked(), u"0032026-11-22|0052026-11-22"_s);
    EXPECT_EQ(query(u"SELECT count(*) FROM tbl_hohyo WHERE tblhoy_tsuchi_s = 0 AND tblhoy_tsuchi_ymd IS NULL"_s),
              u"3"_s);
    desk.expect(none, title);
    takeBackNotices(later, context, desk);
}

// A run that stopped between its marks and its record, or before its marks.
TEST_F(Notices, OfARunThatStoppedAreNeverTakenBack) {
    addDaily(2, u"2026-12-01"_s, false);
    const QString none = u"取り消せる通知処理はありません。"_s;
    printer.refusal = u"紙詰まり"_s;
    desk.expect(u"紙詰まり"_s, printing);
    notifyRange(form, printer, desk);
    desk.expect(none, title);
    takeBackNotices(form, context, desk);
    printer.refusal.clear();
    QFile record(path(u"Hoshiren.mdb.notices"_s));
    const auto write = [&](const QByteArray& text) {
        ASSERT_TRUE(record.open(QIODevice::WriteOnly));
        record.write(text);
        record.close();
    };
    const QByteArray run = R"([{"day":"2026-11-22","open":true,"rows":[[7,"001","2026-12-01"]]}])";
    write(run);
    desk.expect(none, title); // it never marked anything
    takeBackNotices(form, context, desk);
    execute(u"UPDATE tbl_hohyo SET tblhoy_tsuchi_s = 1, tblhoy_tsuchi_ymd = '2026-11-22'"_s);
    desk.expectBeginning(u"最後の通知処理（2026/11/22）は途中で止まったため"_s, title);
    takeBackNotices(form, context, desk);
    EXPECT_EQ(marked(), u"0012026-11-22|0022026-11-22"_s);
    // A record that cannot be read stops a run before it prints.
    execute(u"UPDATE tbl_hohyo SET tblhoy_tsuchi_s = 0"_s);
    write("[{");
    EXPECT_THROW(notifyRange(form, printer, desk), store::Error);
    EXPECT_TRUE(printer.jobs.empty());
    EXPECT_EQ(marked(), QString());
}

TEST_F(Notices, MarkAllOrNone) {
    addDaily(3, u"2026-12-01"_s, false);
    refuseRows(u"tbl_hohyo"_s, u"tblhoy_zokunameg = '003' AND tblhoy_tsuchi_s = 1"_s);
    try {
        notifyRange(form, printer, desk);
        ADD_FAILURE() << "no failure";
    } catch (const store::Error& failure) {
        EXPECT_TRUE(failure.message().contains(u"disk full"_s));
        EXPECT_TRUE(failure.message().contains(u"宛名は出力済みですが"_s)) << failure.message().toStdString();
    }
    EXPECT_EQ(marked(), QString());
}

TEST_F(Notices, StartEachShowingFromTheEmptyName) {
    addDaily(31, u"2026-12-01"_s, false);
    add(u"(7, '000', '2026-12-30', NULL, '1', 0, 0, NULL, NULL)"_s);
    showNotices(form, context, desk);
    EXPECT_TRUE(deceased().endsWith(u"|029|000"_s)); // of one day in the order of the names
    form.nextPage(desk);
    EXPECT_EQ(deceased(), u"000|030|031"_s);
    // No page stands before the first of a new showing, not even one whose names would pass some of it over.
    show(u"2026/12/30"_s, u"2027/1/1"_s);
    EXPECT_EQ(deceased(), u"000|030|031"_s);
    form.previousPage(desk);
    EXPECT_EQ(deceased(), u"000|030|031"_s);
    desk.expect(u"法要予定はありません"_s, title);
    show(u"2030/1/1"_s, u"2030/1/2"_s);
    form.previousPage(desk); // said already
    EXPECT_EQ(deceased(), u"000|030|031"_s);
}

TEST_F(Notices, LoseNoneOfADay) {
    addDaily(35, u"2026-12-01"_s, false, 0);
    // Forty of one name, one a household, between them.
    execute(u"WITH RECURSIVE n(i) AS (SELECT 100 UNION ALL SELECT i + 1 FROM n WHERE i < 139) "
            "INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_zokunameg, tblhoy_kaiki_yymd) SELECT i, '020', '2026-12-01' "
            "FROM n; INSERT INTO tbl_danka (tbldnk_no1, tbldnk_no2) SELECT tblhoy_no, 0 FROM tbl_hohyo "
            "WHERE tblhoy_no >= 100; UPDATE tbl_hohyo SET tblhoy_danknameg = tblhoy_no"_s);
    showNotices(form, context, desk);
    const auto lines = [this] { return query(u"SELECT tblhoy_no || tblhoy_zokunameg FROM tbl_hohyo"_s).split(u'|'); };
    QStringList shown;
    for (int turn = 0; turn < 4; ++turn) {
        for (const QStringList& row : form.frm21_tbl.rows)
            shown << row[0] + row[2];
        form.nextPage(desk);
        if (turn == 0) { // the first page ends within the name, the second begins with all of it
            EXPECT_EQ(form.frm21_tbl.rows.front()[0] + form.frm21_tbl.rows.front()[2], u"7020"_s);
        }
    }
    QStringList all = lines();
    shown.removeDuplicates();
    shown.sort();
    all.sort();
    EXPECT_EQ(shown, all);
}

TEST_F(Notices, TestTheEndAgainWhenTheStartIsLeft) {
    desk.expect(wrongEnd, title);
    MemorialLists::show(leaveNoticesFrom, form, u"2028/1/1"_s, u"2027/11/22"_s);
    EXPECT_EQ(form.frm02_from.colour, desk::Colour::black);
    EXPECT_EQ(form.frm02_to.colour, desk::Colour::red);
    MemorialLists::show(leaveNoticesTo, form, u"2028/1/1"_s, u"2028/1/1"_s);
    EXPECT_EQ(form.to, QDate(2028, 1, 1));
    desk.expect(wrongStart, title);
    show(u"いつか"_s, u"2028/1/1"_s);
    EXPECT_EQ(form.from, QDate(2028, 1, 1));
}

} // namespace
