#include "family/registration_rules.h"

#include "support/register_fixture.h"
#include "support/test_desk.h"

using namespace Qt::StringLiterals;

namespace {

using family::家族登Form;
const QString title = u"家族登録"_s;
const QString askRegister = u"入力された内容で家族の登録をします。内容を確認して下さい。"_s;
const QString askChange = u"入力された内容で家族を変更します。内容を確認して下さい。"_s;
const QString askDelete = u"ﾃﾞｰﾀを削除します。内容を確認して下さい。"_s;

class Family : public RegisterFixture {
  protected:
    Family() {
        context.publishHousehold(desk::HouseholdBlock::of(sampleHousehold(3)));
        context.dnk_chiku = u"東"_s;
        family::beginFamily(form, context, desk);
    }
    // name|kana|relationship|era|year|month|day
    void fill(const QString& typed) {
        auto boxes = typed.split(u'|');
        boxes.resize(7);
        form.frm12_nameg.text = boxes[0];
        form.frm12_namek.text = boxes[1];
        form.frm12_続柄.text = boxes[2];
        form.生年.era.text = boxes[3];
        form.生年.year.text = boxes[4];
        form.生年.month.text = boxes[5];
        form.生年.day.text = boxes[6];
    }
    void registerMember(const QString& typed) {
        fill(typed);
        desk.answer(askRegister, title, true);
        desk.expect(u"入力された内容で家族は登録されました。"_s, title);
        family::registerMember(form, context, desk);
    }
    QString count() { return query(u"SELECT count(*) FROM tbl_kazoku"_s); }

    TestDesk desk{today};
    家族登Form form;
};

TEST_F(Family, PreparesANewMemberAndStoresHimOnce) {
    EXPECT_EQ(form.frm12_no.text + form.frm12_toshunameg.text + form.frm12_続柄.text + form.生年.era.text,
              u"3山田　太郎"_s);
    EXPECT_EQ(form.frm12_nameg.text + form.frm12_namek.text, u"山田ヤマダ"_s);
    EXPECT_TRUE(form.frm12_namek.preset && form.frm12_続柄.items.contains(u"長男"_s));
    const QString typed = u"O'山田|カナ|養孫|昭和|２５|１|5"_s;
    fill(typed);
    desk.answer(askRegister, title, false);
    family::registerMember(form, context, desk);
    EXPECT_EQ(count(), u"0"_s);
    registerMember(typed);
    EXPECT_EQ(form.生年.western.text, u"1950/01/05"_s);
    EXPECT_EQ(query(u"SELECT マ_区分, マ_略称 FROM マスタ WHERE マ_略称 IN ('養孫', '東') ORDER BY 1"_s),
              u"1,養孫|2,東"_s);
    EXPECT_EQ(form.frm12_meibo.items + form.frm12_mzkgr.items, QStringList({u"O'山田"_s, u"養孫"_s}));

    desk.expect(u"既に登録されています。家族名をﾁｪｯｸしてください"_s, title);
    family::registerMember(form, context, desk);
    EXPECT_EQ(context.chk_errflg, u"1"_s);
    EXPECT_EQ(count(), u"1"_s);
}

TEST_F(Family, RefusesWhatIsWrongAndTakesWhatIsOptional) {
    const std::pair<QString, QString> refused[] = {
        {u"|"_s, u"家族名は必須項目です、入力して下さい"_s},
        {u"a|"_s, u"家族名カナは必須項目です、入力して下さい"_s},
        {u"a|カナ||平成|20|2|30"_s, u"生年月日　年月日に正しく入力して下さい"_s},
        {u"a|カナ|"_s, u"続柄は必須項目です、選択又は入力をして下さい"_s}};
    for (const auto& [typed, message] : refused) {
        fill(typed);
        for (auto* operation : {family::registerMember, family::updateMember}) {
            desk.expect(message, title);
            operation(form, context, desk);
        }
        EXPECT_EQ(form.frm12_続柄.colour, desk::Colour::red);
    }
    // An unknown era is told of, and the date counts as not given.
    const std::pair<QString, QString> taken[] = {{u"b|カナ|長男"_s, u"0,,NULL,NULL,NULL,NULL"_s},
                                                 {u"c|カナ|長男|平正|２０|2|30"_s, u"0,平正,20,2,30,NULL"_s},
                                                 {u"e|カナ|長男|平成|-1|2|3"_s, u"0,平成,-1,2,3,1987-02-03"_s}};
    for (const auto& [typed, stored] : taken) {
        if (typed[0] == u'c')
            desk.expect(u"元号の変換が出来ません。入力した元号・ﾃﾞｰﾀ･ﾍﾞｰｽの整合性をﾁｪｯｸしてください"_s, u"檀家 登録"_s);
        registerMember(typed);
        EXPECT_EQ(query(u"SELECT tblkzk_dohkyokbn, tblkzk_sei_gname, tblkzk_sei_gyy, tblkzk_sei_gmm, tblkzk_sei_gdd, "
                        "tblkzk_sei_ymd FROM tbl_kazoku WHERE tblkzk_nameg = '%1'"_s.arg(typed[0])),
                  stored);
    }
}

TEST_F(Family, ListsTheLivingByBirthThenNameAndShowsOne) {
    for (const auto& member : {u"乙|カナ|父|昭和|20|5|3"_s, u"丁|カナ|母|昭和|20|5|3"_s, u"甲|カナ|子|昭和|30|5|3"_s,
                               u"故人|カナ|祖父|昭和|1|5|3"_s})
        registerMember(member);
    execute(u"UPDATE tbl_kazoku SET tblkzk_seishikbn = '1' WHERE tblkzk_nameg = '故人'; "
            "UPDATE tbl_kazoku SET tblkzk_dohkyokbn = NULL, tblkzk_bikou = '備' WHERE tblkzk_nameg = '甲'; "
            "INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_nameg, tblkzk_seishikbn) VALUES (4, '他家', '0')"_s);
    context.kzk_nameg = u"甲"_s;
    家族登Form shown;
    family::beginFamily(shown, context, desk);
    EXPECT_EQ(shown.frm12_meibo.items, QStringList({u"丁"_s, u"乙"_s, u"甲"_s}));
    EXPECT_EQ(shown.frm12_meibo.current + shown.frm12_mzkgr.current, 4);
    EXPECT_EQ(shown.frm12_nameg.text + shown.frm12_namek.text + shown.frm12_続柄.text + shown.frm12_bikou.text +
                  shown.frm12_yubinno.text + shown.生年.era.text + shown.生年.year.text + shown.生年.western.text,
              u"甲カナ子備100-0001昭和301955/05/03"_s);
    EXPECT_TRUE(shown.frm12_bekkyo.chosen && !shown.frm12_dohkyo.chosen && !shown.frm12_namek.preset);
    // Changing a deceased member by his typed name brings him back.
    form = shown;
    fill(u"故人|カナ|祖父|大正|1|1|1"_s);
    desk.answer(askChange, title, true);
    desk.expect(u"入力された内容で家族は更新されました。"_s, title);
    family::updateMember(form, context, desk);
    EXPECT_EQ(query(u"SELECT tblkzk_seishikbn, tblkzk_sei_ymd FROM tbl_kazoku WHERE tblkzk_nameg = '故人'"_s),
              u"0,1912-01-01"_s);
    desk.answer(askDelete, title, false);
    family::removeMember(form, context, desk);
    EXPECT_EQ(form.frm12_meibo.items.join(u"|"_s), u"故人|丁|乙|甲"_s);
    desk.answer(askDelete, title, true);
    desk.expect(u"指定された家族は削除されました。"_s, title);
    family::removeMember(form, context, desk);
    EXPECT_EQ(form.frm12_meibo.items.join(u"|"_s) + count(), u"丁|乙|甲4"_s);
}

TEST_F(Family, AHouseholdRenamedOrNotChosenChangesNobody) {
    registerMember(u"甲|カナ|父|昭和|10|5|3"_s);
    context.dnk_nameg = u"山本"_s;
    form.frm12_meibo.choose(u"甲"_s);
    desk.expect(u"家族名が取出せません、ﾃﾞｰﾀﾍﾞｰｽの整合性を確認して下さい。"_s, title);
    family::loadMember(form, context, desk);
    for (const auto& [operation, question] :
         {std::pair{&family::updateMember, askChange}, {&family::removeMember, askDelete}}) {
        fill(u"甲|カナ|父"_s);
        desk.answer(question, title, true);
        desk.expect(u"指定された家族を読めませんません。DBの整合性を確認して下さい"_s, title);
        operation(form, context, desk);
    }
    context.G初期値();
    form = {};
    family::beginFamily(form, context, desk);
    fill(u"甲|カナ|父"_s);
    for (auto* operation : {family::registerMember, family::updateMember}) {
        desk.expect(u"檀家を照会してから登録して下さい"_s, title);
        operation(form, context, desk);
    }
    EXPECT_EQ(query(u"SELECT tblkzk_dnknameg, tblkzk_sei_gyy FROM tbl_kazoku"_s), u"山田,10"_s);
}

} // namespace
