#include "masters/master_rules.h"

#include "support/register_fixture.h"

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
