#include "households/erasure_rules.h"
#include "households/registration_rules.h"
#include "support/register_fixture.h"
#include "support/test_desk.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace {

const QString title = u"檀家の抹消"_s;

struct Step {
    QString question;
    QString done;
    QString none;
};

const Step steps[] = {
    {u"情報"_s, u"指定された檀家さんは削除されました。"_s,
     u"指定された檀家さんの情報を読めません。DBの整合性を確認して下さい"_s},
    {u"家族情報"_s, u"指定された檀家の家族は削除されました。"_s,
     u"指定された檀家の家族を読めません。DBの整合性を確認して下さい"_s},
    {u"法要情報"_s, u"指定された檀家の法要は削除されました。"_s,
     u"指定された檀家の法要を読めません。DBの整合性を確認して下さい"_s},
    {u"過去帳"_s, u"指定された檀家の過去帳は削除されました。"_s,
     u"指定された檀家の過去帳を読めません。DBの整合性を確認して下さい"_s},
    {u"お墓情報"_s, u"指定されたお墓は廃棄されました。"_s,
     u"指定された檀家さんのお墓はありません。登録内容を確認して下さい"_s},
};

class Erasure : public RegisterFixture {
  protected:
    // Household 7 with a branch, and the same rows for households 5 and 9 around it.
    Erasure() {
        for (const char16_t* number : {u"5", u"7", u"9"}) {
            execute(uR"(
                INSERT INTO tbl_danka (tbldnk_no1, tbldnk_no2, tbldnk_nameg) VALUES (%1, 0, '山田'), (%1, 1, '山田');
                INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_nameg) VALUES
                  (%1, '山田', '一郎'), (%1, '山田', 'O''Hara "妻"');
                INSERT INTO tbl_kakocho (tblkak_no, tblkak_dnknameg, tblkak_zokunameg) VALUES
                  (%1, '山田', 'ハナ'), (%1, '山田', 'ソメ');
                INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_danknameg, tblhoy_zokunameg, tblhoy_kaiki_yymd) VALUES
                  (%1, '山田', 'ハナ', '1550-03-01'), (%1, '旧姓', 'ハナ', '2020-03-01'), (%1, '', 'ソメ', '2300-03-01');
                INSERT INTO tbl_ohaka VALUES
                  (%10, '東', '1', %1, '檀家', '山田', 'ヤマダ', '家', '山田家', '1990-01-01', NULL, 30000, 5000, NULL,
                   '2027-04-01', 0, NULL, '角', 'ヤ', NULL);
                INSERT INTO tbl_ohaka (tblhak_no, tblhak_dnk_no, tblhak_bohyo_mei) VALUES (%11, %1, '山田家');)"_s
                        .replace(u"%1"_s, QString::fromUtf16(number)));
        }
        context.dnk_no1 = 7;
        context.dnk_nameg = u"山田"_s;
    }
    // How many rows each of the steps would find.
    QString rowsOf(int household) {
        return query(u"SELECT (SELECT count(*) FROM tbl_danka WHERE tbldnk_no1 = %1), "
                     "(SELECT count(*) FROM tbl_kazoku WHERE tblkzk_no1 = %1), "
                     "(SELECT count(*) FROM tbl_hohyo WHERE tblhoy_no = %1), "
                     "(SELECT count(*) FROM tbl_kakocho WHERE tblkak_no = %1), "
                     "(SELECT count(*) FROM tbl_ohaka WHERE tblhak_dnk_no = %1)"_s.arg(household));
    }
    // The five questions, answered by y or n, each yes followed by what the step tells.
    void answer(const QString& answers, QString Step::*told = &Step::done) {
        for (qsizetype i = 0; i < answers.size(); ++i) {
            const bool yes = answers[i] == u'y';
            desk.answer(u"檀家さんの%1を抹消しますか　？"_s.arg(steps[i].question), title, yes);
            if (yes)
                desk.expect(steps[i].*told, title);
        }
    }

    TestDesk desk{today};
};

} // namespace

TEST_F(Erasure, AsksAllFiveQuestionsAndRunsEachStepOnItsOwnYes) {
    const QDir backups(path(u"backup"_s));
    qsizetype copies = 0; // one before each run that erases
    for (const auto& [answers, left] :
         {std::pair{u"nnnnn"_s, u"2,2,3,2,2"_s}, {u"ynnnn"_s, u"0,2,3,2,2"_s}, {u"nyyyy"_s, u"0,0,0,0,0"_s}}) {
        answer(answers);
        households::EraseHousehold(context, desk);
        EXPECT_EQ(rowsOf(7), left);
        EXPECT_EQ(backups.entryList(QDir::Files).size(), copies++);
    }
    // The number that follows: nothing of the household there is touched.
    context.dnk_no1 = 8;
    answer(u"yyyyy"_s, &Step::none);
    households::EraseHousehold(context, desk);
    EXPECT_EQ(rowsOf(5) + u'|' + rowsOf(9), u"2,2,3,2,2|2,2,3,2,2"_s);
}

// A memorial that has no day lies in the middle of the household's; a step that fails is told, and the next is asked.
TEST_F(Erasure, GoesOnPastWhatHasNoDayAndWhatFails) {
    execute(u"INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_danknameg, tblhoy_zokunameg) VALUES (7, '山田', 'ハナ'); "
            "ALTER TABLE tbl_kazoku RENAME TO away"_s);
    for (const Step& step : steps) {
        desk.answer(u"檀家さんの%1を抹消しますか　？"_s.arg(step.question), title, true);
        if (&step == &steps[0])
            desk.answerBeginning(u"登録簿の控えを作れませんでした。"_s, title, true);
        if (&step == &steps[1])
            desk.expectBeginning(u"登録簿ファイルに必要な表がありません。"_s, title);
        else
            desk.expect(step.done, title);
    }
    households::EraseHousehold(context, desk);
    execute(u"ALTER TABLE away RENAME TO tbl_kazoku"_s);
    EXPECT_EQ(rowsOf(7) + u'|' + rowsOf(9), u"0,2,0,0,0|2,2,3,2,2"_s);
}

TEST_F(Erasure, WithoutACopyTheUserCanStop) {
    ASSERT_TRUE(QFile::copy(path(u"Hoshiren.mdb"_s), path(u"backup"_s))); // where the folder should be
    desk.answer(u"檀家さんの情報を抹消しますか　？"_s, title, true);
    desk.answer(u"登録簿の控えを作れませんでした。\n\n控えの場所「%1」を作れません。書き込みの許可を確認して下さい。"
                "\n\n控えのないまま続けますか？"_s.arg(path(u"backup"_s)),
                title, false);
    households::EraseHousehold(context, desk);
    EXPECT_EQ(rowsOf(7), u"2,2,3,2,2"_s);
}

TEST_F(Erasure, FamilyAndDeathRegisterAreReachedFromTheHouseholdsNameOn) {
    execute(u"UPDATE tbl_kazoku SET tblkzk_dnknameg = '一姓' WHERE tblkzk_nameg = '一郎';"
            "INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_nameg) VALUES (7, '神', '後')"_s);
    desk.expect(steps[1].done, title);
    households::EraseFamily(households::ErasedHousehold(context), desk);
    // 一 sorts before 山 and is not reached; 神 (U+FA19) behind it is.
    EXPECT_EQ(query(u"SELECT tblkzk_dnknameg, tblkzk_nameg FROM tbl_kazoku WHERE tblkzk_no1 = 7"_s), u"一姓,一郎"_s);

    context.dnk_nameg = u"改姓"_s; // sorts behind every copy
    desk.expect(steps[3].none, title);
    households::EraseDeathRegister(households::ErasedHousehold(context), desk);
    EXPECT_EQ(rowsOf(7), u"2,1,3,2,2"_s);
}

TEST_F(Erasure, GravesBecomeVacantAndKeepNumberPlaceAndFees) {
    desk.expect(steps[4].done, title);
    households::DisposeGraves(households::ErasedHousehold(context), desk);
    EXPECT_EQ(query(u"SELECT * FROM tbl_ohaka WHERE tblhak_no = 70"_s),
              u"70,東,1,0,,,,空,,NULL,NULL,30000,5000,NULL,NULL,1,2026-11-22,,,2026-11-22"_s);
    EXPECT_EQ(query(u"SELECT tblhak_no FROM tbl_ohaka WHERE tblhak_haiki_kbn = 1"_s), u"70|71"_s);
}

TEST_F(Erasure, HouseholdScreenAsksFirst) {
    households::檀家登Form form;
    const QString screenTitle = u"檀家 登録"_s;
    context.dnk_no1 = 0;
    households::beginHousehold(form, context, desk);
    desk.expect(u"檀家を照会してから抹消して下さい"_s, screenTitle);
    households::eraseShownHousehold(form, context, desk);
    form.frm01_no.text = u"7"_s;
    households::LoadHousehold(form, context, desk);
    for (const bool yes : {false, true}) {
        desk.answer(u"檀家さんに関する全ての情報を抹消します。内容を確認して下さい。"_s, screenTitle, yes);
        answer(yes ? u"yyyyy"_s : QString());
        households::eraseShownHousehold(form, context, desk);
        EXPECT_EQ(form.frm01_haka_no.items.size(), yes ? 0 : 2);
    }
}
