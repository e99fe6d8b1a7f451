#include "memorials/booking_rules.h"
#include "memorials/detail_rules.h"
#include "memorials/extra_rules.h"
#include "support/register_fixture.h"
#include "support/test_desk.h"

using namespace Qt::StringLiterals;
using namespace memorials;

namespace {

const QString detailTitle = u"法要明細"_s;
const QString extraTitle = u"法要・回忌外登録"_s;
const QString askChange = u"入力された内容で法要を変更します。内容を確認して下さい。"_s;
const QString askRegister = u"入力された内容で法要を登録します。内容を確認して下さい。"_s;
const QString missing = u"指定された法要を読めませんません。DBの整合性を確認して下さい"_s;
const QString askDelete = u"指定された法要を削除します。内容を確認して下さい。"_s;
const QString deleted = u"削除処理を終了しました。"_s;
const QString noEntry = u"過去帳が取出せません、ﾃﾞｰﾀﾍﾞｰｽの整合性を確認して下さい。"_s;
const QString changedElsewhere = u"この記録はほかの画面で変更されています。照会し直して下さい"_s;

// A date of the present era, "year/month/day".
void type(desk::DateGroup& group, const QString& date) {
    group.era.text = date.isEmpty() ? QString() : u"令和"_s;
    group.year.text = date.section(u'/', 0, 0);
    group.month.text = date.section(u'/', 1, 1);
    group.day.text = date.section(u'/', 2, 2);
}

class Services : public RegisterFixture {
  protected:
    Services() {
        execute(
            u"INSERT INTO tbl_kakocho (tblkak_no, tblkak_dnknameg, tblkak_dnknamek, tblkak_zokunameg, "
            "tblkak_zokunamek, tblkak_mei_gname, tblkak_mei_gyy, tblkak_mei_gmm, tblkak_mei_gdd, tblkak_mei_ymd, "
            "tblkak_kyounen, tblkak_kaimyoug, tblkak_kankeisha, tblkak_zokugara, tblkak_bikou) VALUES "
            "(7, '山田', 'ヤマダ', '山田　一', 'ヤマダ ハジメ', '令和', 6, 1, 5, '2024-01-05', 88, '釈一', '山田　二', "
            "'長男', '備え')"_s);
        execute(u"INSERT INTO tbl_kakocho (tblkak_no, tblkak_dnknameg, tblkak_dnknamek, tblkak_zokunameg, "
                "tblkak_kaimyoug) VALUES (7, '旧姓', 'キュウセイ', '山田　一', '釈旧')"_s);
        execute(u"INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_nameg, tblkzk_sei_ymd, "
                "tblkzk_seishikbn) VALUES (7, '山田', 'イ', '1990-01-01', '0'), (7, '山田', 'ア', '1995-01-01', '0'), "
                "(7, '山田', '死', '1950-01-01', '1'), (7, '山田', 'ウ', NULL, '0')"_s);
        execute(u"INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_danknameg, tblhoy_zokunameg, tblhoy_kaiki_mei, "
                "tblhoy_kaiki_yymd, tblhoy_kaiki_ampm, tblhoy_kaiki_hour, tblhoy_kaiki_mint, tblhoy_ofuse) VALUES "
                "(7, '山田', '山田　一', '3回忌', '2026-01-05', '1', 0, 0, 0)"_s);
        context.publishHousehold(7);
        context.dnk_nameg = u"山田"_s;
        context.dnk_namek = u"ヤマダ"_s;
    }

    // The detail of the 3回忌, freshly opened.
    法要明Form detail() {
        context.nameDeceased(u"山田"_s, u"山田　一"_s);
        context.hoy_kaiki_yymd = QDate(2026, 1, 5);
        法要明Form form;
        beginDetail(form, context, desk);
        return form;
    }
    void save(法要明Form& form) {
        desk.answer(askChange, detailTitle, true);
        desk.expect(u"入力された内容で法要は更新されました。"_s, detailTitle);
        updateDetail(form, context, desk);
    }
    QString stored(const QString& fields) {
        return query(u"SELECT %1 FROM tbl_hohyo WHERE tblhoy_kaiki_mei = '3回忌'"_s.arg(fields));
    }

    // The extra screen on a deceased chosen in its list, with a name and the reservation 2027-02-14, 10:30.
    法要外Form extra(const QString& name = u"特別供養"_s) {
        context.clearDeceased();
        法要外Form form;
        beginExtra(form, context, desk);
        chooseLine(form, 0);
        form.frm31_hohyo_mei.text = name;
        type(form.予約, u"9/2/14"_s);
        form.開始時.text = u"10"_s;
        form.開始分.text = u"30"_s;
        form.frm31_法要場所.text = u"本堂"_s;
        return form;
    }
    void chooseLine(法要外Form& form, int line) {
        form.frm31_zoknameg.current = line;
        chooseDeceased(form, context, desk);
    }
    void deleteShown(法要外Form& form, const QString& told = deleted) {
        desk.answer(askDelete, extraTitle, true);
        desk.expect(told, extraTitle);
        removeExtra(form, context, desk);
    }
    QString names() {
        return query(u"SELECT tblhoy_danknameg || tblhoy_kaiki_mei FROM tbl_hohyo ORDER BY tblhoy_kaiki_yymd"_s);
    }
    static void hold(ServiceForm& form, const QString& date) {
        type(form.実施, date);
        form.施主.choose(u"ア"_s);
        form.frm31_続柄.text = u"長男"_s;
    }
    void registerIt(法要外Form& form, bool taken = false) {
        if (!taken)
            desk.answer(askRegister, extraTitle, true);
        desk.expect(taken ? u"指定された法要は既に登録されています。入力した内容をﾁｪｯｸしてください"_s
                          : u"指定された法要は登録されました。"_s,
                    extraTitle);
        registerExtra(form, context, desk);
    }

    TestDesk desk{today};
};

TEST_F(Services, DetailShowsDeceasedAndMemorial) {
    const 法要明Form form = detail();
    EXPECT_EQ(form.frm31_zoknamek.text, u"ヤマダ ハジメ"_s); // read from the death register
    EXPECT_EQ(form.frm31_mei_gymd.text + form.frm31_kyounen.text + form.frm31_moshu.text, u"令和6年1月5日88山田　二"_s);
    EXPECT_EQ(form.frm31_ygymd.text, u"令和8年1月5日"_s);
    EXPECT_EQ(form.施主.items, QStringList({u"ウ"_s, u"イ"_s, u"ア"_s})); // by birth date; the dead one is left out
    EXPECT_EQ(form.開始時.items.size(), 24);
    EXPECT_EQ(form.frm31_法要場所.items.front(), u"本堂"_s);
    EXPECT_EQ(form.予約.western.text + form.開始時.text + form.開始分.text, QString());
    EXPECT_TRUE(form.frm31_am.chosen);

    // What the hand-off record holds of him besides his key does not count, unless it was handed over.
    context.kak_zokunamek = context.kak_kaimyoug = u"前の人"_s;
    EXPECT_EQ(detail().frm31_kaimyoug.text, u"釈一"_s);
    context.kak_kaimyoug = u"書きかけ"_s;
    context.kak_handedOver = true;
    EXPECT_EQ(detail().frm31_kaimyoug.text, u"書きかけ"_s);
}

TEST_F(Services, DetailTellsWhatIsMissing) {
    context.nameDeceased(u"山田"_s, u"居ない"_s);
    法要明Form form;
    desk.expect(noEntry, detailTitle);
    desk.expect(u"照会者の法要は登録されていません"_s, detailTitle);
    beginDetail(form, context, desk);
    bookOnScheduledDay(form, context, desk);
    EXPECT_EQ(form.予約.western.text, QString());
}

TEST_F(Services, BookingAndHoldingAreKeptAndNoFlagIsLowered) {
    法要明Form form = detail();
    bookOnScheduledDay(form, context, desk);
    EXPECT_EQ(form.予約.western.text, u"2026/01/05"_s);
    holdAsBooked(form);
    EXPECT_EQ(form.実施.western.text + form.実施.era.text + form.実施.day.text, u"2026/01/05令和5"_s);
    form.実施.clear();
    form.frm31_am.chosen = false;
    form.frm31_pm.chosen = true;
    form.開始時.text = u"１"_s;
    form.frm31_法要場所.text = u"川の畔"_s;
    form.frm31_ofuse.text = u"10000"_s;
    save(form);
    EXPECT_EQ(form.frm31_ofuse.text, u"10,000"_s);
    const QString booking = u"tblhoy_kaiki_rs, tblhoy_kaiki_rymd, tblhoy_kaiki_ampm, tblhoy_kaiki_hour, "
                            "tblhoy_kaiki_mint, tblhoy_kaiki_s, tblhoy_kaiki_jymd, tblhoy_ofuse, tblhoy_kaiki_basho"_s;
    EXPECT_EQ(stored(booking), u"1,2026-01-05,2,1,0,0,NULL,10000,川の畔"_s);
    EXPECT_EQ(query(u"SELECT count(*) FROM マスタ WHERE マ_区分 = 3 AND マ_略称 = '川の畔'"_s), u"1"_s);

    form = detail();
    EXPECT_EQ(form.予約.western.text, u"2026/01/05"_s);
    EXPECT_TRUE(form.frm31_pm.chosen && !form.frm31_am.chosen);
    EXPECT_EQ(form.開始時.text, u"1"_s);
    form.予約.clear();
    hold(form, u"8/1/6"_s);
    form.frm31_ofuse.text.clear();
    save(form);
    EXPECT_EQ(stored(booking), u"1,2026-01-05,2,1,0,1,2026-01-06,0,川の畔"_s);
    EXPECT_EQ(stored(u"tblhoy_kaiki_seshug, tblhoy_zokugara, tblhoy_tsuchi_s"_s), u"ア,長男,0"_s);

    // A 施主 who has died since stays.
    execute(u"UPDATE tbl_kazoku SET tblkzk_seishikbn = '1' WHERE tblkzk_nameg = 'ア'"_s);
    form = detail();
    save(form);
    EXPECT_EQ(stored(u"tblhoy_kaiki_seshug"_s), u"ア"_s);
}

TEST_F(Services, ADayTellsItsOtherBookings) {
    int made = 0;
    const auto book = [&](const QString& label, const QString& day, const QString& time, int held = 0) {
        execute(u"INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_danknameg, tblhoy_zokunameg, tblhoy_kaiki_mei, "
                "tblhoy_kaiki_yymd, tblhoy_kaiki_rs, tblhoy_kaiki_rymd, tblhoy_kaiki_ampm, tblhoy_kaiki_hour, "
                "tblhoy_kaiki_mint, tblhoy_kaiki_s, tblhoy_kaiki_basho) VALUES (8, '鈴木', '鈴木　一', '%1', "
                "date('2000-01-01', '%2 days'), 1, '%3', %4, %5, '本堂')"_s.arg(label)
                    .arg(++made)
                    .arg(day, time)
                    .arg(held));
    };
    book(u"午後"_s, u"2027-02-14"_s, u"'2', 1, 0"_s);
    book(u"朝"_s, u"2027-02-14"_s, u"'1', 10, 0"_s);
    book(u"未定"_s, u"2027-02-14"_s, u"'1', 0, 0"_s);
    book(u"済"_s, u"2027-02-14"_s, u"'1', 10, 0"_s, 1);
    book(u"翌日"_s, u"2027-02-15"_s, u"'1', 10, 0"_s);
    book(u"昔"_s, u"2026-11-21"_s, u"'1', 10, 0"_s);
    // 予約日|am or pm|hour|minute; the day's other services, those that overlap after a !
    const std::tuple<QString, QString, bool> cases[] = {
        {u"|a|10|0"_s, {}, false},
        {u"9.2|a|10|0"_s, {}, false},
        {u"9.2.14|a||"_s, u"未定 朝 午後"_s, false},
        {u"9.2.14|a|10|30"_s, u"未定 !朝 午後"_s, true},
        {u"９．２．１４|a|11|00"_s, u"未定 朝 午後"_s, false},
        {u"9.2.14|a|9|00"_s, u"未定 朝 午後"_s, false},
        {u"9.2.14|a|9|15"_s, u"未定 !朝 午後"_s, true},
        {u"9.2.14|p|10|0"_s, u"未定 朝 午後"_s, false},
        {u"9.2.14|a|12|15"_s, u"未定 朝 !午後"_s, true},
        {u"9.2.14|p|12|15"_s, u"未定 朝 !午後"_s, true},
        {u"9.2.14|a|13|45"_s, u"未定 朝 !午後"_s, true},
        {u"9.2.14|p|x|0"_s, u"未定 朝 午後"_s, false},
        {u"9.2.16|a|10|0"_s, u"ありません"_s, false},
        {u"8.11.21|a|13|0"_s, u"過ぎ 昔"_s, true},
    };
    store::Database database;
    for (const auto& [typed, others, warns] : cases) {
        SCOPED_TRACE(typed.toStdString());
        法要外Form form;
        form.予約.era.text = typed.section(u'|', 0, 0);
        form.frm31_am.chosen = typed.section(u'|', 1, 1) == u"a";
        form.開始時.text = typed.section(u'|', 2, 2);
        form.開始分.text = typed.section(u'|', 3, 3);
        const BookingState state = bookingState(database, form, nullptr, today);
        QStringList seen;
        for (const QString& line : state.text.split(u'\n')) {
            for (const auto& word : {u"ありません"_s, u"過ぎ"_s})
                if (line.contains(word))
                    seen << word;
            if (line.contains(u'（'))
                seen << (line.startsWith(u"【重なり】"_s) ? u"!"_s : QString()) +
                            line.section(u'（', 1).section(u'）', 0, 0);
        }
        EXPECT_EQ(seen.join(u' '), others);
        EXPECT_EQ(state.warns, warns);
    }
}

TEST_F(Services, ABookingIsTakenBackAndNothingElse) {
    const QString ask = u"この法要の予約を取り消しますか？"_s;
    const QString booking = u"tblhoy_kaiki_rs, tblhoy_kaiki_rymd, tblhoy_kaiki_ampm, tblhoy_kaiki_hour, "
                            "tblhoy_kaiki_mint"_s;
    const QString others = query(u"SELECT group_concat(name) FROM pragma_table_info('tbl_hohyo') WHERE "
                                 "instr('%1', name) = 0"_s.arg(booking));
    法要明Form form = detail();
    desk.expect(u"予約されていない法要です。取り消す予約がありません"_s, detailTitle);
    cancelDetail(form, context, desk);
    execute(u"UPDATE tbl_hohyo SET tblhoy_kaiki_rs = 1, tblhoy_kaiki_rymd = '2027-02-14', tblhoy_kaiki_ampm = '2', "
            "tblhoy_kaiki_hour = 1, tblhoy_kaiki_mint = 30, tblhoy_kaiki_basho = '本堂', tblhoy_kaiki_seshug = 'ア', "
            "tblhoy_zokugara = '長男', tblhoy_ofuse = 5000, tblhoy_bikou = '備', tblhoy_tsuchi_s = 1, "
            "tblhoy_tsuchi_ymd = '2026-10-01'"_s);
    const QString before = stored(others);
    form = detail();
    desk.answer(ask, detailTitle, false);
    cancelDetail(form, context, desk);
    EXPECT_EQ(desk.lastPreset, desk::Preset::no);
    desk.answer(ask, detailTitle, true);
    cancelDetail(form, context, desk);
    EXPECT_EQ(stored(booking), u"0,NULL,1,0,0"_s);
    EXPECT_EQ(stored(others), before);
    EXPECT_EQ(form.予約.western.text + form.予約.era.text + form.開始時.text + form.開始分.text, QString());
    EXPECT_TRUE(form.frm31_am.chosen && !form.frm31_pm.chosen);

    // Held, an extra one, changed elsewhere: refused, as it was.
    const std::pair<QString, QString> refused[] = {
        {u"tblhoy_kaiki_s = 1"_s, u"実施済みの法要です。予約は取り消せません"_s},
        {u"tblhoy_kaiki_mei = '納骨'"_s, u"回忌外の法要です。予約を取り消すときは「削除」を使って下さい"_s},
        // It bears an anniversary's name, but not its day.
        {u"tblhoy_meiymd = '2023-01-05'"_s, u"回忌外の法要です。予約を取り消すときは「削除」を使って下さい"_s},
        {{}, changedElsewhere}};
    for (const auto& [state, message] : refused) {
        execute(u"UPDATE tbl_hohyo SET tblhoy_kaiki_rs = 1, tblhoy_kaiki_rymd = '2027-02-14'"_s);
        if (!state.isEmpty())
            execute(u"UPDATE tbl_hohyo SET "_s + state);
        form = detail();
        if (state.isEmpty()) {
            desk.answer(ask, detailTitle, true);
            desk.whileAsked = [this] { execute(u"UPDATE tbl_hohyo SET tblhoy_bikou = '別'"_s); };
        }
        desk.expect(message, detailTitle);
        cancelDetail(form, context, desk);
        EXPECT_EQ(query(u"SELECT tblhoy_kaiki_rs FROM tbl_hohyo"_s), u"1"_s);
        execute(u"UPDATE tbl_hohyo SET tblhoy_kaiki_s = 0, tblhoy_kaiki_mei = '3回忌', tblhoy_meiymd = '2024-01-05'"_s);
    }
}

TEST_F(Services, OnlyTheFirstFailureSpeaksAndAllAreRed) {
    const QString hour = u"予定時間に正しい数字を入力して下さい"_s;
    const struct {
        QString typed;   // booked|hour|minute|held|施主|offering
        QString message; // empty: passes
        QString red;
    } cases[] = {
        {u"|||||"_s, {}, {}},
        {u"|24|60|||"_s, {}, {}},
        {u"|-1|-1|||"_s, {}, {}},
        {u"|25||||"_s, hour, u"時"_s},
        {u"||61|||"_s, u"予定時間分に正しい数字を入力して下さい"_s, u"分"_s},
        {u"|x|y|||"_s, hour, u"時分"_s},
        {u"|||||一万"_s, u"御布施の金額に正しく入力して下さい \""_s, u"布"_s},
        {u"9/1/1|||||"_s, u"開始予定時間は必須です、時間を入力して下さい"_s, u"時場"_s},
        {u"9/1/1|25||||"_s, hour, u"時場"_s},
        {u"9/1/1|9||||"_s, u"法要場所は必須です、法要場所を選択又は入力して下さい"_s, u"場"_s},
        {u"9/2/30|||||x"_s, u"法要予定日　年月日に正しく入力して下さい"_s, u"予時場布"_s},
        {u"|||8/1/6||"_s, u"施主は必須です、関係者から選択又は入力して下さい"_s, u"施続"_s},
        {u"|||8/1/6|ア|"_s, u"施主の続柄は必須です、続柄を選択又は入力して下さい"_s, u"続"_s},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.typed.toStdString());
        法要明Form form = detail();
        // Marks of a former attempt go.
        desk::paint(desk::Colour::red, form.frm31_法要場所, form.施主, form.frm31_続柄, form.開始時, form.開始分);
        const QStringList typed = each.typed.split(u'|');
        type(form.予約, typed[0]);
        form.開始時.text = typed[1];
        form.開始分.text = typed[2];
        type(form.実施, typed[3]);
        form.施主.choose(typed[4]);
        form.frm31_ofuse.text = typed[5];
        if (each.message.isEmpty())
            desk.answer(askChange, detailTitle, false);
        else
            desk.expect(each.message, detailTitle);
        updateDetail(form, context, desk);
        desk.finish();
        const desk::Control* const controls[] = {&form.予約.year,  &form.実施.year,      &form.開始時,
                                                 &form.開始分,     &form.frm31_法要場所, &form.施主,
                                                 &form.frm31_続柄, &form.frm31_ofuse};
        QString red;
        for (std::size_t i = 0; i < std::size(controls); ++i) {
            if (controls[i]->colour == desk::Colour::red)
                red += u"予実時分場施続布"[i];
        }
        EXPECT_EQ(red, each.red);
    }
    EXPECT_EQ(stored(u"tblhoy_kaiki_rs, tblhoy_kaiki_s"_s), u"0,0"_s); // nothing of all this was stored
}

TEST_F(Services, DetailDeletesItsMemorialOnce) {
    法要明Form form = detail();
    desk.answer(askDelete, detailTitle, false);
    removeDetail(form, context, desk);
    EXPECT_EQ(stored(u"count(*)"_s), u"1"_s);
    EXPECT_EQ(desk.lastPreset, desk::Preset::no);
    for (const QString& told : {deleted, missing}) {
        desk.answer(askDelete, detailTitle, true);
        desk.expect(told, detailTitle);
        removeDetail(form, context, desk);
        EXPECT_EQ(stored(u"count(*)"_s), u"0"_s);
        EXPECT_EQ(context.hoy_kaiki_yymd, QDate(1899, 12, 30)); // the next screen is not sent to look for it
        EXPECT_EQ(form.frm31_hohyo_mei.text, u"3回忌"_s);
    }
    desk.answer(askChange, detailTitle, true);
    desk.expect(missing, detailTitle);
    updateDetail(form, context, desk);
}

TEST_F(Services, ARowChangedUnderTheScreenIsLeftAlone) {
    const struct {
        QString meanwhile;
        QString told;
    } cases[] = {
        {u"UPDATE tbl_hohyo SET tblhoy_bikou = '他'"_s, changedElsewhere},
        {u"DELETE FROM tbl_hohyo"_s, missing},
    };
    const auto all = [this] { return query(u"SELECT * FROM tbl_hohyo"_s) + query(u"SELECT * FROM マスタ"_s); };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.meanwhile.toStdString());
        法要明Form form = detail();
        // The extra screen registers a memorial, which then stands on it.
        法要外Form shown = extra();
        registerIt(shown);
        form.frm31_法要場所.text = u"新しい所"_s;
        execute(each.meanwhile);
        const QString before = all();
        desk.answer(askChange, detailTitle, true);
        desk.expect(each.told, detailTitle);
        updateDetail(form, context, desk);
        desk.answer(askDelete, detailTitle, true);
        desk.expect(each.told, detailTitle);
        removeDetail(form, context, desk);
        deleteShown(shown, each.told);
        EXPECT_EQ(all(), before);
        EXPECT_EQ(form.frm31_法要場所.text, u"新しい所"_s); // what was typed stays
        execute(u"DELETE FROM tbl_hohyo WHERE tblhoy_kaiki_mei <> '3回忌'"_s);
    }
}

TEST_F(Services, ExtraReadsTheDeceasedByTheKeyOfHisLine) {
    法要外Form form;
    beginExtra(form, context, desk);
    EXPECT_EQ(form.frm31_zoknameg.items, QStringList({u"山田　一"_s, u"山田　一"_s}));
    EXPECT_EQ(form.施主.items, QStringList({u"ア"_s, u"イ"_s, u"ウ"_s})); // by name
    chooseLine(form, 0);
    EXPECT_EQ(form.frm31_mei_gymd.text + context.kak_kaimyoug, u"令和6年1月5日釈一"_s);
    // The same name in an entry of the household under its former name, the list moved without a click.
    form.frm31_zoknameg.current = 1;
    form.frm31_hohyo_mei.text = u"供養"_s;
    hold(form, u"8/2/3"_s);
    registerIt(form);
    EXPECT_EQ(form.frm31_dankag.text + form.frm31_kaimyoug.text, u"旧姓釈旧"_s);
    EXPECT_EQ(query(u"SELECT tblhoy_danknameg, tblhoy_danknamek, tblhoy_kaimyog FROM tbl_hohyo "
                    "WHERE tblhoy_kaiki_mei = '供養'"_s),
              u"旧姓,キュウセイ,釈旧"_s);
    // One who is gone is not chosen, and the one before is no longer.
    execute(u"DELETE FROM tbl_kakocho WHERE tblkak_dnknameg = '山田'"_s);
    desk.expect(noEntry, extraTitle);
    chooseLine(form, 0);
    EXPECT_EQ(form.frm31_kaimyoug.text, QString());
    desk.expect(u"故人を選択して下さい"_s, extraTitle);
    registerExtra(form, context, desk);
}

TEST_F(Services, ExtraOpenedForADeceasedShowsHimAsTheRegisterHoldsHim) {
    context.nameDeceased(u"旧姓"_s, u"山田　一"_s);
    context.kak_kaimyoug = u"前の戒名"_s;
    法要外Form form;
    beginExtra(form, context, desk);
    EXPECT_EQ(form.frm31_zoknameg.items, QStringList({u"山田　一"_s}));
    EXPECT_EQ(form.frm31_zoknameg.currentText() + form.frm31_kaimyoug.text, u"山田　一釈旧"_s);
    // Corrected on the death register meanwhile: the memorial carries what stands there, and the boxes show it.
    execute(u"UPDATE tbl_kakocho SET tblkak_kaimyoug = '釈新', tblkak_mei_ymd = '2024-03-01'"_s);
    form.frm31_hohyo_mei.text = u"供養"_s;
    hold(form, u"8/2/3"_s);
    registerIt(form);
    EXPECT_EQ(form.frm31_kaimyoug.text, u"釈新"_s);
    EXPECT_EQ(query(u"SELECT tblhoy_kaimyog, tblhoy_meiymd FROM tbl_hohyo WHERE tblhoy_kaiki_mei = '供養'"_s),
              u"釈新,2024-03-01"_s);
    execute(u"DELETE FROM tbl_kakocho WHERE tblkak_dnknameg = '旧姓'"_s);
    type(form.実施, u"8/2/4"_s);
    desk.expect(noEntry, extraTitle);
    registerExtra(form, context, desk);

    // Nobody under that key: all of the household are offered.
    form = {};
    desk.expect(noEntry, extraTitle);
    beginExtra(form, context, desk);
    EXPECT_EQ(form.frm31_zoknameg.items, QStringList({u"山田　一"_s}));
    EXPECT_EQ(form.frm31_zoknameg.current, -1);
    EXPECT_EQ(context.kak_zokunameg, QString());
}

TEST_F(Services, ExtraDeletesNoMemorialButTheOneShown) {
    execute(u"INSERT INTO tbl_kakocho (tblkak_no, tblkak_dnknameg, tblkak_zokunameg) VALUES (7, '山田', 'アキ'); "
            "INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_danknameg, tblhoy_zokunameg, tblhoy_kaiki_mei, "
            "tblhoy_kaiki_yymd) VALUES (7, '山田', 'アキ', 'アキの', '2027-05-05')"_s);
    context.clearDeceased();
    法要外Form form = extra(); // アキ now comes first
    registerIt(form);
    chooseLine(form, 1);
    type(form.予約, u"9/5/5"_s);
    deleteShown(form, missing); // that of 山田　一 on a day of アキ's
    chooseLine(form, 0);
    deleteShown(form);
    EXPECT_EQ(names(), u"山田3回忌|山田特別供養"_s);
}

TEST_F(Services, AnExtraMemorialBookedIsBornNotifiedAndCanBeDeleted) {
    法要外Form form = extra();
    form.frm31_ofuse.text = u"５,０００"_s;
    registerIt(form);
    EXPECT_EQ(
        query(u"SELECT tblhoy_no, tblhoy_danknameg, tblhoy_danknamek, tblhoy_zokunameg, tblhoy_zokunamek, "
              "tblhoy_kaimyog, tblhoy_meiymd, tblhoy_kaiki_s, tblhoy_kaiki_yymd, tblhoy_kaiki_rymd, "
              "tblhoy_kaiki_rs, tblhoy_kaiki_ampm, tblhoy_kaiki_hour, tblhoy_kaiki_mint, tblhoy_tsuchi_s, "
              "tblhoy_tsuchi_ymd, tblhoy_kaiki_jymd, tblhoy_ofuse, tblhoy_kanaidx, tblhoy_add_ymd "
              "FROM tbl_hohyo WHERE tblhoy_kaiki_mei = '特別供養'"_s),
        u"7,山田,ヤマダ,山田　一,ヤマダ ハジメ,釈一,2024-01-05,0,2027-02-14,2027-02-14,1,1,10,30,1,2027-02-14,NULL,"
        "5000,ヤ,2026-11-22"_s);
    EXPECT_EQ(form.frm31_ygymd.text, u"令和9年2月14日"_s);
    form.frm31_hohyo_mei.text = u"別の供養"_s; // the same day again, under another name
    registerIt(form, true);
    type(form.予約, u"8/1/5"_s); // the day of the 3回忌
    registerIt(form, true);
    // That of the dates shown goes, not the one registered; and once they are shown again, that one.
    deleteShown(form);
    EXPECT_EQ(names(), u"山田特別供養"_s);
    type(form.予約, u"9/2/14"_s);
    deleteShown(form);
    EXPECT_EQ(names(), QString());
}

TEST_F(Services, AMemorialAndItsWordsAreOneWrite) {
    refuseRows(u"マスタ"_s, u"true"_s);
    法要外Form form = extra();
    form.frm31_法要場所.text = u"新しい所"_s;
    desk.answer(askRegister, extraTitle, true);
    EXPECT_THROW(registerExtra(form, context, desk), std::exception);
    法要明Form shown = detail();
    shown.frm31_法要場所.text = u"新しい所"_s;
    desk.answer(askChange, detailTitle, true);
    EXPECT_THROW(updateDetail(shown, context, desk), std::exception);
    EXPECT_EQ(query(u"SELECT tblhoy_kaiki_mei, tblhoy_kaiki_basho FROM tbl_hohyo"_s), u"3回忌,NULL"_s);
}

TEST_F(Services, AnExtraMemorialHeldIsScheduledOnThatDay) {
    法要外Form both = extra(u"両方"_s);
    hold(both, u"9/2/15"_s);
    registerIt(both);
    法要外Form held = extra(u"実施"_s);
    held.予約.clear();
    hold(held, u"9/2/16"_s);
    registerIt(held);
    法要外Form taken = extra();
    hold(taken, u"8/1/5"_s); // the day of the 3回忌
    registerIt(taken, true);
    EXPECT_EQ(query(u"SELECT tblhoy_kaiki_mei, tblhoy_kaiki_yymd, tblhoy_kaiki_rs, tblhoy_kaiki_s, "
                    "tblhoy_kaiki_jymd, tblhoy_tsuchi_s, tblhoy_kaiki_hour FROM tbl_hohyo ORDER BY 2"_s),
              u"3回忌,2026-01-05,0,0,NULL,0,0|両方,2027-02-15,1,1,2027-02-15,1,10|"
              "実施,2027-02-16,0,1,2027-02-16,0,NULL"_s);
}

TEST_F(Services, AnExtraMemorialNeedsNameAndDay) {
    法要外Form form = extra({});
    form.予約.clear();
    desk.expect(u"法要名を入力して下さい"_s, extraTitle);
    registerExtra(form, context, desk);
    form.frm31_hohyo_mei.text = u"名"_s;
    desk.expect(u"法要予定日又は法要実施日を入力して下さい"_s, extraTitle);
    registerExtra(form, context, desk);
}

} // namespace
