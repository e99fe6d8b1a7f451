#include "masters/master_rules.h"

#include "support/register_fixture.h"
#include "support/test_desk.h"

using namespace Qt::StringLiterals;

using MasterLists = RegisterFixture;

TEST_F(MasterLists, AddATypedWordOnlyWhenItEqualsNoEntry) {
    execute(u"DELETE FROM マスタ; INSERT INTO マスタ VALUES (1, 7, '長男の妻', '嫁'), (3, 1, '本堂', '本堂')"_s);
    store::Database database;
    for (const QString& text : {u"嫁"_s, u"長男の妻"_s, u""_s, u"長男"_s, u"長男"_s, u"O'Brien \"x\""_s})
        masters::MST設定(database, masters::Category::続柄, text);
    masters::MST設定(database, masters::Category::地区, u"東"_s);
    EXPECT_EQ(query(u"SELECT * FROM マスタ ORDER BY 1, 2"_s),
              u"1,7,長男の妻,嫁|1,8,長男,長男|1,9,O'Brien \"x\",O'Brien \"x\"|2,1,東,東|3,1,本堂,本堂"_s);
    desk::Combo list;
    list.items = {u"old"_s};
    masters::CMB設定(database, masters::Category::続柄, list);
    EXPECT_EQ(list.items, QStringList({u"嫁"_s, u"長男"_s, u"O'Brien \"x\""_s}));
}

namespace {

const QString title = u"ｺｰﾄﾞﾏｽﾀｰ情報"_s;

class MasterEntries : public RegisterFixture {
  protected:
    MasterEntries() { execute(u"DELETE FROM マスタ"_s); }
    void run(void (*operation)(masters::マスター登Form&, desk::ScreenContext&, desk::Desk&)) {
        operation(form, context, desk);
    }
    QString table() { return query(u"SELECT マ_NO, マ_名称 FROM マスタ ORDER BY 1"_s); }

    masters::マスター登Form form;
    TestDesk desk{today};
};

TEST_F(MasterEntries, ANumberThatNamesOneIsWholeAndAtLeastOne) {
    execute(u"INSERT INTO マスタ VALUES (1, 0, '零', '零'), (1, 2, '妻', '妻')"_s);
    const QString before = table();
    form.登録名称.text = form.登録略称.text = u"夫"_s;
    for (const QString& typed : {u"1.5"_s, u"２．５"_s, u"2.0"_s, u"-5"_s, u"0"_s, u"32768"_s, u""_s}) {
        for (const auto operation : {&masters::saveEntry, &masters::removeEntry}) {
            form.登録NO = {};
            form.登録NO.text = typed;
            desk.expect(u"登録NOに正しく入力してください"_s, title);
            run(operation);
            EXPECT_EQ(form.登録NO.colour, desk::Colour::red) << typed.toStdString();
            EXPECT_TRUE(form.登録NO.keyboard);
            EXPECT_EQ(table(), before) << typed.toStdString();
        }
    }
}

TEST_F(MasterEntries, AreWrittenOnlyAsTheyWereRead) {
    const auto save = &masters::saveEntry;
    const auto remove = &masters::removeEntry;
    const QString changed = u"この記録はほかの画面で変更されています。照会し直して下さい"_s;
    const QString gone = u"指定された名称は登録されていません。"_s;
    const QString saved = u"名称は更新(登録)されました。"_s;
    const QString removed = u"表示内容は削除されました。"_s;
    const QString other = u"UPDATE マスタ SET マ_名称 = '母'"_s;
    const QString nobody = u"DELETE FROM マスタ"_s;
    const struct {
        int shown; // row clicked, 0 none
        QString no;
        decltype(save) operation;
        QString before, meanwhile; // done elsewhere before the button is pressed, and while the question stands
        QString told, after;
    } cases[] = {
        {1, u"2"_s, save, {}, {}, saved, u"2,夫|3,父"_s},
        {1, u"3"_s, save, {}, {}, saved, u"2,妻|3,夫"_s},
        {1, u"2"_s, save, other, {}, changed, u"2,母|3,母"_s},
        {1, u"2"_s, remove, other, {}, changed, u"2,母|3,母"_s},
        {1, u"3"_s, remove, other, {}, removed, u"2,母"_s},
        {0, u"3"_s, save, other, {}, saved, u"2,母|3,夫"_s},
        {0, u"3"_s, save, {}, other, changed, u"2,母|3,母"_s},
        {0, u"3"_s, remove, {}, other, changed, u"2,母|3,母"_s},
        {0, u"3"_s, save, {}, nobody, gone, {}},
        {0, u"3"_s, remove, {}, nobody, gone, {}},
        {1, u"2"_s, save, nobody, {}, saved, u"2,夫"_s},
        {1, u"2"_s, remove, nobody, {}, gone, {}},
        {0, u"４"_s, save, {}, u"INSERT INTO マスタ VALUES (1, 4, '母', '母')"_s, changed, u"2,妻|3,父|4,母"_s},
    };
    for (const auto& c : cases) {
        execute(u"DELETE FROM マスタ; INSERT INTO マスタ VALUES (1, 2, '妻', '妻'), (1, 3, '父', '父')"_s);
        form = {};
        run(masters::beginMasters);
        if (c.shown > 0) {
            form.マスタ一.clickedRow = c.shown;
            run(masters::pickEntry);
        }
        form.登録NO.text = c.no;
        form.登録名称.text = form.登録略称.text = u"夫"_s;
        execute(c.before);
        desk.whileAsked = [&] { execute(c.meanwhile); };
        desk.answer(c.operation == save ? u"入力内容で更新します。"_s : u"入力内容を削除します。"_s, title, true);
        desk.expect(c.told, title);
        run(c.operation);
        EXPECT_EQ(desk.lastPreset, c.operation == save ? desk::Preset::yes : desk::Preset::no);
        EXPECT_EQ(table().toStdString(), c.after.toStdString()) << &c - cases;
        EXPECT_EQ(form.登録名称.text, u"夫"_s) << "what was typed stays";
    }
    // What was saved or deleted here is known as it stands now.
    desk.whileAsked = [] {};
    execute(nobody);
    for (const auto& [operation, question, told, after] :
         {std::tuple{save, u"入力内容で更新します。"_s, saved, u"4,夫"_s},
          {remove, u"入力内容を削除します。"_s, removed, u""_s},
          {save, u"入力内容で更新します。"_s, saved, u"4,夫"_s}}) {
        desk.answer(question, title, true);
        desk.expect(told, title);
        run(operation);
        EXPECT_EQ(table().toStdString(), after.toStdString());
    }
}

} // namespace
