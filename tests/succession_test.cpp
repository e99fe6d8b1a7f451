#include "households/succession_rules.h"
#include "support/register_fixture.h"
#include "support/test_desk.h"

using namespace Qt::StringLiterals;

namespace {

const QString title = u"代替り処理"_s;
const QString invalid = u"ﾃﾞｰﾀにｴﾗｰがあり登録出来ません。入力した内容をﾁｪｯｸしてください"_s;
const QString question = u"入力された内容で檀家さんを変更しますか？"_s;
const QString householdDone = u"入力された内容で檀家さんは更新されました。"_s;
const QString notAMember = u"家族名が取出せません、ﾃﾞｰﾀﾍﾞｰｽの整合性を確認して下さい。"_s;
const QString noHousehold = u"指定された檀家番号を読めません。DBの整合性を確認して下さい"_s;

class Succession : public RegisterFixture {
  protected:
    Succession() {
        execute(uR"(
            INSERT INTO tbl_danka (tbldnk_no1, tbldnk_no2, tbldnk_nameg, tbldnk_namek, tbldnk_dnkkbn, tbldnk_yubin,
              tbldnk_jyusho1, tbldnk_jyusho2, tbldnk_tel, tbldnk_fax, tbldnk_chiku, tbldnk_bikou, tbldnk_kanaidx,
              tbldnk_haka_basho, tbldnk_toshug, tbldnk_toshuk, tbldnk_addymd) VALUES
              (7, 0, '山田', 'ヤマダ', '檀家', '100-0001', '寺前1', '離れ', '03-1', '03-2', '寺前地区', '役員', 'ヤ', '境内',
               '太郎', 'タロウ', '2020-04-01');
            INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_dnknamek, tblkzk_nameg, tblkzk_namek,
              tblkzk_zokugara, tblkzk_dohkyokbn, tblkzk_seishikbn, tblkzk_yubin, tblkzk_jusho1, tblkzk_jusho2,
              tblkzk_tel, tblkzk_fax, tblkzk_chiku, tblkzk_bikou, tblkzk_kanaidx, tblkzk_add_ymd) VALUES
              (7, '山田', 'ヤマダ', '太郎', 'タロウ', '本人', '0', '0', '100-0001', '寺前1', '離れ', '03-1', '', '', '', 'ヤ',
               '2020-04-01'),
              (7, '山田', 'ヤマダ', '次郎''', 'ジロウ', '長男', '1', '0', '200-0002', '川端2', '', '04-1', '', '川端地区',
               '遠方', 'ヤ', '2020-04-01'),
              (7, '山田', 'ヤマダ', 'ハナ', 'ハナ', '母', '0', '1', '', '', '', '', '', '', '', 'ヤ', '2020-04-01'),
              (8, '他家', 'タケ', '三郎', 'サブロウ', '長男', '0', '0', '', '', '', '', '', '', '', 'タ', '2020-04-01');)"_s);
        context.dnk_no1 = 7;
        context.dnk_nameg = u"山田"_s;
    }
    void loadAndPick() {
        households::LoadSuccession(form, context, desk); // the context lacks the address: it comes from the file
        form.frm01_toshug.choose(u"次郎'"_s);
        households::PickNewHead(form, context, desk);
    }
    QString household() { return query(u"SELECT * FROM tbl_danka"_s); }
    QString member(const QString& name) {
        return query(u"SELECT * FROM tbl_kazoku WHERE tblkzk_namek = '%1'"_s.arg(name));
    }

    void pick(int line) {
        form.frm01_toshug.current = form.frm01_tsh_zkgr.current = line;
        households::PickNewHead(form, context, desk);
    }
    QString boxes() const { return form.frm01_eno.text + form.frm01_toshuk.text + form.frm01_jyusho1.text; }

    TestDesk desk{today};
    households::代替当Form form;
};

} // namespace

TEST_F(Succession, ListsTheLivingAndShowsTheOneChosen) {
    households::LoadSuccession(form, context, desk);
    EXPECT_EQ(form.frm01_jyusho2.text + form.frm01_toshuk.text, u"離れ"_s);
    EXPECT_TRUE(form.frm01_dnkkbn1.chosen);
    EXPECT_EQ(context.dnk_toshug, u"太郎"_s);
    loadAndPick();
    EXPECT_EQ(form.frm01_toshug.items + form.frm01_tsh_zkgr.items,
              QStringList({u"太郎"_s, u"次郎'"_s, u"本人"_s, u"長男"_s}));
    EXPECT_EQ(form.frm01_jyusho2.text, u""_s); // the household's own second line is not kept beside it
    EXPECT_EQ(form.frm01_地区.text + form.frm01_biko.text, u"川端地区遠方"_s);
    const households::Differences now = households::differences(form);
    EXPECT_EQ(now.boxes.size(), 7);
    EXPECT_EQ(now.text, u"檀家の今の記録から変わる欄：郵便番号、住所１、電話番号、地区、備考\n"
                        "空欄なので今の記録が残る欄：住所２「離れ」、FAX「03-2」"_s);

    context.dnk_haka_basho = u"境内"_s;
    households::openFamilyOfSuccession(form, context, desk);
    EXPECT_EQ(desk.opened.at(0).screen, u"家族一"_s);
    EXPECT_EQ(context.dnk_jyusho1 + context.dnk_haka_basho, u"川端2境内"_s);
}

TEST_F(Succession, WritesHouseholdAndNewHeadAndOffersTheOthers) {
    loadAndPick();
    form.frm01_dnkkbn1.chosen = false;
    form.frm01_dankak.text = u"ｶﾜﾊﾞﾀ"_s;
    form.frm01_地区.text = u"新地区"_s;
    form.frm01_biko.text.clear();
    const QString before = household();
    const QString formerHead = member(u"タロウ"_s);
    desk.answer(question, title, false);
    households::CarryOutSuccession(form, context, desk);
    EXPECT_EQ(household(), before);

    desk.answer(question, title, true);
    desk.expect(householdDone, title);
    desk.expect(u"入力された内容で家族は更新されました。"_s, title);
    desk.answer(u"その他の家族の続柄も変更しますか？"_s, title, true);
    households::CarryOutSuccession(form, context, desk);
    // Emptied second line, fax and remarks leave what was stored.
    EXPECT_TRUE(household().startsWith(
        u"7,0,山田,ｶﾜﾊﾞﾀ,一般,200-0002,川端2,離れ,04-1,03-2,新地区,役員,ｶ,境内,次郎',ジロウ,NULL,NULL,2020-04-01"_s))
        << household().toStdString();
    EXPECT_EQ(
        member(u"ジロウ"_s),
        u"7,NULL,山田,ヤマダ,次郎',ジロウ,NULL,NULL,NULL,NULL,NULL,本人,0,0,200-0002,川端2,,04-1,,新地区,遠方,ｶ,2026-11-22"_s);
    EXPECT_EQ(member(u"タロウ"_s), formerHead);
    EXPECT_EQ(query(u"SELECT count(*) FROM マスタ WHERE マ_区分 = 2"_s), u"0"_s);
    EXPECT_EQ(desk.opened.at(0).screen, u"家族登"_s);
    ASSERT_EQ(desk.offered.size(), 1U); // the copies of the former reading, not the address
    EXPECT_EQ(desk.offered.front().name, u"写しも直す"_s);
    EXPECT_EQ(context.dnk_toshug + context.dnk_kbn + context.dnk_chiku, u"次郎'一般新地区"_s);
}

// Emptied one after the other from the last up: each attempt leads to the first.
TEST_F(Succession, RefusesWhatIsNotComplete) {
    loadAndPick();
    const QString before = household();
    const auto refuse = [&](const desk::Control& first) {
        desk.expect(invalid, title);
        households::CarryOutSuccession(form, context, desk);
        EXPECT_TRUE(first.first && first.colour == desk::Colour::red);
    };
    form.frm01_toshuk.text.clear();
    refuse(form.frm01_toshuk);
    form.frm01_toshug.current = -1;
    refuse(form.frm01_toshug);
    for (desk::Text* box :
         {&form.frm01_tel, &form.frm01_jyusho1, &form.frm01_yubinno, &form.frm01_dankak, &form.frm01_dankag}) {
        box->text.clear();
        refuse(*box);
    }
    EXPECT_EQ(household(), before);
}

TEST_F(Succession, TellsOfWhatIsNotThereAndStops) {
    loadAndPick();
    const QString before = member(u"ジロウ"_s);
    const QString shown = boxes();
    // Renamed on the household screen: the members still bear the old name.
    context.dnk_nameg = u"改姓"_s;
    desk.expect(notAMember, title);
    pick(1);
    EXPECT_EQ(form.frm01_toshug.current, -1);
    EXPECT_EQ(boxes(), shown);
    desk.expect(invalid, title);
    households::CarryOutSuccession(form, context, desk);

    context.dnk_nameg = u"山田"_s;
    pick(1);
    execute(u"DELETE FROM tbl_danka"_s);
    desk.answer(question, title, true);
    desk.expect(noHousehold, title);
    households::CarryOutSuccession(form, context, desk);
    EXPECT_EQ(member(u"ジロウ"_s), before);
    desk.expect(noHousehold, title);
    households::LoadSuccession(form, context, desk);

    form = {};
    context = {};
    households::LoadSuccession(form, context, desk);
    desk.expect(u"檀家を照会してから登録して下さい"_s, title);
    households::CarryOutSuccession(form, context, desk);
}

// The branch that was opened is the one written.
TEST_F(Succession, WritesTheBranchItWasOpenedFor) {
    execute(u"INSERT INTO tbl_danka (tbldnk_no1, tbldnk_no2, tbldnk_nameg, tbldnk_namek, tbldnk_dnkkbn, tbldnk_yubin, "
            "tbldnk_jyusho1, tbldnk_tel, tbldnk_toshug, tbldnk_toshuk) SELECT 7, 1, tbldnk_nameg, tbldnk_namek, "
            "tbldnk_dnkkbn, tbldnk_yubin, tbldnk_jyusho1, tbldnk_tel, '分家', tbldnk_toshuk FROM tbl_danka"_s);
    context.dnk_no2 = 1;
    loadAndPick();
    EXPECT_EQ(form.frm01_eno.text, u"1"_s);
    desk.answer(question, title, true);
    desk.expect(householdDone, title);
    desk.expect(u"入力された内容で家族は更新されました。"_s, title);
    desk.answer(u"その他の家族の続柄も変更しますか？"_s, title, false);
    households::CarryOutSuccession(form, context, desk);
    EXPECT_EQ(query(u"SELECT tbldnk_no2, tbldnk_toshug FROM tbl_danka ORDER BY 1"_s), u"0,太郎|1,次郎'"_s);
}

// Who cannot become head: one who died, one of another household name with the same given name, one changed meanwhile.
TEST_F(Succession, RefusesAMemberWhoIsNotTheOneChosen) {
    execute(u"INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_nameg, tblkzk_namek, tblkzk_seishikbn) "
            "VALUES (7, '旧姓', '太郎', 'ベツ', '0')"_s);
    households::LoadSuccession(form, context, desk);
    const int other = static_cast<int>(form.householdNames.indexOf(u"旧姓"_s));
    const QString before = household() + query(u"SELECT * FROM tbl_kazoku"_s);
    desk.expect(notAMember, title);
    pick(other);
    EXPECT_EQ(boxes(), u"0寺前1"_s); // as before the choice

    execute(u"UPDATE tbl_kazoku SET tblkzk_seishikbn = '1' WHERE tblkzk_namek = 'ジロウ'"_s);
    desk.expect(notAMember, title);
    pick(static_cast<int>(form.frm01_toshug.items.indexOf(u"次郎'"_s)));
    execute(u"UPDATE tbl_kazoku SET tblkzk_seishikbn = '0' WHERE tblkzk_namek = 'ジロウ'"_s);

    pick(static_cast<int>(form.frm01_toshug.items.indexOf(u"次郎'"_s)));
    execute(u"UPDATE tbl_kazoku SET tblkzk_seishikbn = '1' WHERE tblkzk_namek = 'ジロウ'"_s);
    desk.answer(question, title, true);
    desk.expect(u"この記録はほかの画面で変更されています。照会し直して下さい"_s, title);
    households::CarryOutSuccession(form, context, desk);
    execute(u"UPDATE tbl_kazoku SET tblkzk_seishikbn = '0' WHERE tblkzk_namek = 'ジロウ'"_s);
    EXPECT_EQ(household() + query(u"SELECT * FROM tbl_kazoku"_s), before);
}
