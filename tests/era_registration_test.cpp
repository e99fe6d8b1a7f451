#include "calendar/era_registration_rules.h"

#include "support/register_fixture.h"
#include "support/test_desk.h"

using namespace Qt::StringLiterals;

namespace {

const QString title = u"年号登録"_s;
const QString wrongYear = u"入力された西暦年を確認して下さい。"_s;
const QString eraMissing = u"年号が登録されていません。確認して下さい。"_s;
const QString askChange = u"入力ﾃﾞｰﾀで更新します。内容を確認して下さい。"_s;
const QString askDelete = u"登録内容を削除します。内容を確認して下さい。"_s;

class EraRegistration : public RegisterFixture {
  protected:
    EraRegistration() {
        execute(u"DELETE FROM tbl_nengo; INSERT INTO tbl_nengo VALUES ('A', 1926, 1989), ('B', 1989, 2020)"_s);
    }
    // Runs an operation on "name|first|last"; gives the boxes and their marks afterwards: k black, d dark red, the box
    // that was moved to the front in capitals.
    QString run(void (*operation)(calendar::年号登Form&, desk::ScreenContext&, desk::Desk&), const QString& typed) {
        calendar::年号登Form form;
        desk::Text* const boxes[] = {&form.fnen_nengo, &form.fnen_snen, &form.fnen_enen};
        for (int i = 0; i < 3; ++i)
            boxes[i]->text = typed.section(u'|', i, i);
        operation(form, context, desk);
        QString marks;
        for (const desk::Text* box : boxes) {
            const QChar mark = box->colour == desk::Colour::darkRed ? u'd' : u'k';
            marks += box->first ? mark.toUpper() : mark;
        }
        return boxes[0]->text + u'|' + boxes[1]->text + u'|' + boxes[2]->text + u' ' + marks;
    }
    QString table() { return query(u"SELECT * FROM tbl_nengo ORDER BY 2"_s); }

    TestDesk desk{today};
};

TEST_F(EraRegistration, LooksUpByYearAndByName) {
    const std::pair<QString, QString> years[] = {{u"1989"_s, u"B|1989|2020 kkk"_s},
                                                 {u"１９８８"_s, u"A|1926|1989 kkk"_s},
                                                 {u"1925"_s, u"x|1925|9 kdk"_s},
                                                 {u"２，０２１"_s, u"|2021| kdk"_s},
                                                 {u"abc"_s, u"x|abc|9 kdk"_s}};
    for (const auto& [typed, expected] : years) {
        if (expected.contains(u'd'))
            desk.expect(u"該当する年号がありません。確認して下さい。"_s, title);
        EXPECT_EQ(run(calendar::lookUpEra, u"x|%1|9"_s.arg(typed)), expected);
    }
    EXPECT_EQ(run(calendar::lookUpYears, u"B||x"_s), u"B|1989|2020 kkk"_s);
    desk.expect(eraMissing, title);
    EXPECT_EQ(run(calendar::lookUpYears, u"b|1|2"_s), u"b|1|2 kkk"_s);
}

TEST_F(EraRegistration, ChecksBeforeItRegisters) {
    const QString duplicate = u"この年号はすでに登録されています。確認して下さい。"_s;
    const std::tuple<QString, QString, QString> refused[] = {
        {u"|x|"_s, u"Dkk"_s, u"年号を入力して下さい。"_s}, {u"A|1499|1500"_s, u"Ddk"_s, duplicate},
        {u"C|1499|1500"_s, u"kDk"_s, wrongYear},           {u"C|2051|2051"_s, u"kDd"_s, wrongYear},
        {u"C|2000|1999"_s, u"kkD"_s, wrongYear},           {u"C|ｘ|"_s, u"kDd"_s, wrongYear}};
    for (const auto& [typed, marks, message] : refused) {
        desk.expect(message, title);
        EXPECT_EQ(run(calendar::registerEra, typed), typed + u' ' + marks);
    }
    const QString ask = u"入力ﾃﾞｰﾀで登録します。内容を確認して下さい。"_s;
    desk.answer(ask, title, false);
    run(calendar::registerEra, u"E|2000|2000"_s);
    for (const auto& typed : {u"C|１５００|2050"_s, u"D'|2000|2000"_s}) {
        desk.answer(ask, title, true);
        desk.expect(u"指定された年号は登録されました。"_s, title);
        run(calendar::registerEra, typed);
    }
    EXPECT_EQ(table(), u"C,1500,2050|A,1926,1989|B,1989,2020|D',2000,2000"_s);
}

TEST_F(EraRegistration, ChangesAndDeletesTheEraOfTheName) {
    desk.expect(wrongYear, title);
    EXPECT_EQ(run(calendar::updateEra, u"B|1990|1989"_s), u"B|1990|1989 kkD"_s);
    for (const auto& [operation, question, done, after] :
         {std::tuple{&calendar::updateEra, askChange, u"指定された年号は更新されました。"_s,
                     u"A,1926,1989|B,1990,2030"_s},
          {&calendar::removeEra, askDelete, u"指定された年号は削除されました。"_s, u"A,1926,1989"_s}}) {
        const QString untouched = table();
        desk.expect(eraMissing, title);
        run(operation, u"C|x|x"_s);
        desk.answer(question, title, false);
        run(operation, u"B|1990|２０３０"_s);
        EXPECT_EQ(table(), untouched);
        desk.answer(question, title, true);
        desk.expect(done, title);
        run(operation, u"B|1990|２０３０"_s);
        EXPECT_EQ(table(), after);
    }
}

TEST_F(EraRegistration, ChangesAndDeletesAnEraOnlyAsItWasRead) {
    const QString changed = u"この記録はほかの画面で変更されています。照会し直して下さい"_s;
    const QString duplicate = u"この年号はすでに登録されています。確認して下さい。"_s;
    const QString askRegister = u"入力ﾃﾞｰﾀで登録します。内容を確認して下さい。"_s;
    const QString other = u"UPDATE tbl_nengo SET tblnen_enen = 2021 WHERE tblnen_nengo = 'B'"_s;
    const QString nobody = u"DELETE FROM tbl_nengo WHERE tblnen_nengo = 'B'"_s;
    const QString changedB = u"A,1926,1989|B,1989,2021"_s;
    const auto byName = &calendar::lookUpYears;
    const auto byYear = &calendar::lookUpEra;
    const decltype(byName) nothing = nullptr;
    const struct {
        decltype(byName) shown;
        QString before; // done elsewhere before the button is pressed
        QString name;
        decltype(byName) operation;
        QString question;
        QString meanwhile; // and while the question stands
        QString told, after;
    } cases[] = {
        {byName, other, u"B"_s, calendar::updateEra, askChange, {}, changed, changedB},
        {byName, other, u"B"_s, calendar::removeEra, askDelete, {}, changed, changedB},
        {byYear, other, u"B"_s, calendar::updateEra, askChange, {}, changed, changedB},
        {nothing,
         other,
         u"B"_s,
         calendar::removeEra,
         askDelete,
         {},
         u"指定された年号は削除されました。"_s,
         u"A,1926,1989"_s},
        {nothing, {}, u"B"_s, calendar::updateEra, askChange, other, changed, changedB},
        {nothing, {}, u"B"_s, calendar::removeEra, askDelete, other, changed, changedB},
        {byName,
         other,
         u"A"_s,
         calendar::updateEra,
         askChange,
         {},
         u"指定された年号は更新されました。"_s,
         u"B,1989,2021|A,2000,2001"_s},
        {byName, nobody, u"B"_s, calendar::removeEra, {}, {}, eraMissing, u"A,1926,1989"_s},
        {byName, {}, u"B"_s, calendar::updateEra, askChange, nobody, eraMissing, u"A,1926,1989"_s},
        {nothing,
         {},
         u"C"_s,
         calendar::registerEra,
         askRegister,
         u"INSERT INTO tbl_nengo VALUES ('C', 2030, 2031)"_s,
         duplicate,
         u"A,1926,1989|B,1989,2020|C,2030,2031"_s},
    };
    for (const auto& c : cases) {
        execute(u"DELETE FROM tbl_nengo; INSERT INTO tbl_nengo VALUES ('A', 1926, 1989), ('B', 1989, 2020)"_s);
        calendar::年号登Form form;
        form.fnen_nengo.text = u"B"_s;
        form.fnen_snen.text = u"1990"_s;
        if (c.shown)
            c.shown(form, context, desk);
        execute(c.before);
        form.fnen_nengo.text = c.name;
        form.fnen_snen.text = u"2000"_s;
        form.fnen_enen.text = u"2001"_s;
        desk.whileAsked = [&] { execute(c.meanwhile); };
        desk.lastPreset = desk::Preset::yes;
        if (!c.question.isEmpty())
            desk.answer(c.question, title, true);
        desk.expect(c.told, title);
        c.operation(form, context, desk);
        EXPECT_EQ(desk.lastPreset == desk::Preset::no, c.question == askDelete);
        EXPECT_EQ(table().toStdString(), c.after.toStdString()) << &c - cases;
        EXPECT_EQ(form.fnen_enen.text, u"2001"_s) << "what was typed stays";
    }
}

} // namespace
