// Records brought back from copies and from what deletions took.
#include "calendar/era_registration_rules.h"
#include "desk/bring_back.h"
#include "desk/deletion.h"
#include "desk/numbering.h"
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
#include "support/database_tool.h"
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
        execute(
            u"INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_dnknamek, tblkzk_nameg, tblkzk_zokugara, "
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
            all << query(u"SELECT * FROM %1 ORDER BY %2"_s.arg(QString::fromUtf8(store::Description<Row>::table),
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
        const store::Records records = source.household(number);
        store::Database database;
        return desk::bringBack(database, records, desk, title);
    }
    // The rows that differ as "kind how household name what".
    QString differences(const QString& path, const store::UpgradeSteps& steps = store::upgradeSteps()) {
        store::CopySource source(path, steps);
        QStringList lines;
        const auto all = store::compareWithNow(source, store::Database::registerPath());
        for (const auto& one : *all)
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
void press(void (*open)(Form&, desk::ScreenContext&, desk::Desk&),
           void (*remove)(Form&, desk::ScreenContext&, desk::Desk&), const QString& question, const QString& done,
           const QString& titled, desk::ScreenContext& context, TestDesk& desk) {
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
    family::beginDeathRegister(form, context, desk);
    desk.answer(deleteData, titled, true);
    desk.answer(u"法要等の情報も削除しますか？"_s, titled, memorials);
    desk.answer(u"家族登録は元に戻しますか？"_s, titled, living);
    desk.expect(u"削除処理を終了しました。"_s, titled);
    family::removeDeath(form, context, desk);
}

void erase(desk::ScreenContext& context, TestDesk& desk) {
    static households::檀家登Form form;
    form = {};
    households::beginHousehold(form, context, desk);
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
         press(households::beginHousehold, households::DeleteHousehold, deleteData,
               u"指定された檀家さんは削除されました。"_s, u"檀家 登録"_s, context, desk);
     }},
    {"erasure", erase},
    {"member",
     [](auto& context, auto& desk) {
         context.dnk_nameg = u"山田"_s;
         context.kzk_nameg = u"O'花"_s;
         press(family::beginFamily, family::removeMember, deleteData, u"指定された家族は削除されました。"_s,
               u"家族登録"_s, context, desk);
     }},
    {"entry", [](auto& context, auto& desk) { deleteEntry(context, desk, false, false); }},
    {"entry with memorials", [](auto& context, auto& desk) { deleteEntry(context, desk, true, false); }},
    {"entry with memorials and flag", [](auto& context, auto& desk) { deleteEntry(context, desk, true, true); }},
    {"memorial",
     [](auto& context, auto& desk) {
         context.nameDeceased(u"山田"_s, u"次郎"_s);
         context.hoy_kaiki_yymd = QDate(1850, 4, 17);
         press(memorials::beginDetail, memorials::removeDetail, u"指定された法要を削除します。内容を確認して下さい。"_s,
               u"削除処理を終了しました。"_s, u"法要明細"_s, context, desk);
     }},
    {"extra memorial",
     [](auto& context, auto& desk) {
         static memorials::法要外Form form;
         form = {};
         context.nameDeceased(u"山田"_s, u"次郎"_s);
         memorials::beginExtra(form, context, desk);
         form.実施.era.text = u"嘉永"_s;
         form.実施.year.text = u"4"_s;
         form.実施.month.text = u"2"_s;
         form.実施.day.text = u"28"_s;
         desk.answer(u"指定された法要を削除します。内容を確認して下さい。"_s, u"法要・回忌外登録"_s, true);
         desk.expect(u"削除処理を終了しました。"_s, u"法要・回忌外登録"_s);
         memorials::removeExtra(form, context, desk);
     }},
    {"grave",
     [](auto& context, auto& desk) {
         context.hak_no = 70;
         press(graves::beginRegistration, graves::removeGrave, deleteData, u"指定されたお墓は削除されました。"_s,
               u"お墓 登録"_s, context, desk);
     }},
    {"disposal",
     [](auto& context, auto& desk) {
         context.hak_no = 70;
         press(graves::beginRegistration, graves::disposeGrave, {}, u"指定されたお墓は廃棄処分されました。"_s,
               u"お墓 登録"_s, context, desk);
     }},
    {"era",
     [](auto& context, auto& desk) {
         static calendar::年号登Form form;
         form = {};
         form.fnen_nengo.text = u"昭和"_s;
         calendar::lookUpYears(form, context, desk);
         desk.answer(u"登録内容を削除します。内容を確認して下さい。"_s, u"年号登録"_s, true);
         desk.expect(u"指定された年号は削除されました。"_s, u"年号登録"_s);
         calendar::removeEra(form, context, desk);
     }},
    {"master",
     [](auto& context, auto& desk) {
         static masters::マスター登Form form;
         form = {};
         masters::beginMasters(form, context, desk);
         form.登録NO.text = u"1"_s;
         desk.answer(u"入力内容を削除します。"_s, u"ｺｰﾄﾞﾏｽﾀｰ情報"_s, true);
         desk.expect(u"表示内容は削除されました。"_s, u"ｺｰﾄﾞﾏｽﾀｰ情報"_s);
         masters::removeEntry(form, context, desk);
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
        ASSERT_EQ(desk.offered.size(), 1U);
        // What is entered meanwhile stays.
        execute(u"INSERT INTO tbl_nengo (tblnen_nengo) VALUES ('あと')"_s);
        std::exchange(desk.offered, {}).front().run();
        EXPECT_EQ(desk.informed.last().left(7), u"元に戻しました"_s);
        EXPECT_EQ(query(u"SELECT count(*) FROM tbl_nengo WHERE tblnen_nengo = 'あと'"_s), u"1"_s);
        execute(u"DELETE FROM tbl_nengo WHERE tblnen_nengo = 'あと'"_s);
        EXPECT_EQ(rows(), before);
        EXPECT_EQ(kept(), QStringList()) << "kept though it stands in the register again";
    }
}

TEST_F(BringBack, WhatIsKeptIsItsOwnersAloneAndNoRegister) {
    context.publishHousehold(desk::HouseholdBlock::numbered(7));
    deleteEntry(context, desk, true, true);
    ASSERT_EQ(kept().size(), 1);
    const QString file = store::deletionFolder(store::Database::registerPath()) + u'/' + kept().first();
    constexpr auto others = QFileDevice::ReadGroup | QFileDevice::ReadOther | QFileDevice::ExeOther;
    EXPECT_FALSE((QFile::permissions(file) | QFile::permissions(QFileInfo(file).path())) & others);
    const auto listed = store::deletionsOf(store::Database::registerPath());
    EXPECT_EQ(listed.front().what + listed.front().label, u"削除過去帳 7 次郎 ほか17件"_s);
    EXPECT_EQ(differences(file).count(u"法要 0"_s), 16);
    EXPECT_THROW(store::restore(file, store::Database::registerPath(), {today, QTime(9, 0)}), store::Error);
}

// The newest 200, for 90 days; the one just made stays whatever the clock says.
TEST_F(BringBack, OldDeletionsGo) {
    store::Records records;
    records.add(rowsOf<store::tbl_nengo>().front());
    const auto keep = [&](QDate day) {
        return store::keepDeletion(store::Database::registerPath(), records, u"削除"_s, u"年号"_s, {day, QTime(9, 0)});
    };
    const QString first = keep(today);
    for (int number = 2; number < 210; ++number)
        QFile::copy(first, QString(first).replace(u"00001"_s, u"%1"_s.arg(number, 5, 10, QChar(u'0'))));
    const QString newest = keep(today);
    EXPECT_TRUE(newest.contains(u"-00210-"_s));
    EXPECT_EQ(kept().size(), 200);
    const QString later = keep(today.addDays(91));
    EXPECT_EQ(kept(), QStringList{QFileInfo(later).fileName()});
    keep(today);
    EXPECT_EQ(kept().size(), 2);
}

// A deletion that did not come about, or was kept for nothing, does no harm; one that cannot be kept is asked about.
TEST_F(BringBack, DeletionsThatFailOrCannotBeKept) {
    const QString before = rows();
    context.publishHousehold(desk::HouseholdBlock::numbered(7));
    const QString titled = u"過去帳登録"_s;
    family::過去登Form form;
    context.nameDeceased(u"山田"_s, u"次郎"_s);
    family::beginDeathRegister(form, context, desk);
    ASSERT_TRUE(QDir().mkdir(path(u"backup"_s)));
    QFile blocked(path(u"backup/deleted"_s)); // where the folder should be
    ASSERT_TRUE(blocked.open(QIODevice::WriteOnly));
    for (const bool goOn : {false, true}) {
        desk.answer(deleteData, titled, true);
        desk.answerBeginning(
            u"消すものを残せませんでした。\n\n控えの場所「%1」を作れません。"_s.arg(blocked.fileName()), titled, goOn);
        if (goOn) {
            desk.answer(u"法要等の情報も削除しますか？"_s, titled, true);
            desk.answer(u"家族登録は元に戻しますか？"_s, titled, false);
            desk.expect(u"削除処理を終了しました。"_s, titled);
        }
        family::removeDeath(form, context, desk);
        EXPECT_EQ(rows() == before, !goOn);
        EXPECT_TRUE(desk.offered.empty()) << "nothing is kept that could be taken back";
    }
    blocked.remove();
    store::Database database;
    desk::Deletion deletion(desk, titled, u"削除"_s);
    EXPECT_THROW(deletion.write(database,
                                [&](store::Records& taken) {
                                    taken.add(rowsOf<store::tbl_nengo>().front());
                                    database.engine().exec("ROLLBACK"); // there is nothing to commit
                                    return true;
                                }),
                 std::exception);
    EXPECT_EQ(kept(), QStringList());
}

TEST_F(BringBack, ANumberInUseSinceIsReplacedInEveryRow) {
    const QString file = copy();
    const QString before = rows();
    eraseAll();
    auto other = sampleHousehold(7);
    other.tbldnk_nameg = u"佐藤"_s;
    other.tbldnk_tel = u"999"_s;
    other.tbldnk_toshug = u"佐藤　一"_s;
    {
        store::Database database;
        store::Table(database, store::idxdnk_no).insert(other);
    }
    execute(u"INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_dnknameg, tblkzk_nameg) VALUES (9, '迷子', '太')"_s);
    const QString taken = rows();
    // 9 would be the next one: what is left under it would become this family's.
    const QString question =
        u"番号 7 は、今は別の檀家（佐藤）が使っています。\n「山田」を新しい番号 10 で戻しますか？"_s;
    desk.answer(question, title, false);
    EXPECT_TRUE(householdFrom(file).stopped);
    EXPECT_EQ(rows(), taken);
    desk.answer(question, title, true);
    // Another program takes the number while the question stands: it is asked anew.
    desk.whileAsked = [this] {
        execute(u"INSERT OR IGNORE INTO tbl_danka (tbldnk_no1, tbldnk_nameg) VALUES (10, '先客')"_s);
    };
    desk.answer(QString(question).replace(u"10"_s, u"11"_s), title, true);
    const auto result = householdFrom(file);
    EXPECT_EQ(result.number, 11);
    EXPECT_EQ(result.left, QStringList());
    EXPECT_EQ(result.back.size(), 2 + 2 + 1 + 16 + 1);
    EXPECT_EQ(query(u"SELECT tblno_sumino FROM tbl_hatsuban WHERE tblno_key2 = '檀家'"_s), u"11"_s);
    EXPECT_EQ(query(u"SELECT tbldnk_no1, tbldnk_nameg FROM tbl_danka WHERE tbldnk_no1 = 7"_s), u"7,佐藤"_s);
    // All of it as it was, but for the number.
    execute(u"DELETE FROM tbl_danka WHERE tbldnk_no1 IN (7, 10); DELETE FROM tbl_kazoku WHERE tblkzk_no1 = 9;"
            "UPDATE tbl_danka SET tbldnk_no1 = 7 WHERE tbldnk_no1 = 11;"
            "UPDATE tbl_danka SET tbldnk_oyano = 7 WHERE tbldnk_oyano = 11;"
            "UPDATE tbl_kazoku SET tblkzk_no1 = 7 WHERE tblkzk_no1 = 11;"
            "UPDATE tbl_kakocho SET tblkak_no = 7 WHERE tblkak_no = 11;"
            "UPDATE tbl_hohyo SET tblhoy_no = 7 WHERE tblhoy_no = 11;"
            "UPDATE tbl_ohaka SET tblhak_dnk_no = 7 WHERE tblhak_dnk_no = 11;"
            "UPDATE tbl_hatsuban SET tblno_sumino = 8 WHERE tblno_key2 = '檀家'"_s);
    EXPECT_EQ(rows(), before);
    execute(u"UPDATE tbl_hatsuban SET tblno_sumino = 32767 WHERE tblno_key2 = '檀家';"
            "UPDATE tbl_danka SET tbldnk_tel = '', tbldnk_toshug = '別人' WHERE tbldnk_no1 = 7"_s);
    desk.expect(desk::noNumberLeft, title);
    EXPECT_TRUE(householdFrom(file).stopped);
}

TEST_F(BringBack, WhatStandsNowWinsAndIsListed) {
    const QString file = copy();
    execute(u"DELETE FROM tbl_kakocho; DELETE FROM tbl_hohyo WHERE tblhoy_kaiki_mei = '1周忌';"
            "UPDATE tbl_danka SET tbldnk_tel = '新' WHERE tbldnk_no1 = 7 AND tbldnk_no2 = 0;"
            "UPDATE tbl_kazoku SET tblkzk_tel = '新' WHERE tblkzk_nameg = '次郎'"_s);
    EXPECT_EQ(differences(file),
              u"檀家 2 7 山田（山田　太郎7） 電話：03-1234-56787 → 新、家族 1件、過去帳 1件、法要 1件|"
              "家族 2 7 次郎 電話： → 新|過去帳 0 7 次郎|法要 0 7 次郎 1周忌（1851/02/28）"_s);
    const auto result = householdFrom(file);
    EXPECT_EQ(result.back, (QStringList{u"過去帳 7 次郎"_s, u"法要 7 次郎 1周忌（1851/02/28）"_s}));
    const QString kept = u"：今の記録と違うため、今のものを残しました"_s;
    EXPECT_EQ(result.left, (QStringList{u"檀家 7 山田（山田　太郎7）"_s + kept, u"家族 7 次郎"_s + kept}));
    EXPECT_EQ(query(u"SELECT tblkzk_tel FROM tbl_kazoku WHERE tblkzk_nameg = '次郎'"_s), u"新"_s);
    // A household renamed since is found by its new name, and so is what comes back.
    execute(u"DELETE FROM tbl_kakocho; UPDATE tbl_danka SET tbldnk_tel = '03-1234-56787', tbldnk_nameg = '神田', "
            "tbldnk_namek = 'カンダ' WHERE tbldnk_no1 = 7"_s);
    const QString family = u"SELECT count(*) FROM tbl_kazoku"_s;
    const QString members = query(family);
    householdFrom(file);
    EXPECT_EQ(query(family), members) << "who stands under the former name is there already";
    EXPECT_EQ(query(u"SELECT tblkak_dnknameg, tblkak_dnknamek, tblkak_kanaidx FROM tbl_kakocho"_s),
              u"神田,カンダ,カ"_s);
}

// What belongs to a household comes back to that one only.
TEST_F(BringBack, OneRecordNeedsItsHousehold) {
    const QString file = copy();
    store::CopySource source(file);
    const auto bringOne = [&](store::RecordKind kind, const QString& table, const QString& condition) {
        SQLite::Statement find(source.database().engine(),
                               u"SELECT rowid FROM %1 WHERE %2"_s.arg(table, condition).toStdString());
        find.executeStep();
        const auto records = source.record(kind, find.getColumn(0).getInt64());
        store::Database database;
        return desk::bringBack(database, records, desk, title);
    };
    execute(u"DELETE FROM tbl_kakocho; DELETE FROM tbl_hohyo; "
            "UPDATE tbl_kazoku SET tblkzk_seishikbn = '0' WHERE tblkzk_nameg = '次郎'"_s);
    EXPECT_EQ(bringOne(store::RecordKind::deceased, u"tbl_kakocho"_s, u"1"_s).back.size(), 1 + 16 + 1);
    EXPECT_EQ(differences(file), QString());
    const QString member = u"tblkzk_nameg = '次郎'"_s;
    execute(
        u"DELETE FROM tbl_kazoku WHERE tblkzk_nameg = '次郎';"
        "UPDATE tbl_danka SET tbldnk_nameg = '佐藤', tbldnk_tel = '9', tbldnk_toshug = '一' WHERE tbldnk_no1 = 7"_s);
    EXPECT_EQ(bringOne(store::RecordKind::member, u"tbl_kazoku"_s, member).left,
              QStringList{u"家族 7 次郎：番号 7 は今は別の檀家（佐藤）のものです"_s});
    execute(u"DELETE FROM tbl_danka WHERE tbldnk_no1 = 7"_s);
    EXPECT_EQ(bringOne(store::RecordKind::member, u"tbl_kazoku"_s, member).left,
              QStringList{u"家族 7 次郎：檀家 7（山田）が今の登録簿にありません。先に檀家を戻して下さい"_s});
}

// A grave comes back where nobody has it and nothing but its disposal changed it.
TEST_F(BringBack, AGraveThatIsNoLongerFreeIsListed) {
    const QString file = copy();
    const QString grave = u"お墓 70番（東 1）山田家："_s;
    const QString disposed = u"UPDATE tbl_ohaka SET tblhak_dnk_no = 0, tblhak_haiki_kbn = 1, "
                             "tblhak_haiki_ymd = '2026-11-20' WHERE tblhak_no = 70;"_s;
    const QString another = u"INSERT INTO tbl_ohaka (tblhak_no, tblhak_banchi1, tblhak_banchi2, tblhak_bohyo_kbn) "
                            "VALUES (71, '東', '1', '家');"_s;
    const struct {
        QString since;
        QString reason; // empty: it comes back
    } cases[] = {
        {disposed, {}},
        {u"DELETE FROM tbl_ohaka"_s, {}},
        {disposed + u"UPDATE tbl_ohaka SET tblhak_kanri_ryokin = 9000"_s,
         u"そのあと変更されたため、今のものを残しました"_s},
        {u"UPDATE tbl_ohaka SET tblhak_dnk_no = 8"_s, u"今は檀家 8 のお墓です"_s},
        {disposed + u"UPDATE tbl_ohaka SET tblhak_banchi2 = '2'"_s, u"今は別の区画・番地のお墓です"_s},
        {disposed + another, u"区画・番地には今は別のお墓があります"_s},
        {u"DELETE FROM tbl_ohaka;"_s + another, u"区画・番地には今は別のお墓があります"_s},
    };
    for (const auto& one : cases) {
        execute(one.since);
        const QString since = rows();
        const auto result = householdFrom(file);
        EXPECT_EQ(result.left, one.reason.isEmpty() ? QStringList() : QStringList{grave + one.reason});
        EXPECT_EQ(differences(file).isEmpty(), one.reason.isEmpty());
        EXPECT_EQ(rows() == since, !one.reason.isEmpty());
        store::restore(file, store::Database::registerPath(), {today, QTime(9, 0)});
    }
}

// An older one is upgraded on a copy of its own; what is damaged, missing or something else is told, whatever it is.
TEST_F(BringBack, CopiesOfAnyKindAreReadAndNeverWrittenTo) {
    const QString file = copy();
    makeOlder(file, 3);
    QFile older(file);
    ASSERT_TRUE(older.open(QIODevice::ReadOnly));
    const QByteArray bytes = older.readAll();
    eraseAll();
    EXPECT_EQ(differences(file, olderSteps).count(u"檀家 0 7"_s), 2);
    older.seek(0);
    EXPECT_EQ(older.readAll(), bytes);
    EXPECT_EQ(QDir(path(u"backup"_s)).entryList(QDir::Files).size(), 1) << "the copy of the copy is left";

    const QString good = copy();
    const auto wordsFor = [&](const QByteArray& contents) {
        QFile bad(path(u"bad.mdb"_s));
        EXPECT_TRUE(bad.open(QIODevice::WriteOnly));
        bad.write(contents);
        bad.close();
        try {
            differences(bad.fileName());
        } catch (const std::exception& failure) {
            return store::explain(failure).section(u'。', 0, 0).section(u'」', 1);
        }
        return u"read"_s;
    };
    QFile source(good);
    ASSERT_TRUE(source.open(QIODevice::ReadOnly));
    const QByteArray whole = source.readAll();
    EXPECT_EQ(wordsFor(whole), u"read"_s);
    EXPECT_EQ(wordsFor({}), u"は壊れています"_s);
    EXPECT_EQ(wordsFor(whole.left(50'000)), u"は壊れています"_s);
    for (qsizetype at = 4096; at < whole.size(); at += 4096) {
        QByteArray damaged = whole;
        damaged.replace(at, 4096, QByteArray(4096, '\x7f'));
        EXPECT_TRUE((QStringList{u"は壊れています"_s, u"read"_s}).contains(wordsFor(damaged)));
    }
    EXPECT_EQ(wordsFor(QByteArray(whole).replace(68, 4, "\0\0\0\0", 4)), u"は登録簿の控えではありません"_s);
    try {
        differences(path(u"gone.mdb"_s));
        ADD_FAILURE() << "read";
    } catch (const store::Error& failure) {
        EXPECT_EQ(failure.message(),
                  u"控え「%1」がありません。取り除かれたか、名前が変わりました。一覧から選び直して下さい。"_s.arg(
                      path(u"gone.mdb"_s)));
    }
}

TEST_F(BringBack, TheDatabaseToolDoesTheSame) {
    const QString before = rows();
    const QString file = copy();
    context.publishHousehold(desk::HouseholdBlock::numbered(7));
    deleteEntry(context, desk, true, true);
    const QString deletion = store::deletionFolder(store::Database::registerPath()) + u'/' + kept().first();
    const auto tool = [&](const QStringList& arguments) {
        const auto [status, text] = runDatabaseTool(directory.path(), QStringList{u"bring-back"_s} + arguments);
        return u"%1 %2"_s.arg(status).arg(text.trimmed());
    };
    EXPECT_TRUE(tool({}).contains(u"削除　過去帳 7 次郎 ほか17件"_s));
    EXPECT_TRUE(tool({deletion}).endsWith(u"控えと今の登録簿の違い: 18 件"_s)) << tool({deletion}).toStdString();
    EXPECT_EQ(tool({deletion, u"全部"_s}).section(u'：', 0, 0), u"0 元に戻しました（18件）"_s);
    EXPECT_EQ(rows(), before);
    execute(u"DELETE FROM tbl_kakocho; DELETE FROM tbl_hohyo; DELETE FROM tbl_ohaka"_s);
    EXPECT_EQ(tool({file, u"お墓"_s, u"70"_s}), u"0 元に戻しました（1件）：お墓 70番（東 1）山田家"_s);
    EXPECT_EQ(tool({file, u"7"_s, u"次郎"_s}).section(u'：', 0, 0), u"0 元に戻しました（17件）"_s);
    EXPECT_EQ(rows(), before);
    EXPECT_EQ(tool({file, u"7"_s}), u"0 すべて今の登録簿にあります。何も変えていません。"_s);
    EXPECT_EQ(tool({file, u"99"_s}), u"1 控えにその記録はありません。何も変えていません。"_s);
    for (const QStringList& wrong : {QStringList{file, u"全部"_s}, {file, u"七"_s}, {file, u"7"_s, u"次郎"_s, u"?"_s}})
        EXPECT_EQ(tool(wrong).left(6), u"2 使い方:"_s);
    EXPECT_EQ(tool({u"gone.mdb"_s}).left(1), u"1"_s);
}
