#include "family/death_list_rules.h"
#include "family/family_list_rules.h"
#include "support/register_fixture.h"
#include "support/test_desk.h"

using namespace Qt::StringLiterals;

namespace {

const QString familyTitle = u"家族一覧"_s;
const QString deathTitle = u"過去帳一覧"_s;

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
    TestDesk desk{today};
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
    family::beginFamilyList(living, context, desk);
    const QString era = u"昭和5年12月31日"_s;
    EXPECT_EQ(living.frm21_tbl.rows,
              (std::vector<QStringList>{
                  {u""_s, u"ハナ"_s, u"本人"_s, u"死"_s, u""_s, u""_s, u""_s, u""_s, u"故人"_s},
                  {u"当主"_s, u"イ郎'"_s, u"本人"_s, u""_s, era, u"96"_s, u"同"_s, u""_s, u""_s},
                  {u""_s, u"ロ子"_s, u"妻"_s, u""_s, era, u"96"_s, u"別"_s, u"川端2"_s, u"遠方"_s},
                  {u""_s, u"五郎"_s, u"長男"_s, u""_s, era, u"76"_s, u"同"_s, u""_s, u""_s},
              }));
    // The household is read from the file, into boxes and context alike.
    EXPECT_EQ(living.frm21_dankag.text + living.frm12_jyusho1.text + living.frm12_bikou.text + context.dnk_toshug,
              u"山田寺前1役員太郎"_s);
    // What a screen hands over, unsaved edits included, is shown as it stands.
    context.dnk_jyusho1 = u"見出しの住所"_s;
    context.dnk_handedOver = true;
    family::beginFamilyList(living, context, desk);
    EXPECT_EQ(living.frm12_jyusho1.text, u"見出しの住所"_s);
}

TEST_F(HouseholdLists, FamilyListOpensTheMemberPickedAndStartsOverAfterwards) {
    for (int i = 0; i < 31; ++i)
        addMember(u"子%1"_s.arg(i, 2, 10, QChar(u'0')), u"'1960-01-01'"_s);
    family::beginFamilyList(living, context, desk);
    family::openMember(living, context, desk); // nothing picked: nothing happens
    living.nextPage(desk);
    living.frm21_tbl.clickedRow = 2;
    living.click(context, desk);
    family::openMember(living, context, desk);
    EXPECT_EQ(context.kzk_nameg, u"子30"_s);
    EXPECT_EQ(living.frm21_tbl.rows.size(), 2U);
    ASSERT_EQ(desk.opened.size(), 1U);
    desk.opened[0].closed();
    EXPECT_EQ(living.frm21_tbl.cell(30, 1), u"子29"_s);
}

TEST_F(HouseholdLists, TellWhatIsMissing) {
    desk.expect(u"照会の家族情報は登録されていません"_s, familyTitle);
    family::beginFamilyList(living, context, desk);
    context.publishHousehold(8);
    desk.expect(u"指定された檀家を読めません。DBの整合性を確認して下さい"_s, deathTitle);
    desk.expect(u"照会の過去帳は登録されていません"_s, deathTitle);
    family::beginDeathList(dead, context, desk);

    context = {}; // no household chosen: the screens open empty
    family::beginFamilyList(living, context, desk);
    family::beginDeathList(dead, context, desk);
}

TEST_F(HouseholdLists, DeathListShowsTheNextMemorialAheadAndNotHeld) {
    const std::tuple<QString, QString, QString> cases[] = {
        // memorials: household's name, label, day, held
        {u"古人"_s, u"1550-03-01"_s, u"山田,300回忌,1849-03-01,0"_s},
        {u"今日"_s, u"2008-01-01"_s, u"山田,1周忌,2026-11-22,0"_s},
        {u"明日"_s, u"2008-02-01"_s, u"山田,1周忌,2026-11-23,0"_s},
        {u"実施"_s, u"2008-03-01"_s, u"山田,1周忌,2026-12-01,1|山田,3回忌,2027-12-01,0"_s},
        {u"旧姓"_s, u"2008-04-01"_s, u"旧姓,1周忌,2026-12-01,0|山田,3回忌,2027-12-01,0"_s}};
    for (const auto& [name, death, memorials] : cases) {
        addDeath(name, u"'%1'"_s.arg(death));
        for (const QString& memorial : memorials.split(u'|'))
            execute(u"INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_zokunameg, tblhoy_danknameg, tblhoy_kaiki_mei, "
                    "tblhoy_kaiki_yymd, tblhoy_kaiki_s) VALUES (7, '%1', '%2')"_s.arg(
                        name, QString(memorial).replace(u","_s, u"', '"_s)));
    }
    addDeath(u"無日"_s, u"NULL"_s);
    family::beginDeathList(dead, context, desk);
    QStringList lines;
    for (const QStringList& row : dead.frm21_tbl.rows)
        lines << row[0] + row[6] + row[7];
    EXPECT_EQ(lines.join(u' '),
              u"古人 今日 明日1周忌令和8年11月23日 実施3回忌令和9年12月1日 旧姓"_s); // 無日 is not listed
    EXPECT_EQ(dead.frm21_tbl.rows[0], QStringList({u"古人"_s, u"平成20年2月12日"_s, u"釋浄光"_s, u"80"_s, u"太郎"_s,
                                                   u"父"_s, u""_s, u""_s, u"備考"_s}));
    EXPECT_EQ(dead.frm12_tel.text, u"03-1"_s);

    // The entry is published whole, with its own copy of the household's name.
    context.kak_zokunameg = context.kak_kaimyoug = context.dnk_nameg = u"他人"_s;
    dead.frm21_tbl.clickedRow = 5;
    dead.click(context, desk);
    EXPECT_EQ(context.kak_zokunameg + context.kak_kaimyoug + context.dnk_nameg, u"旧姓釋浄光山田"_s);
    family::openMemorialsOfDeceased(dead, context, desk);
    EXPECT_EQ(desk.opened.at(0).screen, u"法要個"_s);
}
