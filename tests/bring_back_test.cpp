// Records brought back from copies and from what deletions took.
#include "calendar/era_registration_rules.h"
#include "desk/bring_back.h"
#include "family/death_registration_rules.h"
#include "family/registration_rules.h"
#include "graves/new_grave_rules.h"
#include "graves/registration_rules.h"
#include "households/registration_rules.h"
#include "masters/master_rules.h"
#include "memorials/detail_rules.h"
#include "memorials/extra_rules.h"
#include "memorials/schedule_rules.h"
#include "store/backup.h"
#include "store/comparison.h"
#include "store/copy_source.h"
#include "support/older_register.h"
#include "support/register_fixture.h"
#include "support/test_desk.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

const QString title = u"控え"_s;

// Household 7 with a branch, a member with NULLs, one dead with his fourteen memorials and one without a day, and a
// grave; household 8 of the same name.
class BringBack : public RegisterFixture {
  protected:
    BringBack() {
        store::Database database;
        store::Write write(database);
        store::Table households(database, store::idxdnk_no);
        for (const int number : {7, 8}) {
            auto row = sampleHousehold(static_cast<std::int16_t>(number));
            row.tbldnk_tel += QString::number(number);
            row.tbldnk_toshug += QString::number(number);
            households.insert(row);
        }
        auto branch = sampleHousehold(7);
        branch.tbldnk_no2 = 1;
        branch.tbldnk_oyano = std::int16_t{7};
        households.insert(branch);
        write.commit();
        execute(u"INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_dnknamek, tblkzk_nameg, tblkzk_zokugara, "
                "tblkzk_seishikbn) VALUES (7, '山田', 'ヤマダ', 'O''花', '妻', '0'), "
                "(7, '山田', 'ヤマダ', '次郎', '子', '1'), (8, '山田', 'ヤマダ', '三郎', '子', '0');"
                "INSERT INTO tbl_kakocho (tblkak_no, tblkak_dnknameg, tblkak_dnknamek, tblkak_zokunameg, "
                "tblkak_mei_ymd) VALUES (7, '山田', 'ヤマダ', '次郎', '1850-02-28');"
                "INSERT INTO tbl_ohaka (tblhak_no, tblhak_banchi1, tblhak_banchi2, tblhak_dnk_no, tblhak_dnk_kbn, "
                "tblhak_dnk_nameg, tblhak_dnk_namek, tblhak_bohyo_kbn, tblhak_bohyo_mei, tblhak_kanri_ryokin, "
                "tblhak_biko, tblhak_add_ymd) VALUES (70, '東', '1', 7, '檀家', '山田', 'ヤマダ', '家', '山田家', 5000, "
                "NULL, '2001-01-01');"
                "UPDATE tbl_hatsuban SET tblno_sumino = 8 WHERE tblno_key2 = '檀家'"_s);
        memorials::RegisterSchedule(rowsOf<store::tbl_kakocho>().front(), desk);
        execute(u"INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_danknameg, tblhoy_zokunameg, tblhoy_kaiki_mei) "
                "VALUES (7, '山田', '次郎', '日なし'), (7, '山田', '次郎', '日なし')"_s);
    }

    // Every value of every row.
    QString rows() {
        QStringList all;
        store::forEachTable([&]<class Row>() {
            all << query(u"SELECT * FROM %1 ORDER BY %2"_s.arg(
                QString::fromUtf8(store::Description<Row>::table),
                QString::fromStdString(store::columnList<Row>())));
        });
        return all.join(u'\n');
    }
    QString copy() {
        return store::makeBackup(store::Database::registerPath(), store::BackupKind::byHand, {today, QTime(9, 0)})
            .value();
    }
    desk::BroughtBack householdFrom(const QString& path, std::int16_t number = 7) {
        store::CopySource source(path);
        const store::Records records = store::householdIn(source.database(), number);
        store::Database database;
        return desk::bringBack(database, records, desk, title);
    }
    // The rows that differ as "kind how household name what".
    QString differences(const QString& path, const store::UpgradeSteps& steps = store::upgradeSteps()) {
        store::CopySource source(path, steps);
        QStringList lines;
        for (const auto& one : store::compareWithNow(source, store::Database::registerPath()).value())
            lines << u"%1 %2 %3 %4 %5"_s.arg(store::kindText(one.kind))
                         .arg(static_cast<int>(one.how))
                         .arg(one.household)
                         .arg(one.name, one.what)
                         .trimmed();
        return lines.join(u'|');
    }
    QStringList kept() const {
        return QDir(store::deletionFolder(store::Database::registerPath())).entryList(QDir::Files);
    }
    void eraseAll() {
        execute(u"DELETE FROM tbl_danka WHERE tbldnk_no1 = 7; DELETE FROM tbl_kazoku WHERE tblkzk_no1 = 7; "
                "DELETE FROM tbl_kakocho; DELETE FROM tbl_hohyo; DELETE FROM tbl_ohaka"_s);
    }

    TestDesk desk{today};
};

struct Kind {
    const char* name;
    std::function<void(desk::ScreenContext&, TestDesk&)> remove;
};

template <class Form>
void press(void (*open)(Form&, desk::ScreenContext&, desk::Desk&), void (*remove)(Form&, desk::ScreenContext&, desk::Desk&),
           const QString& question, const QString& done, const QString& titled, desk::ScreenContext& context,
           TestDesk& desk) {
    // The screen stays open until the test has taken the deletion back.
    static Form form;
    form = {};
    open(form, context, desk);
    if (!question.isEmpty())
        desk.answer(question, titled, true);
    desk.expect(done, titled);
    remove(form, context, desk);
}

const QString deleteData = u"ﾃﾞｰﾀを削除します。内容を確認して下さい。"_s;

void deleteEntry(desk::ScreenContext& context, TestDesk& desk, bool memorials, bool living) {
    const QString titled = u"過去帳登録"_s;
    static family::過去登Form form;
    form = {};
    context.nameDeceased(u"山田"_s, u"次郎"_s);
    family::openDeathRegister(form, context, desk);
    desk.answer(deleteData, titled, true);
    desk.answer(u"法要等の情報も削除しますか？"_s, titled, memorials);
    desk.answer(u"家族登録は元に戻しますか？"_s, titled, living);
    desk.expect(u"削除処理を終了しました。"_s, titled);
    family::deleteDeath(form, context, desk);
}

void erase(desk::ScreenContext& context, TestDesk& desk) {
    static households::檀家登Form form;
    form = {};
    households::openHousehold(form, context, desk);
    desk.answer(u"檀家さんに関する全ての情報を抹消します。内容を確認して下さい。"_s, u"檀家 登録"_s, true);
    for (const auto& [question, done] : {std::pair{u"情報を"_s, u"指定された檀家さんは削除されました。"_s},
                                         {u"家族情報を"_s, u"指定された檀家の家族は削除されました。"_s},
                                         {u"法要情報を"_s, u"指定された檀家の法要は削除されました。"_s},
                                         {u"過去帳を"_s, u"指定された檀家の過去帳は削除されました。"_s},
                                         {u"お墓情報を"_s, u"指定されたお墓は廃棄されました。"_s}}) {
        desk.answer(u"檀家さんの%1抹消しますか　？"_s.arg(question), u"檀家の抹消"_s, true);
        desk.expect(done, u"檀家の抹消"_s);
    }
    households::eraseShownHousehold(form, context, desk);
}

const Kind kinds[] = {
    {"household",
     [](auto& context, auto& desk) {
         press(households::openHousehold, households::DeleteHousehold, deleteData,
               u"指定された檀家さんは削除されました。"_s, u"檀家 登録"_s, context, desk);
     }},
    {"erasure", erase},
    {"member",
     [](auto& context, auto& desk) {
         context.dnk_nameg = u"山田"_s;
         context.kzk_nameg = u"O'花"_s;
         press(family::openFamily, family::deleteMember, deleteData, u"指定された家族は削除されました。"_s,
               u"家族登録"_s, context, desk);
     }},
    {"entry", [](auto& context, auto& desk) { deleteEntry(context, desk, false, false); }},
    {"entry with memorials", [](auto& context, auto& desk) { deleteEntry(context, desk, true, false); }},
    {"entry with memorials and flag", [](auto& context, auto& desk) { deleteEntry(context, desk, true, true); }},
    {"memorial",
     [](auto& context, auto& desk) {
         context.nameDeceased(u"山田"_s, u"次郎"_s);
         context.hoy_kaiki_yymd = QDate(1850, 4, 17);
         press(memorials::openDetail, memorials::deleteDetail, u"指定された法要を削除します。内容を確認して下さい。"_s,
               u"削除処理を終了しました。"_s, u"法要明細"_s, context, desk);
     }},
    {"extra memorial",
     [](auto& context, auto& desk) {
         static memorials::法要外Form form;
         form = {};
         context.nameDeceased(u"山田"_s, u"次郎"_s);
         memorials::openExtra(form, context, desk);
         form.実施.western.text = u"1851/02/28"_s;
         desk.answer(u"指定された法要を削除します。内容を確認して下さい。"_s, u"法要・回忌外登録"_s, true);
         desk.expect(u"削除処理を終了しました。"_s, u"法要・回忌外登録"_s);
         memorials::deleteExtra(form, context, desk);
     }},
    {"grave",
     [](auto& context, auto& desk) {
         context.hak_no = 70;
         press(graves::openRegistration, graves::deleteGrave, deleteData, u"指定されたお墓は削除されました。"_s,
               u"お墓 登録"_s, context, desk);
     }},
    {"disposal",
     [](auto& context, auto& desk) {
         context.hak_no = 70;
         press(graves::openRegistration, graves::disposeGrave, {}, u"指定されたお墓は廃棄処分されました。"_s,
               u"お墓 登録"_s, context, desk);
     }},
    {"era",
     [](auto& context, auto& desk) {
         static calendar::年号登Form form;
         form = {};
         form.fnen_nengo.text = u"昭和"_s;
         calendar::showYearsOfEra(form, context, desk);
         desk.answer(u"登録内容を削除します。内容を確認して下さい。"_s, u"年号登録"_s, true);
         desk.expect(u"指定された年号は削除されました。"_s, u"年号登録"_s);
         calendar::deleteEra(form, context, desk);
     }},
    {"master",
     [](auto& context, auto& desk) {
         static masters::マスター登Form form;
         form = {};
         masters::openMasters(form, context, desk);
         form.登録NO.text = u"1"_s;
         desk.answer(u"入力内容を削除します。"_s, u"ｺｰﾄﾞﾏｽﾀｰ情報"_s, true);
         desk.expect(u"表示内容は削除されました。"_s, u"ｺｰﾄﾞﾏｽﾀｰ情報"_s);
         masters::deleteEntry(form, context, desk);
     }},
};

} // namespace

// At once, and from a copy made before.
TEST_F(BringBack, WhatAnyDeletionTookComesBackWhole) {
    const QString before = rows();
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        context.publishHousehold(desk::HouseholdBlock::numbered(7));
        kind.remove(context, desk);
        desk.finish();
        EXPECT_NE(rows(), before);
        ASSERT_EQ(kept().size(), 1);
        ASSERT_TRUE(desk.undo);
        // What is entered meanwhile stays.
        execute(u"INSERT INTO tbl_nengo (tblnen_nengo) VALUES ('あと')"_s);
        desk.undo();
        EXPECT_EQ(desk.informed.last().left(7), u"元に戻しました"_s);
        EXPECT_EQ(query(u"SELECT count(*) FROM tbl_nengo WHERE tblnen_nengo = 'あと'"_s), u"1"_s);
        execute(u"DELETE FROM tbl_nengo WHERE tblnen_nengo = 'あと'"_s);
        EXPECT_EQ(rows(), before);
        EXPECT_EQ(kept(), QStringList()) << "kept though it stands in the register again";
        desk.undo = {};
    }
}

TEST_F(BringBack, WhatIsKeptIsItsOwnersAloneAndDoesNoHarmWhenNothingWasDeleted) {
    deleteEntry(context, desk, true, true);
    context.publishHousehold(desk::HouseholdBlock::numbered(7));
    deleteEntry(context, desk, true, true);
    ASSERT_EQ(kept().size(), 1);
    const QString file = store::deletionFolder(store::Database::registerPath()) + u'/' + kept().first();
    constexpr auto others = QFileDevice::ReadGroup | QFileDevice::ReadOther | QFileDevice::ExeOther;
    EXPECT_FALSE((QFile::permissions(file) | QFile::permissions(QFileInfo(file).path())) & others);
    const auto listed = store::deletionsOf(store::Database::registerPath());
    EXPECT_EQ(listed.front().what + listed.front().label, u"削除家族 7 次郎 ほか17件"_s);
    // No register: it cannot take one's place.
    EXPECT_THROW(store::restore(file, store::Database::registerPath(), {today, QTime(9, 0)}), store::Error);
    EXPECT_EQ(differences(file).count(u"法要 0"_s), 16);
}
