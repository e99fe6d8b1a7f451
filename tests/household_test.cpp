#include "households/kana_list_rules.h"
#include "households/registration_rules.h"

#include "support/register_fixture.h"
#include "support/test_desk.h"

using namespace Qt::StringLiterals;

namespace {

const QString title = u"檀家 登録"_s;
const QString invalid = u"ﾃﾞｰﾀにｴﾗｰがあり登録出来ません。入力した内容をﾁｪｯｸしてください"_s;
const QString deleteQuestion = u"ﾃﾞｰﾀを削除します。内容を確認して下さい。"_s;
const QString registerQuestion = u"入力された内容で檀家さんを登録します。内容を確認して下さい。"_s;
const QString changeQuestion = u"入力された内容で檀家さんを変更します。内容を確認して下さい。"_s;
const QString numberChanged = u"登録NOが変更されています。照会からやり直して下さい"_s;

class Household : public RegisterFixture {
  protected:
    void store(const store::tbl_danka& row) {
        store::Database database;
        store::Table(database, store::idxdnk_no).insert(row);
    }
    void lookUp(const QString& no1, const QString& no2 = u"0"_s) {
        form.frm01_no.text = no1;
        form.frm01_eno.text = no2;
        households::LoadHousehold(form, context, desk);
    }
    QString counter() { return query(u"SELECT tblno_sumino FROM tbl_hatsuban WHERE tblno_key2 = '檀家'"_s); }

    households::檀家登Form form;
    TestDesk desk{today};
};

TEST_F(Household, RefusedRegistrationUsesNoNumberAndTheNextOneSucceeds) {
    execute(u"DELETE FROM tbl_hatsuban"_s);
    households::beginHousehold(form, context, desk);
    desk.expect(invalid, title);
    households::RegisterHousehold(form, context, desk);
    for (desk::Text* box : {&form.frm01_dankag, &form.frm01_dankak, &form.frm01_yubinno, &form.frm01_jyusho1,
                            &form.frm01_tel, &form.frm01_toshug, &form.frm01_toshuk})
        EXPECT_EQ(box->colour, desk::Colour::red);
    EXPECT_TRUE(form.frm01_dankag.first && !form.frm01_dankak.first);
    EXPECT_EQ(form.frm01_jyusho2.colour, desk::Colour::black);

    store(sampleHousehold(7));
    lookUp(u"7"_s);
    form.frm01_地区.text = u"東"_s;
    desk.answer(registerQuestion, title, false);
    households::RegisterHousehold(form, context, desk);
    EXPECT_EQ(form.frm01_no.text + counter() + query(u"SELECT count(*) FROM tbl_danka"_s), u"101"_s);

    desk.answer(registerQuestion, title, true);
    households::RegisterHousehold(form, context, desk);
    EXPECT_EQ(counter(), u"1"_s);
    EXPECT_EQ(
        query(u"SELECT * FROM tbl_danka WHERE tbldnk_no1 = 1"_s),
        u"1,0,山田,ヤマダ,檀家,100-0001,寺前1丁目2-3,,03-1234-5678,,東,,ヤ,境内,山田　太郎,ヤマダ タロウ,0,0,2026-11-22"_s);
    EXPECT_EQ(query(u"SELECT マ_NO, マ_略称 FROM マスタ WHERE マ_区分 = 2"_s), u"1,東"_s);
    EXPECT_EQ(context.dnk_no1, 1);
}

TEST_F(Household, ANumberTakenOrNoCounterIsRefused) {
    execute(u"UPDATE tbl_hatsuban SET tblno_sumino = 6"_s);
    store(sampleHousehold(7));
    lookUp(u"7"_s);
    desk.answer(registerQuestion, title, true);
    desk.expect(u"指定された檀家番号は既に登録されています"_s, title);
    households::RegisterHousehold(form, context, desk);
    EXPECT_EQ(counter(), u"6"_s);

    execute(u"DROP TABLE tbl_hatsuban"_s);
    desk.expect(u"発番ﾃｰﾌﾞﾙがありません。DBの整合性をﾁｪｯｸしてください"_s, title);
    households::RegisterHousehold(form, context, desk);
}

TEST_F(Household, LookUpShowsTheHouseholdAndItsGravesInUse) {
    auto row = sampleHousehold(5);
    row.tbldnk_dnkkbn = u"一般"_s;
    row.tbldnk_haka_basho = u"境外"_s;
    store(row);
    row.tbldnk_no2 = 1;
    row.tbldnk_nameg = u"分家"_s;
    store(row);
    store(sampleHousehold(6));
    execute(u"INSERT INTO tbl_ohaka (tblhak_no, tblhak_banchi1, tblhak_banchi2, tblhak_dnk_no, tblhak_bohyo_mei, "
            "tblhak_haiki_kbn) VALUES (3,'東','2',5,'乙',0), (4,'東','1',5,'甲',0), (9,'西','1',5,'丙',1)"_s);
    lookUp(u" ５ "_s);
    EXPECT_EQ(form.frm01_dankag.text, u"山田"_s);
    EXPECT_TRUE(form.frm01_dnkkbn2.chosen && !form.frm01_dnkkbn1.chosen && form.frm01_haka_soto.chosen);
    EXPECT_EQ(form.frm01_haka_bohyo.items, QStringList({u"乙"_s, u"甲"_s}));
    EXPECT_EQ(form.frm01_haka_no.items, QStringList({u"3"_s, u"4"_s}));
    EXPECT_EQ(context.dnk_haka_basho, u"境外"_s);
    lookUp(u"5"_s, u"1"_s);
    EXPECT_EQ(form.frm01_dankag.text, u"分家"_s);
    lookUp(u"6"_s);
    EXPECT_TRUE(form.frm01_haka_bohyo.items.isEmpty());
    desk.expect(u"指定された檀家番号は登録されていません。確認して下さい"_s, title);
    lookUp(u"6"_s, u"1"_s);
    EXPECT_EQ(form.frm01_dankag.text, u"山田"_s);
    for (const QString& bad : {u""_s, u"40000"_s, u"１２ａ"_s, u"6.4"_s}) {
        desk.expect(u"登録番号は数字で入力して下さい"_s, title);
        lookUp(bad);
    }
    EXPECT_EQ(context.dnk_no1, 6);
}

TEST_F(Household, ChangesAndDeletesOnlyTheHouseholdLookedUp) {
    store(sampleHousehold(5));
    store(sampleHousehold(6));
    lookUp(u"5"_s);
    for (const auto& [no1, no2] : {std::pair{u"6"_s, u"0"_s}, {u"5"_s, u"1"_s}, {u"x"_s, u"0"_s}}) {
        form.frm01_no.text = no1;
        form.frm01_eno.text = no2;
        for (const auto rule : {households::UpdateHousehold, households::DeleteHousehold, households::openGraves,
                                households::eraseShownHousehold}) {
            desk.expect(numberChanged, title);
            rule(form, context, desk);
        }
        desk.expect(numberChanged, title);
        households::openForHousehold(form, context, desk, u"家族登"_s);
    }
    EXPECT_TRUE(desk.opened.empty());

    form.frm01_no.text = u"5"_s;
    form.frm01_eno.text = u"0"_s;
    form.frm01_dankak.text = u"やまだ"_s;
    form.frm01_dnkkbn1.chosen = false;
    desk.answer(changeQuestion, title, true);
    desk.expect(u"入力された内容で檀家さんは更新されました。"_s, title);
    households::UpdateHousehold(form, context, desk);
    EXPECT_EQ(query(u"SELECT tbldnk_no1, tbldnk_kanaidx, tbldnk_dnkkbn, tbldnk_addymd FROM tbl_danka"_s),
              u"5,や,一般,2020-04-01|6,ヤ,檀家,2020-04-01"_s);

    form.frm01_dankag.text = u"未保存"_s;
    households::openGraves(form, context, desk);
    EXPECT_EQ(context.dnk_nameg + context.dnk_kbn, u"未保存一般"_s);
    execute(u"INSERT INTO tbl_ohaka (tblhak_no, tblhak_dnk_no, tblhak_bohyo_mei) VALUES (8, 5, '新')"_s);
    context.dnk_no1 = 12;
    desk.opened.at(0).closed();
    EXPECT_EQ(form.frm01_haka_no.items, QStringList({u"8"_s}));

    desk.answer(deleteQuestion, title, true);
    desk.expect(u"指定された檀家さんは削除されました。"_s, title);
    households::DeleteHousehold(form, context, desk);
    EXPECT_EQ(query(u"SELECT tbldnk_no1 FROM tbl_danka"_s), u"6"_s);
    for (const auto& [rule, question] :
         {std::pair{&households::UpdateHousehold, changeQuestion}, {&households::DeleteHousehold, deleteQuestion}}) {
        desk.answer(question, title, true);
        desk.expect(u"指定された檀家番号を読めませんません。DBの整合性を確認して下さい"_s, title);
        rule(form, context, desk);
    }
}

TEST_F(Household, KanaTabsFollowTheReadingWhateverItsLetters) {
    std::int16_t number = 0;
    for (const QString& kana : {u"ばば"_s, u"ﾊﾏ"_s, u"はっとり"_s, u"ハマ"_s, u"パンダ"_s, u"はま"_s, u"ハナダ"_s,
                                u"ﾊﾞﾊﾞ"_s, u""_s, u"Smith"_s}) {
        auto row = sampleHousehold(++number);
        row.tbldnk_namek = kana;
        row.tbldnk_kanaidx = store::kanaIndex(kana);
        store(row);
    }
    const auto tabs = households::readKanaTabs();
    QStringList order;
    for (const auto& line : tabs[5])
        order << line.texts[1] + QString::number(line.no1);
    EXPECT_EQ(order.join(u' '), u"はっとり3 ハナダ7 ばば1 ﾊﾞﾊﾞ8 ﾊﾏ2 ハマ4 はま6 パンダ5"_s);
    EXPECT_EQ(tabs[10].size(), 2u);

    households::檀家一覧Form list;
    list.chosenNo = 4;
    context.kak_zokunameg = u"一郎"_s;
    households::openChosen(list, context, desk, u"家族一"_s);
    EXPECT_EQ(context.dnk_no1, 4);
    EXPECT_EQ(context.kak_zokunameg, QString());
}

const QString changed = u"この記録はほかの画面で変更されています。照会し直して下さい"_s;

// A new head was entered elsewhere, or the number given to another family, while the screen stood open.
TEST_F(Household, ARowOtherThanReadIsLeftAlone) {
    store(sampleHousehold(5));
    lookUp(u"5"_s);
    execute(u"UPDATE tbl_danka SET tbldnk_toshug = '次郎'"_s);
    form.frm01_biko.text = u"備考"_s;
    const QString eraseQuestion = u"檀家さんに関する全ての情報を抹消します。内容を確認して下さい。"_s;
    desk.answer(changeQuestion, title, true);
    desk.expect(changed, title);
    households::UpdateHousehold(form, context, desk);
    desk.answer(deleteQuestion, title, true);
    desk.expect(changed, title);
    households::DeleteHousehold(form, context, desk);
    EXPECT_EQ(desk.lastPreset, desk::Preset::no);
    execute(u"INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_nameg) VALUES (5, '山田', '太郎')"_s);
    desk.answer(eraseQuestion, title, true);
    for (const auto& [what, erased] : {std::pair{u"情報"_s, true}, {u"家族情報"_s, true}, {u"法要情報"_s, false}}) {
        desk.answer(u"檀家さんの%1を抹消しますか　？"_s.arg(what), u"檀家の抹消"_s, erased);
        if (erased)
            desk.expect(changed, u"檀家の抹消"_s);
    }
    desk.answer(u"檀家さんの過去帳を抹消しますか　？"_s, u"檀家の抹消"_s, false);
    desk.answer(u"檀家さんのお墓情報を抹消しますか　？"_s, u"檀家の抹消"_s, false);
    households::eraseShownHousehold(form, context, desk);
    EXPECT_EQ(query(u"SELECT tbldnk_toshug, tbldnk_bikou FROM tbl_danka"_s), u"次郎,"_s);
    EXPECT_EQ(query(u"SELECT count(*) FROM tbl_kazoku"_s), u"1"_s);
    EXPECT_EQ(form.frm01_biko.text, u"備考"_s);

    // Read again, it can be saved, and what was saved is then the row as read.
    lookUp(u"5"_s);
    for (const QString& remark : {u"一"_s, u"二"_s}) {
        form.frm01_biko.text = remark;
        desk.answer(changeQuestion, title, true);
        desk.expect(u"入力された内容で檀家さんは更新されました。"_s, title);
        households::UpdateHousehold(form, context, desk);
    }
    EXPECT_EQ(query(u"SELECT tbldnk_toshug, tbldnk_bikou FROM tbl_danka"_s), u"次郎,二"_s);
}

TEST_F(Household, ARegisterThatWasReplacedOrARowThatCannotBeTrustedIsLeftAlone) {
    store(sampleHousehold(5));
    lookUp(u"5"_s);
    const auto refused = [&](const QString& message) {
        desk.answer(changeQuestion, title, true);
        desk.expect(message, title);
        households::UpdateHousehold(form, context, desk);
    };
    // Another file takes its place; the same row in it may be changed.
    const QString file = store::Database::registerPath();
    ASSERT_TRUE(QFile::copy(file, file + u".2"_s) && QFile::remove(file) && QFile::rename(file + u".2"_s, file));
    desk.answer(changeQuestion, title, true);
    desk.expect(u"入力された内容で檀家さんは更新されました。"_s, title);
    households::UpdateHousehold(form, context, desk);
    execute(u"UPDATE tbl_danka SET tbldnk_tel = '9'"_s);
    ASSERT_TRUE(QFile::copy(file, file + u".2"_s) && QFile::remove(file) && QFile::rename(file + u".2"_s, file));
    refused(u"登録簿が入れ替わりました。画面を開き直して下さい"_s);

    lookUp(u"5"_s);
    execute(u"DROP INDEX idxdnk_no; CREATE INDEX idxdnk_no ON tbl_danka (tbldnk_no1, tbldnk_no2); "
            "INSERT INTO tbl_danka SELECT * FROM tbl_danka"_s);
    refused(u"同じ番号・名前の記録が二つあり、どちらか決められません。何も書き込まれていません。端末で「hoshiren-db "
            "check」を実行して、登録簿を確認して下さい。"_s);
    execute(u"DELETE FROM tbl_danka WHERE rowid > 1; PRAGMA ignore_check_constraints = 1; "
            "UPDATE tbl_danka SET tbldnk_addymd = '2020-02-31'"_s);
    lookUp(u"5"_s);
    desk.answer(changeQuestion, title, true);
    EXPECT_THROW(households::UpdateHousehold(form, context, desk), store::Error);
    EXPECT_EQ(query(u"SELECT tbldnk_addymd FROM tbl_danka"_s), u"2020-02-31"_s);
}

TEST_F(Household, WhatAHouseholdLeftIsErasedByItsNumber) {
    store(sampleHousehold(5));
    execute(u"INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_nameg) VALUES (5, 'あ', '一'), (5, '山田', "
            u"'二'), "
            "(6, '山田', '三')"_s);
    lookUp(u"5"_s);
    desk.answer(deleteQuestion, title, true);
    desk.expect(u"指定された檀家さんは削除されました。"_s, title);
    households::DeleteHousehold(form, context, desk);
    const QString leftOvers = u"登録番号5の檀家は登録されていません。この番号に残っているものを抹消しますか？"_s;
    desk.answer(leftOvers, title, false);
    households::eraseShownHousehold(form, context, desk);
    EXPECT_EQ(desk.lastPreset, desk::Preset::no);
    desk.answer(leftOvers, title, true);
    desk.answer(u"檀家さんに関する全ての情報を抹消します。内容を確認して下さい。"_s, title, true);
    for (const QString& what : {u"情報"_s, u"家族情報"_s, u"法要情報"_s, u"過去帳"_s, u"お墓情報"_s}) {
        desk.answer(u"檀家さんの%1を抹消しますか　？"_s.arg(what), u"檀家の抹消"_s, what == u"家族情報"_s);
        if (what == u"家族情報"_s)
            desk.expect(u"指定された檀家の家族は削除されました。"_s, u"檀家の抹消"_s);
    }
    households::eraseShownHousehold(form, context, desk);
    EXPECT_EQ(query(u"SELECT tblkzk_nameg FROM tbl_kazoku"_s), u"三"_s);
}

// The number was given to another family after the one shown was deleted, here or elsewhere.
TEST_F(Household, ErasureReachesNoOtherFamilyThanTheOneShown) {
    const QString missing = u"指定された檀家さんの情報を読めません。DBの整合性を確認して下さい"_s;
    const struct {
        QString branch;
        QString elsewhere;
        QString told;
        bool deletedHere;
    } cases[] = {
        {u"0"_s, u"DELETE FROM tbl_danka"_s, changed, true},
        {u"1"_s, u"DELETE FROM tbl_danka WHERE tbldnk_no2 = 1"_s, missing, false},
    };
    for (const auto& one : cases) {
        execute(u"DELETE FROM tbl_danka"_s);
        auto row = sampleHousehold(5);
        store(row);
        row.tbldnk_no2 = 1;
        store(row);
        form = {};
        lookUp(u"5"_s, one.branch);
        if (one.deletedHere) {
            desk.answer(deleteQuestion, title, true);
            desk.expect(u"指定された檀家さんは削除されました。"_s, title);
            households::DeleteHousehold(form, context, desk);
        }
        execute(one.elsewhere);
        if (one.deletedHere) {
            row.tbldnk_no2 = 0;
            row.tbldnk_nameg = u"佐藤"_s;
            store(row);
        }
        const QString before = query(u"SELECT tbldnk_no2, tbldnk_nameg FROM tbl_danka"_s);
        desk.answer(u"檀家さんに関する全ての情報を抹消します。内容を確認して下さい。"_s, title, true);
        for (const QString& what : {u"情報"_s, u"家族情報"_s, u"法要情報"_s, u"過去帳"_s, u"お墓情報"_s}) {
            desk.answer(u"檀家さんの%1を抹消しますか　？"_s.arg(what), u"檀家の抹消"_s, true);
            desk.expect(one.told, u"檀家の抹消"_s);
        }
        households::eraseShownHousehold(form, context, desk);
        EXPECT_EQ(query(u"SELECT tbldnk_no2, tbldnk_nameg FROM tbl_danka"_s), before);
    }
}

} // namespace
