#include "calendar/era_registration_rules.h"

#include "support/register_fixture.h"
#include "support/test_desk.h"

using namespace Qt::StringLiterals;

namespace {

const QString title = u"年号登録"_s;
const QString wrongYear = u"入力された西暦年を確認して下さい。"_s;
const QString duplicate = u"この年号はすでに登録されています。確認して下さい。"_s;
const QString eraMissing = u"年号が登録されていません。確認して下さい。"_s;
const QString noEra = u"該当する年号がありません。確認して下さい。"_s;

class EraRegistration : public RegisterFixture {
  protected:
    EraRegistration() {
        execute(u"DELETE FROM tbl_nengo; INSERT INTO tbl_nengo VALUES ('A', 1926, 1989), ('B', 1989, 2020)"_s);
    }
    void fill(const QString& name, const QString& first, const QString& last) {
        form.fnen_nengo.text = name;
        form.fnen_snen.text = first;
        form.fnen_enen.text = last;
    }
    QString boxes() const { return form.fnen_nengo.text + u'|' + form.fnen_snen.text + u'|' + form.fnen_enen.text; }
    // k black, d dark red; the box that was moved to the front in capitals.
    QString marks() {
        QString text;
        for (desk::Text* box : {&form.fnen_nengo, &form.fnen_snen, &form.fnen_enen}) {
            const QChar mark = box->colour == desk::Colour::darkRed ? u'd' : u'k';
            text += box->first ? mark.toUpper() : mark;
            box->first = false;
        }
        return text;
    }
    QString table() { return query(u"SELECT * FROM tbl_nengo ORDER BY 2"_s); }

    TestDesk desk{today};
    calendar::年号登Form form;
};

TEST_F(EraRegistration, FindsTheEraOfAYear) {
    struct Case {
        QString typed;
        QString boxes;
        bool found;
    };
    const Case cases[] = {{u"1989"_s, u"B|1989|2020"_s, true},   {u"１９８８"_s, u"A|1926|1989"_s, true},
                          {u"1925"_s, u"x|1925|9"_s, false},     {u"2021"_s, u"|2021|"_s, false},
                          {u"２，０３０"_s, u"|2030|"_s, false}, {u""_s, u"x||9"_s, false},
                          {u"abc"_s, u"x|abc|9"_s, false},       {u"40000"_s, u"x|40000|9"_s, false}};
    for (const auto& [typed, expected, found] : cases) {
        fill(u"x"_s, typed, u"9"_s);
        if (!found)
            desk.expect(noEra, title);
        calendar::showEraOfYear(form, context, desk);
        EXPECT_EQ(boxes(), expected);
        EXPECT_EQ(marks(), found ? u"kkk"_s : u"kdk"_s) << typed.toStdString();
    }
    execute(u"DELETE FROM tbl_nengo"_s);
    fill(u"x"_s, u"2000"_s, u"9"_s);
    desk.expect(noEra, title);
    calendar::showEraOfYear(form, context, desk);
}

TEST_F(EraRegistration, ShowsTheYearsOfAnEra) {
    fill(u"B"_s, {}, u"x"_s);
    calendar::showYearsOfEra(form, context, desk);
    EXPECT_EQ(boxes(), u"B|1989|2020"_s);
    fill(u"b"_s, u"1"_s, u"2"_s);
    desk.expect(eraMissing, title);
    calendar::showYearsOfEra(form, context, desk);
    EXPECT_EQ(boxes(), u"b|1|2"_s);
}

TEST_F(EraRegistration, ChecksBeforeItRegisters) {
    struct Case {
        QString name, first, last;
        QString message; // empty: accepted
        QString marks;
    };
    const Case cases[] = {
        {{}, u"x"_s, {}, u"年号を入力して下さい。"_s, u"Dkk"_s}, {u"A"_s, u"1499"_s, u"1500"_s, duplicate, u"Ddk"_s},
        {u"A"_s, u"1500"_s, u"x"_s, duplicate, u"Dkd"_s},        {u"C"_s, u"1499"_s, u"1500"_s, wrongYear, u"kDk"_s},
        {u"C"_s, u"2051"_s, u"2051"_s, wrongYear, u"kDd"_s},     {u"C"_s, u"2000"_s, u"2051"_s, wrongYear, u"kkD"_s},
        {u"C"_s, u"2000"_s, u"1999"_s, wrongYear, u"kkD"_s},     {u"C"_s, u""_s, u"1999"_s, wrongYear, u"kDk"_s},
        {u"C"_s, u"ｘ"_s, u""_s, wrongYear, u"kDd"_s},           {u"C"_s, u"1500"_s, u"40000"_s, wrongYear, u"kkD"_s},
        {u"C"_s, u"１５００"_s, u"2050"_s, {}, u"kkk"_s},        {u"D'"_s, u"2000"_s, u"2000"_s, {}, u"kkk"_s},
    };
    for (const auto& [name, first, last, message, expected] : cases) {
        fill(name, first, last);
        if (!message.isEmpty()) {
            desk.expect(message, title);
            calendar::registerEra(form, context, desk);
        } else {
            const QString before = table();
            desk.answer(u"入力ﾃﾞｰﾀで登録します。内容を確認して下さい。"_s, title, false);
            calendar::registerEra(form, context, desk);
            EXPECT_EQ(table(), before);
            desk.answer(u"入力ﾃﾞｰﾀで登録します。内容を確認して下さい。"_s, title, true);
            desk.expect(u"指定された年号は登録されました。"_s, title);
            calendar::registerEra(form, context, desk);
        }
        EXPECT_EQ(marks(), expected) << name.toStdString() << first.toStdString();
    }
    EXPECT_EQ(table(), u"C,1500,2050|A,1926,1989|B,1989,2020|D',2000,2000"_s);
}

TEST_F(EraRegistration, ChangesAndDeletesTheEraOfTheName) {
    fill(u"C"_s, u"x"_s, u"x"_s);
    for (auto* operation : {calendar::changeEra, calendar::deleteEra}) {
        desk.expect(eraMissing, title);
        operation(form, context, desk);
    }
    EXPECT_EQ(marks(), u"kkk"_s);
    fill(u"B"_s, u"1990"_s, u"1989"_s);
    desk.expect(wrongYear, title);
    calendar::changeEra(form, context, desk);
    EXPECT_EQ(marks(), u"kkD"_s);

    fill(u"B"_s, u"1990"_s, u"２０３０"_s);
    for (const bool yes : {false, true}) {
        desk.answer(u"入力ﾃﾞｰﾀで更新します。内容を確認して下さい。"_s, title, yes);
        if (yes)
            desk.expect(u"指定された年号は更新されました。"_s, title);
        calendar::changeEra(form, context, desk);
        EXPECT_EQ(table(), yes ? u"A,1926,1989|B,1990,2030"_s : u"A,1926,1989|B,1989,2020"_s);
    }
    for (const bool yes : {false, true}) {
        desk.answer(u"登録内容を削除します。内容を確認して下さい。"_s, title, yes);
        if (yes)
            desk.expect(u"指定された年号は削除されました。"_s, title);
        calendar::deleteEra(form, context, desk);
        EXPECT_EQ(table(), yes ? u"A,1926,1989"_s : u"A,1926,1989|B,1990,2030"_s);
    }
}

TEST_F(EraRegistration, AChangeThatFailsLosesNoEra) {
    execute(u"CREATE TRIGGER full BEFORE INSERT ON tbl_nengo BEGIN SELECT RAISE(ABORT, 'disk'); END"_s);
    fill(u"B"_s, u"1990"_s, u"2030"_s);
    desk.answer(u"入力ﾃﾞｰﾀで更新します。内容を確認して下さい。"_s, title, true);
    EXPECT_THROW(calendar::changeEra(form, context, desk), std::exception);
    EXPECT_EQ(table(), u"A,1926,1989|B,1989,2020"_s);
}

} // namespace
