#include "households/registration_rules.h"

#include "store/backup.h"
#include "support/register_fixture.h"
#include "support/test_desk.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace {

const QString title = u"檀家 登録"_s;

class Move : public RegisterFixture {
  protected:
    Move() {
        store::Database database;
        store::Table(database, store::idxdnk_no).insert(sampleHousehold(7));
        households::beginHousehold(form, context, desk);
        form.frm01_no.text = u"7"_s;
        households::LoadHousehold(form, context, desk);
    }
    // name|telephone|second address line|living|branch|household's name; the first address line is the household's.
    void member(const QString& fields) {
        execute(u"INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_nameg, tblkzk_tel, tblkzk_jusho2, tblkzk_seishikbn, "
                "tblkzk_no2, tblkzk_dnknameg, tblkzk_yubin, tblkzk_jusho1, tblkzk_bikou, tblkzk_add_ymd) VALUES "
                "(7, '%1', '100-0001', '寺前1丁目2-3', '備', '2020-04-01')"_s.arg(
                    QString(fields).replace(u"|"_s, u"', '"_s)));
    }
    void update() {
        desk.answer(u"入力された内容で檀家さんを変更します。内容を確認して下さい。"_s, title, true);
        desk.expect(u"入力された内容で檀家さんは更新されました。"_s, title);
        households::UpdateHousehold(form, context, desk);
    }
    QStringList offered() {
        QStringList captions;
        for (const desk::Offer& offer : desk.offered)
            captions << offer.caption;
        return captions;
    }
    // The bar is emptied before an operation.
    void take(const QString& name) {
        const auto offers = std::exchange(desk.offered, {});
        desk.informed.clear();
        for (const desk::Offer& offer : offers)
            if (offer.name == name)
                offer.run();
    }
    QString family() {
        return query(u"SELECT tblkzk_nameg || tblkzk_yubin || tblkzk_jusho1 || tblkzk_jusho2 || tblkzk_tel FROM "
                     "tbl_kazoku ORDER BY rowid"_s);
    }

    households::檀家登Form form;
    TestDesk desk{today};
};

TEST_F(Move, TheFamilyFollowsWhereItsCopiesWereTheOldOnes) {
    const QString tel = u"03-1234-5678"_s;
    member(u"親|%1||0|0|山田"_s.arg(tel));
    member(u"子|090||0|0|山田"_s);
    member(u"遠|%1|別室|0|0|山田"_s.arg(tel));
    member(u"他|090|別室|0|0|山田"_s);
    member(u"故|%1||1|0|山田"_s.arg(tel));
    member(u"分|%1||0|1|山田"_s.arg(tel));
    member(u"旧|%1||0|0|鈴木"_s.arg(tel));
    const QString stays = u"他100-0001寺前1丁目2-3別室090|故100-0001寺前1丁目2-3%1|分100-0001寺前1丁目2-3%1|"
                          "旧100-0001寺前1丁目2-3%1"_s.arg(tel);
    form.frm01_biko.text = u"変更"_s;
    update();
    EXPECT_TRUE(desk.offered.empty()); // nothing of it is copied
    form.frm01_tel.text = u"045"_s;
    update();
    EXPECT_EQ(offered(), QStringList({u"家族2人も直す"_s}));
    desk.offered.clear();
    form.frm01_tel.text = tel;
    update();
    EXPECT_TRUE(desk.offered.empty());

    form.frm01_yubinno.text = u"220-0001"_s;
    form.frm01_jyusho1.text = u"港町1"_s;
    form.frm01_tel.text = u"045"_s;
    update();
    EXPECT_EQ(offered(), QStringList({u"家族3人も直す"_s}));
    const QString before = family();
    const auto offer = desk.offered;
    // The household is other than it was written: nobody moves.
    execute(u"UPDATE tbl_danka SET tbldnk_bikou = '別'"_s);
    desk.expect(u"この記録はほかの画面で変更されています。照会し直して下さい"_s, title);
    take(u"家族も直す"_s);
    EXPECT_EQ(family(), before);
    execute(u"UPDATE tbl_danka SET tbldnk_bikou = '変更'"_s);
    // One of them cannot be written: nobody moves.
    refuseRows(u"tbl_kazoku"_s, u"tblkzk_nameg = '遠' AND tblkzk_tel = '045'"_s);
    EXPECT_THROW(offer.front().run(), std::exception);
    EXPECT_EQ(family(), before);
}

TEST_F(Move, OnlyWhatIsStillOldAtThePressIsWritten) {
    member(u"親|03-1234-5678||0|0|山田"_s);
    member(u"子|03-1234-5678||0|0|山田"_s);
    member(u"遠|090|別室|0|0|山田"_s);
    form.frm01_jyusho1.text = u"港町1"_s;
    form.frm01_tel.text = u"045"_s;
    update();
    execute(u"UPDATE tbl_kazoku SET tblkzk_tel = '046', tblkzk_jusho1 = '先' WHERE tblkzk_nameg = '子'"_s);
    take(u"家族も直す"_s);
    EXPECT_EQ(family(), u"親100-0001港町1045|子100-0001先046|遠100-0001寺前1丁目2-3別室090"_s);
    EXPECT_EQ(query(u"SELECT DISTINCT tblkzk_bikou || tblkzk_add_ymd FROM tbl_kazoku"_s), u"備2020-04-01"_s);
    EXPECT_EQ(desk.informed, QStringList({u"家族1人の住所・電話番号を直しました"_s}));
    EXPECT_TRUE(desk.offered.empty());
}

TEST_F(Move, FormerNamesAreCorrectedAfterACopy) {
    member(u"親|03-1234-5678||0|0|山田"_s);
    execute(
        u"INSERT INTO tbl_kakocho (tblkak_no, tblkak_dnknameg, tblkak_dnknamek, tblkak_zokunameg) VALUES "
        "(7, '山田', 'ヤマダ', '一'), (7, '山田', 'ヤマダ', '二'), (7, '川田', 'カワダ', '二'), (8, '他', 'タ', '三'); "
        "UPDATE tbl_kazoku SET tblkzk_dnknamek = 'ヤマダ'"_s);
    form.frm01_dankag.text = u"川田"_s;
    form.frm01_dankak.text = u"カワダ"_s;
    form.frm01_tel.text = u"045"_s;
    update();
    EXPECT_EQ(offered(), QStringList({u"家族1人も直す"_s, u"写し3件の檀家名も直す"_s}));
    desk.expectBeginning(u"次の写しは直せませんでした。"_s, title);
    take(u"写しも直す"_s);
    EXPECT_EQ(query(u"SELECT tblkak_dnknameg || tblkak_zokunameg FROM tbl_kakocho ORDER BY rowid"_s),
              u"川田一|山田二|川田二|他三"_s);
    EXPECT_FALSE(QDir(store::backupFolder(store::Database::registerPath())).isEmpty());
    EXPECT_EQ(offered(), QStringList({u"家族1人も直す"_s})); // and the family still follows
    take(u"家族も直す"_s);
    EXPECT_EQ(query(u"SELECT tblkzk_dnknameg || tblkzk_dnknamek || tblkzk_kanaidx || tblkzk_tel FROM tbl_kazoku"_s),
              u"川田カワダカ045"_s);
}

TEST_F(Move, CopiesThatMayBeABranchsAreTold) {
    member(u"親|090||0|0|山田"_s);
    execute(u"UPDATE tbl_kazoku SET tblkzk_dnknamek = 'ヤマダ'; INSERT INTO tbl_danka (tbldnk_no1, tbldnk_no2, "
            "tbldnk_nameg, tbldnk_namek) VALUES (7, 1, '山田', 'ヤマダ')"_s);
    form.frm01_dankag.text = u"川田"_s;
    update();
    EXPECT_TRUE(desk.offered.empty());
    EXPECT_TRUE(desk.informed.join(u' ').contains(u"前の檀家名の写し1件は、同じ名前の枝番の檀家のもの"_s));
}

} // namespace
