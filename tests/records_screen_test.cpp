#include "app/screens.h"
#include "support/screen_fixture.h"
#include "ui/notice_bar.h"

#include <QLabel>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

struct Button {
    QString name;
    QString question; // empty: none is asked
};

struct Shown {
    QString screen;
    QString title;
    std::function<void()> reach; // opens the screen on its record
    QString other;               // changes that record in the file
    QString table;
    std::vector<Button> buttons; // each of which would write it
};

class Records : public ScreenFixture {
  protected:
    void fill() {
        workplace = std::make_unique<ui::Workplace>(app::screens());
        workplace->today = [this] { return today; };
        execute(uR"(
            DELETE FROM tbl_danka; DELETE FROM tbl_kazoku; DELETE FROM tbl_kakocho; DELETE FROM tbl_hohyo;
            DELETE FROM tbl_ohaka; DELETE FROM マスタ WHERE マ_区分 = 2;
            INSERT INTO tbl_danka (tbldnk_no1, tbldnk_no2, tbldnk_nameg, tbldnk_namek, tbldnk_dnkkbn, tbldnk_yubin,
              tbldnk_jyusho1, tbldnk_tel, tbldnk_kanaidx, tbldnk_toshug, tbldnk_toshuk) VALUES
              (5, 0, '山田', 'ヤマダ', '檀家', '100-0001', '寺前1', '03-1', 'ヤ', '太郎', 'タロウ'),
              (5, 1, '山田', 'ヤマダ', '檀家', '100-0001', '寺前1', '03-1', 'ヤ', '分家', 'ブンケ'),
              (6, 0, '佐藤', 'サトウ', '檀家', '100-0002', '寺前2', '03-2', 'サ', '次郎', 'ジロウ');
            INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_dnknamek, tblkzk_nameg, tblkzk_namek,
              tblkzk_zokugara, tblkzk_dohkyokbn, tblkzk_seishikbn, tblkzk_yubin, tblkzk_jusho1, tblkzk_tel, tblkzk_sei_ymd) VALUES
              (5, '山田', 'ヤマダ', '太郎', 'タロウ', '本人', '0', '0', '100-0001', '寺前1', '03-1', '1950-01-02'),
              (6, '佐藤', 'サトウ', '次郎', 'ジロウ', '本人', '0', '0', '100-0002', '寺前2', '03-2', '1950-01-02');
            INSERT INTO tbl_kakocho (tblkak_no, tblkak_dnknameg, tblkak_dnknamek, tblkak_zokunameg, tblkak_zokunamek,
              tblkak_sei_gname, tblkak_sei_gyy, tblkak_sei_gmm, tblkak_sei_gdd, tblkak_sei_ymd, tblkak_mei_gname,
              tblkak_mei_gyy, tblkak_mei_gmm, tblkak_mei_gdd, tblkak_mei_ymd, tblkak_kyounen, tblkak_kaimyoug,
              tblkak_kaimyouk, tblkak_kankeisha, tblkak_zokugara, tblkak_haka_basho) VALUES
              (5, '山田', 'ヤマダ', 'ハナ', 'ハナ', '昭和', 5, 1, 2, '1930-01-02', '平成', 20, 1, 2, '2008-01-02', 78,
               '釈尼花', 'シャクニハナ', '太郎', '子', '境外');
            INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_danknameg, tblhoy_zokunameg, tblhoy_kaiki_mei, tblhoy_kaiki_yymd)
              VALUES (5, '山田', 'ハナ', '3回忌', '2010-01-02');
            INSERT INTO tbl_ohaka (tblhak_no, tblhak_banchi1, tblhak_banchi2, tblhak_dnk_no, tblhak_bohyo_kbn,
              tblhak_bohyo_mei, tblhak_shiyo_ryokin, tblhak_kanri_ryokin) VALUES
              (3, '東', '1', 0, '家', '無縁', 0, 0), (4, '東', '2', 5, '家', '山田家', 0, 5000);
            INSERT INTO マスタ VALUES (2, 1, '東地区', '東');)"_s);
    }
    void openOn(const QString& name, std::int16_t household,
                const std::function<void(desk::ScreenContext&)>& choose = {}) {
        workplace->context.G初期値();
        workplace->context.publishHousehold(household);
        if (choose)
            choose(workplace->context);
        open(name);
    }
    void lookUp(const QString& number) {
        type(u"檀家登"_s, u"frm01_no"_s, number);
        press(u"檀家登"_s, u"照会"_s);
    }
    QString dump(const QString& table) { return query(u"SELECT * FROM %1 ORDER BY 1, 2, 3"_s.arg(table)); }
    ui::NoticeBar& bar(const QString& name) { return *screen(name).bar(); }
    QString said(const QString& name) { return control<QLabel>(name, u"お知らせ文"_s).text(); }
    bool offers(const QString& name, const QString& button) {
        const auto* shown = screen(name).findChild<QPushButton*>(button);
        return shown && shown->isVisibleTo(&screen(name));
    }
    void bringForward(const QString& name) {
        QEvent activated(QEvent::WindowActivate);
        QCoreApplication::sendEvent(&screen(name), &activated);
    }

    std::vector<Shown> shown() {
        const auto deceased = [](desk::ScreenContext& context) { context.nameDeceased(u"山田"_s, u"ハナ"_s); };
        const QString deleteData = u"ﾃﾞｰﾀを削除します。内容を確認して下さい。"_s;
        const QString changeGrave = u"入力された内容でお墓を変更します。内容を確認して下さい。"_s;
        const auto succession = [this] {
            openOn(u"代替当"_s, 5);
            clickLine(u"代替当"_s, u"frm01_toshug"_s, u"太郎"_s);
        };
        return {
            {u"檀家登"_s,
             u"檀家 登録"_s,
             [this] { openOn(u"檀家登"_s, 5); },
             u"UPDATE tbl_danka SET tbldnk_bikou = '別' WHERE tbldnk_no1 = 5 AND tbldnk_no2 = 0"_s,
             u"tbl_danka"_s,
             {{u"更新"_s, u"入力された内容で檀家さんを変更します。内容を確認して下さい。"_s}, {u"削除"_s, deleteData}}},
            {u"代替当"_s,
             u"代替り処理"_s,
             succession,
             u"UPDATE tbl_danka SET tbldnk_bikou = '別' WHERE tbldnk_no1 = 5"_s,
             u"tbl_danka"_s,
             {{u"更新"_s, u"入力された内容で檀家さんを変更しますか？"_s}}},
            {u"代替当"_s,
             u"代替り処理"_s,
             succession,
             u"UPDATE tbl_kazoku SET tblkzk_bikou = '別' WHERE tblkzk_no1 = 5"_s,
             u"tbl_danka"_s,
             {{u"更新"_s, u"入力された内容で檀家さんを変更しますか？"_s}}},
            {u"家族登"_s,
             u"家族登録"_s,
             [this] { openOn(u"家族登"_s, 5, [](auto& c) { c.dnk_nameg = u"山田"_s, c.kzk_nameg = u"太郎"_s; }); },
             u"UPDATE tbl_kazoku SET tblkzk_bikou = '別'"_s,
             u"tbl_kazoku"_s,
             {{u"更新"_s, u"入力された内容で家族を変更します。内容を確認して下さい。"_s}, {u"削除"_s, deleteData}}},
            {u"過去登"_s,
             u"過去帳登録"_s,
             [this, deceased] { openOn(u"過去登"_s, 5, deceased); },
             u"UPDATE tbl_kakocho SET tblkak_bikou = '別'"_s,
             u"tbl_kakocho"_s,
             {{u"更新"_s, u"入力された内容で過去帳を変更します。内容を確認して下さい。"_s}, {u"削除"_s, deleteData}}},
            {u"お墓登"_s,
             u"お墓 登録"_s,
             [this] { openOn(u"お墓登"_s, 5, [](auto& c) { c.hak_no = 4; }); },
             u"UPDATE tbl_ohaka SET tblhak_biko = '別'"_s,
             u"tbl_ohaka"_s,
             {{u"更新"_s, changeGrave}, {u"削除"_s, deleteData}, {u"廃棄"_s, {}}}},
            {u"お墓新"_s,
             u"お墓 新規登録"_s,
             [this] { openOn(u"お墓新"_s, 0, [](auto& c) { c.hak_no = 3; }); },
             u"UPDATE tbl_ohaka SET tblhak_biko = '別'"_s,
             u"tbl_ohaka"_s,
             {{u"更新"_s, changeGrave}, {u"削除"_s, u"お墓を削除します。内容を確認して下さい。"_s}}},
            {u"法要明"_s,
             u"法要明細"_s,
             [this, deceased] {
                 openOn(u"法要明"_s, 5, [&](auto& c) { deceased(c), c.hoy_kaiki_yymd = QDate(2010, 1, 2); });
             },
             u"UPDATE tbl_hohyo SET tblhoy_bikou = '別'"_s,
             u"tbl_hohyo"_s,
             {{u"更新"_s, u"入力された内容で法要を変更します。内容を確認して下さい。"_s},
              {u"削除"_s, u"指定された法要を削除します。内容を確認して下さい。"_s}}},
            {u"法要外"_s,
             u"法要・回忌外登録"_s,
             [this, deceased] {
                 openOn(u"法要外"_s, 5, deceased);
                 type(u"法要外"_s, u"frm31_hohyo_mei"_s, u"追善"_s);
                 for (const auto& [box, text] : {std::pair{u"予約年号"_s, u"令和"_s},
                                                 {u"予約年"_s, u"9"_s},
                                                 {u"予約月"_s, u"1"_s},
                                                 {u"予約日"_s, u"5"_s},
                                                 {u"開始時"_s, u"10"_s},
                                                 {u"frm31_法要場所"_s, u"本堂"_s}})
                     type(u"法要外"_s, box, text);
                 answer(u"入力された内容で法要を登録します。内容を確認して下さい。"_s, u"法要・回忌外登録"_s, true);
                 expect(u"指定された法要は登録されました。"_s, u"法要・回忌外登録"_s);
                 press(u"法要外"_s, u"登録"_s);
             },
             u"UPDATE tbl_hohyo SET tblhoy_bikou = '別'"_s,
             u"tbl_hohyo"_s,
             {{u"削除"_s, u"指定された法要を削除します。内容を確認して下さい。"_s}}},
            {u"年号登"_s,
             u"年号登録"_s,
             [this] {
                 open(u"年号登"_s);
                 type(u"年号登"_s, u"fnen_nengo"_s, u"大正"_s);
                 press(u"年号登"_s, u"西暦照会"_s);
             },
             u"UPDATE tbl_nengo SET tblnen_enen = tblnen_enen + 1 WHERE tblnen_nengo = '大正'"_s,
             u"tbl_nengo"_s,
             {{u"更新"_s, u"入力ﾃﾞｰﾀで更新します。内容を確認して下さい。"_s},
              {u"削除"_s, u"登録内容を削除します。内容を確認して下さい。"_s}}},
            {u"マスター登"_s,
             u"ｺｰﾄﾞﾏｽﾀｰ情報"_s,
             [this] {
                 open(u"マスター登"_s);
                 press(u"マスター登"_s, u"地区"_s);
                 clickCell(u"マスター登"_s, u"マスタ一"_s, 1, 1);
             },
             u"UPDATE マスタ SET マ_名称 = '別' WHERE マ_区分 = 2"_s,
             u"マスタ"_s,
             {{u"更新"_s, u"入力内容で更新します。"_s}, {u"削除"_s, u"入力内容を削除します。"_s}}},
        };
    }
};

} // namespace

// Whatever another screen, an import or another program made of the row meanwhile, no button touches it.
TEST_F(Records, ARowOtherThanReadIsTouchedByNoButton) {
    const QString changed = u"この記録はほかの画面で変更されています。照会し直して下さい"_s;
    for (const Shown& one : shown()) {
        for (const Button& button : one.buttons) {
            SCOPED_TRACE((one.screen + u' ' + button.name).toStdString());
            fill();
            one.reach();
            execute(one.other);
            const QString before = dump(one.table) + dump(u"tbl_kazoku"_s);
            if (!button.question.isEmpty())
                answer(button.question, one.title, true);
            expect(changed, one.title);
            press(one.screen, button.name);
            allShown();
            EXPECT_EQ(dump(one.table) + dump(u"tbl_kazoku"_s), before);
        }
    }
}

// The screen says so as soon as it comes to the front, and reads the record again on demand.
TEST_F(Records, TheBarTellsOfARecordChangedElsewhere) {
    for (const Shown& one : shown()) {
        if (one.screen == u"法要外"_s || one.screen == u"代替当"_s)
            continue;
        SCOPED_TRACE(one.screen.toStdString());
        fill();
        one.reach();
        EXPECT_TRUE(bar(one.screen).isHidden());
        const QString before = dump(one.table);
        execute(one.other);
        bringForward(one.screen);
        EXPECT_EQ(said(one.screen), u"この記録はほかの画面で変更されています。"_s);
        press(one.screen, u"読み直す"_s);
        EXPECT_TRUE(bar(one.screen).isHidden());
        // What it shows now may be saved: the next look finds nothing to say.
        bringForward(one.screen);
        EXPECT_TRUE(bar(one.screen).isHidden());
        execute(u"DELETE FROM "_s + one.table);
        bringForward(one.screen);
        EXPECT_EQ(said(one.screen), u"この記録はほかの画面で削除されています。"_s);
        EXPECT_FALSE(offers(one.screen, u"読み直す"_s));
    }
}

TEST_F(Records, AScreenAskedForAnotherRecordSaysWhichOneItShows) {
    const auto deceased = [](const QString& name) {
        return [name](desk::ScreenContext& context) { context.nameDeceased(u"山田"_s, name); };
    };
    const auto grave = [](std::int16_t number) { return [number](desk::ScreenContext& c) { c.hak_no = number; }; };
    const struct {
        QString screen;
        std::int16_t first;
        std::function<void(desk::ScreenContext&)> chosen;
        std::int16_t second;
        std::function<void(desk::ScreenContext&)> asked;
        QString text;
        QString box; // shows then what was asked for
        QString shows;
    } cases[] = {
        {u"檀家登"_s,
         5,
         {},
         6,
         {},
         u"「5」を表示しています。「6」を開くには「表示する」を押して下さい。"_s,
         u"frm01_dankag"_s,
         u"佐藤"_s},
        {u"家族登"_s,
         5,
         [](desk::ScreenContext& c) { c.dnk_nameg = u"山田"_s, c.kzk_nameg = u"太郎"_s; },
         6,
         {},
         u"「5 太郎」を表示しています。「6 新規」を開くには「表示する」を押して下さい。"_s,
         u"frm12_nameg"_s,
         u"佐藤"_s},
        {u"過去登"_s,
         6,
         {},
         5,
         deceased(u"ハナ"_s),
         u"「6 新規」を表示しています。「5 ハナ」を開くには「表示する」を押して下さい。"_s,
         u"frm11_kaimyoug"_s,
         u"釈尼花"_s},
        {u"お墓新"_s, 0, grave(3), 0, grave(4), u"「3」を表示しています。「4」を開くには「表示する」を押して下さい。"_s,
         u"frm13_bohyo"_s, u"山田家"_s},
        {u"家族一"_s,
         5,
         {},
         6,
         {},
         u"「5」を表示しています。「6」を開くには「表示する」を押して下さい。"_s,
         u"frm12_jyusho1"_s,
         u"寺前2"_s},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.screen.toStdString());
        fill();
        openOn(one.screen, one.first, one.chosen);
        open(u"檀家一覧"_s);
        const auto ask = [&] {
            workplace->context.G初期値();
            workplace->context.publishHousehold(one.second);
            if (one.asked)
                one.asked(workplace->context);
            workplace->open(one.screen, &screen(u"檀家一覧"_s));
        };
        const QString before = text(one.screen, one.box);
        ask();
        EXPECT_EQ(said(one.screen), one.text);
        EXPECT_EQ(text(one.screen, one.box), before);
        // The menu asks for nothing.
        press(one.screen, u"表示する"_s);
        EXPECT_EQ(text(one.screen, one.box), one.shows);
        EXPECT_TRUE(bar(one.screen).isHidden());
        ask();
        EXPECT_TRUE(bar(one.screen).isHidden());
    }
}

TEST_F(Records, WhatWasTypedIsOfferedAgain) {
    const QString household = u"檀家登"_s;
    fill();
    open(u"メニュー"_s);
    openOn(household, 5);
    type(household, u"frm01_biko"_s, u"途中"_s);
    type(household, u"frm01_tel"_s, u"090-1"_s);
    type(household, u"frm01_no"_s, u"6"_s);
    press(household, u"照会"_s);
    EXPECT_EQ(text(household, u"frm01_biko"_s), QString());
    EXPECT_TRUE(bar(household).isHidden());
    EXPECT_EQ(said(u"メニュー"_s), u"保存していない入力があります：檀家登録 5"_s);
    close(household);

    // The file has moved on: only what was typed comes back.
    execute(u"UPDATE tbl_danka SET tbldnk_toshug = '花子' WHERE tbldnk_no1 = 5"_s);
    press(u"メニュー"_s, u"表示する"_s);
    EXPECT_EQ(text(household, u"frm01_no"_s) + text(household, u"frm01_biko"_s), u"5"_s);
    EXPECT_EQ(said(household), u"前に入力した内容が残っています"_s);
    press(household, u"戻す"_s);
    EXPECT_EQ(text(household, u"frm01_biko"_s) + text(household, u"frm01_tel"_s) + text(household, u"frm01_toshug"_s),
              u"途中090-1花子"_s);
    const auto ground = [&](const QString& box) { return control(household, box).palette().color(QPalette::Base); };
    EXPECT_NE(ground(u"frm01_biko"_s), ground(u"frm01_fax"_s));
    EXPECT_TRUE(bar(u"メニュー"_s).isHidden());

    // Closed again it is kept again; a save ends it.
    close(household);
    openOn(household, 5);
    press(household, u"戻す"_s);
    answer(u"入力された内容で檀家さんを変更します。内容を確認して下さい。"_s, u"檀家 登録"_s, true);
    expect(u"入力された内容で檀家さんは更新されました。"_s, u"檀家 登録"_s);
    press(household, u"更新"_s);
    EXPECT_EQ(ground(u"frm01_biko"_s), ground(u"frm01_fax"_s));
    close(household);
    EXPECT_TRUE(workplace->drafts.all().empty());
    openOn(household, 5);
    EXPECT_TRUE(bar(household).isHidden());
    close(household);

    // 捨てる; a new record; the branch as itself; what only a look-up or a check changed is none.
    const struct {
        QString no1;
        QString no2;
        QString label;
    } cases[] = {{u"0"_s, u"0"_s, u"新規"_s}, {u"5"_s, u"1"_s, u"5-1"_s}};
    for (const auto& one : cases) {
        SCOPED_TRACE(one.label.toStdString());
        openOn(household, 0);
        if (one.no1 != u"0"_s) {
            type(household, u"frm01_no"_s, one.no1);
            type(household, u"frm01_eno"_s, one.no2);
            press(household, u"照会"_s);
        }
        close(household);
        EXPECT_TRUE(workplace->drafts.all().empty());
        openOn(household, 0);
        if (one.no1 != u"0"_s) {
            type(household, u"frm01_no"_s, one.no1);
            type(household, u"frm01_eno"_s, one.no2);
            press(household, u"照会"_s);
        }
        type(household, u"frm01_dankag"_s, u"書きかけ"_s);
        close(household);
        EXPECT_EQ(said(u"メニュー"_s), u"保存していない入力があります：檀家登録 "_s + one.label);
        press(u"メニュー"_s, u"表示する"_s);
        EXPECT_EQ(text(household, u"frm01_eno"_s), one.no2);
        press(household, u"捨てる"_s);
        EXPECT_TRUE(workplace->drafts.all().empty());
        EXPECT_TRUE(bar(household).isHidden());
        close(household);
    }
}

// Two drafts of one record are one; those of new records are several; none is typed over without a trace.
TEST_F(Records, 新規EmptiesTheScreenAndLosesNothing) {
    for (const auto& [name, box, first, label] :
         {std::tuple{u"檀家登"_s, u"frm01_biko"_s, u"frm01_dankag"_s, u"檀家登録 5"_s},
          {u"お墓新"_s, u"frm13_biko"_s, u"frm13_banchi1"_s, u"お墓登録 3"_s}}) {
        SCOPED_TRACE(name.toStdString());
        fill();
        const auto shown = [&, name = name] {
            QString texts;
            for (const auto& binding : screen(name).bindings())
                texts += binding.typed ? binding.typed() + u'\n' : QString();
            return texts;
        };
        openOn(name, 0);
        const QString empty = shown();
        close(name);
        open(u"メニュー"_s);
        openOn(name, 5, [](auto& c) { c.hak_no = 3; });
        EXPECT_NE(shown(), empty);
        // Where the register cannot be read, all stays as it is; then what was typed goes, and comes back.
        type(name, box, u"途中"_s);
        QFile::rename(path(u"Hoshiren.mdb"_s), path(u"away"_s));
        expectBeginning(u"登録簿ファイル"_s, screen(name).title());
        press(name, u"新規"_s);
        QFile::rename(path(u"away"_s), path(u"Hoshiren.mdb"_s));
        EXPECT_EQ(text(name, box), u"途中"_s);
        press(name, u"新規"_s);
        EXPECT_EQ(shown(), empty);
        EXPECT_EQ(name == u"檀家登"_s ? workplace->context.dnk_no1 : workplace->context.hak_no, 0);
        EXPECT_EQ(screen(name).focusWidget()->objectName(), first);
        EXPECT_EQ(said(u"メニュー"_s), u"保存していない入力があります："_s + label);
        type(name, box, u"別の途中"_s);
        press(name, u"新規"_s);
        press(name, u"戻す"_s);
        EXPECT_EQ(text(name, box), u"別の途中"_s);
    }
}

TEST_F(Records, DraftsAreNeitherMixedNorLost) {
    const QString members = u"家族登"_s;
    fill();
    open(u"メニュー"_s);
    const auto typeAndClose = [&](const QString& box, const QString& typed) {
        type(u"檀家登"_s, box, typed);
        close(u"檀家登"_s);
    };
    openOn(u"檀家登"_s, 5);
    typeAndClose(u"frm01_biko"_s, u"一"_s);
    openOn(u"檀家登"_s, 5);
    typeAndClose(u"frm01_fax"_s, u"二"_s);
    openOn(u"檀家登"_s, 5);
    type(u"檀家登"_s, u"frm01_biko"_s, u"三"_s);
    press(u"檀家登"_s, u"戻す"_s);
    EXPECT_EQ(text(u"檀家登"_s, u"frm01_biko"_s) + text(u"檀家登"_s, u"frm01_fax"_s), u"一二"_s);
    press(u"檀家登"_s, u"戻す"_s);
    EXPECT_EQ(text(u"檀家登"_s, u"frm01_biko"_s), u"三"_s);
    press(u"檀家登"_s, u"捨てる"_s);
    close(u"檀家登"_s);
    openOn(u"檀家登"_s, 5);
    press(u"檀家登"_s, u"捨てる"_s);
    close(u"檀家登"_s);
    ASSERT_TRUE(workplace->drafts.all().empty());

    for (const QString& name : {u"山田 一"_s, u"山田 二"_s}) {
        openOn(members, 5);
        type(members, u"frm12_nameg"_s, name);
        close(members);
    }
    EXPECT_EQ(workplace->drafts.all().size(), 2U);
    // One is entered after all: only its own draft ends.
    openOn(members, 5);
    press(members, u"戻す"_s);
    EXPECT_EQ(text(members, u"frm12_nameg"_s), u"山田 二"_s);
    type(members, u"frm12_namek"_s, u"ヤマダ ニ"_s);
    type(members, u"frm12_続柄"_s, u"次男"_s);
    answer(u"入力された内容で家族の登録をします。内容を確認して下さい。"_s, u"家族登録"_s, true);
    expect(u"入力された内容で家族は登録されました。"_s, u"家族登録"_s);
    press(members, u"登録"_s);
    close(members);
    EXPECT_EQ(workplace->drafts.all().size(), 1U);

    // The record is gone: what was typed for it can still be had.
    openOn(members, 5, [](auto& c) { c.dnk_nameg = u"山田"_s, c.kzk_nameg = u"太郎"_s; });
    type(members, u"frm12_bikou"_s, u"覚え"_s);
    close(members);
    execute(u"DELETE FROM tbl_kazoku WHERE tblkzk_nameg = '太郎'"_s);
    press(u"メニュー"_s, u"表示する"_s); // the other one, first in line
    close(members);
    expect(u"家族名が取出せません、ﾃﾞｰﾀﾍﾞｰｽの整合性を確認して下さい。"_s, u"家族登録"_s);
    press(u"メニュー"_s, u"表示する"_s);
    EXPECT_EQ(said(members), u"「5 太郎」の記録はもうありません。前に入力した内容が残っています"_s);
    press(members, u"戻す"_s);
    EXPECT_EQ(text(members, u"frm12_bikou"_s), u"覚え"_s);
}

// What one screen deleted is put back into the shared record by none that was opened on it.
TEST_F(Records, WhatWasDeletedIsNamedByNoScreenLeftOpen) {
    fill();
    const auto deceased = [](desk::ScreenContext& context) { context.nameDeceased(u"山田"_s, u"ハナ"_s); };
    openOn(u"過去一"_s, 5);
    clickCell(u"過去一"_s, u"frm21_tbl"_s, 1);
    openOn(u"過去登"_s, 5, deceased);
    answer(u"ﾃﾞｰﾀを削除します。内容を確認して下さい。"_s, u"過去帳登録"_s, true);
    answer(u"法要等の情報も削除しますか？"_s, u"過去帳登録"_s, true);
    answer(u"家族登録は元に戻しますか？"_s, u"過去帳登録"_s, false);
    expect(u"削除処理を終了しました。"_s, u"過去帳登録"_s);
    press(u"過去登"_s, u"削除"_s);
    close(u"過去登"_s);
    expect(u"照会の過去帳は登録されていません"_s, u"過去帳一覧"_s);
    press(u"過去一"_s, u"前ページ"_s);
    EXPECT_EQ(workplace->context.kak_zokunameg, QString());
    allShown();
}

// Where the register cannot be read again, the screen stays as it was.
TEST_F(Records, AFailureToReadAgainLeavesTheScreenAsItWas) {
    fill();
    openOn(u"檀家登"_s, 5);
    execute(u"UPDATE tbl_danka SET tbldnk_bikou = '別'"_s);
    bringForward(u"檀家登"_s);
    const QString file = store::Database::registerPath();
    ASSERT_TRUE(QFile::rename(file, file + u".away"_s));
    expectBeginning(u"登録簿ファイル「"_s, u"檀家 登録"_s);
    press(u"檀家登"_s, u"読み直す"_s);
    EXPECT_EQ(text(u"檀家登"_s, u"frm01_dankag"_s), u"山田"_s);
    ASSERT_TRUE(QFile::rename(file + u".away"_s, file));
    close(u"檀家登"_s);
    EXPECT_TRUE(workplace->drafts.all().empty());
}

// A check that writes an amount with separators, or 00 into an empty box, leaves nothing to be kept.
TEST_F(Records, WhatACheckReformatsIsNoDraft) {
    fill();
    openOn(u"法要明"_s, 5, [](auto& c) {
        c.nameDeceased(u"山田"_s, u"ハナ"_s);
        c.hoy_kaiki_yymd = QDate(2010, 1, 2);
    });
    answer(u"入力された内容で法要を変更します。内容を確認して下さい。"_s, u"法要明細"_s, false);
    press(u"法要明"_s, u"更新"_s);
    close(u"法要明"_s);
    openOn(u"お墓登"_s, 5, [](auto& c) { c.hak_no = 4; });
    type(u"お墓登"_s, u"墓地管理費"_s, u"5000"_s);
    close(u"お墓登"_s);
    EXPECT_TRUE(workplace->drafts.all().empty());
}

// The bar neither takes the keyboard nor a place in the tab order; a registration is told in it.
TEST_F(Records, TheBarStaysOutOfTheWay) {
    const QString household = u"檀家登"_s;
    fill();
    openOn(household, 0);
    for (const auto& [box, typed] : {std::pair{u"frm01_dankag"_s, u"福田"_s},
                                     {u"frm01_dankak"_s, u"フクダ"_s},
                                     {u"frm01_yubinno"_s, u"1"_s},
                                     {u"frm01_jyusho1"_s, u"町"_s},
                                     {u"frm01_tel"_s, u"2"_s},
                                     {u"frm01_toshug"_s, u"一"_s},
                                     {u"frm01_toshuk"_s, u"イチ"_s}})
        type(household, box, typed);
    const auto accented = [&](const QString& name) {
        return control(household, name).palette().color(QPalette::Button) !=
               control(household, u"終了"_s).palette().color(QPalette::Button);
    };
    EXPECT_TRUE(accented(u"登録"_s) && !accented(u"更新"_s));
    answer(u"入力された内容で檀家さんを登録します。内容を確認して下さい。"_s, u"檀家 登録"_s, true);
    press(household, u"登録"_s);
    EXPECT_EQ(said(household), u"1 福田を登録しました"_s);
    EXPECT_TRUE(!accented(u"登録"_s) && accented(u"更新"_s));
    for (const QString& name : {u"読み直す"_s, u"表示する"_s, u"戻す"_s, u"捨てる"_s}) {
        const auto& button = control<QPushButton>(household, name);
        EXPECT_EQ(button.focusPolicy(), Qt::NoFocus);
        EXPECT_FALSE(button.shortcut().isEmpty());
    }
    press(household, u"照会"_s);
    EXPECT_TRUE(bar(household).isHidden());
    close(household);
    EXPECT_TRUE(workplace->drafts.all().empty());
}

// One press of 元に戻す after the last message: the rows are as they were, and the screen shows the record again.
TEST_F(Records, WhatWasDeletedComesBackFromTheBar) {
    const QHash<QString, QStringList> told{
        {u"檀家登削除"_s, {u"指定された檀家さんは削除されました。"_s}},
        {u"家族登削除"_s, {u"指定された家族は削除されました。"_s}},
        {u"過去登削除"_s, {u"削除処理を終了しました。"_s}},
        {u"お墓登削除"_s, {u"指定されたお墓は削除されました。"_s}},
        {u"お墓登廃棄"_s, {u"指定されたお墓は廃棄処分されました。"_s}},
        {u"お墓新削除"_s, {u"指定されたお墓は削除されました。"_s}},
        {u"法要明削除"_s, {u"削除処理を終了しました。"_s}},
        {u"法要外削除"_s, {u"削除処理を終了しました。"_s}},
        {u"年号登削除"_s, {u"指定された年号は削除されました。"_s}},
        {u"マスター登削除"_s, {u"表示内容は削除されました。"_s}},
    };
    int taken = 0;
    for (const Shown& one : shown()) {
        for (const Button& button : one.buttons) {
            if (!told.contains(one.screen + button.name))
                continue;
            SCOPED_TRACE((one.screen + u' ' + button.name).toStdString());
            ++taken;
            fill();
            one.reach();
            const QString rows = dump(one.table) + dump(u"tbl_hohyo"_s);
            const auto boxes = [&] {
                QStringList all;
                for (const auto& binding : screen(one.screen).bindings())
                    if (binding.typed)
                        all << binding.typed();
                return all;
            };
            const QStringList before = boxes();
            if (!button.question.isEmpty())
                answer(button.question, one.title, true);
            if (one.screen == u"過去登"_s) {
                answer(u"法要等の情報も削除しますか？"_s, one.title, true);
                answer(u"家族登録は元に戻しますか？"_s, one.title, false);
            }
            for (const QString& text : told.value(one.screen + button.name))
                expect(text, one.title);
            press(one.screen, button.name);
            allShown();
            EXPECT_NE(dump(one.table) + dump(u"tbl_hohyo"_s), rows);
            ASSERT_TRUE(offers(one.screen, u"元に戻す"_s));
            press(one.screen, u"元に戻す"_s);
            allShown();
            EXPECT_EQ(dump(one.table) + dump(u"tbl_hohyo"_s), rows);
            EXPECT_TRUE(said(one.screen).startsWith(u"元に戻しました"_s)) << said(one.screen).toStdString();
            EXPECT_FALSE(offers(one.screen, u"元に戻す"_s));
            // A registered extra memorial leaves a form for the next one.
            if (one.screen != u"法要外"_s) {
                EXPECT_EQ(boxes(), before);
            }
        }
    }
    EXPECT_EQ(taken, told.size());
}
