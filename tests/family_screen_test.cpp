#include "support/screen_fixture.h"

#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

const QString household = u"檀家登"_s;
const QString familyScreen = u"家族登"_s;
const QString deathScreen = u"過去登"_s;

class FamilyScreens : public ScreenFixture {
  protected:
    // "control=text;control=text"
    void fill(const QString& screenName, const QString& boxes) {
        for (const QString& box : boxes.split(u';'))
            type(screenName, box.section(u'=', 0, 0), box.section(u'=', 1));
    }
    // What an input method sends while the keyboard is in the box.
    void compose(const QString& screenName, const QString& box, const QString& composed,
                 const QString& committed = {}) {
        QInputMethodEvent event(composed, {});
        event.setCommitString(committed);
        QCoreApplication::sendEvent(&control(screenName, box), &event);
    }
    void storeHousehold() {
        store::Database database;
        store::Table(database, store::idxdnk_no).insert(sampleHousehold(3));
        workplace->context.dnk_no1 = 3;
        workplace->context.takeNames(sampleHousehold(3));
    }
};

TEST_F(FamilyScreens, TheRoadOfOneDeath) {
    open(household);
    fill(
        household,
        u"frm01_dankag=寺田;frm01_dankak=テラダ;frm01_yubinno=100-0001;frm01_jyusho1=寺前1;frm01_tel=03-1;frm01_toshug=寺田 一;frm01_toshuk=テラダ ハジメ"_s);
    press(household, u"frm01_dnkkbn1"_s);
    press(household, u"frm01_haka_nai"_s);
    answer(u"入力された内容で檀家さんを登録します。内容を確認して下さい。"_s, u"檀家 登録"_s, true);
    press(household, u"登録"_s);

    press(household, u"家族登録"_s);
    for (const auto& [member, home] :
         {std::pair{u"一;frm12_namek=テラダ ハジメ;生年元号=昭和;生年=２５;生年月=１;生年日=5;"
                    "frm12_続柄=本人"_s,
                    u"frm12_dohkyo"_s},
          {u"花;frm12_namek=テラダ ハナ;生年元号=大正;生年=9;生年月=5;生年日=10;frm12_続柄=母"_s, u"frm12_bekkyo"_s}}) {
        fill(familyScreen, u"frm12_nameg=寺田 "_s + member);
        press(familyScreen, home);
        answer(u"入力された内容で家族の登録をします。内容を確認して下さい。"_s, u"家族登録"_s, true);
        expect(u"入力された内容で家族は登録されました。"_s, u"家族登録"_s);
        press(familyScreen, u"登録"_s);
    }
    close(familyScreen);

    press(household, u"過去帳登録"_s);
    clickLine(deathScreen, u"frm11_kazoku"_s, u"寺田 花"_s);
    EXPECT_EQ(text(deathScreen, u"生年YMD"_s), u"1920/05/10"_s);
    fill(
        deathScreen,
        u"命日元号=平成;命日年=２０;命日月=2;命日付=29;frm11_kaimyoug=釈尼花;frm11_kaimyouk=シャクニハナ;frm11_続柄=母"_s);
    press(deathScreen, u"frm11_haka3"_s);
    answer(u"入力された内容で過去帳の登録をします。内容を確認して下さい。"_s, u"過去帳登録"_s, true);
    expect(u"入力された内容で過去帳は登録されました。"_s, u"過去帳登録"_s);
    answer(u"法要等の登録も行いますか？"_s, u"過去帳登録"_s, true);
    expect(u"法要等の登録を終了した。"_s, u"過去帳登録"_s);
    press(deathScreen, u"登録"_s);
    allShown();
    EXPECT_EQ(text(deathScreen, u"frm11_kyounen"_s), u"88"_s);

    EXPECT_EQ(query(u"SELECT * FROM tbl_danka"_s),
              u"1,0,寺田,テラダ,檀家,100-0001,寺前1,,03-1,,,,テ,境内,寺田 一,テラダ ハジメ,0,0,2026-11-22"_s);
    EXPECT_EQ(
        query(u"SELECT * FROM tbl_kazoku ORDER BY tblkzk_sei_ymd"_s),
        u"1,0,寺田,テラダ,寺田 花,テラダ ハナ,大正,9,5,10,1920-05-10,母,1,1,100-0001,寺前1,,03-1,,,,テ,2026-11-22|"
        "1,0,寺田,テラダ,寺田 一,テラダ ハジメ,昭和,25,1,5,1950-01-05,本人,0,0,100-0001,寺前1,,03-1,,,,テ,2026-11-22"_s);
    EXPECT_EQ(query(u"SELECT * FROM tbl_kakocho"_s),
              u"1,寺田,テラダ,寺田 花,テラダ "
              u"ハナ,大正,9,5,10,1920-05-10,平成,20,2,29,2008-02-29,88,釈尼花,シャクニハナ,寺田 一,"
              "母,,無,境外,0,,,テ,2026-11-22"_s);
    QStringList rows;
    for (const auto& memorial :
         u"49日 2008-04-17|100ｹ日 2008-06-07|1周忌 2009-02-28|3回忌 2010-02-28|7回忌 2014-02-28|13回忌 2020-02-29|"
         "17回忌 2024-02-29|23回忌 2030-02-28|27回忌 2034-02-28|33回忌 2040-02-29|50回忌 2057-02-28|100回忌 2107-02-28|"
         "200回忌 2207-02-28|300回忌 2307-02-28"_s.split(u'|'))
        rows
            << u"1,寺田,テラダ,寺田 花,テラダ ハナ,釈尼花,シャクニハナ,2008-02-29,%1,0,%2,NULL,NULL,0,1,0,0,,,,0,NULL,0,,テ,2026-11-22"_s
                   .arg(memorial.section(u' ', 0, 0), memorial.section(u' ', 1));
    EXPECT_EQ(query(u"SELECT * FROM tbl_hohyo ORDER BY tblhoy_kaiki_yymd"_s), rows.join(u"|"_s));
}

TEST_F(FamilyScreens, MarksTheWrongBoxesAndGoesToTheFirst) {
    storeHousehold();
    auto& screen = open(familyScreen);
    fill(familyScreen, u"frm12_namek=;生年元号=平成;生年=ｘ;生年月=y;生年日=1"_s);
    expect(u"家族名カナは必須項目です、入力して下さい"_s, u"家族登録"_s);
    press(familyScreen, u"登録"_s);
    const QColor red(255, 0, 0);
    for (const char16_t* name : {u"frm12_namek", u"生年", u"生年月", u"frm12_続柄"})
        EXPECT_EQ(colour(familyScreen, QString::fromUtf16(name)), red) << QString::fromUtf16(name).toStdString();
    for (const char16_t* name : {u"frm12_nameg", u"生年元号", u"生年日"})
        EXPECT_EQ(colour(familyScreen, QString::fromUtf16(name)), QColor(0, 0, 0));
    EXPECT_EQ(screen.tabOrder().front()->objectName(), u"frm12_namek"_s);
    EXPECT_EQ(screen.focusWidget()->objectName(), u"frm12_namek"_s);
}

TEST_F(FamilyScreens, TheDateGroupWorksByKeyboardAlone) {
    storeHousehold();
    auto& screen = open(familyScreen);
    screen.activateWindow();
    QWidget* box = &control(familyScreen, u"生年元号"_s);
    box->setFocus();
    for (const char16_t* next : {u"生年", u"生年月", u"生年日", u"frm12_続柄"}) {
        auto* combo = qobject_cast<QComboBox*>(box);
        EXPECT_EQ(combo->currentText(), QString()); // opens empty, and nothing is chosen by passing through
        if (next == std::u16string_view(u"生年"))
            combo->setEditText(u"昭和"_s);
        else
            QTest::keyClicks(combo, u"25"_s);
        EXPECT_EQ(screen.focusWidget(), box); // nothing moves by itself
        EXPECT_FALSE(combo->view()->isVisible());
        QTest::keyClick(box, next == std::u16string_view(u"生年月") ? Qt::Key_Tab : Qt::Key_Return);
        box = screen.focusWidget();
        EXPECT_EQ(box->objectName(), QString::fromUtf16(next));
    }
}

TEST_F(FamilyScreens, KanaBoxesFillThemselvesFromTheReading) {
    // Steps of a composition, each composed=committed>kana box afterwards, behind what the kana box holds at first.
    const QString cases[] = {
        u"|ｙ>|や>|やまd>|やまだ>|山田>|=山田>ヤマダ|=　>ヤマダ　|はなこ>ヤマダ　|花子>ヤマダ　|=花子>ヤマダ　ハナコ"_s,
        u"|けn>|=健>ケン"_s,
        u"|ﾔﾏﾀﾞ>|=山田>ヤマダ"_s,
        u"|やまだたろう>|山田太郎>|太郎=山田>ヤマダタロウ|=太郎>ヤマダタロウ"_s,
        u"|やまだたろう>|山田たろう>|たろう=山田>ヤマダ|=太郎>ヤマダタロウ"_s,
        u"|やま>|=>|=ABC>"_s,
        u"ジブンデ|やまだ>ジブンデ|=山田>ジブンデ"_s};
    open(household);
    for (const QString& steps : cases) {
        type(household, u"frm01_toshug"_s, {});
        type(household, u"frm01_toshuk"_s, steps.section(u'|', 0, 0));
        for (const QString& step : steps.section(u'|', 1).split(u'|')) {
            const QString typed = step.section(u'>', 0, 0);
            compose(household, u"frm01_toshug"_s, typed.section(u'=', 0, 0), typed.section(u'=', 1));
            EXPECT_EQ(text(household, u"frm01_toshuk"_s), step.section(u'>', 1)) << step.toStdString();
        }
    }
}

TEST_F(FamilyScreens, ReadingsGoOnFromThePresetUntilTheUserTypes) {
    storeHousehold();
    open(familyScreen);
    const auto say = [this](const QString& reading, const QString& name) {
        compose(familyScreen, u"frm12_nameg"_s, reading);
        compose(familyScreen, u"frm12_nameg"_s, {}, name);
    };
    say(u"はな"_s, u"花"_s);
    EXPECT_EQ(text(familyScreen, u"frm12_namek"_s), u"ヤマダハナ"_s);
    auto& kana = control<QLineEdit>(familyScreen, u"frm12_namek"_s);
    QTest::keyClick(&kana, Qt::Key_Backspace);
    say(u"え"_s, u"江"_s);
    EXPECT_EQ(kana.text(), u"ヤマダハ"_s);
    kana.selectAll();
    QTest::keyClick(&kana, Qt::Key_Delete);
    say(u"え"_s, u"江"_s);
    EXPECT_EQ(kana.text(), u"エ"_s);
    auto& name = control<QLineEdit>(familyScreen, u"frm12_nameg"_s);
    name.selectAll();
    QTest::keyClick(&name, Qt::Key_Delete);
    EXPECT_EQ(kana.text(), QString());

    // A stored member's kana is the register's, not the program's.
    fill(familyScreen, u"frm12_nameg=甲;frm12_namek=コウ;frm12_続柄=長男"_s);
    answer(u"入力された内容で家族の登録をします。内容を確認して下さい。"_s, u"家族登録"_s, true);
    expect(u"入力された内容で家族は登録されました。"_s, u"家族登録"_s);
    press(familyScreen, u"登録"_s);
    clickLine(familyScreen, u"frm12_meibo"_s, u"甲"_s);
    say(u"おつ"_s, u"乙"_s);
    EXPECT_EQ(kana.text(), u"コウ"_s);

    open(deathScreen);
    compose(deathScreen, u"frm11_kaimyoug"_s, u"しゃくに"_s);
    compose(deathScreen, u"frm11_kaimyoug"_s, {}, u"釈尼"_s);
    EXPECT_EQ(text(deathScreen, u"frm11_kaimyouk"_s), u"シャクニ"_s);
}

TEST_F(FamilyScreens, AScreenLeftOpenStaysWithItsHousehold) {
    storeHousehold();
    execute(u"INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_nameg, tblkzk_seishikbn) "
            "VALUES (3, '山田', '甲', '0'), (4, '寺田', '乙', '0')"_s);
    open(familyScreen);
    workplace->context.G初期値();
    workplace->context.dnk_no1 = 4;
    workplace->context.dnk_nameg = u"寺田"_s;
    clickLine(familyScreen, u"frm12_meibo"_s, u"甲"_s);
    EXPECT_EQ(text(familyScreen, u"frm12_nameg"_s), u"甲"_s);
    EXPECT_EQ(workplace->context.dnk_no1, 3);
    answer(u"ﾃﾞｰﾀを削除します。内容を確認して下さい。"_s, u"家族登録"_s, true);
    expect(u"指定された家族は削除されました。"_s, u"家族登録"_s);
    press(familyScreen, u"削除"_s);
    EXPECT_EQ(query(u"SELECT tblkzk_nameg FROM tbl_kazoku"_s), u"乙"_s);
}

TEST_F(FamilyScreens, TheEraScreenMarksInDarkRedAndShowsWhatItFinds) {
    const QString eras = u"年号登"_s;
    auto& screen = open(eras);
    fill(eras, u"fnen_nengo=令和;fnen_snen=1499;fnen_enen=2050"_s);
    expect(u"この年号はすでに登録されています。確認して下さい。"_s, u"年号登録"_s);
    press(eras, u"登録"_s);
    EXPECT_EQ(colour(eras, u"fnen_nengo"_s), QColor(128, 0, 0));
    EXPECT_EQ(colour(eras, u"fnen_snen"_s), QColor(128, 0, 0));
    EXPECT_EQ(colour(eras, u"fnen_enen"_s), QColor(0, 0, 0));
    EXPECT_EQ(screen.focusWidget()->objectName(), u"fnen_nengo"_s);
    type(eras, u"fnen_snen"_s, u"１９８９"_s);
    press(eras, u"年号照会"_s);
    EXPECT_EQ(text(eras, u"fnen_nengo"_s) + text(eras, u"fnen_snen"_s) + text(eras, u"fnen_enen"_s), u"平成19892019"_s);
    type(eras, u"fnen_nengo"_s, u"令和"_s);
    press(eras, u"西暦照会"_s);
    EXPECT_EQ(text(eras, u"fnen_snen"_s), u"2019"_s);
    press(eras, u"終了"_s);
    EXPECT_EQ(workplace->find(eras), nullptr);
}

} // namespace
