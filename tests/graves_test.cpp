#include "graves/grave_list_rules.h"
#include "graves/new_grave_rules.h"
#include "graves/picker_rules.h"
#include "graves/registration_rules.h"

#include "support/register_fixture.h"
#include "support/test_desk.h"
#include "values/dates.h"

using namespace Qt::StringLiterals;

namespace {

const QString listTitle = u"お墓一覧"_s;
const QString title = u"お墓 登録"_s;
const QString newTitle = u"お墓 新規登録"_s;
const QString changed = u"登録NOが変更されています。照会からやり直して下さい"_s;
const QString gone = u"指定されたお墓番号を読めませんません。DBの整合性を確認して下さい"_s;
const QString missing = u"指定されたお墓は登録されていません。確認して下さい"_s;
const QString other = u"檀家番号が変更になりました。新しい番号で処理を続けますか？"_s;
const QString notFree = u"区画と番地の変更ができません。入力した内容をﾁｪｯｸしてください"_s;
const QString askDelete = u"ﾃﾞｰﾀを削除します。内容を確認して下さい。"_s;
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
    // A date "era/year/month/day".
    static void set(desk::DateGroup& group, const QString& date) {
        desk::Combo* const boxes[] = {&group.era, &group.year, &group.month, &group.day};
        for (int i = 0; i < 4; ++i)
            boxes[i]->text = date.section(u'/', i, i);
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
    graves::お墓一Form form;
};

TEST_F(GraveList, OffersTheFirstHundredSectionsThatHaveANameInOrder) {
    execute(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 204) INSERT INTO tbl_ohaka "
            "(tblhak_no, tblhak_banchi1) SELECT i, printf('区%03d', (i + 1) / 2) FROM n; "
            "INSERT INTO tbl_ohaka (tblhak_no, tblhak_banchi1) VALUES (500, NULL), (501, ''), (502, 'O''Brien')"_s);
    graves::beginGraveList(form, context, desk);
    const QStringList& offered = form.frm21_block.items;
    ASSERT_EQ(offered.size(), 100);
    EXPECT_EQ(offered[0] + offered[1] + offered[99], u"O'Brien区001区099"_s);
}

TEST_F(GraveList, ShowsEachCellOnlyWhereThereIsSomethingToShow) {
    add(u"(31, '東''1', '1', 12, '家', 1), (32, '東''1', '2', 0, '家', 0), (33, '東''1', NULL, 0, '家', 0)"_s);
    execute(
        u"UPDATE tbl_ohaka SET tblhak_dnk_kbn = '檀家', tblhak_dnk_nameg = '山田', tblhak_shiyo_stymd = '1989-01-07', "
        "tblhak_shiyo_ryokin = 1234567, tblhak_kanri_nxymd = '2027-04-01', tblhak_biko = '角地' WHERE tblhak_no = 31; "
        "UPDATE tbl_ohaka SET tblhak_bohyo_mei = '', tblhak_shiyo_ryokin = NULL, tblhak_kanri_ryokin = 0 "
        "WHERE tblhak_no = 32; UPDATE tbl_ohaka SET tblhak_haiki_ymd = '2008-02-12'"_s);
    choose(u"東'1"_s);
    ASSERT_EQ(form.frm21_tbl.rows.size(), 2u); // a lot that is absent is not listed
    EXPECT_EQ(form.frm21_tbl.rows[0].join(u' '), u"31 東'1 1 12 檀家 山田 山田家 平成1年1月7日 1,234,567 令和9年4月1日 "
                                                 "12,000 平成20年2月12日 角地"_s);
    EXPECT_EQ(form.frm21_tbl.rows[1].join(u' '), u"32 東'1 2        0  "_s);
}

TEST_F(GraveList, OpensTheGraveAndReturnsToTheFirstPage) {
    execute(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 40) INSERT INTO tbl_ohaka "
            "(tblhak_no, tblhak_banchi1, tblhak_banchi2) SELECT i, '東', printf('%03d', i) FROM n"_s);
    add(u"(100, '西', NULL, 0, '家', 0)"_s);
    context.dnk_namek = u"ヤマダ"_s;
    choose(u"東"_s);
    graves::openGrave(form, context, desk); // nothing clicked yet
    graves::openHousehold(form, context, desk);
    form.frm21_tbl.clickedRow = 5;
    form.click(context, desk);
    form.nextPage(desk);
    graves::openGrave(form, context, desk); // the selection outlives the page
    ASSERT_EQ(desk.opened.size(), 1u);
    EXPECT_EQ(context.hak_no, 5);
    EXPECT_EQ(context.dnk_namek, QString());
    desk.opened.back().closed();
    EXPECT_EQ(form.frm21_tbl.cell(1, 2), u"001"_s);
    desk.expect(u"お墓と檀家さんの紐付けができていません"_s, listTitle);
    graves::openHousehold(form, context, desk);
    desk.expect(u"照会の区画にお墓はありません。登録内容を確認して下さい"_s, listTitle);
    choose(u"西"_s);
}

// ---- pickers

template <class Form> QString numbers(const Form& form) {
    QStringList list;
    for (const auto& row : form.frm21_tbl.rows)
        list << row[0];
    return list.join(u' ');
}

TEST_F(Graves, SectionPickerListsFreeGravesOnly) {
    add(u"(99, '東', '035', 12, '家', 0), (100, '東', '036', 12, '空', 0), (101, '東', '037', 0, '家', 0)"_s);
    graves::紐区画Form form;
    form.frm21_block.text = u"東"_s;
    graves::chooseSection(form, context, desk);
    EXPECT_EQ(numbers(form), u"100 101"_s);
}

TEST_F(Graves, MarkerPickerListsEveryNamedGraveInTheOrderOfTheNames) {
    graves::紐墓標Form form;
    desk.expect(u"照会の区画にお墓はありません。登録内容を確認して下さい"_s, u"お墓紐付･墓標"_s);
    graves::beginPicker(form, context, desk);
    execute(u"INSERT INTO tbl_ohaka (tblhak_no, tblhak_bohyo_mei, tblhak_dnk_no) VALUES (1, 'お', 12), (2, '', 0), "
            "(3, '\"', 0), (4, '!', 0), (5, 'O''Brien', 0), (6, '\"\"', 0), (7, NULL, 0)"_s);
    graves::beginPicker(form, context, desk);
    EXPECT_EQ(numbers(form), u"6 5 1"_s);
    EXPECT_EQ(form.frm21_tbl.rows[1].join(u'|'), u"5|||0|||O'Brien"_s);
    execute(u"WITH RECURSIVE n(i) AS (SELECT 10 UNION ALL SELECT i + 1 FROM n WHERE i < 49) INSERT INTO tbl_ohaka "
            "(tblhak_no, tblhak_bohyo_mei) SELECT i, printf('P''%d', i) FROM n"_s);
    graves::beginPicker(form, context, desk);
    form.nextPage(desk);
    EXPECT_TRUE(numbers(form).startsWith(u"37 38 "_s));
    // More graves of one name than a page holds: none is out of reach.
    execute(u"UPDATE tbl_ohaka SET tblhak_bohyo_mei = '先祖代々之墓' WHERE tblhak_no >= 10"_s);
    graves::beginPicker(form, context, desk);
    form.nextPage(desk);
    EXPECT_TRUE(numbers(form).startsWith(u"10 11 "_s));
    form.nextPage(desk);
    EXPECT_TRUE(numbers(form).endsWith(u" 48 49"_s));
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
        graves::beginRegistration(form, context, desk);
    }
    using Rule = void (*)(graves::お墓登Form&, desk::ScreenContext&, desk::Desk&);
    void update() {
        desk.answer(askUpdate, title, true);
        desk.expect(updated, title);
        graves::updateGrave(form, context, desk);
    }
    graves::お墓登Form form;
};

TEST_F(Registration, ShowsHouseholdAndGrave) {
    open(7, 1);
    EXPECT_EQ(form.frm13_no.text + form.frm13_dankag.text, u"7佐藤"_s);
    EXPECT_TRUE(form.frm13_dnkkbn1.chosen);
    EXPECT_EQ(form.frm13_all_bohyo.items, QStringList{u"山田家"_s});
    EXPECT_EQ(form.frm13_banchi1.text + form.frm13_banchi2.text, u"東1"_s);
    EXPECT_EQ(form.開始.era.text + form.開始.year.text + u' ' + form.開始.month.text + u' ' + form.開始.day.text,
              u"平成10 4 1"_s);
    EXPECT_EQ(form.開始.western.text + form.次回.western.text + form.受領.western.text, u"1998/04/012027/04/01"_s);
    EXPECT_EQ(form.墓地使用料.text + u' ' + form.墓地管理費.text, u"0 12,000"_s);

    type(form, u"4"_s); // a vacant plot: no marker name, the kind as it was
    EXPECT_TRUE(form.frm13_haka2.chosen);
    EXPECT_EQ(form.frm13_bohyo.text + form.開始.western.text + form.開始.year.text, QString());

    open(0, 0); // no household: the graves that have none, disposed ones left out
    EXPECT_EQ(form.frm13_no.text, QString());
    EXPECT_EQ(form.frm13_all_bohyo.keys, (std::vector<int>{2, 4}));

    context.publishHousehold(99);
    context.dnk_namek = u"カナ"_s;
    context.dnk_handedOver = true; // a household that a screen hands over is not read
    graves::beginRegistration(form, context, desk);
    EXPECT_EQ(form.frm13_no.text + form.frm13_dankak.text, u"99カナ"_s);
}

TEST_F(Registration, LooksUpAGraveByNumber) {
    const struct {
        QString number;
        std::optional<bool> answer;
        QString shown; // household, of the context too, section and lot
    } cases[] = {{u"２"_s, {}, u"7東2"_s},
                 {u"77"_s, {}, u"7東1"_s},
                 {u"墓"_s, {}, u"7東1"_s},
                 {u"3"_s, false, u"7東1"_s},
                 {u"3"_s, true, u"12東3"_s}};
    for (const auto& [number, answer, shown] : cases) {
        open(7, 1);
        if (answer)
            desk.answer(other, title, *answer);
        else if (shown == u"7東1"_s)
            desk.expect(missing, title);
        type(form, number);
        EXPECT_EQ(form.frm13_no.text + form.frm13_banchi1.text + form.frm13_banchi2.text, shown);
        EXPECT_EQ(form.frm13_no.text, QString::number(context.dnk_no1));
        desk.finish();
    }
    // Its household is gone: the screen stays with the one it shows, and the grave keeps its own.
    open(7, 1);
    execute(u"DELETE FROM tbl_danka WHERE tbldnk_no1 = 12"_s);
    desk.answer(other, title, true);
    desk.expect(u"指定された檀家番号を読めませんません。DBの整合性を確認して下さい"_s, title);
    type(form, u"3"_s);
    EXPECT_EQ(form.frm13_no.text, u"7"_s);
    EXPECT_EQ(context.dnk_no1, 7);
    form.frm13_bohyo.text = u"新"_s;
    update();
    EXPECT_EQ(stored(3, u"tblhak_bohyo_mei, tblhak_dnk_no"_s), u"新,12"_s);
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
    const auto date = [](desk::DateGroup graves::GraveFields::*group) {
        return [group](Form& form) { set(form.*group, u"平成/10/2/30"_s); };
    };
    const auto empty = [](desk::Text graves::GraveFields::*box) {
        return [box](Form& form) { (form.*box).text.clear(); };
    };
    const std::pair<std::function<void(Form&)>, QString> damages[] = {
        // in the order of the checks
        {empty(&Form::frm13_banchi1), u"お墓の場所を入力して下さい"_s},
        {empty(&Form::frm13_banchi2), u"お墓の番地を入力して下さい"_s},
        {empty(&Form::frm13_bohyo), u"墓標名を入力して下さい"_s},
        {date(&Form::開始), u"使用開始日　年月日に正しく入力して下さい"_s},
        {empty(&Form::墓地使用料), u"墓地使用料に正しく入力して下さい"_s},
        {date(&Form::受領), u"使用料受領日　年月日に正しく入力して下さい"_s},
        {empty(&Form::墓地管理費), u"墓地管理費に正しく入力して下さい"_s},
        {date(&Form::管受), u"管理費受領日　年月日に正しく入力して下さい"_s},
        {date(&Form::次回), u"管理費次回請求日　年月日に正しく入力して下さい"_s}};
    for (std::size_t first = 0; first < std::size(damages); ++first) {
        open(7, 1);
        for (std::size_t i = first; i < std::size(damages); ++i)
            damages[i].first(form);
        desk.expect(damages[first].second, title);
        graves::updateGrave(form, context, desk);
        desk.finish();
    }
    open(7, 1);
    form.墓地使用料.text = u"１２，３４５"_s;
    desk.answer(askUpdate, title, false);
    graves::updateGrave(form, context, desk);
    EXPECT_EQ(form.墓地使用料.text, u"12,345"_s);
    EXPECT_EQ(stored(1, u"tblhak_shiyo_ryokin, tblhak_kanri_ryokin"_s), u"0,12000"_s);
}

TEST_F(Registration, BillsAYearAfterTheDateThatStandsThere) {
    const QString none = u"次回請求日か管理費の受領日を正しく入れてから、押して下さい"_s;
    const struct {
        QString next;
        QString received;
        QString billed; // or what the bar says
    } cases[] = {{u"令和/6/2/29"_s, u"令和/8/11/22"_s, u"2025/02/28"_s},
                 {u"平成/31/4/1"_s, {}, u"2020/04/01"_s},
                 {{}, u"令和/8/11/22"_s, u"2027/11/22"_s},
                 {u"令和/8/11/31"_s, u"令和/8/11/22"_s, none}, // what was typed is not passed over
                 {{}, {}, none},
                 {u"令和/7981/1/1"_s, {}, u"次回請求日をこれより先には進められません"_s}};
    for (const auto& c : cases) {
        open(7, 2);
        set(form.次回, c.next);
        set(form.管受, c.received);
        desk.informed.clear();
        graves::billNextYear(form, desk);
        EXPECT_EQ(desk.informed.isEmpty() ? form.次回.western.text : desk.informed.join(u'|'), c.billed)
            << c.next.toStdString();
    }
    graves::receiveToday(form, desk);
    EXPECT_EQ(form.管受.western.text, u"2026/11/22"_s);
}

TEST_F(Registration, KeepsAGraveAtPlacesThatAreItsHouseholdsOrFree) {
    add(u"(20, '西', '1', 12, '家', 0), (21, '西', '1', 0, '家', 1), (22, '西', '2', 12, '空', 0), "
        "(23, '西', '3', 12, '家', 1)"_s);
    const std::pair<QString, bool> cases[] = {
        {u"東1"_s, true},    // own
        {u"東2"_s, true},    // without household
        {u"東3"_s, false},   // of another
        {u"西2"_s, true},    // vacant, naming another
        {u"西3"_s, true},    // disposed, naming another
        {u"西1"_s, false},   // a disposed one beside another's
        {u"西O'9"_s, false}, // nowhere
    };
    for (const auto& [place, free] : cases) {
        SCOPED_TRACE(place.toStdString());
        open(7, 1);
        form.frm13_banchi1.text = place.first(1);
        form.frm13_banchi2.text = place.sliced(1);
        if (free)
            desk.answer(askUpdate, title, false);
        else
            desk.expect(notFree, title);
        graves::updateGrave(form, context, desk);
        desk.finish();
    }
}

TEST_F(Registration, WritesWhatTheScreenShows) {
    open(7, 1);
    type(form, u"5"_s);
    form.frm13_haka2.chosen = false;
    form.frm13_bohyo.text = u"O'Brien"_s;
    set(form.管受, u"令和/8/4/1"_s);
    set(form.次回, u"無/9/4/1"_s);
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
    set(form.次回, u"令和/10/4/1"_s);
    update();
    EXPECT_EQ(stored(1, u"tblhak_shiyo_stymd, tblhak_kanri_nxymd, tblhak_bohyo_kbn"_s), u"1998-04-01,2028-04-01,家"_s);
}

TEST_F(Registration, ActsOnTheGraveInHandOnly) {
    const Rule update = graves::updateGrave, remove = graves::removeGrave, dispose = graves::disposeGrave;
    const QString before = query(u"SELECT * FROM tbl_ohaka"_s);
    open(7, 1);
    desk.expect(u"登録NOを入力して下さい"_s, title);
    form.frm13_haka_no.text.clear();
    update(form, context, desk);
    for (const QString& number : {u"2"_s, u"墓"_s}) {
        form.frm13_haka_no.text = number;
        for (const Rule act : {update, remove, dispose}) {
            desk.expect(changed, title);
            act(form, context, desk);
        }
    }
    // A grave whose look-up was declined is not in hand either.
    desk.answer(other, title, false);
    open(7, 3);
    desk.expect(changed, title);
    dispose(form, context, desk);
    open(7, 1);
    desk.answer(askDelete, title, false);
    remove(form, context, desk);
    EXPECT_EQ(query(u"SELECT * FROM tbl_ohaka"_s), before);

    desk.expect(u"指定されたお墓は廃棄処分されました。"_s, title);
    dispose(form, context, desk);
    EXPECT_EQ(stored(1, u"tblhak_dnk_no, tblhak_haiki_kbn, tblhak_haiki_ymd"_s), u"0,1,2026-11-22"_s);
    desk.answer(askDelete, title, true);
    desk.expect(u"指定されたお墓は削除されました。"_s, title);
    remove(form, context, desk);
    EXPECT_EQ(stored(1, u"1"_s), QString());

    // Gone between look-up and save, its place held by another grave of the household.
    add(u"(30, '東', '1', 7, '家', 0)"_s);
    desk.answer(askUpdate, title, true);
    desk.expect(gone, title);
    update(form, context, desk);
    desk.answer(askDelete, title, true);
    desk.expect(gone, title);
    remove(form, context, desk);
}

// ---- graves without household

class NewGrave : public Graves {
  protected:
    NewGrave() { graves::beginNewGrave(form, context, desk); }
    void fill(const QString& section, const QString& lot) {
        form.frm13_banchi1.text = section;
        form.frm13_banchi2.text = lot;
        form.墓地使用料.text = u"1,000"_s;
        form.墓地管理費.text = u"0"_s;
    }
    void press(void (*rule)(graves::お墓新Form&, desk::ScreenContext&, desk::Desk&)) { rule(form, context, desk); }
    void registerWith(bool yes, const QString& told = updated) {
        desk.answer(u"入力された内容でお墓を登録します。内容を確認して下さい。"_s, newTitle, yes);
        if (yes)
            desk.expect(told, newTitle);
        press(graves::registerGrave);
    }
    QString lastNumber() { return query(u"SELECT tblno_sumino FROM tbl_hatsuban WHERE tblno_key2 = 'お墓'"_s); }
    graves::お墓新Form form;
};

TEST_F(NewGrave, UsesANumberUpOnlyWhenItRegisters) {
    fill(u"東"_s, u"1"_s);
    form.frm13_haka3.chosen = true;
    form.frm13_dnknameg.text = u"（予約）"_s;
    set(form.開始, u"令和/8/1/2"_s);
    registerWith(false);
    registerWith(false);
    EXPECT_EQ(context.hak_no, 1);
    desk.expect(changed, newTitle); // proposed, but not registered
    press(graves::updateGrave);
    desk.expect(changed, newTitle);
    press(graves::removeGrave);
    EXPECT_EQ(lastNumber(), u"0"_s);
    registerWith(true);
    EXPECT_EQ(lastNumber(), u"1"_s);
    const QString first = u"1,東,1,0,,（予約）,,空,,2026-01-02,NULL,1000,0,NULL,NULL,0,NULL,,,2026-11-22"_s;
    EXPECT_EQ(query(u"SELECT * FROM tbl_ohaka"_s), first);

    fill(u"東"_s, u"2"_s);
    execute(u"INSERT INTO tbl_ohaka (tblhak_no) VALUES (2)"_s);
    registerWith(true, u"指定されたお墓番号は既に登録されています"_s);
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
    fill({}, {});
    desk.expect(u"お墓の場所を入力して下さい"_s, newTitle);
    press(graves::registerGrave);
    fill(u"東"_s, {});
    desk.expect(u"お墓の番地を入力して下さい"_s, newTitle);
    press(graves::registerGrave);
    const std::tuple<QString, bool, bool> cases[] = {
        {u"live"_s, false, true}, {u"disposed"_s, true, true}, {u"both"_s, false, true}, {u"none"_s, true, false}};
    for (const auto& [lot, registers, updates] : cases) {
        SCOPED_TRACE(lot.toStdString());
        fill(u"東"_s, lot);
        if (registers) {
            registerWith(false);
        } else {
            desk.expect(u"区画と番地がタブっています。入力した内容をﾁｪｯｸしてください"_s, newTitle);
            press(graves::registerGrave);
        }
        EXPECT_EQ(form.frm13_banchi1.colour == desk::Colour::red, !registers);
        EXPECT_EQ(form.frm13_banchi2.colour == desk::Colour::red, !registers);
        type(form, u"1"_s);
        fill(u"東"_s, lot);
        if (updates)
            desk.answer(askUpdate, newTitle, false);
        else
            desk.expect(u"区画と番地の変更はできません。入力した内容をﾁｪｯｸしてください"_s, newTitle);
        press(graves::updateGrave);
        desk.finish();
    }
    // A number was proposed since the grave was looked up.
    registerWith(false);
    form.frm13_haka_no.text = u"1"_s;
    desk.expect(changed, newTitle);
    press(graves::updateGrave);
}

TEST_F(NewGrave, LooksUpChangesAndDeletes) {
    desk.expect(missing, newTitle);
    type(form, u"1"_s);
    add(u"(1, '東', '1', 12, '家', 0)"_s);
    execute(u"UPDATE tbl_ohaka SET tblhak_dnk_nameg = '山田', tblhak_shiyo_stymd = '1998-04-01'"_s);
    for (const auto& [kind, option] :
         {std::pair{u"空"_s, &form.frm13_haka3}, {u"個"_s, &form.frm13_haka1}, {u"家"_s, &form.frm13_haka2}}) {
        execute(u"UPDATE tbl_ohaka SET tblhak_bohyo_kbn = '%1'"_s.arg(kind));
        type(form, u"1"_s);
        EXPECT_EQ(form.frm13_haka1.chosen + form.frm13_haka2.chosen + form.frm13_haka3.chosen, 1);
        EXPECT_TRUE(option->chosen);
        EXPECT_EQ(form.frm13_bohyo.text, kind == u"空"_s ? QString() : u"山田家"_s);
    }
    EXPECT_EQ(form.frm13_dnknameg.text, u"山田"_s);

    // A new one typed over it is nobody's.
    execute(u"UPDATE tbl_hatsuban SET tblno_sumino = 5 WHERE tblno_key2 = 'お墓'; "
            "UPDATE tbl_ohaka SET tblhak_dnk_namek = 'ヤマダ', tblhak_dnk_kbn = '檀家', tblhak_kanaidx = 'ヤ'"_s);
    for (const auto& [typed, name] : {std::pair{u"山田"_s, QString()}, {u"予約"_s, u"予約"_s}}) {
        type(form, u"1"_s);
        form.frm13_banchi2.text = typed;
        form.frm13_dnknameg.text = typed;
        registerWith(true);
        EXPECT_EQ(
            query(u"SELECT tblhak_dnk_no, tblhak_dnk_nameg FROM tbl_ohaka WHERE tblhak_banchi2 = '%1'"_s.arg(typed)),
            u"0,"_s + name);
    }
    type(form, u"1"_s);
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
    EXPECT_EQ(stored(1, u"tblhak_dnk_nameg || tblhak_dnk_namek || tblhak_dnk_kbn || tblhak_kanaidx"_s), QString());

    desk.answer(u"お墓を削除します。内容を確認して下さい。"_s, newTitle, true);
    desk.expect(u"指定されたお墓は削除されました。"_s, newTitle);
    press(graves::removeGrave);
    EXPECT_EQ(stored(1, u"tblhak_no"_s), QString());
    EXPECT_EQ(context.hak_no, 0);
}

} // namespace
