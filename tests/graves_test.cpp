#include "graves/grave_list_rules.h"
#include "graves/new_grave_rules.h"
#include "graves/picker_rules.h"
#include "graves/registration_rules.h"

#include "support/register_fixture.h"
#include "support/test_desk.h"

using namespace Qt::StringLiterals;

namespace {

const QString listTitle = u"お墓一覧"_s;
const QString title = u"お墓 登録"_s;
const QString newTitle = u"お墓 新規登録"_s;
const QString changed = u"登録NOが変更されています。照会からやり直して下さい"_s;
const QString gone = u"指定されたお墓番号を読めませんません。DBの整合性を確認して下さい"_s;
const QString updated = u"入力された内容でお墓は更新されました。"_s;
const QString askUpdate = u"入力された内容でお墓を変更します。内容を確認して下さい。"_s;

class Graves : public RegisterFixture {
  protected:
    // Rows "(number, section, lot, household, kind, disposed)" of graves named 山田家, fees 0 and 12,000.
    void add(const QString& rows) {
        execute(u"INSERT INTO tbl_ohaka (tblhak_no, tblhak_banchi1, tblhak_banchi2, tblhak_dnk_no, tblhak_bohyo_kbn, "
                "tblhak_haiki_kbn, tblhak_bohyo_mei, tblhak_shiyo_ryokin, tblhak_kanri_ryokin) "
                "SELECT *, '山田家', 0, 12000 FROM (VALUES %1)"_s.arg(rows));
    }
    // Lots 001 to count of one section, numbered from 1.
    void section(const QString& name, int count, int household = 0) {
        QStringList rows;
        for (int i = 1; i <= count; ++i)
            rows << u"(%1, '%2', '%3', %4, '家', 0)"_s.arg(i).arg(name).arg(i, 3, 10, QChar(u'0')).arg(household);
        add(rows.join(u','));
    }
    void household(std::int16_t no, const QString& name = u"山田"_s) {
        auto row = sampleHousehold(no);
        row.tbldnk_nameg = name;
        store::Database database;
        store::Table(database, store::idxdnk_no).insert(row);
    }
    QString stored(int no, const QString& fields) {
        return query(u"SELECT %1 FROM tbl_ohaka WHERE tblhak_no = %2"_s.arg(fields).arg(no));
    }
    template <class Form> void type(Form& form, const QString& number) {
        form.frm13_haka_no.text = number;
        graves::lookUpGrave(form, context, desk);
    }
    static void set(desk::DateGroup& group, const QString& era, int year, int month, int day) {
        group.era.text = era;
        group.year.text = QString::number(year);
        group.month.text = QString::number(month);
        group.day.text = QString::number(day);
    }

    TestDesk desk{today};
};

// ---- lists

class GraveList : public Graves {
  protected:
    void choose(const QString& name) {
        form.frm21_block.text = name;
        graves::chooseSection(form, context, desk);
    }
    void click(int row) {
        form.frm21_tbl.clickedRow = row;
        graves::clickRow(form, context, desk);
    }
    QString page() const {
        const auto& rows = form.frm21_tbl.rows;
        return rows.empty() ? QString() : rows.front()[2] + u'-' + rows.back()[2];
    }
    graves::お墓一Form form;
};

TEST_F(GraveList, OffersTheFirstHundredSectionsThatHaveANameInOrder) {
    execute(u"INSERT INTO tbl_ohaka (tblhak_no, tblhak_banchi1) VALUES (500, NULL), (501, ''), (502, 'O''Brien')"_s);
    QStringList expected{u"O'Brien"_s};
    for (int i = 1; i <= 99; ++i)
        expected << u"区%1"_s.arg(i, 3, 10, QChar(u'0'));
    execute(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 204) INSERT INTO tbl_ohaka "
            "(tblhak_no, tblhak_banchi1) SELECT i, printf('区%03d', (i + 1) / 2) FROM n"_s);
    graves::openGraveList(form, context, desk);
    EXPECT_EQ(form.frm21_block.items, expected);
    EXPECT_EQ(form.frm21_tbl.columns.size(), 13u);
    EXPECT_TRUE(form.frm21_tbl.rows.empty());
}

TEST_F(GraveList, ShowsEachCellOnlyWhereThereIsSomethingToShow) {
    add(u"(31, '東''1', '1', 12, '家', 1), (32, '東''1', '2', 0, '家', 0), (33, '東''1', NULL, 0, '家', 0)"_s);
    execute(
        u"UPDATE tbl_ohaka SET tblhak_dnk_kbn = '檀家', tblhak_dnk_nameg = '山田', tblhak_shiyo_stymd = '1989-01-07', "
        "tblhak_shiyo_ryokin = 1234567, tblhak_kanri_nxymd = '2027-04-01', tblhak_biko = '角地' WHERE tblhak_no = 31; "
        "UPDATE tbl_ohaka SET tblhak_bohyo_mei = '', tblhak_shiyo_ryokin = NULL, tblhak_kanri_ryokin = 0 "
        "WHERE tblhak_no = 32; UPDATE tbl_ohaka SET tblhak_haiki_ymd = '2008-02-12'"_s);
    choose(u"東'1"_s);
    ASSERT_EQ(form.frm21_tbl.rows.size(), 2u);
    EXPECT_EQ(form.frm21_tbl.rows[0].join(u' '), u"31 東'1 1 12 檀家 山田 山田家 平成1年1月7日 1,234,567 令和9年4月1日 "
                                                 "12,000 平成20年2月12日 角地"_s);
    EXPECT_EQ(form.frm21_tbl.rows[1].join(u' '), u"32 東'1 2        0  "_s);
}

TEST_F(GraveList, OpensTheGraveAndReturnsToTheFirstPage) {
    section(u"東"_s, 40);
    add(u"(99, '東', '041', 12, '家', 0), (100, '西', NULL, 0, '家', 0)"_s);
    context.dnk_namek = u"ヤマダ"_s;
    context.kak_zokunameg = u"太郎"_s;
    choose(u"東"_s);
    graves::openGrave(form, context, desk);
    graves::openHousehold(form, context, desk);
    EXPECT_TRUE(desk.opened.empty()); // nothing clicked yet

    click(5);
    graves::nextPage(form, context, desk);
    EXPECT_EQ(page(), u"030-041"_s);
    graves::openGrave(form, context, desk); // the selection outlives the page
    EXPECT_EQ(desk.opened.back().screen, u"お墓新"_s);
    EXPECT_EQ(desk.opened.back().how, desk::Opening::modal);
    EXPECT_EQ(context.hak_no, 5);
    EXPECT_EQ(context.dnk_namek + context.kak_zokunameg, QString());
    desk.opened.back().closed();
    EXPECT_EQ(page(), u"001-030"_s);
    desk.expect(u"お墓と檀家さんの紐付けができていません"_s, listTitle);
    graves::openHousehold(form, context, desk);

    graves::nextPage(form, context, desk);
    click(12);
    graves::openGrave(form, context, desk);
    EXPECT_EQ(desk.opened.back().screen, u"お墓登"_s);
    EXPECT_EQ(context.hak_no, 99);
    EXPECT_EQ(context.dnk_no1, 12);
    graves::openHousehold(form, context, desk);
    EXPECT_EQ(desk.opened.back().screen, u"檀家登"_s);
    EXPECT_EQ(context.hak_no, 0);
    EXPECT_EQ(context.dnk_no1, 12);
    desk.opened.back().closed();
    EXPECT_EQ(page(), u"001-030"_s);
    desk.expect(u"照会の区画にお墓はありません。登録内容を確認して下さい"_s, listTitle);
    choose(u"西"_s); // a lot that is absent is not listed
    EXPECT_EQ(page(), u"001-030"_s);
}

// ---- pickers

template <class Form> QStringList numbers(const Form& form) {
    QStringList list;
    for (const auto& row : form.frm21_tbl.rows)
        list << row[0];
    return list;
}

TEST_F(Graves, SectionPickerListsFreeGravesOnly) {
    section(u"東"_s, 35, 12);
    add(u"(100, '東', '036', 12, '空', 0), (101, '東', '037', 0, '家', 0), (102, '満', '1', 12, '家', 0)"_s);
    graves::紐区画Form form;
    graves::openPicker(form, context, desk);
    for (const auto& [section, expected] :
         {std::pair{u"東"_s, QStringList{u"100"_s, u"101"_s}}, {u"満"_s, QStringList()}}) {
        form.frm21_block.text = section;
        graves::chooseSection(form, context, desk);
        EXPECT_EQ(numbers(form), expected);
    }
    desk.expect(u"照会する区画を入力して下さい"_s, u"お墓紐付･区画"_s);
    form.frm21_block.text.clear();
    graves::chooseSection(form, context, desk);
}

TEST_F(Graves, MarkerPickerListsEveryNamedGraveInTheOrderOfTheNames) {
    graves::紐墓標Form form;
    desk.expect(u"照会の区画にお墓はありません。登録内容を確認して下さい"_s, u"お墓紐付･墓標"_s);
    graves::openPicker(form, context, desk);
    execute(u"INSERT INTO tbl_ohaka (tblhak_no, tblhak_bohyo_mei, tblhak_dnk_no) VALUES (1, 'お', 12), (2, '', 0), "
            "(3, '\"', 0), (4, '!', 0), (5, 'O''Brien', 0), (6, '\"\"', 0), (7, NULL, 0)"_s);
    graves::openPicker(form, context, desk);
    EXPECT_EQ(numbers(form), QStringList({u"6"_s, u"5"_s, u"1"_s}));
    EXPECT_EQ(form.frm21_tbl.rows[1].join(u'|'), u"5|||0|||O'Brien"_s);
    execute(u"WITH RECURSIVE n(i) AS (SELECT 10 UNION ALL SELECT i + 1 FROM n WHERE i < 49) INSERT INTO tbl_ohaka "
            "(tblhak_no, tblhak_bohyo_mei) SELECT i, printf('P''%d', i) FROM n"_s);
    graves::openPicker(form, context, desk);
    graves::nextPage(form, context, desk);
    EXPECT_EQ(form.frm21_tbl.rows.front()[6] + form.frm21_tbl.rows.back()[6], u"P'37お"_s);
    graves::previousPage(form, context, desk);
    EXPECT_EQ(form.frm21_tbl.rows.front()[6], u"\"\""_s);
}

// ---- the grave screen

class Registration : public Graves {
  protected:
    Registration() {
        household(7, u"佐藤"_s);
        household(12);
        add(u"(1, '東', '1', 7, '家', 0), (2, '東', '2', 0, '家', 0), (3, '東', '3', 12, '家', 0), "
            "(4, '東', '4', 0, '空', 0), (5, '東', '5', 0, '家', 1)"_s);
        execute(u"UPDATE tbl_ohaka SET tblhak_shiyo_stymd = '1998-04-01', tblhak_kanri_nxymd = '2027-04-01' "
                "WHERE tblhak_no = 1; UPDATE tbl_ohaka SET tblhak_haiki_ymd = '2020-01-01' WHERE tblhak_no = 5"_s);
    }
    void open(std::int16_t householdNo, std::int16_t graveNo) {
        form = {};
        context.publishHousehold(householdNo);
        context.hak_no = graveNo;
        graves::openRegistration(form, context, desk);
    }
    void update(bool yes = true) {
        desk.answer(askUpdate, title, yes);
        if (yes)
            desk.expect(updated, title);
        graves::updateGrave(form, context, desk);
    }
    graves::お墓登Form form;
};

TEST_F(Registration, ShowsHouseholdAndGrave) {
    open(7, 1);
    EXPECT_EQ(form.frm13_no.text + form.frm13_dankag.text, u"7佐藤"_s);
    EXPECT_EQ(context.dnk_nameg, u"佐藤"_s);
    EXPECT_TRUE(form.frm13_dnkkbn1.chosen);
    EXPECT_EQ(form.frm13_all_bohyo.items, QStringList{u"山田家"_s});
    EXPECT_EQ(form.frm13_banchi1.text + form.frm13_banchi2.text, u"東1"_s);
    EXPECT_TRUE(form.frm13_haka2.chosen);
    EXPECT_EQ(form.開始.era.text + form.開始.year.text + u'/' + form.開始.month.text + u'/' + form.開始.day.text,
              u"平成10/4/1"_s);
    EXPECT_EQ(form.開始.western.text, u"1998/04/01"_s);
    EXPECT_EQ(form.受領.western.text + form.受領.era.text, QString());
    EXPECT_EQ(form.墓地使用料.text, u"0"_s);
    EXPECT_EQ(form.墓地管理費.text, u"12,000"_s);

    type(form, u"4"_s); // a vacant plot: no marker name, the kind as it was
    EXPECT_TRUE(form.frm13_haka2.chosen);
    EXPECT_EQ(form.frm13_bohyo.text + form.開始.western.text + form.開始.year.text, QString());

    open(0, 0); // no household: the graves that have none, disposed ones left out
    EXPECT_EQ(form.frm13_no.text, QString());
    EXPECT_EQ(form.frm13_all_bohyo.keys, (std::vector<int>{2, 4}));

    context.dnk_namek = u"カナ"_s; // a household that the context describes is not read
    context.dnk_nameg = u"文脈"_s;
    context.dnk_no1 = 99;
    graves::openRegistration(form, context, desk);
    EXPECT_EQ(form.frm13_no.text + form.frm13_dankag.text, u"99文脈"_s);

    desk.expect(u"指定された檀家番号を読めませんません。DBの整合性を確認して下さい"_s, title);
    context.dnk_namek.clear();
    open(98, 0);
}

TEST_F(Registration, LooksUpAGraveByNumber) {
    const QString missing = u"指定されたお墓は登録されていません。確認して下さい"_s;
    const QString other = u"檀家番号が変更になりました。新しい番号で処理を続けますか？"_s;
    const struct {
        QString number;
        QString message;
        std::optional<bool> answer;
        QString place; // shown afterwards
        int household; // of the context afterwards
    } cases[] = {
        {u"1"_s, {}, {}, u"東1"_s, 7},     {u"２"_s, {}, {}, u"東2"_s, 7},      {u"77"_s, missing, {}, u"東1"_s, 7},
        {u""_s, missing, {}, u"東1"_s, 7}, {u"墓"_s, missing, {}, u"東1"_s, 7}, {u"40000"_s, missing, {}, u"東1"_s, 7},
        {u"3"_s, {}, false, u"東1"_s, 7},  {u"3"_s, {}, true, u"東3"_s, 12},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.number.toStdString());
        open(7, 1);
        if (c.answer)
            desk.answer(other, title, *c.answer);
        if (!c.message.isEmpty())
            desk.expect(c.message, title);
        type(form, c.number);
        EXPECT_EQ(form.frm13_banchi1.text + form.frm13_banchi2.text, c.place);
        EXPECT_EQ(context.dnk_no1, c.household);
        EXPECT_EQ(form.frm13_no.text, QString::number(c.household));
        desk.finish();
    }
    // Its household is gone: the screen stays with the one it shows, and the grave cannot be stored under it.
    open(7, 1);
    execute(u"DELETE FROM tbl_danka WHERE tbldnk_no1 = 12"_s);
    desk.answer(other, title, true);
    desk.expect(u"指定された檀家番号を読めませんません。DBの整合性を確認して下さい"_s, title);
    type(form, u"3"_s);
    EXPECT_EQ(form.frm13_no.text, u"7"_s);
    EXPECT_EQ(context.dnk_no1, 7);
    desk.expect(u"区画と番地の変更ができません。入力した内容をﾁｪｯｸしてください"_s, title);
    graves::updateGrave(form, context, desk);
}

TEST_F(Registration, PicksTheClickedOneOfGravesWithEqualNames) {
    add(u"(8, '西', '8', 7, '家', 0)"_s);
    open(7, 1);
    ASSERT_EQ(form.frm13_all_bohyo.keys, (std::vector<int>{1, 8}));
    form.frm13_all_bohyo.current = 1;
    graves::pickGrave(form, context, desk);
    EXPECT_EQ(form.frm13_banchi1.text, u"西"_s);
    EXPECT_EQ(context.hak_no, 8);
    update(); // the pick is the grave in hand
    execute(u"DELETE FROM tbl_ohaka WHERE tblhak_no = 8"_s);
    desk.expect(u"お墓の情報が取出せません、ﾃﾞｰﾀﾍﾞｰｽの整合性を確認して下さい。"_s, title);
    graves::pickGrave(form, context, desk);
}

TEST_F(Registration, ChecksTheFieldsInOrderAndShowsTheFirstMessage) {
    using Form = graves::お墓登Form;
    const QString useFee = u"墓地使用料に正しく入力して下さい"_s;
    const auto fee = [](const QString& text) { return [text](Form& form) { form.墓地使用料.text = text; }; };
    const auto date = [](desk::DateGroup graves::GraveFields::*group) {
        return [group](Form& form) { set(form.*group, u"平成"_s, 10, 2, 30); };
    };
    const struct {
        const char* name;
        std::function<void(Form&)> damage;
        QString message; // empty: passes
        QString feeShown = {};
    } cases[] = {
        {"section", [](Form& form) { form.frm13_banchi1.text.clear(); }, u"お墓の場所を入力して下さい"_s},
        {"lot", [](Form& form) { form.frm13_banchi2.text.clear(); }, u"お墓の番地を入力して下さい"_s},
        {"marker", [](Form& form) { form.frm13_bohyo.text.clear(); }, u"墓標名を入力して下さい"_s},
        {"start", date(&Form::開始), u"使用開始日　年月日に正しく入力して下さい"_s},
        {"fee received", date(&Form::受領), u"使用料受領日　年月日に正しく入力して下さい"_s},
        {"upkeep received", date(&Form::管受), u"管理費受領日　年月日に正しく入力して下さい"_s},
        {"next billing", date(&Form::次回), u"管理費次回請求日　年月日に正しく入力して下さい"_s},
        {"empty fee", fee(u""_s), useFee},
        {"letters", fee(u"12万"_s), useFee},
        {"beyond 32 bits", fee(u"3,000,000,000"_s), useFee},
        {"16 bits and more", fee(u"40000"_s), {}, u"40,000"_s},
        {"full width", fee(u"１２，３４５"_s), {}, u"12,345"_s},
        {"separators", fee(u" 1,200,000 "_s), {}, u"1,200,000"_s},
        {"sign", fee(u"－500"_s), {}, u"-500"_s},
        {"upkeep", [](Form& form) { form.墓地管理費.text = u"?"_s; }, u"墓地管理費に正しく入力して下さい"_s},
        {"two at once",
         [](Form& form) {
             form.墓地使用料.text.clear();
             form.frm13_banchi2.text.clear();
         },
         u"お墓の番地を入力して下さい"_s},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        open(7, 1);
        c.damage(form);
        if (c.message.isEmpty())
            desk.answer(askUpdate, title, false);
        else
            desk.expect(c.message, title);
        graves::updateGrave(form, context, desk);
        if (!c.feeShown.isEmpty()) {
            EXPECT_EQ(form.墓地使用料.text, c.feeShown);
        }
        desk.finish();
        EXPECT_EQ(stored(1, u"tblhak_shiyo_ryokin, tblhak_kanri_ryokin"_s), u"0,12000"_s);
    }
}

TEST_F(Registration, KeepsAGraveAtPlacesThatAreItsHouseholdsOrFree) {
    add(u"(20, '西', '1', 12, '家', 0), (21, '西', '1', 0, '家', 1), (22, '西', '2', 12, '空', 0), "
        "(23, '西', '3', 12, '家', 1)"_s);
    const struct {
        const char* name;
        QString section;
        QString lot;
        bool free;
    } cases[] = {{"own", u"東"_s, u"1"_s, true},
                 {"without household", u"東"_s, u"2"_s, true},
                 {"of another", u"東"_s, u"3"_s, false},
                 {"vacant, naming another", u"西"_s, u"2"_s, true},
                 {"disposed, naming another", u"西"_s, u"3"_s, true},
                 {"a disposed one beside another's", u"西"_s, u"1"_s, false},
                 {"nowhere", u"西"_s, u"O'9"_s, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        open(7, 1);
        form.frm13_banchi1.text = c.section;
        form.frm13_banchi2.text = c.lot;
        if (c.free)
            desk.answer(askUpdate, title, false);
        else
            desk.expect(u"区画と番地の変更ができません。入力した内容をﾁｪｯｸしてください"_s, title);
        graves::updateGrave(form, context, desk);
        desk.finish();
    }
}

TEST_F(Registration, WritesWhatTheScreenShows) {
    open(7, 1);
    type(form, u"5"_s);
    form.frm13_haka2.chosen = false;
    form.frm13_bohyo.text = u"O'Brien"_s;
    set(form.管受, u"令和"_s, 8, 4, 1);
    set(form.次回, u"無"_s, 9, 4, 1);
    form.次回.western.text = u"2027/04/01"_s;
    form.墓地使用料.text = u"1,200,000"_s;
    form.frm13_biko.text = u"角地"_s;
    form.frm13_dankak.text.clear();
    desk.expect(u"元号の変換が出来ません。入力した元号・ﾃﾞｰﾀ･ﾍﾞｰｽの整合性をﾁｪｯｸしてください"_s, u"檀家 登録"_s);
    update(); // an unknown era counts as an empty date
    EXPECT_EQ(stored(5, u"tblhak_banchi1, tblhak_banchi2, tblhak_dnk_no, tblhak_bohyo_kbn, tblhak_bohyo_mei, "
                        "tblhak_shiyo_stymd, tblhak_shiyo_ryokin, tblhak_kanri_jrymd, tblhak_kanri_nxymd, "
                        "tblhak_haiki_kbn, tblhak_haiki_ymd, tblhak_kanaidx, tblhak_biko"_s),
              u"東,5,7,個,O'Brien,NULL,1200000,2026-04-01,NULL,0,NULL, ,角地"_s);

    open(7, 1); // an emptied date leaves the stored one
    form.開始.clear();
    set(form.次回, u"令和"_s, 10, 4, 1);
    update();
    EXPECT_EQ(stored(1, u"tblhak_shiyo_stymd, tblhak_kanri_nxymd, tblhak_bohyo_kbn"_s), u"1998-04-01,2028-04-01,家"_s);
}

TEST_F(Registration, ActsOnTheGraveInHandOnly) {
    using Rule = void (*)(graves::お墓登Form&, desk::ScreenContext&, desk::Desk&);
    const Rule update = graves::updateGrave, remove = graves::deleteGrave, dispose = graves::disposeGrave;
    const QString before = query(u"SELECT * FROM tbl_ohaka"_s);
    open(7, 1);
    desk.expect(u"登録NOを入力して下さい"_s, title);
    form.frm13_haka_no.text.clear();
    update(form, context, desk);
    for (const QString& number : {u"2"_s, u"99"_s, u"墓"_s, u"40000"_s}) {
        form.frm13_haka_no.text = number;
        for (const Rule act : {update, remove, dispose}) {
            desk.expect(changed, title);
            act(form, context, desk);
        }
    }
    // A grave whose look-up was declined is not in hand either.
    desk.answer(u"檀家番号が変更になりました。新しい番号で処理を続けますか？"_s, title, false);
    open(7, 3);
    desk.expect(changed, title);
    dispose(form, context, desk);
    EXPECT_EQ(query(u"SELECT * FROM tbl_ohaka"_s), before);

    open(7, 1);
    desk.answer(u"ﾃﾞｰﾀを削除します。内容を確認して下さい。"_s, title, false);
    remove(form, context, desk);
    desk.expect(u"指定されたお墓は廃棄処分されました。"_s, title);
    dispose(form, context, desk);
    EXPECT_EQ(stored(1, u"tblhak_dnk_no, tblhak_haiki_kbn, tblhak_haiki_ymd"_s), u"0,1,2026-11-22"_s);
    open(7, 1);
    EXPECT_EQ(form.frm13_all_bohyo.items, QStringList());
    desk.answer(u"ﾃﾞｰﾀを削除します。内容を確認して下さい。"_s, title, true);
    desk.expect(u"指定されたお墓は削除されました。"_s, title);
    remove(form, context, desk);
    EXPECT_EQ(stored(1, u"1"_s), QString());

    // Gone between look-up and save, its place held by another grave of the household.
    add(u"(30, '東', '1', 7, '家', 0)"_s);
    desk.answer(askUpdate, title, true);
    desk.expect(gone, title);
    update(form, context, desk);
    desk.expect(gone, title);
    dispose(form, context, desk);
    desk.answer(u"ﾃﾞｰﾀを削除します。内容を確認して下さい。"_s, title, true);
    desk.expect(gone, title);
    remove(form, context, desk);
}

// ---- graves without household

class NewGrave : public Graves {
  protected:
    NewGrave() { graves::openNewGrave(form, context, desk); }
    void fill(const QString& section, const QString& lot) {
        form.frm13_banchi1.text = section;
        form.frm13_banchi2.text = lot;
        form.墓地使用料.text = u"1,000"_s;
        form.墓地管理費.text = u"0"_s;
    }
    void press(void (*rule)(graves::お墓新Form&, desk::ScreenContext&, desk::Desk&)) { rule(form, context, desk); }
    void registerWith(bool yes) {
        desk.answer(u"入力された内容でお墓を登録します。内容を確認して下さい。"_s, newTitle, yes);
        if (yes)
            desk.expect(updated, newTitle);
        press(graves::registerGrave);
    }
    graves::お墓新Form form;
};

TEST_F(NewGrave, UsesANumberUpOnlyWhenItRegisters) {
    fill(u"東"_s, u"1"_s);
    form.frm13_haka3.chosen = true;
    form.frm13_dnknameg.text = u"（予約）"_s;
    set(form.開始, u"令和"_s, 8, 1, 2);
    registerWith(false);
    registerWith(false);
    EXPECT_EQ(form.frm13_haka_no.text, u"1"_s);
    EXPECT_EQ(context.hak_no, 1);
    desk.expect(changed, newTitle); // proposed, but not registered
    press(graves::updateGrave);
    desk.expect(changed, newTitle);
    press(graves::deleteGrave);
    EXPECT_EQ(query(u"SELECT tblno_sumino FROM tbl_hatsuban WHERE tblno_key2 = 'お墓'"_s), u"0"_s);
    registerWith(true);
    EXPECT_EQ(query(u"SELECT tblno_sumino FROM tbl_hatsuban WHERE tblno_key2 = 'お墓'"_s), u"1"_s);
    EXPECT_EQ(query(u"SELECT * FROM tbl_ohaka"_s),
              u"1,東,1,0,,（予約）,,空,,2026-01-02,NULL,1000,0,NULL,NULL,0,NULL,,,2026-11-22"_s);

    fill(u"東"_s, u"2"_s);
    execute(u"INSERT INTO tbl_ohaka (tblhak_no) VALUES (2)"_s);
    desk.answer(u"入力された内容でお墓を登録します。内容を確認して下さい。"_s, newTitle, true);
    desk.expect(u"指定されたお墓番号は既に登録されています"_s, newTitle);
    press(graves::registerGrave);
    EXPECT_EQ(query(u"SELECT count(*) FROM tbl_ohaka"_s), u"2"_s);

    execute(u"UPDATE tbl_hatsuban SET tblno_sumino = 32767 WHERE tblno_key2 = 'お墓'"_s);
    desk.expect(u"発番できる番号の上限に達しています"_s, title);
    press(graves::registerGrave);
    EXPECT_EQ(form.frm13_haka_no.text, u"2"_s);
}

TEST_F(NewGrave, ChecksThePlaceByMode) {
    add(u"(1, '東', 'live', 0, '家', 0), (2, '東', 'disposed', 0, '家', 1), (3, '東', 'both', 0, '家', 1), "
        "(4, '東', 'both', 12, '家', 0)"_s);
    execute(u"UPDATE tbl_hatsuban SET tblno_sumino = 9 WHERE tblno_key2 = 'お墓'"_s);
    const struct {
        const char16_t* lot;
        bool registers;
        bool updates;
    } cases[] = {{u"live", false, true}, {u"disposed", true, true}, {u"both", false, true}, {u"none", true, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(QString::fromUtf16(c.lot).toStdString());
        fill(u"東"_s, QString::fromUtf16(c.lot));
        if (c.registers) {
            registerWith(false);
        } else {
            desk.expect(u"区画と番地がタブっています。入力した内容をﾁｪｯｸしてください"_s, newTitle);
            press(graves::registerGrave);
        }
        EXPECT_EQ(form.frm13_banchi1.colour == desk::Colour::red, !c.registers);
        EXPECT_EQ(form.frm13_banchi2.colour == desk::Colour::red, !c.registers);
        type(form, u"1"_s);
        fill(u"東"_s, QString::fromUtf16(c.lot));
        if (c.updates)
            desk.answer(askUpdate, newTitle, false);
        else
            desk.expect(u"区画と番地の変更はできません。入力した内容をﾁｪｯｸしてください"_s, newTitle);
        press(graves::updateGrave);
        EXPECT_EQ(form.frm13_banchi1.colour == desk::Colour::red, !c.updates);
        desk.finish();
    }
}

TEST_F(NewGrave, AsksForThePlaceButNotForAMarkerName) {
    for (const auto& [section, lot, message] : {std::tuple{u""_s, u"1"_s, u"お墓の場所を入力して下さい"_s},
                                                {u"東"_s, u""_s, u"お墓の番地を入力して下さい"_s}}) {
        fill(section, lot);
        desk.expect(message, newTitle);
        press(graves::registerGrave);
    }
}

TEST_F(NewGrave, LooksUpChangesAndDeletes) {
    desk.expect(u"指定されたお墓は登録されていません。確認して下さい"_s, newTitle);
    type(form, u"1"_s);
    add(u"(1, '東', '1', 12, '家', 0)"_s);
    execute(u"UPDATE tbl_ohaka SET tblhak_dnk_nameg = '山田', tblhak_shiyo_stymd = '1998-04-01'"_s);
    for (const auto& [kind, option, marker] : {std::tuple{u"空"_s, &form.frm13_haka3, QString()},
                                               {u"個"_s, &form.frm13_haka1, u"山田家"_s},
                                               {u"？"_s, &form.frm13_haka1, u"山田家"_s},
                                               {u"家"_s, &form.frm13_haka2, u"山田家"_s}}) {
        execute(u"UPDATE tbl_ohaka SET tblhak_bohyo_kbn = '%1'"_s.arg(kind));
        type(form, u"1"_s);
        EXPECT_EQ(form.frm13_haka1.chosen + form.frm13_haka2.chosen + form.frm13_haka3.chosen, 1);
        EXPECT_TRUE(option->chosen);
        EXPECT_EQ(form.frm13_bohyo.text, marker);
    }
    EXPECT_EQ(form.frm13_dnknameg.text, u"山田"_s);
    EXPECT_EQ(context.hak_no, 1);

    const QString held = u"檀家に紐付いたお墓です。紐付けを外して更新しますか？"_s;
    desk.answer(held, newTitle, false);
    press(graves::updateGrave);
    form.開始.clear();
    form.frm13_haka1.chosen = true;
    form.frm13_haka2.chosen = false;
    desk.answer(held, newTitle, true);
    desk.answer(askUpdate, newTitle, true);
    desk.expect(updated, newTitle);
    press(graves::updateGrave);
    EXPECT_EQ(stored(1, u"tblhak_dnk_no, tblhak_bohyo_kbn, tblhak_shiyo_stymd, tblhak_add_ymd"_s),
              u"0,個,1998-04-01,2026-11-22"_s);

    form.frm13_haka_no.text = u"2"_s;
    desk.expect(changed, newTitle);
    press(graves::updateGrave);
    form.frm13_haka_no.text = u"1"_s;
    desk.answer(u"お墓を削除します。内容を確認して下さい。"_s, newTitle, true);
    desk.expect(u"指定されたお墓は削除されました。"_s, newTitle);
    press(graves::deleteGrave);
    EXPECT_EQ(query(u"SELECT count(*) FROM tbl_ohaka"_s), u"0"_s);
}

} // namespace
