#include "family/death_list_rules.h"
#include "family/family_list_rules.h"
#include "support/register_fixture.h"
#include "support/test_desk.h"

using namespace Qt::StringLiterals;

namespace {

const QString familyTitle = u"家族一覧"_s;
const QString deathTitle = u"過去帳一覧"_s;
const QString outside = u"有功範囲外を指定しています。やり直して下さい"_s;
const QString noHousehold = u"指定された檀家を読めません。DBの整合性を確認して下さい"_s;

class HouseholdLists : public RegisterFixture {
  protected:
    HouseholdLists() {
        execute(uR"(
            INSERT INTO tbl_danka (tbldnk_no1, tbldnk_no2, tbldnk_nameg, tbldnk_namek, tbldnk_dnkkbn, tbldnk_yubin,
              tbldnk_jyusho1, tbldnk_tel, tbldnk_chiku, tbldnk_bikou, tbldnk_toshug) VALUES
              (7, 0, '山田', 'ヤマダ', '檀家', '100-0001', '寺前1', '03-1', '寺前地区', '役員', '太郎'))"_s);
        context.dnk_no1 = 7;
        context.dnk_nameg = u"山田"_s;
    }
    void addMember(const QString& name, const QString& birth, const QString& rest = u"'長男', '0', '0', '', ''"_s) {
        execute(u"INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_nameg, tblkzk_sei_ymd, tblkzk_sei_gname, "
                "tblkzk_sei_gyy, tblkzk_sei_gmm, tblkzk_sei_gdd, tblkzk_zokugara, tblkzk_dohkyokbn, tblkzk_seishikbn, "
                "tblkzk_jusho1, tblkzk_bikou) VALUES (7, '山田', '%1', %2, '昭和', 5, 12, 31, %3)"_s.arg(name, birth,
                                                                                                         rest));
    }
    void addDeath(const QString& name, const QString& death) {
        execute(u"INSERT INTO tbl_kakocho (tblkak_no, tblkak_dnknameg, tblkak_zokunameg, tblkak_mei_ymd, "
                "tblkak_mei_gname, tblkak_mei_gyy, tblkak_mei_gmm, tblkak_mei_gdd, tblkak_kyounen, tblkak_kaimyoug, "
                "tblkak_kankeisha, tblkak_zokugara, tblkak_bikou) VALUES "
                "(7, '山田', '%1', %2, '平成', 20, 2, 12, 80, '釋浄光', '太郎', '父', '備考')"_s.arg(name, death));
    }
    void addMemorial(const QString& household, const QString& name, const QString& label, const QString& day,
                     int held) {
        execute(u"INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_danknameg, tblhoy_zokunameg, tblhoy_kaiki_mei, "
                "tblhoy_kaiki_yymd, tblhoy_kaiki_s) VALUES (7, '%1', '%2', '%3', '%4', %5)"_s.arg(
                    household, name, label, day, QString::number(held)));
    }
    static QStringList column(const desk::Grid& grid, int column) {
        QStringList cells;
        for (int row = 1; row <= static_cast<int>(grid.rows.size()); ++row)
            cells += grid.cell(row, column);
        return cells;
    }

    family::家族一Form living;
    family::過去一Form dead;
};

} // namespace

TEST_F(HouseholdLists, FamilyListShowsEveryMemberWithABirthDateInOrder) {
    addMember(u"五郎"_s, u"'1950-06-01'"_s);
    addMember(u"ロ子"_s, u"'1930-12-31'"_s, u"'妻', '1', '0', '川端2', '遠方'"_s);
    addMember(u"イ郎''"_s, u"'1930-12-31'"_s, u"'本人', '0', '0', '寺前1', ''"_s);
    addMember(u"ハナ"_s, u"'1899-01-01'"_s, u"'本人', '1', '1', '寺前1', '故人'"_s);
    addMember(u"無日"_s, u"NULL"_s);
    TestDesk desk(today);
    family::openFamilyList(living, context, desk);
    const QStringList era = {u"昭和5年12月31日"_s};
    EXPECT_EQ(living.frm21_tbl.rows,
              (std::vector<QStringList>{
                  {u""_s, u"ハナ"_s, u"本人"_s, u"死"_s, u""_s, u""_s, u""_s, u""_s, u"故人"_s},
                  {u"当主"_s, u"イ郎'"_s, u"本人"_s, u""_s, era[0], u"96"_s, u"同"_s, u""_s, u""_s},
                  {u""_s, u"ロ子"_s, u"妻"_s, u""_s, era[0], u"96"_s, u"別"_s, u"川端2"_s, u"遠方"_s},
                  {u""_s, u"五郎"_s, u"長男"_s, u""_s, era[0], u"76"_s, u"同"_s, u""_s, u""_s},
              }));
    // The context had no address: the household is read from the file, into boxes and context alike.
    EXPECT_EQ(living.frm21_dankag.text, u"山田"_s);
    EXPECT_EQ(living.frm12_jyusho1.text, u"寺前1"_s);
    EXPECT_EQ(living.frm12_bikou.text, u"役員"_s);
    EXPECT_EQ(context.dnk_toshug, u"太郎"_s);
    desk.finish();

    // With an address in the context the file is not asked.
    context.dnk_jyusho1 = u"見出しの住所"_s;
    family::openFamilyList(living, context, desk);
    EXPECT_EQ(living.frm12_jyusho1.text, u"見出しの住所"_s);
}

TEST_F(HouseholdLists, FamilyListOpensTheMemberPickedAndStartsOverAfterwards) {
    for (int i = 0; i < 30; ++i)
        addMember(u"子%1"_s.arg(i, 2, 10, QChar(u'0')), u"'1960-01-01'"_s);
    addMember(u"末子"_s, u"'1990-01-01'"_s, u"'次男', '0', '1', '', ''"_s);
    TestDesk desk(today);
    family::openFamilyList(living, context, desk);
    family::showMember(living, context, desk); // nothing picked: nothing happens
    living.frm21_tbl.clickedRow = 31;
    desk.expect(outside, familyTitle);
    family::pickMember(living, context, desk);
    family::showMember(living, context, desk);
    EXPECT_TRUE(desk.opened.empty());

    family::nextFamilyPage(living, context, desk);
    EXPECT_EQ(column(living.frm21_tbl, 1), QStringList({u"子29"_s, u"末子"_s}));
    for (const auto& [row, screen] : {std::pair(1, u"家族登"_s), {2, u"過去登"_s}}) {
        family::nextFamilyPage(living, context, desk);
        living.frm21_tbl.clickedRow = row;
        family::pickMember(living, context, desk);
        EXPECT_EQ(living.frm21_tbl.highlighted, row);
        family::showMember(living, context, desk);
        EXPECT_EQ(desk.opened.back().screen, screen);
        EXPECT_EQ(desk.opened.back().how, desk::Opening::modal);
        execute(u"UPDATE tbl_kazoku SET tblkzk_bikou = '%1' WHERE tblkzk_nameg = '子00'"_s.arg(screen));
        desk.opened.back().closed();
        EXPECT_EQ(living.frm21_tbl.rows.size(), 30U);
        EXPECT_EQ(living.frm21_tbl.cell(1, 8), screen);
    }
    EXPECT_EQ(context.kzk_nameg, u"子29"_s);
    EXPECT_EQ(context.kak_zokunameg, u"末子"_s);
    family::previousFamilyPage(living, context, desk);
    EXPECT_EQ(living.frm21_tbl.cell(1, 1), u"子00"_s);
    desk.finish();
}

TEST_F(HouseholdLists, TellWhatIsMissing) {
    TestDesk desk(today);
    desk.expect(u"照会の家族情報は登録されていません"_s, familyTitle);
    family::openFamilyList(living, context, desk);
    desk.expect(u"照会の過去帳は登録されていません"_s, deathTitle);
    family::openDeathList(dead, context, desk);

    context.dnk_no1 = 8;
    context.dnk_yubin.clear();
    desk.expect(noHousehold, familyTitle);
    desk.expect(u"照会の家族情報は登録されていません"_s, familyTitle);
    family::openFamilyList(living, context, desk);
    desk.expect(noHousehold, deathTitle);
    desk.expect(u"照会の過去帳は登録されていません"_s, deathTitle);
    family::openDeathList(dead, context, desk);
    EXPECT_EQ(dead.frm21_tbl.columns.size(), 9U);

    context = {}; // no household chosen: the screens open empty
    family::openFamilyList(living, context, desk);
    family::openDeathList(dead, context, desk);
    desk.finish();
}

TEST_F(HouseholdLists, DeathListShowsTheNextMemorialAheadAndNotHeld) {
    const struct {
        QString name;
        QString death;
        std::vector<std::tuple<QString, QString, QString, int>> memorials; // household, label, day, held
        QString memorial;
        QString day;
    } cases[] = {
        {u"古人"_s, u"'1550-03-01'"_s, {{u"山田"_s, u"300回忌"_s, u"1849-03-01"_s, 0}}, u""_s, u""_s},
        {u"今日"_s, u"'2008-01-01'"_s, {{u"山田"_s, u"1周忌"_s, u"2026-11-22"_s, 0}}, u""_s, u""_s},
        {u"明日"_s, u"'2008-02-01'"_s, {{u"山田"_s, u"1周忌"_s, u"2026-11-23"_s, 0}}, u"1周忌"_s, u"令和8年11月23日"_s},
        {u"実施"_s,
         u"'2008-03-01'"_s,
         {{u"山田"_s, u"1周忌"_s, u"2026-12-01"_s, 1}, {u"山田"_s, u"3回忌"_s, u"2027-12-01"_s, 0}},
         u"3回忌"_s,
         u"令和9年12月1日"_s},
        {u"旧姓"_s,
         u"'2008-04-01'"_s,
         {{u"旧姓"_s, u"1周忌"_s, u"2026-12-01"_s, 0}, {u"山田"_s, u"3回忌"_s, u"2027-12-01"_s, 0}},
         u""_s,
         u""_s},
        {u"無し"_s, u"'2008-05-01'"_s, {}, u""_s, u""_s},
    };
    QStringList names;
    QStringList memorials;
    QStringList days;
    for (const auto& [name, death, rows, memorial, day] : cases) {
        addDeath(name, death);
        for (const auto& [household, label, date, held] : rows)
            addMemorial(household, name, label, date, held);
        names += name;
        memorials += memorial;
        days += day;
    }
    addDeath(u"無日"_s, u"NULL"_s);
    TestDesk desk(today);
    family::openDeathList(dead, context, desk);
    EXPECT_EQ(column(dead.frm21_tbl, 0), names);
    EXPECT_EQ(column(dead.frm21_tbl, 6), memorials);
    EXPECT_EQ(column(dead.frm21_tbl, 7), days);
    EXPECT_EQ(dead.frm21_tbl.rows[5], QStringList({u"無し"_s, u"平成20年2月12日"_s, u"釋浄光"_s, u"80"_s, u"太郎"_s,
                                                   u"父"_s, u""_s, u""_s, u"備考"_s}));
    EXPECT_EQ(dead.frm12_tel.text, u"03-1"_s);
    desk.finish();
}

TEST_F(HouseholdLists, DeathListOpensTheDeceasedPickedAndStartsOverAfterwards) {
    addDeath(u"ハナ"_s, u"'2008-02-12'"_s);
    addDeath(u"ソメ"_s, u"'2008-02-12'"_s);
    TestDesk desk(today);
    family::openDeathList(dead, context, desk);
    family::showDeceased(dead, context, desk);
    desk.expect(outside, deathTitle);
    dead.frm21_tbl.clickedRow = 3;
    family::pickDeceased(dead, context, desk);
    EXPECT_TRUE(desk.opened.empty());

    context.kak_zokunameg = u"他人"_s;
    context.kak_kaimyoug = u"他人の戒名"_s;
    dead.frm21_tbl.clickedRow = 2;
    family::pickDeceased(dead, context, desk);
    EXPECT_EQ(context.kak_zokunameg, u"ハナ"_s);
    EXPECT_EQ(context.kak_kaimyoug, QString());
    family::showMemorialsOfDeceased(dead, context, desk);
    family::showDeceased(dead, context, desk);
    ASSERT_EQ(desk.opened.size(), 2U);
    EXPECT_EQ(desk.opened[0].screen, u"法要個"_s);
    EXPECT_EQ(desk.opened[1].screen, u"過去登"_s);
    execute(u"DELETE FROM tbl_kakocho WHERE tblkak_zokunameg = 'ソメ'"_s);
    for (const auto& opened : desk.opened) {
        EXPECT_EQ(opened.how, desk::Opening::modal);
        opened.closed();
        EXPECT_EQ(column(dead.frm21_tbl, 0), QStringList({u"ハナ"_s}));
    }
    desk.finish();
}
