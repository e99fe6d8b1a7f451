#include "family/death_registration_rules.h"

#include "support/register_fixture.h"
#include "support/test_desk.h"

using namespace Qt::StringLiterals;

namespace {

using Form = family::過去登Form;
const QString title = u"過去帳登録"_s;
const QString askRegister = u"入力された内容で過去帳の登録をします。内容を確認して下さい。"_s;
const QString askChange = u"入力された内容で過去帳を変更します。内容を確認して下さい。"_s;
const QString askDelete = u"ﾃﾞｰﾀを削除します。内容を確認して下さい。"_s;
const QString memberMissing = u"家族名が取出せません、ﾃﾞｰﾀﾍﾞｰｽの整合性を確認して下さい。"_s;

class DeathRegister : public RegisterFixture {
  protected:
    DeathRegister() {
        context.publishHousehold(desk::HouseholdBlock::of(sampleHousehold(3)));
        execute(u"INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_nameg, tblkzk_namek, tblkzk_sei_gname, "
                "tblkzk_sei_gyy, tblkzk_sei_gmm, tblkzk_sei_gdd, tblkzk_sei_ymd, tblkzk_zokugara, tblkzk_seishikbn) "
                "VALUES (3, '山田', '山田 花', 'ヤマダ ハナ', '大正', 9, 5, 10, '1920-05-10', '母', '0'), "
                "(3, '山田', '山田 一', 'ヤマダ ハジメ', '', NULL, NULL, NULL, NULL, '長男', '0'), "
                "(3, '山田', '故 人', 'コ ジン', '', NULL, NULL, NULL, NULL, '父', '1'); "
                "INSERT INTO tbl_ohaka (tblhak_no, tblhak_banchi1, tblhak_banchi2, tblhak_dnk_no, tblhak_bohyo_mei, "
                "tblhak_haiki_kbn) VALUES (7, 'A', '1', 3, '先祖代々', 0), (8, 'B', '2', 3, '先祖代々', 0), "
                "(9, 'C', '3', 3, '廃', 1), (10, 'D', '4', 4, '他家', 0)"_s);
        family::beginDeathRegister(form, context, desk);
    }
    // 山田 花 taken from the family, everything filled in.
    void prepare() {
        form.frm11_kazoku.choose(u"山田 花"_s);
        family::takeMember(form, context, desk);
        form.命日.era.text = u"平成"_s;
        form.命日.year.text = u"１２"_s;
        form.命日.month.text = u"3"_s;
        form.命日.day.text = u"1"_s;
        form.frm11_kaimyoug.text = u"釈尼花"_s;
        form.frm11_kaimyouk.text = u"シャクニハナ"_s;
        form.frm11_続柄.text = u"曾祖母"_s;
    }
    void registerHana(bool schedule = false) {
        prepare();
        registerFilled(schedule);
    }
    void registerFilled(bool schedule = false) {
        desk.answer(askRegister, title, true);
        desk.expect(u"入力された内容で過去帳は登録されました。"_s, title);
        desk.answer(u"法要等の登録も行いますか？"_s, title, schedule);
        if (schedule)
            desk.expect(u"法要等の登録を終了した。"_s, title);
        family::registerDeath(form, context, desk);
    }
    void show() {
        form.frm11_kakocho.items = QStringList{u"山田 花"_s};
        form.entryHouseholds = QStringList{u"山田"_s};
        form.frm11_kakocho.current = 0;
        family::loadEntry(form, context, desk);
    }
    void change() {
        desk.answer(askChange, title, true);
        desk.expect(u"入力された内容で家族は更新されました。"_s, title);
        family::updateDeath(form, context, desk);
    }
    QString flag() { return query(u"SELECT tblkzk_seishikbn FROM tbl_kazoku WHERE tblkzk_nameg = '山田 花'"_s); }
    QString entries() { return query(u"SELECT tblkak_zokunameg, tblkak_mei_ymd FROM tbl_kakocho"_s); }
    static QString deathBoxes(const Form& form) {
        return form.命日.era.text + form.命日.year.text + form.命日.western.text + form.frm11_kyounen.text +
               form.frm11_kaimyoug.text + form.frm11_kaimyouk.text + form.frm11_bikou.text + form.frm11_haka_no.text +
               form.frm11_haka_banchi.text + form.frm11_haka_blk2.text;
    }

    TestDesk desk{today};
    Form form;
};

TEST_F(DeathRegister, TakesALivingMemberAndTheGraveClicked) {
    EXPECT_EQ(form.frm11_kazoku.items, QStringList({u"山田 一"_s, u"山田 花"_s}));
    EXPECT_EQ(form.frm11_lzoku.items + form.frm11_kankeisha.items,
              QStringList({u"長男"_s, u"母"_s, u"山田 一"_s, u"山田 花"_s}));
    // What a former entry left is forgotten.
    prepare();
    form.frm11_kyounen.text = form.frm11_bikou.text = form.frm11_haka_no.text = form.frm11_haka_banchi.text =
        form.frm11_haka_blk2.text = form.命日.western.text = u"old"_s;
    form.frm11_haka2.chosen = form.frm11_haka_nai.chosen = true;
    family::takeMember(form, context, desk);
    EXPECT_EQ(form.frm11_zoknameg.text + form.frm11_zoknamek.text + form.frm11_kankeisha.text + form.生年.era.text +
                  form.生年.western.text,
              u"山田 花ヤマダ ハナ山田　太郎大正1920/05/10"_s);
    EXPECT_EQ(deathBoxes(form), QString());
    EXPECT_FALSE(form.frm11_haka2.chosen || form.frm11_haka_nai.chosen || form.frm11_haka_soto.chosen);
    // Two graves of one name: the line that was clicked counts.
    EXPECT_EQ(form.frm11_haka_abohyo.items, QStringList({u"先祖代々"_s, u"先祖代々"_s}));
    for (const auto& [line, expected] : {std::pair{0, u"7A1"_s}, {1, u"8B2"_s}}) {
        form.frm11_haka_abohyo.current = line;
        family::takeGrave(form, context, desk);
        EXPECT_EQ(deathBoxes(form), expected);
    }
    execute(u"UPDATE tbl_ohaka SET tblhak_dnk_no = 4; DELETE FROM tbl_kazoku"_s);
    desk.expect(u"お墓の情報が取出せません、ﾃﾞｰﾀﾍﾞｰｽの整合性を確認して下さい。"_s, title);
    family::takeGrave(form, context, desk);
    desk.expect(memberMissing, title);
    family::takeMember(form, context, desk);
}

TEST_F(DeathRegister, ChecksInScreenOrder) {
    prepare();
    form.frm11_haka_nai.chosen = true;
    const std::pair<std::function<void(Form&)>, QString> cases[] = {
        {[](Form& f) { f.frm11_zoknameg.text.clear(); }, u"俗名を入力して下さい"_s},
        {[](Form& f) { f.frm11_zoknamek.text.clear(); }, u"俗名カナを入力して下さい"_s},
        {[](Form& f) { f.生年.clear(); }, u"生年月日に正しく入力して下さい"_s},
        {[](Form& f) { f.命日.day.text = u"ｘ"_s; }, u"命日　日に正しく入力して下さい"_s},
        {[](Form& f) { f.命日.era.text = u"明治"_s; }, u"命日が生年月日より前です"_s},
        {[](Form& f) { f.frm11_kaimyoug.text.clear(); }, u"戒名を入力して下さい"_s},
        {[](Form& f) { f.frm11_kaimyouk.text.clear(); }, u"戒名カナを入力して下さい"_s},
        {[](Form& f) { f.frm11_kankeisha.text.clear(); }, u"関係者を選択して下さい"_s},
        {[](Form& f) { f.frm11_続柄.text.clear(); }, u"続柄を選択して下さい"_s},
        {[](Form& f) { f.frm11_haka_no.text = u"-7"_s; }, u"管理番号は数字で入力して下さい"_s},
    };
    // Spoiled one after the other from the last field up: each attempt tells of the first.
    for (auto it = std::rbegin(cases); it != std::rend(cases); ++it) {
        it->first(form);
        for (auto* operation : {family::registerDeath, family::updateDeath}) {
            desk.expect(it->second, title);
            operation(form, context, desk);
        }
    }
    EXPECT_EQ(form.frm11_続柄.colour, desk::Colour::red);
    EXPECT_EQ(entries(), QString());
}

TEST_F(DeathRegister, StoresTheEntryMarksTheMemberAndPublishes) {
    prepare();
    form.frm11_bikou.text = u"備"_s;
    form.frm11_haka2.chosen = form.frm11_haka_nai.chosen = true;
    form.frm11_haka_no.text = u"７"_s;
    form.frm11_haka_banchi.text = u"A"_s;
    form.frm11_haka_blk2.text = u"1"_s;
    desk.answer(askRegister, title, false);
    family::registerDeath(form, context, desk);
    EXPECT_EQ(entries() + context.kak_zokunameg, QString());
    registerFilled();
    EXPECT_EQ(query(u"SELECT * FROM tbl_kakocho"_s),
              u"3,山田,ヤマダ,山田 花,ヤマダ ハナ,大正,9,5,10,1920-05-10,平成,12,3,1,2000-03-01,80,釈尼花,シャクニハナ,"
              "山田　太郎,曾祖母,備,個,境内,7,A,1,ヤ,2026-11-22"_s);
    EXPECT_EQ(flag() + query(u"SELECT count(*) FROM tbl_hohyo"_s), u"10"_s);
    EXPECT_EQ((QStringList{context.kak_zokunameg, context.kak_zokunamek, context.kak_kaimyoug, context.kak_kaimyouk,
                           context.kak_kankeisha, context.kak_zokugara, context.kak_bikou,
                           context.kak_mei_ymd.toString(Qt::ISODate), QString::number(context.kak_kyounen)})
                  .join(u"|"_s),
              u"山田 花|ヤマダ ハナ|釈尼花|シャクニハナ|山田　太郎|曾祖母|備|2000-03-01|80"_s);
    desk.answer(askRegister, title, true);
    desk.expect(u"既に過去帳は登録されています。確認して下さい"_s, title);
    family::registerDeath(form, context, desk);
    // A new entry adds nothing to the master list, a change does.
    const QString known = u"SELECT count(*) FROM マスタ WHERE マ_略称 = '曾祖母'"_s;
    EXPECT_EQ(query(known), u"0"_s);
    change();
    EXPECT_EQ(query(known), u"1"_s);

    Form handed;
    family::beginDeathRegister(handed, context, desk);
    EXPECT_EQ(handed.frm11_kakocho.items + handed.frm11_kazoku.items, QStringList({u"山田 花"_s, u"山田 一"_s}));
    EXPECT_EQ(handed.frm11_kakocho.current, 0);
    EXPECT_EQ(deathBoxes(handed), u"平成122000/03/0180釈尼花シャクニハナ備7A1"_s);
}

TEST_F(DeathRegister, GraveKindsAndPlacesComeBackAsTheyWereChosen) {
    registerHana();
    const auto kinds = {&Form::frm11_haka1, &Form::frm11_haka2, &Form::frm11_haka3};
    // Without a kind chosen the stored one stays.
    const std::tuple<desk::Option Form::*, bool, QString, QString> cases[] = {
        {nullptr, false, u"8"_s, u",境外,0"_s},
        {&Form::frm11_haka1, true, u"8"_s, u"家,境内,8"_s},
        {&Form::frm11_haka2, true, {}, u"個,境内,0"_s},
        {&Form::frm11_haka3, false, u"8"_s, u"無,境外,0"_s}};
    for (const auto& [chosen, inside, number, stored] : cases) {
        for (auto kind : kinds)
            (form.*kind).chosen = kind == chosen;
        form.frm11_haka_nai.chosen = inside;
        form.frm11_haka_no.text = number;
        change();
        EXPECT_EQ(query(u"SELECT tblkak_haka_kbn, tblkak_haka_basho, tblkak_haka_no FROM tbl_kakocho"_s), stored);
        Form shown;
        shown.frm11_haka_no.text = u"of another entry"_s;
        shown.frm11_kakocho.items = QStringList{u"山田 花"_s};
        shown.entryHouseholds = QStringList{u"山田"_s};
        shown.frm11_kakocho.current = 0;
        family::loadEntry(shown, context, desk);
        for (auto kind : kinds)
            EXPECT_EQ((shown.*kind).chosen, kind == chosen);
        EXPECT_TRUE(shown.frm11_haka_nai.chosen == inside && shown.frm11_haka_soto.chosen != inside);
        EXPECT_EQ(shown.frm11_haka_no.text, inside ? number : QString());
    }
}

// Entry and flag are one write: where the second fails, the first is not there either, and a retry succeeds.
TEST_F(DeathRegister, AFailureBetweenEntryAndFlagLeavesNeither) {
    prepare();
    execute(u"ALTER TABLE tbl_kazoku RENAME TO away"_s);
    desk.answer(askRegister, title, true);
    EXPECT_THROW(family::registerDeath(form, context, desk), SQLite::Exception);
    execute(u"ALTER TABLE away RENAME TO tbl_kazoku"_s);
    EXPECT_EQ(entries() + flag(), u"0"_s);
    registerFilled();
    EXPECT_EQ(entries() + flag(), u"山田 花,2000-03-011"_s);
}

TEST_F(DeathRegister, AStrangerIsStoredButNotMarked) {
    prepare();
    form.frm11_zoknameg.text = u"よその人"_s;
    desk.answer(askRegister, title, true);
    desk.expect(memberMissing, title);
    family::registerDeath(form, context, desk);
    EXPECT_EQ(entries() + flag() + context.chk_errflg, u"よその人,2000-03-0101"_s);
}

TEST_F(DeathRegister, ChangesAndDeletesOnlyTheNameLastShown) {
    registerHana();
    form.frm11_zoknameg.text = u"山田 一"_s;
    for (auto* operation : {family::updateDeath, family::removeDeath}) {
        desk.expect(u"俗名が変更されています。一覧から選び直して下さい"_s, title);
        operation(form, context, desk);
    }
    form.frm11_zoknameg.text = u"山田 花"_s;
    form.命日.day.text = u"2"_s;
    form.frm11_kankeisha.text = u"山田 一"_s;
    desk.answer(askChange, title, false);
    family::updateDeath(form, context, desk);
    EXPECT_EQ(entries(), u"山田 花,2000-03-01"_s);
    execute(u"UPDATE tbl_kakocho SET tblkak_add_ymd = '2001-01-01'"_s);
    desk.answer(askChange, title, true);
    desk.expect(u"この記録はほかの画面で変更されています。照会し直して下さい"_s, title);
    family::updateDeath(form, context, desk);
    show();
    form.命日.day.text = u"2"_s;
    form.frm11_kankeisha.text = u"山田 一"_s;
    change();
    EXPECT_EQ(entries() + query(u"SELECT tblkak_add_ymd FROM tbl_kakocho"_s), u"山田 花,2000-03-022001-01-01"_s);
    // What was handed over for the memorials, or typed since, is not what the entry says.
    form.frm11_kaimyoug.text = u"釈花"_s;
    change();
    EXPECT_EQ(context.kak_kankeisha + context.kak_kaimyoug + context.kak_mei_ymd.toString(Qt::ISODate),
              u"山田 一釈花2000-03-02"_s);
    form.frm11_zoknameg.text = u"山田 一"_s;
    family::openMemorials(form, context, desk);
    EXPECT_EQ(context.kak_zokunameg, u"山田 一"_s);
    for (auto* operation : {family::updateDeath, family::removeDeath}) {
        desk.expect(u"俗名が変更されています。一覧から選び直して下さい"_s, title);
        operation(form, context, desk);
    }
    form.frm11_zoknameg.text = u"山田 花"_s;
    // An age counted otherwise follows the dates only when one of them is edited.
    execute(u"UPDATE tbl_kakocho SET tblkak_kyounen = 81"_s);
    show();
    change();
    EXPECT_EQ(query(u"SELECT tblkak_kyounen FROM tbl_kakocho"_s), u"81"_s);
    // A mistyped year that is put right again leaves it, too.
    form.命日.year.text = u"15"_s;
    desk.answer(askChange, title, false);
    family::updateDeath(form, context, desk);
    form.命日.year.text = u"12"_s;
    change();
    EXPECT_EQ(query(u"SELECT tblkak_kyounen FROM tbl_kakocho"_s), u"81"_s);
    form.命日.day.text = u"3"_s;
    change();
    EXPECT_EQ(query(u"SELECT tblkak_kyounen FROM tbl_kakocho"_s), u"80"_s);

    execute(u"DELETE FROM tbl_kakocho"_s);
    for (const auto& [operation, question] :
         {std::pair{&family::updateDeath, askChange}, {&family::removeDeath, askDelete}}) {
        desk.answer(question, title, true);
        desk.expect(u"指定された過去帳を読めませんません。DBの整合性を確認して下さい"_s, title);
        operation(form, context, desk);
    }
    form.命日.western.text = u"2008/2/30"_s;
    desk.expect(u"法要記録の照会者を特定して下さい"_s, title);
    family::openMemorials(form, context, desk);
    // An entry that is gone leaves a form in which the household's next one can be entered.
    Form handed;
    desk.expect(u"過去帳が取出せません、ﾃﾞｰﾀﾍﾞｰｽの整合性を確認して下さい。"_s, title);
    family::beginDeathRegister(handed, context, desk);
    EXPECT_EQ(handed.frm11_no.text + handed.frm11_dankag.text + handed.frm11_dankak.text, u"3山田ヤマダ"_s);
    context.G初期値();
    desk.expect(u"檀家を照会してから登録して下さい"_s, title);
    family::registerDeath(form, context, desk);
}

TEST_F(DeathRegister, DeletionAsksForTheMemorialsAndTheFamilyEach) {
    for (const auto& [memorials, familyBack, left] :
         {std::tuple{false, false, u"14,1"_s}, {true, false, u"0,1"_s}, {true, true, u"0,0"_s}}) {
        execute(u"DELETE FROM tbl_hohyo; UPDATE tbl_kazoku SET tblkzk_seishikbn = '0'"_s);
        registerHana(true);
        EXPECT_EQ(query(u"SELECT count(*) FROM tbl_hohyo"_s), u"14"_s);
        desk.answer(askDelete, title, true);
        desk.answer(u"法要等の情報も削除しますか？"_s, title, memorials);
        desk.answer(u"家族登録は元に戻しますか？"_s, title, familyBack);
        desk.expect(u"削除処理を終了しました。"_s, title);
        family::removeDeath(form, context, desk);
        // Nobody who is gone is offered to the screens that open next.
        EXPECT_EQ(context.kak_zokunameg, QString());
        EXPECT_EQ(entries() + query(u"SELECT count(*) FROM tbl_hohyo"_s) + u',' + flag(), left);
    }
}

} // namespace
