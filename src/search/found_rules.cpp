#include "search/found_rules.h"

#include "store/row_rules.h"

using namespace Qt::StringLiterals;

namespace search {

namespace {

template <class Row> std::optional<Row> rowAt(store::Database& database, qint64 rowid) {
    const auto rows = store::selectAll<Row>(database, "WHERE rowid = ?", rowid);
    return rows.empty() ? std::nullopt : std::optional<Row>(rows.front());
}

// Names what was found in the context; the screen that shows it, or none where the row is not the one that was found.
QString publish(Kind kind, const desk::FoundLine& line, desk::ScreenContext& context) {
    store::Database database;
    const auto named = [&line](std::int16_t number, const QString& name) {
        return line.number.section(u'-', 0, 0) == QString::number(number) && line.name.startsWith(name);
    };
    switch (kind) {
    case Kind::household: {
        const auto row = rowAt<store::tbl_danka>(database, line.rowid);
        if (!row || !named(row->tbldnk_no1, row->tbldnk_nameg))
            return {};
        context.G初期値();
        context.dnk_no1 = row->tbldnk_no1;
        context.dnk_no2 = row->tbldnk_no2;
        context.dnk_nameg = row->tbldnk_nameg;
        context.dnk_branchNamed = true;
        return u"檀家登"_s;
    }
    case Kind::member:
    case Kind::departed: {
        const auto row = rowAt<store::tbl_kazoku>(database, line.rowid);
        if (!row || !named(row->tblkzk_no1, row->tblkzk_nameg))
            return {};
        context.G初期値();
        context.dnk_no1 = row->tblkzk_no1;
        context.dnk_nameg = row->tblkzk_dnknameg;
        context.dnk_namek = row->tblkzk_dnknamek;
        context.kzk_nameg = row->tblkzk_nameg;
        return u"家族登"_s;
    }
    case Kind::grave: {
        const auto row = rowAt<store::tbl_ohaka>(database, line.rowid);
        if (!row || !named(row->tblhak_no, row->tblhak_bohyo_mei))
            return {};
        context.G初期値();
        context.publishHousehold(row->tblhak_dnk_no);
        context.hak_no = row->tblhak_no;
        return row->tblhak_dnk_no == store::codes::noHousehold ? u"お墓新"_s : u"お墓登"_s;
    }
    case Kind::death:
        break;
    }
    const auto row = rowAt<store::tbl_kakocho>(database, line.rowid);
    if (!row || !named(row->tblkak_no, row->tblkak_zokunameg))
        return {};
    context.G初期値();
    context.publishDeceased(*row);
    return u"過去登"_s;
}

} // namespace

void openFound(Kind kind, const desk::FoundLine& line, desk::ScreenContext& context, desk::Desk& desk) {
    const QString screen = publish(kind, line, context);
    if (screen.isEmpty())
        desk.notify(u"この記録は変更されたか、削除されています。もう一度探して下さい。"_s, u"さがす"_s);
    else
        desk.open(screen);
}

} // namespace search
