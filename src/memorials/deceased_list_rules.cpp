#include "memorials/deceased_list_rules.h"

#include "memorials/listed_memorial.h"
#include "memorials/service_form.h"
#include "store/row_rules.h"
#include "store/table.h"
#include "values/dates.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace memorials {

namespace {

const QString title = u"法要 記録"_s;
constexpr int rowsAtLeast = 20;

const std::vector<MemorialColumn>& columns() {
    static const std::vector<MemorialColumn> all{
        {u"回忌名"_s, 1500, [](ListedRow row) { return row.tblhoy_kaiki_mei; }},
        {u"回忌日"_s, 1600, [](ListedRow row) { return row.scheduledEra; }},
        {u"法要日"_s, 1600, [](ListedRow row) { return row.heldEra; }},
        {u"通知日"_s, 1600, [](ListedRow row) { return row.noticeEra; }},
        {u"予約日"_s, 1600, [](ListedRow row) { return row.reservedEra; }},
        {u"開始時間"_s, 1200, [](ListedRow row) { return store::isReserved(row) ? startTimeText(row) : QString(); }},
        {u"施主"_s, 1500, [](ListedRow row) { return row.tblhoy_kaiki_seshug; }},
        {u"場所"_s, 1500, [](ListedRow row) { return row.tblhoy_kaiki_basho; }},
        {u"備考"_s, 2500, [](ListedRow row) { return row.tblhoy_bikou; }},
    };
    return all;
}

std::vector<ListedMemorial> memorialsOf(store::Database& database, const desk::ScreenContext& context) {
    std::vector<ListedMemorial> found;
    store::Table rows(database, store::idxhoy_hohyo);
    rows.seek(store::Seek::atOrAfter, context.dnk_no1, context.kak_zokunameg, QDate(values::firstYear, 1, 1));
    for (; !rows.eof() && rows.row().tblhoy_no == context.dnk_no1 && rows.row().tblhoy_danknameg == context.dnk_nameg &&
           rows.row().tblhoy_zokunameg == context.kak_zokunameg;
         rows.moveNext())
        found.push_back({rows.row()});
    return found;
}

void fill(store::Database& database, 法要個Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    std::vector<ListedMemorial> memorials = memorialsOf(database, context);
    calendar::EraTexts eras(database, desk);
    for (ListedMemorial& row : memorials)
        fillEraTexts(eras, row);
    // Nothing is read from here on: the list is shown whole or stays as it was.
    form.frm21_tbl.rows.clear();
    form.frm21_tbl.highlighted = 0;
    form.scheduled.clear();
    for (const ListedMemorial& row : memorials) {
        QStringList& cells = form.frm21_tbl.rows.emplace_back();
        for (const MemorialColumn& column : columns())
            cells << column.cell(row);
        form.scheduled.push_back(row.tblhoy_kaiki_yymd);
    }
    form.frm21_tbl.inSight = desk::firstDue(memorials, isDue, desk.today());
    form.count();
    if (form.selected.isValid() && std::ranges::find(form.scheduled, form.selected) == form.scheduled.end()) {
        form.selected = {};
        static_cast<desk::MemorialBlock&>(context) = {};
    }
    if (memorials.empty())
        desk.notify(u"照会者の法要は登録されていません"_s, title);
}

} // namespace

void beginDeceasedMemorials(法要個Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    store::Database database;
    form.handedOver = context.kak_handedOver;
    const auto entry = form.handedOver ? std::nullopt : readEntry(database, context);
    if (entry)
        context.publishDeceased(*entry);
    if (entry || form.handedOver) {
        form.frm21_dankag.text = context.dnk_nameg;
        form.frm21_zoknameg.text = context.kak_zokunameg;
        form.frm21_zoknamek.text = context.kak_zokunamek;
        form.frm21_kaimyog.text = context.kak_kaimyoug;
        form.frm21_kaimyok.text = context.kak_kaimyouk;
        form.frm21_meigymd.text = entry ? deathText(*entry) : QString();
        if (form.frm21_meigymd.text.isEmpty())
            form.frm21_meigymd.text = calendar::eraText(database, context.kak_mei_ymd, desk);
        form.frm21_kyounen.text = QString::number(context.kak_kyounen);
        form.frm21_bikou.text = context.kak_bikou;
    } else {
        desk.notify(registerEntryMissing, u"過去帳登録"_s);
    }
    form.frm21_tbl.blankRows = rowsAtLeast;
    for (const MemorialColumn& column : columns())
        form.frm21_tbl.columns.push_back({column.header, column.twips});
    fill(database, form, context, desk);
}

std::optional<desk::AskedRecord> askedDeceased(const desk::ScreenContext& context) {
    if (context.dnk_no1 == 0 || context.kak_zokunameg.isEmpty())
        return {};
    return desk::AskedRecord{desk::keyText(context.dnk_no1, context.dnk_nameg, context.kak_zokunameg),
                             QString::number(context.dnk_no1) + u' ' + context.kak_zokunameg};
}

void 法要個Form::click(desk::ScreenContext& context, desk::Desk& desk) {
    const int row = frm21_tbl.clickedRow;
    selected = {};
    if (row < 1 || row > static_cast<int>(scheduled.size())) {
        desk.notify(u"有功範囲外を指定しています。やり直して下さい"_s, title);
        return;
    }
    frm21_tbl.highlighted = row;
    selected = context.hoy_kaiki_yymd = scheduled[static_cast<std::size_t>(row - 1)];
}

void openDeceasedMemorial(法要個Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    if (!form.selected.isValid())
        return;
    context.hoy_kaiki_yymd = form.selected;
    context.kak_handedOver = form.handedOver;
    desk.open(u"法要明"_s, desk::Opening::modal, [&form, &context, &desk] {
        store::Database database;
        fill(database, form, context, desk);
    });
}

} // namespace memorials
