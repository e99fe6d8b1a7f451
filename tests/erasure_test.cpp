#include "households/erasure_rules.h"
#include "households/registration_rules.h"
#include "support/register_fixture.h"
#include "support/test_desk.h"

using namespace Qt::StringLiterals;

namespace {

const QString title = u"檀家の抹消"_s;

struct Step {
    QString question;
    QString table;
    QString number; // field with the household number
    QString done;
    QString none;
};

const Step steps[] = {
    {u"檀家さんの情報を抹消しますか　？"_s, u"tbl_danka"_s, u"tbldnk_no1"_s, u"指定された檀家さんは削除されました。"_s,
     u"指定された檀家さんの情報を読めません。DBの整合性を確認して下さい"_s},
    {u"檀家さんの家族情報を抹消しますか　？"_s, u"tbl_kazoku"_s, u"tblkzk_no1"_s,
     u"指定された檀家の家族は削除されました。"_s, u"指定された檀家の家族を読めません。DBの整合性を確認して下さい"_s},
    {u"檀家さんの法要情報を抹消しますか　？"_s, u"tbl_hohyo"_s, u"tblhoy_no"_s,
     u"指定された檀家の法要は削除されました。"_s, u"指定された檀家の法要を読めません。DBの整合性を確認して下さい"_s},
    {u"檀家さんの過去帳を抹消しますか　？"_s, u"tbl_kakocho"_s, u"tblkak_no"_s,
     u"指定された檀家の過去帳は削除されました。"_s,
     u"指定された檀家の過去帳を読めません。DBの整合性を確認して下さい"_s},
    {u"檀家さんのお墓情報を抹消しますか　？"_s, u"tbl_ohaka"_s, u"tblhak_dnk_no"_s,
     u"指定されたお墓は廃棄されました。"_s, u"指定された檀家さんのお墓はありません。登録内容を確認して下さい"_s},
};
constexpr std::size_t stepCount = std::size(steps);

class Erasure : public RegisterFixture {
  protected:
    // Household 7 with a branch, and the same rows for households 5 and 9 around it.
    Erasure() {
        for (const char16_t* number : {u"5", u"7", u"9"})
            execute(uR"(
                INSERT INTO tbl_danka (tbldnk_no1, tbldnk_no2, tbldnk_nameg) VALUES (%1, 0, '山田'), (%1, 1, '山田');
                INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_nameg) VALUES
                  (%1, '山田', '一郎'), (%1, '山田', 'O''Hara "妻"');
                INSERT INTO tbl_kakocho (tblkak_no, tblkak_dnknameg, tblkak_zokunameg) VALUES
                  (%1, '山田', 'ハナ'), (%1, '山田', 'ソメ');
                INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_danknameg, tblhoy_zokunameg, tblhoy_kaiki_yymd) VALUES
                  (%1, '山田', 'ハナ', '1550-03-01'), (%1, '旧姓', 'ハナ', '2020-03-01'), (%1, '', 'ソメ', '2300-03-01');
                INSERT INTO tbl_ohaka (tblhak_no, tblhak_banchi1, tblhak_banchi2, tblhak_dnk_no, tblhak_dnk_kbn,
                  tblhak_dnk_nameg, tblhak_dnk_namek, tblhak_bohyo_kbn, tblhak_bohyo_mei, tblhak_shiyo_stymd,
                  tblhak_shiyo_ryokin, tblhak_kanri_ryokin, tblhak_kanri_nxymd, tblhak_biko, tblhak_kanaidx) VALUES
                  (%10, '東', '1', %1, '檀家', '山田', 'ヤマダ', '家', '山田家', '1990-01-01', 30000, 5000, '2027-04-01',
                   '角', 'ヤ'),
                  (%11, '東', '2', %1, '檀家', '山田', 'ヤマダ', '個', '山田家', NULL, NULL, 0, NULL, '', 'ヤ');)"_s
                        .replace(u"%1"_s, QString::fromUtf16(number)));
        context.dnk_no1 = 7;
        context.dnk_nameg = u"山田"_s;
    }
    QString countOf(const Step& step, const QString& number) {
        return query(u"SELECT count(*) FROM %1 WHERE %2 = %3"_s.arg(step.table, step.number, number));
    }
};

} // namespace

TEST_F(Erasure, AsksAllFiveQuestionsAndRunsEachStepOnItsOwnYes) {
    const QStringList before = {u"2"_s, u"2"_s, u"3"_s, u"2"_s, u"2"_s};
    // A No to each question in turn, then only the first Yes, then the rest.
    const std::array<bool, stepCount> runs[] = {
        {false, false, false, false, false}, {true, false, false, false, false}, {false, true, true, true, true}};
    std::array<bool, stepCount> erased{};
    for (const auto& answers : runs) {
        TestDesk desk(today);
        for (std::size_t i = 0; i < stepCount; ++i) {
            desk.answer(steps[i].question, title, answers[i]);
            if (answers[i])
                desk.expect(steps[i].done, title);
            erased[i] = erased[i] || answers[i];
        }
        households::EraseHousehold(context, desk);
        desk.finish();
        for (std::size_t i = 0; i < stepCount; ++i) {
            const QString rest = before[static_cast<qsizetype>(i)];
            EXPECT_EQ(countOf(steps[i], u"7"_s), erased[i] ? u"0"_s : rest) << steps[i].table.toStdString();
            EXPECT_EQ(countOf(steps[i], u"5"_s), rest) << steps[i].table.toStdString();
            EXPECT_EQ(countOf(steps[i], u"9"_s), rest) << steps[i].table.toStdString();
        }
    }
}

TEST_F(Erasure, LandingOnAnotherHouseholdDeletesNothingAndSaysSo) {
    context.dnk_no1 = 6;
    TestDesk desk(today);
    for (const Step& step : steps) {
        desk.answer(step.question, title, true);
        desk.expect(step.none, title);
    }
    households::EraseHousehold(context, desk);
    desk.finish();
    EXPECT_EQ(
        query(u"SELECT (SELECT count(*) FROM tbl_danka), (SELECT count(*) FROM tbl_kazoku), (SELECT count(*) FROM "
              "tbl_kakocho), (SELECT count(*) FROM tbl_hohyo), (SELECT count(*) FROM tbl_ohaka WHERE "
              "tblhak_haiki_kbn = 0)"_s),
        u"6,6,6,9,6"_s);
}

TEST_F(Erasure, FamilyAndDeathRegisterAreReachedFromTheHouseholdsNameOn) {
    execute(u"UPDATE tbl_kazoku SET tblkzk_dnknameg = '一姓' WHERE tblkzk_nameg = '一郎';"
            "INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_nameg) VALUES (7, '神', '後')"_s);
    TestDesk desk(today);
    desk.expect(steps[1].done, title);
    households::EraseFamily(households::ErasedHousehold(context), desk);
    desk.finish();
    // 一 sorts before 山 and is not reached; 神 (U+FA19) behind it is.
    EXPECT_EQ(query(u"SELECT tblkzk_dnknameg, tblkzk_nameg FROM tbl_kazoku WHERE tblkzk_no1 = 7"_s), u"一姓,一郎"_s);

    context.dnk_nameg = u"改姓"_s; // sorts behind every copy
    desk.expect(steps[3].none, title);
    households::EraseDeathRegister(households::ErasedHousehold(context), desk);
    desk.finish();
    EXPECT_EQ(countOf(steps[3], u"7"_s), u"2"_s);
}

TEST_F(Erasure, GravesBecomeVacantAndKeepNumberPlaceAndFees) {
    TestDesk desk(today);
    desk.expect(steps[4].done, title);
    households::DisposeGraves(households::ErasedHousehold(context), desk);
    desk.finish();
    EXPECT_EQ(query(u"SELECT * FROM tbl_ohaka WHERE tblhak_no IN (70, 71) ORDER BY 1"_s),
              u"70,東,1,0,,,,空,,NULL,NULL,30000,5000,NULL,NULL,1,2026-11-22,,,2026-11-22|"
              "71,東,2,0,,,,空,,NULL,NULL,NULL,0,NULL,NULL,1,2026-11-22,,,2026-11-22"_s);
    EXPECT_EQ(query(u"SELECT count(*) FROM tbl_ohaka WHERE tblhak_haiki_kbn = 0"_s), u"4"_s);
    // What is given back belongs to no household and is not given back again.
    desk.expect(steps[4].none, title);
    households::DisposeGraves(households::ErasedHousehold(context), desk);
    desk.finish();
}

TEST_F(Erasure, AStepThatFailsLeavesItsRowsWhole) {
    execute(u"CREATE TRIGGER refuse BEFORE DELETE ON tbl_hohyo WHEN old.tblhoy_kaiki_yymd > '2200' "
            "BEGIN SELECT RAISE(ABORT, 'refused'); END;"
            "CREATE TRIGGER refuse_grave BEFORE INSERT ON tbl_ohaka WHEN new.tblhak_no = 71 "
            "BEGIN SELECT RAISE(ABORT, 'refused'); END"_s);
    TestDesk desk(today);
    const households::ErasedHousehold household(context);
    EXPECT_ANY_THROW(households::EraseMemorials(household, desk));
    EXPECT_ANY_THROW(households::DisposeGraves(household, desk));
    desk.finish();
    EXPECT_EQ(countOf(steps[2], u"7"_s), u"3"_s);
    EXPECT_EQ(countOf(steps[4], u"7"_s), u"2"_s);
}

TEST_F(Erasure, HouseholdScreenGuardsItsNumbersAndAsksFirst) {
    households::檀家登Form form;
    const QString screenTitle = u"檀家 登録"_s;
    const QString changed = u"登録NOが変更されています。照会からやり直して下さい"_s;
    const QString question = u"檀家さんに関する全ての情報を抹消します。内容を確認して下さい。"_s;
    TestDesk desk(today);
    context = {};
    households::openHousehold(form, context, desk);
    desk.expect(u"檀家を照会してから抹消して下さい"_s, screenTitle);
    households::eraseShownHousehold(form, context, desk);

    form.frm01_no.text = u"7"_s;
    desk.expect(changed, screenTitle);
    households::eraseShownHousehold(form, context, desk);
    households::LoadHousehold(form, context, desk);
    form.frm01_eno.text = u"1"_s;
    desk.expect(changed, screenTitle);
    households::eraseShownHousehold(form, context, desk);

    form.frm01_eno.text = u"0"_s;
    desk.answer(question, screenTitle, false);
    households::eraseShownHousehold(form, context, desk);
    EXPECT_EQ(form.frm01_haka_no.items.size(), 2);
    desk.answer(question, screenTitle, true);
    for (const Step& step : steps) {
        desk.answer(step.question, title, true);
        desk.expect(step.done, title);
    }
    households::eraseShownHousehold(form, context, desk);
    desk.finish();
    EXPECT_TRUE(form.frm01_haka_no.items.isEmpty());
}
