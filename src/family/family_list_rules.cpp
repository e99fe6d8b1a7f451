#include "family/family_list_rules.h"

#include "calendar/eras.h"
#include "values/dates.h"

using namespace Qt::StringLiterals;

namespace family {

namespace {

QString ofLiving(const FamilyLine& line, const QString& text) {
    return line.living() ? text : QString();
}

desk::ListDescription<FamilyLine, Position> description() {
    using Line = const FamilyLine&;
    return {
        .title = u"家族一覧"_s,
        .nothing = u"照会の家族情報は登録されていません"_s,
        .columns = {{u"当主"_s, 600,
                     [](Line line) {
                         return ofLiving(line, line.member.tblkzk_zokugara == store::codes::head ? u"当主"_s : u""_s);
                     }},
                    {u"氏名"_s, 1400, [](Line line) { return line.member.tblkzk_nameg; }},
                    {u"続柄"_s, 600, [](Line line) { return line.member.tblkzk_zokugara; }},
                    {u"生死"_s, 600, [](Line line) { return line.living() ? u""_s : u"死"_s; }},
                    {u"生年月日"_s, 1600,
                     [](Line line) {
                         const auto& member = line.member;
                         return ofLiving(line, calendar::eraText(member.tblkzk_sei_gname, member.tblkzk_sei_gyy,
                                                                 member.tblkzk_sei_gmm, member.tblkzk_sei_gdd));
                     }},
                    {u"年齢"_s, 500, [](Line line) { return ofLiving(line, QString::number(line.age)); },
                     desk::Align::right, desk::Align::right},
                    {u"同居"_s, 600,
                     [](Line line) {
                         return ofLiving(line,
                                         line.member.tblkzk_dohkyokbn == store::codes::inHouse ? u"同"_s : u"別"_s);
                     }},
                    {u"住所"_s, 2500,
                     [](Line line) {
                         return ofLiving(line, line.member.tblkzk_dohkyokbn == store::codes::inHouse
                                                   ? QString()
                                                   : line.member.tblkzk_jusho1);
                     }},
                    {u"備考"_s, 2500, [](Line line) { return line.member.tblkzk_bikou; }}},
        .key =
            [](Line line) {
                return Position{line.member.tblkzk_sei_ymd, line.member.tblkzk_nameg};
            },
        .complete =
            [](std::vector<FamilyLine>& page, desk::Desk& desk) {
                for (FamilyLine& line : page)
                    line.age = desk.today().year() - line.member.tblkzk_sei_ymd.year();
            },
        .exists =
            [](Line line) {
                store::Database database;
                const auto& member = line.member;
                return store::find(database, store::idxkzk_kazoku, member.tblkzk_no1, member.tblkzk_dnknameg,
                                   member.tblkzk_nameg)
                    .has_value();
            },
    };
}

} // namespace

家族一Form::家族一Form() : ListForm(description(), {QDate(values::firstYear, 1, 1), u""_s}) {}

bool 家族一Form::read(const Position& from, const Take& take) const {
    return readFrom(from, household.dnk_no1,
                    {"tbl_kazoku.tblkzk_no1", "tbl_kazoku.tblkzk_sei_ymd", "tbl_kazoku.tblkzk_nameg"},
                    &store::tbl_kazoku::tblkzk_sei_ymd, &store::tbl_kazoku::tblkzk_nameg,
                    [&](const store::tbl_kazoku& row) { return take({row}); });
}

void beginFamilyList(家族一Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    if (context.dnk_no1 == 0)
        return;
    showHousehold(form, context, desk, form.list.title());
    form.showFirstPage(desk);
}

void openMember(家族一Form& form, desk::ScreenContext& context, desk::Desk& desk) {
    const FamilyLine* line = form.list.selected();
    if (!line)
        return;
    // The line's own key: its copy of the household's name may be older than the household.
    const store::tbl_kazoku& member = line->member;
    if (line->living()) {
        context.dnk_nameg = member.tblkzk_dnknameg;
        context.dnk_namek = member.tblkzk_dnknamek;
        context.kzk_nameg = member.tblkzk_nameg;
        form.open(u"家族登"_s, desk);
    } else {
        context.nameDeceased(member.tblkzk_dnknameg, member.tblkzk_nameg);
        form.open(u"過去登"_s, desk);
    }
}

} // namespace family
