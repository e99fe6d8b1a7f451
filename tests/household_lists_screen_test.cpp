#include "support/screen_fixture.h"

using namespace Qt::StringLiterals;

namespace {

class HouseholdListScreens : public ScreenFixture {
  protected:
    HouseholdListScreens() {
        execute(uR"(
            INSERT INTO tbl_danka (tbldnk_no1, tbldnk_no2, tbldnk_nameg, tbldnk_namek, tbldnk_dnkkbn, tbldnk_yubin,
              tbldnk_jyusho1, tbldnk_tel, tbldnk_toshug, tbldnk_toshuk) VALUES
              (7, 0, '山田', 'ヤマダ', '檀家', '100-0001', '寺前1', '03-1', '太郎', 'タロウ');
            INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_dnknamek, tblkzk_nameg, tblkzk_namek,
              tblkzk_zokugara, tblkzk_dohkyokbn, tblkzk_seishikbn, tblkzk_sei_ymd, tblkzk_yubin, tblkzk_jusho1,
              tblkzk_tel) VALUES
              (7, '山田', 'ヤマダ', '太郎', 'タロウ', '本人', '0', '0', '1950-01-01', '100-0001', '寺前1', '03-1'),
              (7, '山田', 'ヤマダ', '次郎', 'ジロウ', '長男', '1', '0', '1980-01-01', '200-0002', '川端2', '04-1');)"_s);
        workplace->context.dnk_no1 = 7;
        workplace->context.dnk_nameg = u"山田"_s;
    }
};

TEST_F(HouseholdListScreens, SuccessionShowsInTheFamilyListOpenedFromIt) {
    const QString succession = u"代替当"_s;
    const QString title = u"代替り処理"_s;
    open(succession);
    EXPECT_EQ(text(succession, u"frm01_jyusho1"_s), u"寺前1"_s);
    clickLine(succession, u"frm01_toshug"_s, u"次郎"_s);
    EXPECT_EQ(control<QListWidget>(succession, u"frm01_tsh_zkgr"_s).currentRow(), 1);
    EXPECT_EQ(text(succession, u"frm01_jyusho1"_s), u"川端2"_s);
    answer(u"入力された内容で檀家さんを変更しますか？"_s, title, true);
    expect(u"入力された内容で檀家さんは更新されました。"_s, title);
    expect(u"入力された内容で家族は更新されました。"_s, title);
    answer(u"その他の家族の続柄も変更しますか？"_s, title, false);
    press(succession, u"更新"_s);
    allShown();
    EXPECT_EQ(query(u"SELECT tbldnk_toshug, tbldnk_jyusho1 FROM tbl_danka"_s), u"次郎,川端2"_s);

    press(succession, u"家族一覧"_s);
    EXPECT_EQ(text(u"家族一"_s, u"frm12_jyusho1"_s), u"川端2"_s);
    EXPECT_EQ(cell(u"家族一"_s, u"frm21_tbl"_s, 2, 0), u"当主"_s);
    EXPECT_EQ(cell(u"家族一"_s, u"frm21_tbl"_s, 2, 5), u"46"_s);
}

TEST_F(HouseholdListScreens, EachListWorksOnTheHouseholdItWasOpenedFor) {
    execute(u"INSERT INTO tbl_kakocho (tblkak_no, tblkak_dnknameg, tblkak_zokunameg, tblkak_mei_ymd) VALUES "
            "(7, '山田', 'ハナ', '2000-01-01')"_s);
    open(u"家族一"_s);
    open(u"過去一"_s);
    workplace->context.publishHousehold(9);
    expect(u"有功範囲外を指定しています。やり直して下さい"_s, u"家族一覧"_s);
    clickCell(u"家族一"_s, u"frm21_tbl"_s, 0, 1);
    press(u"家族一"_s, u"前ページ"_s);
    EXPECT_EQ(workplace->context.dnk_no1, 7);
    EXPECT_EQ(cell(u"家族一"_s, u"frm21_tbl"_s, 1, 1), u"太郎"_s);

    workplace->context.publishHousehold(9);
    clickCell(u"過去一"_s, u"frm21_tbl"_s, 1, 0);
    EXPECT_EQ(workplace->context.dnk_no1, 7);
    EXPECT_EQ(workplace->context.kak_zokunameg, u"ハナ"_s);
}

} // namespace
