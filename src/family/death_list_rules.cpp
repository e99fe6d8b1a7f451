#include "family/death_list_rules.h"

#include "calendar/eras.h"
#include "store/row_rules.h"
#include "values/dates.h"

using namespace Qt::StringLiterals;

namespace family {

namespace {

// The first memorial after the reference date that has not been held.
std::optional<store::tbl_hohyo> nextMemorial(store::Table<store::tbl_hohyo, std::int16_t, QString, QDate>& memorials,
                                             const DeathLine& line) {
    const auto& [number, name] = std::tie(line.death.tblkak_no, line.death.tblkak_zokunameg);
    memorials.seek(store::Seek::atOrAfter, number, name, QDate(values::firstYear, 1, 1));
    for (; !memorials.eof(); memorials.moveNext()) {
        const store::tbl_hohyo& row = memorials.row();
        if (row.tblhoy_no != number || row.tblhoy_danknameg != line.death.tblkak_dnknameg ||
            row.tblhoy_zokunameg != name)
            return {};
        if (row.tblhoy_kaiki_yymd > line.today && !store::isHeld(row))
            return row;
    }
    return {};
}

void addMemorials(std::vector<DeathLine>& lines, desk::Desk& desk) {
    store::Database database;
    for (DeathLine& line : lines) {
        std::optional<store::tbl_hohyo> next;
        {
            store::Table memorials(database, store::idxhoy_hohyo);
            next = nextMemorial(memorials, line);
        }
        if (!next)
            continue;
        calendar::EraDate era;
        calendar::西暦変換(database, next->tblhoy_kaiki_yymd, era, desk);
        line.memorial = next->tblhoy_kaiki_mei;
        line.memorialDate = era.full;
    }
}

desk::ListDescription<DeathLine, Position> description() {
    using Line = const DeathLine&;
    return {
        .title = u"過去帳一覧"_s,
        .nothing = u"照会の過去帳は登録されていません"_s,
        .columns = {{u"俗名"_s, 1400, [](Line line) { return line.death.tblkak_zokunameg; }},
                    {u"命日"_s, 1600,
                     [](Line line) {
                         const auto& death = line.death;
                         return calendar::eraText(death.tblkak_mei_gname, death.tblkak_mei_gyy, death.tblkak_mei_gmm,
                                                  death.tblkak_mei_gdd);
                     }},
                    {u"戒名"_s, 2000, [](Line line) { return line.death.tblkak_kaimyoug; }},
                    {u"享年"_s, 500,
                     [](Line line) {
                         return line.death.tblkak_kyounen ? QString::number(*line.death.tblkak_kyounen) : QString();
                     },
                     desk::Align::right, desk::Align::right},
                    {u"関係者"_s, 1400, [](Line line) { return line.death.tblkak_kankeisha; }},
                    {u"続柄"_s, 600, [](Line line) { return line.death.tblkak_zokugara; }},
                    {u"次回の法要"_s, 2000, [](Line line) { return line.memorial; }},
                    {u"次回の法要日"_s, 1600, [](Line line) { return line.memorialDate; }},
                    {u"備考"_s, 2500, [](Line line) { return line.death.tblkak_bikou; }}},
        .key =
            [](Line line) {
                return Position{line.death.tblkak_mei_ymd, line.death.tblkak_zokunameg};
            },
        .complete = addMemorials,
        .exists =
            [](Line line) {
                store::Database database;
                const auto& death = line.death;
                return store::find(database, store::idxkak_kakochou, death.tblkak_no, death.tblkak_dnknameg,
                                   death.tblkak_zokunameg)
                    .has_value();
            },
    };
}

void openDeceased(const QString& screen, 過去一Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    const DeathLine* line = form.list.selected();
    if (!line)
        return;
    context.publishDeceased(line->death);
    form.open(screen, desk);
}

} // namespace

過去一Form::過去一Form() : ListForm(description(), {QDate(values::firstYear, 1, 1), u" "_s}) {}

bool 過去一Form::read(const Position& from, const Take& take) const {
    return readFrom(from, household.dnk_no1,
                    {"tbl_kakocho.tblkak_no", "tbl_kakocho.tblkak_mei_ymd", "tbl_kakocho.tblkak_zokunameg"},
                    &store::tbl_kakocho::tblkak_mei_ymd, &store::tbl_kakocho::tblkak_zokunameg,
                    [&](const store::tbl_kakocho& row) {
                        return take({row, today, {}, {}});
                    });
}

void 過去一Form::chosen(const DeathLine& line, desk::ScreenContext& context) {
    context.publishDeceased(line.death);
}

void beginDeathList(過去一Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    form.today = desk.today();
    if (context.dnk_no1 == 0)
        return;
    showHousehold(form, context, desk, form.list.title());
    form.showFirstPage(desk);
}

void openMemorialsOfDeceased(過去一Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    openDeceased(u"法要個"_s, form, context, desk);
}

void openDeceased(過去一Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    openDeceased(u"過去登"_s, form, context, desk);
}

} // namespace family
