#include "family/registration_rules.h"

#include "support/register_fixture.h"
#include "support/test_desk.h"

using namespace Qt::StringLiterals;

namespace {

const QString title = u"家族登録"_s;
const QString askRegister = u"入力された内容で家族の登録をします。内容を確認して下さい。"_s;
const QString askChange = u"入力された内容で家族を変更します。内容を確認して下さい。"_s;
const QString askDelete = u"ﾃﾞｰﾀを削除します。内容を確認して下さい。"_s;
const QString memberMissing = u"指定された家族を読めませんません。DBの整合性を確認して下さい"_s;
const QString cannotShow = u"家族名が取出せません、ﾃﾞｰﾀﾍﾞｰｽの整合性を確認して下さい。"_s;

class Family : public RegisterFixture {
  protected:
    Family() {
        context.dnk_no1 = 3;
        context.takeNames(sampleHousehold(3));
        context.dnk_jyusho2 = u"2階"_s;
        context.dnk_chiku = u"東"_s;
        family::openFamily(form, context, desk);
    }
    void fill(const QString& name, const QString& era, const QString& year, const QString& month, const QString& day) {
        form.frm12_nameg.text = name;
        form.frm12_namek.text = u"カナ"_s;
        form.生年.era.text = era;
        form.生年.year.text = year;
        form.生年.month.text = month;
        form.生年.day.text = day;
        form.frm12_続柄.text = u"長男"_s;
    }
    void registerMember(const QString& name, const QString& year = u"10"_s) {
        fill(name, u"昭和"_s, year, u"5"_s, u"3"_s);
        desk.answer(askRegister, title, true);
        desk.expect(u"入力された内容で家族は登録されました。"_s, title);
        family::registerMember(form, context, desk);
    }
    QString members() { return form.frm12_meibo.items.join(u"|"_s); }
    QString count() { return query(u"SELECT count(*) FROM tbl_kazoku"_s); }

    TestDesk desk{today};
    family::家族登Form form;
};

TEST_F(Family, PreparesANewMemberFromTheHousehold) {
    EXPECT_EQ(
        (QStringList{form.frm12_no.text, form.frm12_dankag.text, form.frm12_dankak.text, form.frm12_toshunameg.text,
                     form.frm12_nameg.text, form.frm12_namek.text, form.frm12_yubinno.text, form.frm12_jyusho1.text,
                     form.frm12_jyusho2.text, form.frm12_tel.text, form.frm12_地区.text})
            .join(u"|"_s),
        u"3|山田|ヤマダ|山田　太郎|山田|ヤマダ|100-0001|寺前1丁目2-3|2階|03-1234-5678|東"_s);
    EXPECT_TRUE(form.frm12_namek.preset);
    EXPECT_EQ(form.frm12_続柄.text + form.生年.era.text, QString());
    EXPECT_TRUE(form.frm12_続柄.items.contains(u"長男"_s));
    EXPECT_EQ(form.生年.era.items.first(), u"令和"_s);
}

TEST_F(Family, StoresEveryFieldAndAddsTypedWordsToTheMasters) {
    fill(u"O'山田"_s, u"昭和"_s, u"２５"_s, u"１"_s, u"5"_s);
    form.frm12_続柄.text = u"養孫"_s;
    form.frm12_bekkyo.chosen = true;
    form.frm12_dohkyo.chosen = false;
    form.frm12_fax.text = u"F"_s;
    form.frm12_bikou.text = u"備"_s;
    desk.answer(askRegister, title, false);
    family::registerMember(form, context, desk);
    EXPECT_EQ(count(), u"0"_s);
    desk.answer(askRegister, title, true);
    desk.expect(u"入力された内容で家族は登録されました。"_s, title);
    family::registerMember(form, context, desk);
    EXPECT_EQ(form.生年.western.text, u"1950/01/05"_s);
    EXPECT_EQ(query(u"SELECT * FROM tbl_kazoku"_s), u"3,0,山田,ヤマダ,O'山田,カナ,昭和,25,1,5,1950-01-05,養孫,1,0,100-"
                                                    u"0001,寺前1丁目2-3,2階,03-1234-5678,F,東,備,ヤ,"
                                                    "2026-11-22"_s);
    EXPECT_EQ(query(u"SELECT マ_区分, マ_名称, マ_略称 FROM マスタ WHERE マ_略称 IN ('養孫', '東') ORDER BY 1"_s),
              u"1,養孫,養孫|2,東,東"_s);
    EXPECT_EQ(members(), u"O'山田"_s);
    EXPECT_EQ(form.frm12_mzkgr.items, QStringList(u"養孫"_s));
}

TEST_F(Family, RefusesWhatIsWrongAndTakesWhatIsOptional) {
    struct Case {
        std::array<QString, 4> birth;
        QString name, kana, relationship;
        QString message; // empty: stored
        QString stored;  // birth date fields
        bool unknownEra = false;
    };
    const QString kana = u"カナ"_s;
    const QString son = u"長男"_s;
    const Case cases[] = {
        {{}, {}, {}, {}, u"家族名は必須項目です、入力して下さい"_s, {}},
        {{}, u"a"_s, {}, {}, u"家族名カナは必須項目です、入力して下さい"_s, {}},
        {{u"平成"_s, u"x"_s, u"1"_s, u"1"_s}, u"a"_s, kana, {}, u"生年月日　年に正しく入力して下さい"_s, {}},
        {{u"平成"_s, u"20"_s, u"2"_s, u"30"_s}, u"a"_s, kana, {}, u"生年月日　年月日に正しく入力して下さい"_s, {}},
        {{u"平正"_s, u"20"_s, u"2"_s, u"40000"_s}, u"a"_s, kana, son, u"生年月日　日に正しく入力して下さい"_s, {}},
        {{}, u"a"_s, kana, {}, u"続柄は必須項目です、選択又は入力をして下さい"_s, {}},
        {{}, u"b"_s, kana, son, {}, u",NULL,NULL,NULL,NULL"_s},
        {{u"平正"_s, u"２０"_s, u"2"_s, u"30"_s}, u"c"_s, kana, son, {}, u"平正,20,2,30,NULL"_s, true},
        {{u""_s, u"20"_s, u"2"_s, u"3"_s}, u"d"_s, kana, son, {}, u",20,2,3,NULL"_s, true},
        {{u"平成"_s, u"-1"_s, u"2"_s, u"3"_s}, u"e"_s, kana, son, {}, u"平成,-1,2,3,1987-02-03"_s},
    };
    for (const auto& [birth, name, kanaName, relationship, message, stored, unknownEra] : cases) {
        fill(name, birth[0], birth[1], birth[2], birth[3]);
        form.frm12_namek.text = kanaName;
        form.frm12_続柄.text = relationship;
        if (unknownEra)
            desk.expect(u"元号の変換が出来ません。入力した元号・ﾃﾞｰﾀ･ﾍﾞｰｽの整合性をﾁｪｯｸしてください"_s, u"檀家 登録"_s);
        if (!message.isEmpty()) {
            for (auto* operation : {family::registerMember, family::changeMember}) {
                desk.expect(message, title);
                operation(form, context, desk);
            }
            EXPECT_EQ(form.frm12_続柄.colour == desk::Colour::red, relationship.isEmpty());
        } else {
            desk.answer(askRegister, title, true);
            desk.expect(u"入力された内容で家族は登録されました。"_s, title);
            family::registerMember(form, context, desk);
            EXPECT_EQ(query(u"SELECT tblkzk_sei_gname, tblkzk_sei_gyy, tblkzk_sei_gmm, tblkzk_sei_gdd, tblkzk_sei_ymd "
                            "FROM tbl_kazoku WHERE tblkzk_nameg = '%1'"_s.arg(name)),
                      stored);
        }
    }
    EXPECT_EQ(count(), u"4"_s);
}

TEST_F(Family, KeepsOneMemberAName) {
    registerMember(u"山田 一"_s);
    fill(u"山田 一"_s, {}, {}, {}, {});
    desk.expect(u"既に登録されています。家族名をﾁｪｯｸしてください"_s, title);
    family::registerMember(form, context, desk);
    EXPECT_EQ(context.chk_errflg, u"1"_s);
    EXPECT_EQ(query(u"SELECT tblkzk_sei_gyy FROM tbl_kazoku"_s), u"10"_s);
}

TEST_F(Family, ListsLivingMembersByBirthThenName) {
    registerMember(u"乙"_s, u"20"_s);
    registerMember(u"丁"_s, u"20"_s);
    registerMember(u"甲"_s, u"30"_s);
    registerMember(u"故人"_s, u"1"_s);
    execute(u"UPDATE tbl_kazoku SET tblkzk_seishikbn = '1' WHERE tblkzk_nameg = '故人'; "
            "INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_nameg, tblkzk_seishikbn) VALUES (4, '他家', '0')"_s);
    family::家族登Form fresh;
    family::openFamily(fresh, context, desk);
    EXPECT_EQ(fresh.frm12_meibo.items, QStringList({u"丁"_s, u"乙"_s, u"甲"_s}));

    // Changing a deceased member by his typed name brings him back.
    fill(u"故人"_s, u"大正"_s, u"1"_s, u"1"_s, u"1"_s);
    desk.answer(askChange, title, true);
    desk.expect(u"入力された内容で家族は更新されました。"_s, title);
    family::changeMember(form, context, desk);
    EXPECT_EQ(members(), u"故人|丁|乙|甲"_s);
    EXPECT_EQ(query(u"SELECT tblkzk_seishikbn, tblkzk_sei_ymd FROM tbl_kazoku WHERE tblkzk_nameg = '故人'"_s),
              u"0,1912-01-01"_s);
}

TEST_F(Family, ShowsTheMemberChosenOrHandedOver) {
    registerMember(u"甲"_s);
    execute(u"UPDATE tbl_kazoku SET tblkzk_dohkyokbn = NULL, tblkzk_bikou = '備', tblkzk_yubin = '9'"_s);
    context.kzk_nameg = u"甲"_s;
    family::家族登Form handed;
    family::openFamily(handed, context, desk);
    family::家族登Form chosen;
    chosen.frm12_meibo.items = QStringList{u"甲"_s};
    chosen.frm12_meibo.current = 0;
    family::showMember(chosen, context, desk);
    for (const auto& shown : {handed, chosen}) {
        EXPECT_EQ(shown.frm12_nameg.text + shown.frm12_namek.text + shown.frm12_yubinno.text + shown.frm12_bikou.text,
                  u"甲カナ9備"_s);
        EXPECT_EQ(shown.生年.era.text + shown.生年.year.text + shown.生年.western.text, u"昭和101935/05/03"_s);
        EXPECT_TRUE(shown.frm12_bekkyo.chosen && !shown.frm12_dohkyo.chosen && !shown.frm12_namek.preset);
    }
    EXPECT_EQ(handed.frm12_meibo.current, 0);
    EXPECT_EQ(handed.frm12_mzkgr.current, 0);
}

TEST_F(Family, AHouseholdRenamedSinceLeavesTheMemberAsHeWas) {
    registerMember(u"甲"_s);
    context.dnk_nameg = u"山本"_s;
    family::openFamily(form, context, desk);
    form.frm12_meibo.choose(u"甲"_s);
    desk.expect(cannotShow, title);
    family::showMember(form, context, desk);
    fill(u"甲"_s, {}, {}, {}, {});
    desk.answer(askChange, title, true);
    desk.expect(memberMissing, title);
    family::changeMember(form, context, desk);
    desk.answer(askDelete, title, true);
    desk.expect(memberMissing, title);
    family::deleteMember(form, context, desk);
    EXPECT_EQ(query(u"SELECT tblkzk_dnknameg, tblkzk_sei_gyy FROM tbl_kazoku"_s), u"山田,10"_s);
}

TEST_F(Family, DeletesOnlyOnYes) {
    registerMember(u"甲"_s);
    registerMember(u"乙"_s);
    for (const bool yes : {false, true}) {
        desk.answer(askDelete, title, yes);
        if (yes)
            desk.expect(u"指定された家族は削除されました。"_s, title);
        family::deleteMember(form, context, desk);
        EXPECT_EQ(count(), yes ? u"1"_s : u"2"_s);
    }
    EXPECT_EQ(members(), u"甲"_s);
    EXPECT_EQ(form.frm12_nameg.text, u"乙"_s);
}

TEST_F(Family, WithoutAHouseholdNothingIsStored) {
    context.G初期値();
    family::家族登Form empty;
    family::openFamily(empty, context, desk);
    EXPECT_EQ(empty.frm12_no.text + empty.frm12_nameg.text, QString());
    form = empty;
    fill(u"甲"_s, {}, {}, {}, {});
    for (auto* operation : {family::registerMember, family::changeMember}) {
        desk.expect(u"檀家を照会してから登録して下さい"_s, title);
        operation(form, context, desk);
    }
    EXPECT_EQ(count(), u"0"_s);
}

} // namespace
