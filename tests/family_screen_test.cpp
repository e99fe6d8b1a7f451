#include "support/screen_fixture.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QTextDocumentFragment>
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
        workplace->context.publishHousehold(desk::HouseholdBlock::of(sampleHousehold(3)));
    }
};

// Every box of the three screens reaches its field.
TEST_F(FamilyScreens, TheRoadOfOneDeath) {
    open(household);
    fill(household,
         u"frm01_dankag=寺田;frm01_dankak=テラダ;frm01_yubinno=100-0001;frm01_jyusho1=寺前1;frm01_jyusho2=離れ;"
         "frm01_tel=03-1;frm01_fax=03-2;frm01_地区=東;frm01_biko=役員;frm01_toshug=寺田 一;"
         "frm01_toshuk=テラダ ハジメ"_s);
    press(household, u"frm01_dnkkbn1"_s);
    press(household, u"frm01_haka_nai"_s);
    answer(u"入力された内容で檀家さんを登録します。内容を確認して下さい。"_s, u"檀家 登録"_s, true);
    press(household, u"登録"_s);

    press(household, u"家族登録"_s);
    fill(familyScreen, u"frm12_nameg=寺田 花;frm12_namek=テラダ ハナ;生年元号=大正;生年=９;生年月=5;生年日=10;"
                       "frm12_続柄=母;frm12_bikou=遠方"_s);
    press(familyScreen, u"frm12_bekkyo"_s);
    answer(u"入力された内容で家族の登録をします。内容を確認して下さい。"_s, u"家族登録"_s, true);
    expect(u"入力された内容で家族は登録されました。"_s, u"家族登録"_s);
    press(familyScreen, u"登録"_s);
    close(familyScreen);

    press(household, u"過去帳登録"_s);
    clickLine(deathScreen, u"frm11_kazoku"_s, u"寺田 花"_s);
    EXPECT_EQ(text(deathScreen, u"生年YMD"_s), u"1920/05/10"_s);
    fill(deathScreen, u"命日元号=平成;命日年=２０;命日月=2;命日付=29;frm11_kaimyoug=釈尼花;frm11_kaimyouk=シャクニハナ;"
                      "frm11_続柄=母;frm11_bikou=備"_s);
    press(deathScreen, u"frm11_haka3"_s);
    answer(u"入力された内容で過去帳の登録をします。内容を確認して下さい。"_s, u"過去帳登録"_s, true);
    expect(u"入力された内容で過去帳は登録されました。"_s, u"過去帳登録"_s);
    answer(u"法要等の登録も行いますか？"_s, u"過去帳登録"_s, false);
    press(deathScreen, u"登録"_s);
    EXPECT_EQ(text(deathScreen, u"frm11_kyounen"_s), u"88"_s);

    const QString stored = query(u"SELECT * FROM tbl_danka"_s);
    EXPECT_TRUE(stored.startsWith(u"1,0,寺田,テラダ,檀家,100-0001,寺前1,離れ,03-1,03-2,東,役員,テ,境内,"
                                  "寺田 一,テラダ ハジメ,0,0,2026-11-22"_s))
        << stored.toStdString();
    EXPECT_EQ(
        query(u"SELECT * FROM tbl_kazoku"_s),
        u"1,0,寺田,テラダ,寺田 花,テラダ ハナ,大正,9,5,10,1920-05-10,母,1,1,100-0001,寺前1,離れ,03-1,03-2,東,遠方,テ,"
        "2026-11-22"_s);
    EXPECT_EQ(
        query(u"SELECT * FROM tbl_kakocho"_s),
        u"1,寺田,テラダ,寺田 花,テラダ ハナ,大正,9,5,10,1920-05-10,平成,20,2,29,2008-02-29,88,釈尼花,シャクニハナ,"
        "寺田 一,母,備,無,境外,0,,,テ,2026-11-22"_s);
}

TEST_F(FamilyScreens, TheDateGroupWorksByKeyboardAlone) {
    storeHousehold();
    auto& screen = open(familyScreen);
    screen.activateWindow();
    const QStringList boxes{u"生年元号"_s, u"生年"_s, u"生年月"_s, u"生年日"_s, u"frm12_続柄"_s};
    control(familyScreen, boxes[0]).setFocus();
    for (qsizetype i = 0; i < 4; ++i) {
        auto& box = control<QComboBox>(familyScreen, boxes[i]);
        EXPECT_EQ(box.currentText(), QString()); // opens empty, and nothing is chosen by passing through
        QTest::keyClicks(&box, u"25"_s);
        EXPECT_EQ(screen.focusWidget(), &box); // nothing moves by itself
        EXPECT_FALSE(box.view()->isVisible());
        QTest::keyClick(&box, i == 1 ? Qt::Key_Tab : Qt::Key_Return);
        EXPECT_EQ(screen.focusWidget()->objectName(), boxes[i + 1]);
    }
}

TEST_F(FamilyScreens, KanaBoxesFillThemselvesFromTheReading) {
    // Steps of a composition, each composed=committed>kana box afterwards, behind what the kana box holds at first.
    const QString cases[] = {
        u"|ｙ>|や>|やまd>|やまだ>|山田>|=山田>ヤマダ|=　>ヤマダ　|はなこ>ヤマダ　|花子>ヤマダ　|=花子>ヤマダ　ハナコ"_s,
        u"|けn>|=健>ケン|ﾔﾏﾀﾞ>ケン|=山田>ケンヤマダ"_s,
        u"|やまだたろう>|山田太郎>|太郎=山田>ヤマダタロウ|=太郎>ヤマダタロウ"_s,
        u"|やまだたろう>|山田たろう>|たろう=山田>ヤマダ|=太郎>ヤマダタロウ"_s,
        u"|やま>|=>|=ABC>"_s,
        u"|あ>|a>|=a>|やま>|=山>ヤマ"_s, // turned into a letter with a function key
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

// What a clipboard holds, and what looks like markup.
TEST_F(FamilyScreens, ABoxTakesOneLineAndNothingIsRendered) {
    open(household);
    auto& name = control<QLineEdit>(household, u"frm01_dankag"_s);
    QGuiApplication::clipboard()->setText(u"山\t田\r\n\x01神\U00020BB7"_s);
    name.paste();
    EXPECT_EQ(name.text(), u"山 田 神\U00020BB7"_s);
    EXPECT_EQ(control<QLabel>(household, u"お知らせ文"_s).text(),
              u"貼り付けた改行・タブは空白に直し、印字できない文字は除きました。"_s);
    storeHousehold();
    const QString markup = u"<b>太</b><img src=x>"_s;
    execute(u"INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_nameg, tblkzk_sei_ymd, tblkzk_seishikbn) "
            "VALUES (3, '山田', '%1', '1950-01-01', '0')"_s.arg(markup));
    open(familyScreen);
    open(u"家族一"_s);
    const QStringList tips{
        control<QListWidget>(familyScreen, u"frm12_meibo"_s).item(0)->toolTip(),
        control<QTableView>(u"家族一"_s, u"frm21_tbl"_s).model()->index(0, 1).data(Qt::ToolTipRole).toString()};
    for (const QString& tip : tips)
        EXPECT_EQ(QTextDocumentFragment::fromHtml(tip).toPlainText(), markup);
    for (const auto* label : screen(household).findChildren<QLabel*>())
        EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->text().toStdString();
}

TEST_F(FamilyScreens, ReadingsGoOnFromThePresetUntilTheUserTypes) {
    storeHousehold();
    execute(u"INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_nameg, tblkzk_namek, tblkzk_seishikbn) "
            "VALUES (3, '山田', '甲', 'コウ', '0')"_s);
    open(familyScreen);
    auto& kana = control<QLineEdit>(familyScreen, u"frm12_namek"_s);
    const auto say = [this](const QString& reading, const QString& name) {
        compose(familyScreen, u"frm12_nameg"_s, reading);
        compose(familyScreen, u"frm12_nameg"_s, {}, name);
    };
    say(u"はな"_s, u"花"_s);
    EXPECT_EQ(kana.text(), u"ヤマダハナ"_s);
    QTest::keyClick(&kana, Qt::Key_Backspace);
    say(u"え"_s, u"江"_s);
    EXPECT_EQ(kana.text(), u"ヤマダハ"_s);
    kana.clear();
    say(u"え"_s, u"江"_s);
    EXPECT_EQ(kana.text(), u"エ"_s);
    auto& name = control<QLineEdit>(familyScreen, u"frm12_nameg"_s);
    name.selectAll();
    QTest::keyClick(&name, Qt::Key_Delete);
    EXPECT_EQ(kana.text(), QString());
    // A stored member's kana is the register's, not the program's.
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
    workplace->context.publishHousehold(4);
    workplace->context.dnk_nameg = u"寺田"_s;
    clickLine(familyScreen, u"frm12_meibo"_s, u"甲"_s);
    EXPECT_EQ(workplace->context.dnk_no1, 3);
    answer(u"ﾃﾞｰﾀを削除します。内容を確認して下さい。"_s, u"家族登録"_s, true);
    expect(u"指定された家族は削除されました。"_s, u"家族登録"_s);
    press(familyScreen, u"削除"_s);
    EXPECT_EQ(query(u"SELECT tblkzk_nameg FROM tbl_kazoku"_s), u"乙"_s);
}

TEST_F(FamilyScreens, TheEraScreenMarksInDarkRedAndShowsWhatItFinds) {
    const QString eras = u"年号登"_s;
    open(eras);
    fill(eras, u"fnen_nengo=令和;fnen_snen=1499;fnen_enen=2050"_s);
    expect(u"この年号はすでに登録されています。確認して下さい。"_s, u"年号登録"_s);
    press(eras, u"登録"_s);
    for (const auto& [box, red] : {std::pair{u"fnen_nengo"_s, 128}, {u"fnen_snen"_s, 128}, {u"fnen_enen"_s, 0}})
        EXPECT_EQ(colour(eras, box), QColor(red, 0, 0));
    type(eras, u"fnen_snen"_s, u"１９８９"_s);
    press(eras, u"年号照会"_s);
    EXPECT_EQ(text(eras, u"fnen_nengo"_s) + text(eras, u"fnen_snen"_s) + text(eras, u"fnen_enen"_s), u"平成19892019"_s);
}

} // namespace
