#include "memorials/deceased_list_rules.h"
#include "memorials/household_list_rules.h"
#include "memorials/notice_rules.h"
#include "memorials/reservation_rules.h"
#include "support/label_printer.h"
#include "support/register_fixture.h"
#include "support/test_desk.h"

using namespace Qt::StringLiterals;
using namespace memorials;

namespace {

const QString noHousehold = u"檀家情報を取得出来ません。DBの整合性を確認して下さい"_s;
const QString wrongStart = u"検索開始日ｴﾗｰです開始日を再度入力して下さい"_s;
const QString wrongEnd = u"検索終了日ｴﾗｰです終了を再度入力して下さい"_s;
const QString outOfRange = u"有功範囲外を指定しています。やり直して下さい"_s;

QStringList column(const desk::Grid& grid, int at) {
    QStringList cells;
    for (const QStringList& row : grid.rows)
        cells << row.value(at);
    return cells;
}

QString cells(const desk::Grid& grid, int row) {
    return grid.rows.at(static_cast<std::size_t>(row - 1)).join(u'|');
}

class MemorialLists : public RegisterFixture {
  protected:
    MemorialLists() {
        store::Database database;
        store::tbl_danka row = sampleHousehold(7);
        row.tbldnk_bikou = u"檀家備考"_s;
        store::Table(database, store::idxdnk_no).insert(row);
    }

    struct Memorial {
        QString deceased;
        QString scheduled;
        QString reserved = {}; // empty: not reserved
        QString halfDay = u"1"_s;
        int hour = 0;
        int minute = 0;
        QString held = {};
        QString notified = {};
        int household = 7;
    };
    void add(const Memorial& memorial) {
        const auto date = [](const QString& text) { return text.isEmpty() ? u"NULL"_s : u"'%1'"_s.arg(text); };
        const auto flag = [](const QString& text) { return text.isEmpty() ? u"0"_s : u"1"_s; };
        const QStringList values{QString::number(memorial.household),
                                 u"'山田'"_s,
                                 u"'%1'"_s.arg(memorial.deceased),
                                 u"'釈'"_s,
                                 u"'3回忌'"_s,
                                 date(memorial.scheduled),
                                 date(memorial.reserved),
                                 flag(memorial.reserved),
                                 u"'%1'"_s.arg(memorial.halfDay),
                                 QString::number(memorial.hour),
                                 QString::number(memorial.minute),
                                 date(memorial.held),
                                 flag(memorial.held),
                                 date(memorial.notified),
                                 flag(memorial.notified),
                                 u"'本堂'"_s,
                                 u"'施主'"_s,
                                 u"'備考'"_s};
        execute(u"INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_danknameg, tblhoy_zokunameg, tblhoy_kaimyog, "
                "tblhoy_kaiki_mei, tblhoy_kaiki_yymd, tblhoy_kaiki_rymd, tblhoy_kaiki_rs, tblhoy_kaiki_ampm, "
                "tblhoy_kaiki_hour, tblhoy_kaiki_mint, tblhoy_kaiki_jymd, tblhoy_kaiki_s, tblhoy_tsuchi_ymd, "
                "tblhoy_tsuchi_s, tblhoy_kaiki_basho, tblhoy_kaiki_seshug, tblhoy_bikou) VALUES (%1)"_s.arg(
                    values.join(u", "_s)));
    }
    // As many memorials as asked for, a day each from that one on, of deceased "001", "002" and so on.
    void addDaily(int count, QDate first, bool reserved) {
        store::Database database;
        store::Write write(database);
        store::Table table(database, store::idxhoy_yymd);
        for (int i = 0; i < count; ++i) {
            store::tbl_hohyo row;
            row.tblhoy_no = 7;
            row.tblhoy_danknameg = u"山田"_s;
            row.tblhoy_zokunameg = QString::number(i + 1).rightJustified(3, u'0');
            row.tblhoy_kaiki_yymd = first.addDays(i);
            if (reserved) {
                row.tblhoy_kaiki_rymd = first.addDays(i);
                row.tblhoy_kaiki_rs = 1;
                row.tblhoy_kaiki_ampm = u"1"_s;
                row.tblhoy_kaiki_hour = std::int16_t{10};
            }
            table.insert(row);
        }
        write.commit();
    }
    template <class Form> void click(void (*rule)(Form&, desk::ScreenContext&, desk::Desk&), Form& form, int row) {
        form.frm21_tbl.clickedRow = row;
        rule(form, context, desk);
    }

    TestDesk desk{today};
};

// --- 法要一

class Reservations : public MemorialLists {
  protected:
    const QString title = u"法要 予定"_s;
    法要一Form form;

    void show(const QString& from, const QString& to) {
        form.frm02_from.text = from;
        form.frm02_to.text = to;
        showReservations(form, context, desk);
    }
};

TEST_F(Reservations, ListWhatIsBookedAndNotYetHeldByDayAndTime) {
    add({u"午後"_s, u"2027-01-10"_s, u"2026-12-01"_s, u"2"_s, 1, 0});
    add({u"午前"_s, u"2027-01-11"_s, u"2026-12-01"_s, u"1"_s, 10, 30});
    add({u"早い"_s, u"2027-01-12"_s, u"2026-12-01"_s, u"1"_s, 9, 5});
    add({u"済み"_s, u"2027-01-13"_s, u"2026-12-01"_s, u"1"_s, 8, 0, u"2026-11-01"_s});
    add({u"終わり"_s, u"2027-01-14"_s, u"2026-12-23"_s, u"1"_s, 24, 60});
    add({u"過ぎ"_s, u"2027-01-15"_s, u"2026-12-24"_s, u"1"_s, 8, 0});
    add({u"前"_s, u"2027-01-16"_s, u"2026-11-21"_s, u"1"_s, 8, 0});
    add({u"未予約"_s, u"2026-12-01"_s});
    openReservations(form, context, desk);
    EXPECT_EQ(form.frm02_from.text + form.frm02_to.text, u"2026/11/222026/12/23"_s);
    EXPECT_TRUE(form.frm21_tbl.rows.empty());
    showReservations(form, context, desk);
    EXPECT_EQ(column(form.frm21_tbl, 4), QStringList({u"早い"_s, u"午前"_s, u"午後"_s, u"終わり"_s}));
    EXPECT_EQ(column(form.frm21_tbl, 1), QStringList({u"AM 9：5"_s, u"AM 10：30"_s, u"PM 1：00"_s, u"AM 24：60"_s}));
    EXPECT_EQ(cells(form.frm21_tbl, 3), u"令和8年12月1日|PM 1：00|山田|7|午後|3回忌|令和9年1月10日|本堂|施主|"
                                        "寺前1丁目2-3|03-1234-5678|備考|2027/01/10"_s);

    click(clickReservation, form, 2);
    context.dnk_nameg = u"前の檀家"_s;
    openReservationDeceased(form, context, desk);
    EXPECT_EQ(desk.opened.back().screen, u"過去登"_s);
    EXPECT_EQ(desk.opened.back().how, desk::Opening::modal);
    EXPECT_EQ(context.dnk_nameg + context.kak_zokunameg + context.dnk_kbn, u"山田午前檀家"_s);
    EXPECT_EQ(context.hoy_kaiki_yymd, QDate(2027, 1, 11));
    execute(u"DELETE FROM tbl_hohyo WHERE tblhoy_zokunameg = '終わり'"_s);
    execute(u"INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_zokunameg, tblhoy_kaiki_rymd, tblhoy_kaiki_rs, "
            "tblhoy_kaiki_ampm, tblhoy_kaiki_hour) VALUES (7, '新', '2026-12-23', 1, '2', 30)"_s);
    desk.opened.back().closed(); // from the current position: the last row shown was 終わり
    EXPECT_EQ(column(form.frm21_tbl, 4), QStringList({u"新"_s}));

    click(clickReservation, form, 1);
    openReservationHousehold(form, context, desk);
    EXPECT_EQ(desk.opened.back().screen, u"檀家登"_s);
    EXPECT_EQ(desk.opened.back().how, desk::Opening::modal);
    EXPECT_EQ(context.dnk_no1, 7);
    EXPECT_EQ(context.kak_zokunameg, QString());
    desk.expect(outOfRange, title);
    click(clickReservation, form, 2);
}

TEST_F(Reservations, TurnPagesAndRememberThemOver表示) {
    addDaily(70, {2027, 1, 1}, true);
    openReservations(form, context, desk);
    show(u"2027/1/1"_s, u"2028/1/1"_s);
    nextReservations(form, context, desk);
    EXPECT_EQ(column(form.frm21_tbl, 4).front(), u"030"_s);
    show(u"2027/1/1"_s, u"2028/1/1"_s);
    EXPECT_EQ(column(form.frm21_tbl, 4).front(), u"001"_s);
    // The range now starts on the second page: it is page 2 of the tables that were not emptied.
    show(u"2027/1/30"_s, u"2028/1/1"_s);
    EXPECT_EQ(column(form.frm21_tbl, 4).front(), u"030"_s);
    previousReservations(form, context, desk);
    EXPECT_EQ(column(form.frm21_tbl, 4).front(), u"030"_s); // page 1 began before the range; nothing before it is shown
    nextReservations(form, context, desk);
    EXPECT_EQ(column(form.frm21_tbl, 4).front(), u"059"_s);
}

TEST_F(Reservations, KeepTheGridWhereNothingIsBooked) {
    addDaily(2, {2027, 1, 1}, true);
    openReservations(form, context, desk);
    show(u"2027/1/1"_s, u"2027/1/2"_s);
    show(u"2030/1/1"_s, u"2030/1/2"_s);
    EXPECT_EQ(form.frm21_tbl.rows.size(), 2U);
}

TEST_F(Reservations, ReportAHouseholdThatIsGone) {
    add({u"故人"_s, u"2027-01-10"_s, u"2026-12-01"_s, u"1"_s, 9, 0, {}, {}, 8});
    openReservations(form, context, desk);
    desk.expect(noHousehold, title);
    showReservations(form, context, desk);
    EXPECT_EQ(form.frm21_tbl.cell(1, 9) + form.frm21_tbl.cell(1, 10), QString());
}

TEST_F(Reservations, RefuseAWrongRange) {
    openReservations(form, context, desk);
    const struct {
        QString from;
        QString to;
        QString message;
    } cases[] = {
        {u"2027/13/1"_s, u"2027/1/1"_s, wrongStart}, {{}, u"2027/1/1"_s, wrongStart},
        {u"2027/1/2"_s, u"2027/1/1"_s, wrongEnd},    {u"2027/1/2"_s, u"明日"_s, wrongEnd},
        {u"2029/6/1"_s, u"29/6/1"_s, wrongEnd},
    };
    for (const auto& each : cases) {
        desk.expect(each.message, title);
        show(each.from, each.to);
        desk.finish();
        const bool start = each.message == wrongStart;
        EXPECT_EQ((start ? form.frm02_from : form.frm02_to).colour, desk::Colour::red) << each.to.toStdString();
    }
    show(u"令和9年1月1日"_s, u"Ｒ９．１．１"_s);
    EXPECT_EQ(form.frm02_to.colour, desk::Colour::black);
    EXPECT_EQ(form.to, QDate(2027, 1, 1));
    form.frm02_to.text = u"2026/12/31"_s;
    desk.expect(wrongEnd, title);
    leaveReservationsTo(form, context, desk);
    form.frm02_from.text = u"x"_s;
    desk.expect(wrongStart, title);
    leaveReservationsFrom(form, context, desk);
}

// --- 法要個, 法要檀

TEST_F(MemorialLists, TheDeceasedsMemorialsAreAllInOneGrid) {
    const QString title = u"法要 記録"_s;
    context.publishHousehold(7);
    context.dnk_nameg = u"山田"_s;
    context.chooseDeceased(u"故人"_s);
    法要個Form form;
    desk.expect(u"過去帳が取出せません、ﾃﾞｰﾀﾍﾞｰｽの整合性を確認して下さい。"_s, u"過去帳登録"_s);
    desk.expect(u"照会者の法要は登録されていません"_s, title);
    openDeceasedMemorials(form, context, desk);

    execute(u"INSERT INTO tbl_kakocho (tblkak_no, tblkak_dnknameg, tblkak_zokunameg, tblkak_mei_gname, tblkak_mei_gyy, "
            "tblkak_mei_gmm, tblkak_mei_gdd, tblkak_kaimyoug) VALUES (7, '山田', '故人', '慶長', 5, 9, 15, '釈')"_s);
    add({u"故人"_s, u"2027-01-10"_s, u"2026-12-01"_s, u"1"_s, 9, 0, {}, u"2026-10-01"_s});
    add({u"故人"_s, u"1849-02-01"_s, {}, u"1"_s, 0, 0, u"1849-02-02"_s});
    add({u"別人"_s, u"2027-01-11"_s});
    form = {};
    openDeceasedMemorials(form, context, desk);
    EXPECT_EQ(form.frm21_meigymd.text, u"慶長5年9月15日"_s);
    EXPECT_EQ(column(form.frm21_tbl, 1).size(), 2);
    EXPECT_EQ(form.frm21_tbl.cell(1, 2), u"嘉永2年2月2日"_s);
    EXPECT_EQ(cells(form.frm21_tbl, 2),
              u"3回忌|令和9年1月10日||令和8年10月1日|令和8年12月1日|AM 9：00|施主|本堂|備考"_s);
    for (const int row : {0, 3}) {
        desk.expect(outOfRange, title);
        click(clickDeceasedMemorial, form, row);
        openDeceasedMemorial(form, context, desk);
    }
    EXPECT_TRUE(desk.opened.empty());
    click(clickDeceasedMemorial, form, 1);
    EXPECT_EQ(form.frm21_tbl.highlighted, 1);
    openDeceasedMemorial(form, context, desk);
    EXPECT_EQ(desk.opened.back().screen, u"法要明"_s);
    EXPECT_EQ(desk.opened.back().how, desk::Opening::modal);
    EXPECT_EQ(context.hoy_kaiki_yymd, QDate(1849, 2, 1));
    execute(u"DELETE FROM tbl_hohyo WHERE tblhoy_kaiki_yymd < '1900-01-01'"_s);
    desk.opened.back().closed();
    EXPECT_EQ(form.frm21_tbl.rows.size(), 1U);
}

TEST_F(MemorialLists, TheHouseholdsMemorialsReturnToTheFirstPage) {
    const QString title = u"檀家法要一覧"_s;
    const QString none = u"照会の檀家に法要はありません。登録内容を確認して下さい"_s;
    context.publishHousehold(7);
    法要檀Form empty;
    desk.expect(none, title);
    openHouseholdMemorials(empty, context, desk);
    EXPECT_EQ(empty.frm21_dankag.text + empty.frm21_toshug.text + empty.frm21_bikou.text, u"山田山田　太郎檀家備考"_s);
    context.publishHousehold(9);
    法要檀Form unknown;
    desk.expect(noHousehold, title);
    desk.expect(none, title);
    openHouseholdMemorials(unknown, context, desk);

    addDaily(31, {2027, 1, 1}, true);
    add({u"古い"_s, u"1590-01-01"_s, u"1590-01-01"_s, u"2"_s, 1, 0, u"1590-01-02"_s});
    add({u"他家"_s, u"2027-01-01"_s, {}, {}, 0, 0, {}, {}, 8});
    context.publishHousehold(7);
    法要檀Form form;
    openHouseholdMemorials(form, context, desk);
    EXPECT_EQ(column(form.frm21_tbl, 0).size(), 30);
    EXPECT_EQ(cells(form.frm21_tbl, 1),
              u"古い|釈|3回忌|天正18年1月1日|済|天正18年1月2日|本堂|施主|||備考|1590/01/01"_s);
    EXPECT_EQ(cells(form.frm21_tbl, 2), u"001|||令和9年1月1日|予||||令和9年1月1日|AM 10：00||2027/01/01"_s);
    nextHouseholdMemorials(form, context, desk);
    EXPECT_EQ(column(form.frm21_tbl, 0), QStringList({u"029"_s, u"030"_s, u"031"_s}));
    openHouseholdMemorial(form, context, desk);
    EXPECT_TRUE(desk.opened.empty()); // nothing clicked yet
    click(clickHouseholdMemorial, form, 2);
    context.publishHousehold(8);
    openHouseholdDeceased(form, context, desk);
    EXPECT_EQ(desk.opened.back().how, desk::Opening::modeless);
    EXPECT_EQ(context.dnk_no1, 7);
    context.kak_zokunamek = u"カナ"_s;
    openHouseholdMemorial(form, context, desk);
    EXPECT_EQ(desk.opened.back().screen, u"法要明"_s);
    EXPECT_EQ(context.dnk_nameg + context.kak_zokunameg + context.kak_zokunamek, u"山田030"_s);
    EXPECT_EQ(context.hoy_kaiki_yymd, QDate(2027, 1, 30));
    desk.opened.back().closed();
    EXPECT_EQ(column(form.frm21_tbl, 0).front(), u"古い"_s);
    desk.expect(outOfRange, title);
    click(clickHouseholdMemorial, form, 0);
}

// --- 法要通

class Notices : public MemorialLists {
  protected:
    const QString title = u"法要通知"_s;
    const QString nothing = u"法要予定はありません"_s;
    法要通Form form;
    TestPrinter printer;

    QString marked() {
        return query(u"SELECT tblhoy_zokunameg || tblhoy_tsuchi_ymd FROM tbl_hohyo WHERE tblhoy_tsuchi_s = 1 "
                     "ORDER BY tblhoy_kaiki_yymd"_s);
    }
    void show(const QString& from, const QString& to) {
        form.frm02_from.text = from;
        form.frm02_to.text = to;
        showNotices(form, context, desk);
    }
};

TEST_F(Notices, ListPrintAndMarkTheSameMemorialsOnce) {
    add({u"初日"_s, u"2026-11-22"_s});
    add({u"末日"_s, u"2027-11-22"_s});
    add({u"翌日"_s, u"2027-11-23"_s});
    add({u"予約"_s, u"2026-12-01"_s, u"2026-12-01"_s});
    add({u"実施"_s, u"2026-12-02"_s, {}, {}, 0, 0, u"2026-11-01"_s});
    add({u"通知"_s, u"2026-12-03"_s, {}, {}, 0, 0, {}, u"2026-10-01"_s});
    add({u"家無"_s, u"2026-12-04"_s, {}, {}, 0, 0, {}, {}, 8});
    openNotices(form, context, desk);
    EXPECT_EQ(form.frm02_from.text + form.frm02_to.text, u"2026/11/222027/11/22"_s);
    desk.expect(noHousehold, title);
    showNotices(form, context, desk);
    EXPECT_EQ(column(form.frm21_tbl, 2), QStringList({u"初日"_s, u"家無"_s, u"末日"_s}));
    EXPECT_EQ(cells(form.frm21_tbl, 1),
              u"7|山田|初日|3回忌|令和8年11月22日|山田　太郎|寺前1丁目2-3|03-1234-5678|檀家備考"_s);
    EXPECT_EQ(cells(form.frm21_tbl, 2), u"8|山田|家無|3回忌|令和8年12月4日||||"_s);

    // A preview or a printer that fails marks nothing.
    desk.expect(noHousehold, u"宛名印刷"_s);
    previewNotices(form, printer, desk);
    printer.refusal = u"紙詰まり"_s;
    desk.expect(noHousehold, u"宛名印刷"_s);
    desk.expect(u"紙詰まり"_s, u"宛名印刷"_s);
    notifyRange(form, printer, desk);
    EXPECT_EQ(marked(), u"通知2026-10-01"_s);

    printer.refusal.clear();
    desk.expect(noHousehold, u"宛名印刷"_s);
    notifyRange(form, printer, desk);
    ASSERT_EQ(printer.jobs.size(), 2U);
    EXPECT_EQ(printer.jobs[0].front().size(), printer.jobs[1].front().size());
    EXPECT_EQ(printer.lines(1, 5).size(), 2);
    EXPECT_EQ(marked(), u"初日2026-11-22|通知2026-10-01|家無2026-11-22|末日2026-11-22"_s);
    EXPECT_EQ(form.frm21_tbl.rows.size(), 3U); // not filled again

    notifyRange(form, printer, desk); // the same range again: nothing left to print or mark
    EXPECT_EQ(printer.jobs.size(), 2U);
    desk.expect(u"印刷する宛名はありません。"_s, u"宛名印刷"_s);
    previewNotices(form, printer, desk);
}

TEST_F(Notices, SayTwiceThatNothingLiesAhead) {
    add({u"過去"_s, u"2026-11-21"_s});
    openNotices(form, context, desk);
    desk.expect(nothing, title);
    showNotices(form, context, desk);
    desk.expect(nothing, u"宛名印刷"_s);
    desk.expect(nothing, title);
    notifyRange(form, printer, desk);
    EXPECT_EQ(marked(), QString());
}

TEST_F(Notices, MarkAllOrNone) {
    addDaily(3, {2026, 12, 1}, false);
    execute(u"CREATE TRIGGER full BEFORE UPDATE ON tbl_hohyo WHEN NEW.tblhoy_zokunameg = '003' "
            "BEGIN SELECT RAISE(FAIL, 'disk full'); END"_s);
    openNotices(form, context, desk);
    EXPECT_ANY_THROW(notifyRange(form, printer, desk));
    EXPECT_EQ(marked(), QString());
}

TEST_F(Notices, FollowTheRangeOverCenturies) {
    for (const auto& [from, to] : {std::pair{u"2029/12/31"_s, u"2031/1/1"_s},
                                   {u"1999/12/31"_s, u"2000/1/1"_s},
                                   {u"2099/12/31"_s, u"2100/1/1"_s}}) {
        const auto day = [](const QString& text, int more) {
            return QDate::fromString(text, u"yyyy/M/d"_s).addDays(more).toString(Qt::ISODate);
        };
        execute(u"DELETE FROM tbl_hohyo"_s);
        add({u"前"_s, day(from, -1)});
        add({u"初"_s, day(from, 0)});
        add({u"末"_s, day(to, 0)});
        add({u"後"_s, day(to, 1)});
        openNotices(form, context, desk);
        show(from, to);
        EXPECT_EQ(column(form.frm21_tbl, 2), QStringList({u"初"_s, u"末"_s})) << from.toStdString();
    }
}

TEST_F(Notices, StartEachShowingFromTheEmptyName) {
    addDaily(31, {2026, 12, 1}, false);
    add({u"000"_s, u"2026-12-30"_s});
    openNotices(form, context, desk);
    showNotices(form, context, desk);
    nextNotices(form, context, desk); // from (30 December, "030"): earlier names of the day are passed over
    EXPECT_EQ(column(form.frm21_tbl, 2), QStringList({u"030"_s, u"000"_s, u"031"_s}));
    show(u"2026/12/30"_s, u"2027/1/1"_s);
    EXPECT_EQ(column(form.frm21_tbl, 2).size(), 3);
}

TEST_F(Notices, TestTheEndAgainWhenTheStartIsLeft) {
    openNotices(form, context, desk);
    form.frm02_from.text = u"2028/1/1"_s;
    desk.expect(wrongEnd, title);
    leaveNoticesFrom(form, context, desk);
    EXPECT_EQ(form.frm02_from.colour, desk::Colour::black);
    EXPECT_EQ(form.frm02_to.colour, desk::Colour::red);
    desk.expect(wrongEnd, title);
    showNotices(form, context, desk);
    form.frm02_to.text = u"2028/1/1"_s;
    leaveNoticesTo(form, context, desk);
    EXPECT_EQ(form.to, QDate(2028, 1, 1));
    form.frm02_from.text = u"いつか"_s;
    desk.expect(wrongStart, title);
    showNotices(form, context, desk);
    EXPECT_EQ(form.from, QDate(2028, 1, 1));
}

TEST_F(Notices, OpenDeceasedAndHousehold) {
    addDaily(1, {2026, 12, 1}, false);
    openNotices(form, context, desk);
    showNotices(form, context, desk);
    openNoticeDeceased(form, context, desk);
    openNoticeHousehold(form, context, desk);
    EXPECT_TRUE(desk.opened.empty());
    click(clickNotice, form, 1);
    openNoticeDeceased(form, context, desk);
    EXPECT_EQ(context.dnk_no1, 7);
    EXPECT_EQ(context.dnk_nameg + context.dnk_kbn + context.kak_zokunameg, u"山田檀家001"_s);
    EXPECT_EQ(context.hoy_kaiki_yymd, QDate(2026, 12, 1));
    openNoticeHousehold(form, context, desk);
    EXPECT_EQ(context.kak_zokunameg, QString());
    for (const auto& [opened, name] : {std::pair{0U, u"過去登"_s}, {1U, u"檀家登"_s}}) {
        EXPECT_EQ(desk.opened.at(opened).screen, name);
        EXPECT_EQ(desk.opened.at(opened).how, desk::Opening::modeless);
    }
}

} // namespace
