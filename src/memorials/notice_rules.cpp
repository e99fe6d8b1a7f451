#include "memorials/notice_rules.h"

#include "calendar/date_range.h"
#include "calendar/eras.h"
#include "memorials/notice_runs.h"
#include "memorials/schedule_rules.h"
#include "printing/address_label_rules.h"
#include "store/row_rules.h"
#include "store/table.h"
#include "values/dates.h"

#include <algorithm>
#include <map>
#include <utility>

using namespace Qt::StringLiterals;

namespace memorials {

namespace {

using printing::LabelMode;

const QString title = u"法要通知"_s;
const QString noMemorial = u"法要予定はありません"_s;
const QString labelsAreOut =
    u"\n\n宛名は出力済みですが、通知済みの記録は出来ませんでした。もう一度通知処理を行うと、同じ宛名が再び出力されます。"_s;

std::vector<MemorialColumn> columns() {
    using desk::Align;
    return {
        {u"檀家NO"_s, 800, [](ListedRow row) { return QString::number(row.tblhoy_no); }, Align::right, Align::right},
        {u"檀家名"_s, 1000, [](ListedRow row) { return row.tblhoy_danknameg; }},
        {u"俗名"_s, 1400, [](ListedRow row) { return row.tblhoy_zokunameg; }},
        {u"回忌名"_s, 1400, [](ListedRow row) { return row.tblhoy_kaiki_mei; }},
        {u"回忌日"_s, 1600, [](ListedRow row) { return row.scheduledEra; }},
        {u"当主"_s, 1400, householdText(&store::tbl_danka::tbldnk_toshug)},
        {u"住所"_s, 2500, householdText(&store::tbl_danka::tbldnk_jyusho1)},
        {u"TEL"_s, 1600, householdText(&store::tbl_danka::tbldnk_tel)},
        {u"備考"_s, 2500, householdText(&store::tbl_danka::tbldnk_bikou)},
    };
}

bool checkTo(法要通Form& form, desk::Desk& desk) {
    const auto to = calendar::checkRangeEnd(form.frm02_to, form.from, title, desk);
    form.to = to.value_or(form.to);
    return to.has_value();
}

// A new start is tested against the end at once.
bool checkFrom(法要通Form& form, desk::Desk& desk) {
    const auto from = calendar::checkRangeStart(form.frm02_from, title, desk);
    form.from = from.value_or(form.from);
    return from && checkTo(form, desk);
}

// The memorials that a run prints and marks.
std::vector<NotifiedRow> chosenRows(const 法要通Form& form) {
    store::Database database;
    store::Table memorials(database, store::idxhoy_yymd);
    memorials.seek(store::Seek::atOrAfter, form.from);
    std::vector<NotifiedRow> chosen;
    for (; !memorials.eof() && memorials.row().tblhoy_kaiki_yymd <= form.to; memorials.moveNext()) {
        if (store::isOpenForNotice(memorials.row()) && form.choice->takes(memorials.row()))
            chosen.push_back(NotifiedRow::of(memorials.row()));
    }
    return chosen;
}

const std::string ofRow = " WHERE tblhoy_no = ? AND tblhoy_zokunameg = ? AND tblhoy_kaiki_yymd = ? AND ";

void bindRow(SQLite::Statement& statement, int at, const NotifiedRow& row) {
    store::bindValue(statement, at, row.household);
    store::bindValue(statement, at + 1, row.deceased);
    store::bindValue(statement, at + 2, row.scheduled);
}

// Marks those that are still open for notice, all or none; gives them.
std::vector<NotifiedRow> markNotified(const std::vector<NotifiedRow>& rows, QDate day) {
    std::vector<NotifiedRow> marked;
    store::Database database;
    store::Write write(database);
    SQLite::Statement mark(database.engine(), "UPDATE tbl_hohyo SET tblhoy_tsuchi_s = ?, tblhoy_tsuchi_ymd = ?" +
                                                  ofRow + store::isOpenForNotice.sql());
    for (const NotifiedRow& row : rows) {
        store::bindValue(mark, 1, store::codes::yes);
        store::bindValue(mark, 2, day);
        bindRow(mark, 3, row);
        if (mark.exec() > 0)
            marked.push_back(row);
        mark.reset();
    }
    write.commit();
    return marked;
}

// Still as a run of that day left them.
std::string stillMarked() {
    return "tblhoy_tsuchi_ymd = ? AND " + store::isNotified.sql() + " AND NOT " + store::isReserved.sql() +
           " AND NOT " + store::isHeld.sql();
}

int countMarked(store::Database& database, const NoticeRun& run) {
    int marked = 0;
    SQLite::Statement look(database.engine(), "SELECT 1 FROM tbl_hohyo" + ofRow + stillMarked());
    for (const NotifiedRow& row : run.rows) {
        bindRow(look, 1, row);
        store::bindValue(look, 4, run.day);
        marked += look.executeStep() ? 1 : 0;
        look.reset();
    }
    return marked;
}

int unmark(store::Database& database, const NoticeRun& run) {
    int unmarked = 0;
    SQLite::Statement mark(database.engine(), "UPDATE tbl_hohyo SET tblhoy_tsuchi_s = ?, tblhoy_tsuchi_ymd = NULL" +
                                                  ofRow + stillMarked());
    for (const NotifiedRow& row : run.rows) {
        store::bindValue(mark, 1, store::codes::no);
        bindRow(mark, 2, row);
        store::bindValue(mark, 5, run.day);
        unmarked += mark.exec();
        mark.reset();
    }
    return unmarked;
}

// The record of a run. It is written, open, before anything is printed, and closed once the marks are in the register:
// whatever happens in between leaves an open run, which is never taken back where a mark of its day is found.
class RecordedRun {
  public:
    RecordedRun(std::vector<NotifiedRow> rows, QDate day) : run_{day, std::move(rows), true} {
        if (run_.rows.empty())
            return;
        try {
            change([this](std::vector<NoticeRun>& runs) { runs.push_back(run_); });
        } catch (const std::exception& failure) {
            throw store::Error(0, store::explain(failure) + u"\n\n宛名は印刷していません。何も記録していません。"_s);
        }
    }

    const std::vector<NotifiedRow>& rows() const { return run_.rows; }

    // Nothing was marked. A record that stays open then does no harm.
    void drop() noexcept {
        try {
            if (!run_.rows.empty())
                change([](std::vector<NoticeRun>& runs) { runs.pop_back(); });
        } catch (const std::exception&) {
            return;
        }
    }

    void close(std::vector<NotifiedRow> marked) {
        if (!run_.rows.empty())
            change([&](std::vector<NoticeRun>& runs) {
                runs.back().open = false;
                runs.back().rows = std::move(marked);
            });
    }

  private:
    template <class Change> void change(Change change) {
        store::Database database;
        const store::Write alone(database);
        std::vector<NoticeRun> runs = noticeRuns();
        const bool ours = !runs.empty() && runs.back().open && runs.back() == run_;
        if (written_ && !ours)
            throw store::Error(0, u"通知処理の記録が、ほかのプログラムによって変わりました。"_s);
        change(runs);
        keepNoticeRuns(std::move(runs));
        written_ = true;
    }

    const NoticeRun run_;
    bool written_ = false;
};

// Anniversaries of the open memorials in the range, in the order of their years; other services behind.
std::vector<desk::LabelBlock::Offered> anniversariesDue(const 法要通Form& form) {
    std::map<QString, int> due;
    store::Database database;
    store::Selection<store::tbl_hohyo> memorials(
        database, "WHERE tblhoy_kaiki_yymd BETWEEN ? AND ? AND " + store::isOpenForNotice.sql(), form.from, form.to);
    while (memorials.next())
        ++due[memorials.row().tblhoy_kaiki_mei];
    std::vector<desk::LabelBlock::Offered> offered;
    for (const Anniversary& anniversary : AnniversaryTable) {
        if (const auto found = due.extract(QStringView(anniversary.label).toString()); !found.empty())
            offered.push_back({found.key(), found.mapped()});
    }
    for (const auto& [name, count] : due)
        offered.push_back({name, count});
    return offered;
}

} // namespace

法要通Form::法要通Form(std::shared_ptr<printing::LabelChoice> shared)
    : ListForm({.title = title,
                .nothing = noMemorial,
                .columns = columns(),
                .ticks = {printing::labelTicks<ListedMemorial>(shared)},
                .key =
                    [](ListedRow row) {
                        return NoticeKey{row.tblhoy_kaiki_yymd, row.tblhoy_zokunameg, MemorialTie::of(row)};
                    },
                .place =
                    [](const NoticeKey& key) {
                        return NoticeKey{key.scheduled, key.deceased, {}};
                    },
                .listed = store::isOpenForNotice,
                .complete = [](std::vector<ListedMemorial>& page,
                               desk::Desk& desk) { fillEraTextsAndHouseholds(page, title, desk); },
                .exists = [](ListedRow row) { return memorialExists(row); }},
               {}),
      choice(std::move(shared)) {}

// A day's open memorials are few: they are put in order here, which costs less than to have all of its rows sorted
// whole.
bool 法要通Form::read(const NoticeKey& key, const Take& take) const {
    store::Database database;
    store::Selection<store::tbl_hohyo> rows(database,
                                            "WHERE (tbl_hohyo.tblhoy_kaiki_yymd >= ?) And "
                                            "(tbl_hohyo.tblhoy_kaiki_yymd <= ?) "
                                            "ORDER BY tbl_hohyo.tblhoy_kaiki_yymd ASC ;",
                                            std::max(from, key.scheduled), to);
    // The names' order is the register's: by code point.
    const QByteArray name = key.deceased.toUtf8();
    const auto isFrom = [&](const store::tbl_hohyo& row) {
        const bool before = key.tie && row.tblhoy_kaiki_yymd == key.scheduled && MemorialTie::of(row) < *key.tie;
        return row.tblhoy_zokunameg.toUtf8() >= name && !before;
    };
    QDate day;
    std::vector<store::tbl_hohyo> open;
    const auto handOn = [&] {
        std::ranges::sort(
            open, [](const auto& one, const auto& other) { return MemorialTie::of(one) < MemorialTie::of(other); });
        return std::ranges::all_of(std::exchange(open, {}), [&](const auto& row) { return take({row}); });
    };
    bool found = false;    // on a day before
    bool foundNow = false; // from there on, or on this day
    while (rows.next()) {
        const store::tbl_hohyo& row = rows.row();
        if (row.tblhoy_kaiki_yymd != day) {
            if (!handOn())
                return true;
            day = row.tblhoy_kaiki_yymd;
            found = foundNow;
        }
        const bool wanted = found || isFrom(row);
        foundNow = foundNow || wanted;
        if (wanted && store::isOpenForNotice(row))
            open.push_back(row);
    }
    handOn();
    return foundNow;
}

int 法要通Form::total() const {
    store::Database database;
    return store::countRows<store::tbl_hohyo>(
        database, "WHERE tblhoy_kaiki_yymd BETWEEN ? AND ? AND " + store::isOpenForNotice.sql(),
        std::max(from, list.start().scheduled), to);
}

void beginNotices(法要通Form& form, desk::ScreenContext&, desk::Desk& desk) {
    form.from = desk.today();
    form.to = form.from.addYears(1);
    form.frm02_from.text = values::dateText(form.from);
    form.frm02_to.text = values::dateText(form.to);
}

void leaveNoticesFrom(法要通Form& form, desk::ScreenContext&, desk::Desk& desk) {
    checkFrom(form, desk);
}

void leaveNoticesTo(法要通Form& form, desk::ScreenContext&, desk::Desk& desk) {
    checkTo(form, desk);
}

void showNotices(法要通Form& form, desk::ScreenContext&, desk::Desk& desk) {
    if (!checkFrom(form, desk))
        return;
    form.list.setStart({form.from, {}, {}});
    form.showFirstPage(desk);
}

void openNoticeDeceased(法要通Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    const ListedMemorial* row = form.list.selected();
    if (!row)
        return;
    publishMemorial(*row, context);
    desk.open(u"過去登"_s);
}

void openNoticeHousehold(法要通Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    const ListedMemorial* row = form.list.selected();
    if (!row)
        return;
    context.G初期値();
    context.publishHousehold(row->tblhoy_no);
    desk.open(u"檀家登"_s);
}

void setUpNotices(法要通Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    desk::LabelBlock asked;
    asked.lbl_memorials = true;
    asked.lbl_offered = anniversariesDue(form);
    printing::openLabelSettings(*form.choice, std::move(asked), context, desk,
                                [&form] { form.list.showTicks(form.frm21_tbl); });
}

void notifyRange(法要通Form& form, printing::LabelPrinter& printer, desk::Desk& desk) {
    using printing::LabelOutcome;
    RecordedRun run(chosenRows(form), desk.today());
    auto outcome = LabelOutcome::failed;
    try {
        outcome = printing::宛名出力(form.from, form.to, LabelMode::memorials, printer, desk, *form.choice);
    } catch (...) {
        run.drop();
        throw;
    }
    if (outcome == LabelOutcome::failed || outcome == LabelOutcome::noneChosen) {
        run.drop();
        return;
    }
    if (outcome == LabelOutcome::noRecord) {
        desk.notify(noMemorial, title);
        return;
    }
    std::vector<NotifiedRow> marked;
    try {
        marked = markNotified(run.rows(), desk.today());
    } catch (const std::exception& failure) {
        run.drop();
        if (outcome != LabelOutcome::handedOver)
            throw;
        throw store::Error(0, store::explain(failure) + labelsAreOut);
    }
    printing::startAnew(*form.choice, desk);
    try {
        run.close(std::move(marked));
    } catch (const std::exception& failure) {
        desk.notify(u"通知済みの記録はしましたが、今回の分は通知取消で取り消せません。\n"_s + store::explain(failure),
                    title);
    }
}

namespace {

// No mark was taken back: the run can be tried again. Where that cannot be kept, it stays open, which is safe.
void closeAgain(const std::vector<NoticeRun>& runs) {
    try {
        keepNoticeRuns(runs);
    } catch (const std::exception&) {
        return;
    }
}

} // namespace

void takeBackNotices(法要通Form&, desk::ScreenContext&, desk::Desk& desk) {
    std::vector<NoticeRun> runs = noticeRuns();
    const std::vector<NoticeRun> read = runs;
    int marked = 0;
    {
        store::Database database;
        // An open run without a mark never came to its marks, or is taken back already.
        for (; !runs.empty(); runs.pop_back()) {
            marked = countMarked(database, runs.back());
            if (!runs.back().open || marked > 0)
                break;
        }
    }
    if (runs.empty()) {
        desk.notify(u"取り消せる通知処理はありません。"_s, title);
        return;
    }
    const QString day = values::dateText(runs.back().day);
    if (runs.back().open) {
        desk.notify(
            u"最後の通知処理（%1）は途中で止まったため、まとめて取り消せません。法要明細で1件ずつ直して下さい。"_s.arg(
                day),
            title);
        return;
    }
    if (marked == 0) {
        desk.notify(
            u"最後の通知処理（%1）の法要は、すべて予約済みか実施済みか、その後に変更されています。取り消すものはありません。"_s
                .arg(day),
            title);
        return;
    }
    QString question =
        u"%1の通知処理を取り消します。\n%2件の法要を通知前に戻します。よろしいですか？"_s.arg(day).arg(marked);
    if (const int others = static_cast<int>(runs.back().rows.size()) - marked; others > 0)
        question += u"\n（ほかの%1件は、予約や実施などでその後に変わったため、そのままです。）"_s.arg(others);
    if (!desk.ask(question, title, desk::Preset::no))
        return;
    int taken = 0;
    bool another = false;
    {
        store::Database database;
        store::Write write(database);
        another = noticeRuns() != read;
        if (!another) {
            // Open until the marks are gone: a run taken back halfway is never taken back twice.
            runs.back().open = true;
            keepNoticeRuns(runs);
            try {
                taken = unmark(database, runs.back());
                write.commit();
            } catch (...) {
                closeAgain(read);
                throw;
            }
        }
    }
    if (another) {
        desk.notify(u"その間に別の通知処理が行われました。もう一度やり直して下さい。"_s, title);
        return;
    }
    desk.inform(u"%1件の通知を取り消しました。表示を押すと一覧に戻ります。"_s.arg(taken));
    try {
        store::Database database;
        const store::Write alone(database);
        runs.pop_back();
        keepNoticeRuns(runs);
    } catch (const std::exception&) {
        return; // an open run without a mark is passed over
    }
}

void previewNotices(const 法要通Form& form, printing::LabelPrinter& preview, desk::Desk& desk) {
    printing::previewLabels(form.from, form.to, LabelMode::memorials, preview, desk, *form.choice);
}

} // namespace memorials
