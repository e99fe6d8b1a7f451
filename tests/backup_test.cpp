#include "desk/safety_copy.h"
#include "households/erasure_rules.h"
#include "store/backup.h"
#include "store/name_copies.h"
#include "support/register_fixture.h"
#include "support/test_desk.h"
#include "transfer/household_transfer_rules.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

const QString withoutCopy = u"\n\n控えのないまま続けますか？"_s;

class Backups : public RegisterFixture {
  protected:
    Backups() { execute(u"INSERT INTO tbl_danka (tbldnk_no1, tbldnk_nameg) VALUES (7, '山田')"_s); }

    static QString registered() { return store::Database::registerPath(); }
    QStringList names(const QString& filter = u"*"_s) const {
        return QDir(store::backupFolder(registered())).entryList({filter}, QDir::Files, QDir::Name);
    }
    // A file of that name in the backup folder.
    void put(const QString& name) {
        QDir(directory.path()).mkpath(u"backup"_s);
        QFile file(path(u"backup/"_s + name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    QString put(QDate day, const QString& kind) {
        const QString name = u"Hoshiren-%1-120000-%2.mdb"_s.arg(day.toString(u"yyyy-MM-dd"), kind);
        put(name);
        return name;
    }
    // The statement's one value, read from a file.
    static QString valueIn(const QString& file, const QString& sql) {
        store::Database database(file);
        return QString::fromStdString(database.engine().execAndGet(sql.toStdString()).getString());
    }
    QString copy(store::BackupKind kind = store::BackupKind::byHand) {
        return store::makeBackup(registered(), kind, {today, QTime(9, 3, 12)}).value();
    }
    // Where the backup folder should be stands a file: no copy can be made.
    void blockBackups() {
        QFile file(path(u"backup"_s));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }

    TestDesk desk{today};
};

} // namespace

TEST_F(Backups, CopyHoldsTheRegisterAndIsItsOwnersAlone) {
    const QString made = copy();
    EXPECT_EQ(names(), QStringList{u"Hoshiren-2026-11-22-090312-manual.mdb"_s});
    EXPECT_EQ(valueIn(made, u"SELECT tbldnk_nameg FROM tbl_danka"_s), u"山田"_s);
    constexpr auto others = QFileDevice::ReadGroup | QFileDevice::WriteGroup | QFileDevice::ExeGroup |
                            QFileDevice::ReadOther | QFileDevice::WriteOther | QFileDevice::ExeOther;
    EXPECT_FALSE(QFile::permissions(made) & others);
    EXPECT_FALSE(QFile::permissions(store::backupFolder(registered())) & others);
    EXPECT_NE(copy(), made) << "a copy of the same second takes another's place";
    EXPECT_EQ(names().size(), 2);
}

TEST_F(Backups, WriteBetweenTwoPartsIsInTheCopy) {
    execute(u"WITH RECURSIVE n(i) AS (SELECT 100 UNION ALL SELECT i + 1 FROM n WHERE i < 20000) "
            "INSERT INTO tbl_danka (tbldnk_no1, tbldnk_bikou) SELECT i, printf('%0500d', i) FROM n"_s);
    store::Copy copy(registered(), path(u"copy.mdb"_s));
    ASSERT_TRUE(copy.advance());
    ASSERT_LT(copy.percent(), 50) << "the register is too small to be copied in parts";
    execute(u"UPDATE tbl_danka SET tbldnk_nameg = '改姓'"_s);
    while (copy.advance()) {
    }
    EXPECT_EQ(valueIn(copy.path(), u"SELECT count(*) FROM tbl_danka WHERE tbldnk_nameg = '改姓'"_s), u"19902"_s);
    EXPECT_EQ(valueIn(copy.path(), u"PRAGMA integrity_check"_s), u"ok"_s);
}

TEST_F(Backups, StoppedOrFailedCopyLeavesNothing) {
    EXPECT_FALSE(
        store::makeBackup(registered(), store::BackupKind::daily, {today, QTime(9, 0)}, [](int) { return false; }));
    EXPECT_EQ(names(), QStringList());
    // A table's first page is gone: what cannot be read is no copy.
    const int page = query(u"SELECT rootpage FROM sqlite_master WHERE name = 'tbl_danka'"_s).toInt();
    QFile file(registered());
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.seek((page - 1) * 4096);
    file.write(QByteArray(4096, '\x7f'));
    file.close();
    EXPECT_THROW(copy(), SQLite::Exception);
    EXPECT_EQ(names(), QStringList());
}

TEST_F(Backups, KeepsFourteenDaysTwelveMonthsAndTenOperations) {
    QStringList kept;
    // Every day of two years: the first of a month stands for it.
    for (QDate day(2025, 1, 1); day < QDate(2026, 11, 22); day = day.addDays(1)) {
        const QString name = put(day, u"daily"_s);
        if (day > QDate(2026, 11, 7) || (day.day() == 1 && day >= QDate(2025, 12, 1)))
            kept << name;
    }
    ASSERT_EQ(kept.size(), 14 + 12);
    for (int i = 1; i <= 13; ++i) {
        const QString name = put(QDate(2024, 1, i), u"before"_s);
        if (i > 3)
            kept << name;
    }
    for (const QString& untouched :
         {put(QDate(2020, 1, 1), u"manual"_s), put(QDate(2020, 1, 2), u"replaced"_s), u"私の控え.mdb"_s,
          u"Other-2020-01-01-120000-daily.mdb"_s, u"Hoshiren-2026-11-22-000000-daily.mdb.part"_s}) {
        put(untouched);
        kept << untouched;
    }
    store::removeOldBackups(registered(), {});
    kept.sort();
    EXPECT_EQ(names(), kept);
    // A clock that was wrong once: today's copy is not the newest, but it has just been made.
    const QString made = QFileInfo(copy(store::BackupKind::beforeOperation)).fileName();
    for (int i = 1; i <= 10; ++i)
        put(QDate(2030, 1, i), u"before"_s);
    store::removeOldBackups(registered(), path(u"backup/"_s + made));
    EXPECT_TRUE(names().contains(made));
}

TEST_F(Backups, ErasureAndEmptyingImportCopyTheRegisterFirst) {
    context.dnk_no1 = 7;
    const QString erasure = u"檀家の抹消"_s;
    const QStringList questions{u"檀家さんの情報を抹消しますか　？"_s, u"檀家さんの家族情報を抹消しますか　？"_s,
                                u"檀家さんの法要情報を抹消しますか　？"_s, u"檀家さんの過去帳を抹消しますか　？"_s,
                                u"檀家さんのお墓情報を抹消しますか　？"_s};
    for (const QString& question : questions)
        desk.answer(question, erasure, false);
    households::EraseHousehold(context, desk);
    EXPECT_EQ(names(), QStringList()) << "a copy before nothing was erased";

    desk.answer(questions[0], erasure, true);
    desk.expect(u"指定された檀家さんは削除されました。"_s, erasure);
    for (int i = 1; i < 5; ++i)
        desk.answer(questions[i], erasure, false);
    households::EraseHousehold(context, desk);
    ASSERT_EQ(names().size(), 1);
    EXPECT_EQ(valueIn(path(u"backup/"_s + names()[0]), u"SELECT count(*) FROM tbl_danka"_s), u"1"_s);

    execute(u"INSERT INTO tbl_danka (tbldnk_no1, tbldnk_nameg) VALUES (8, '原')"_s);
    QFile input(path(u"in.csv"_s));
    ASSERT_TRUE(input.open(QIODevice::WriteOnly));
    desk.answer(u"入力檀家番号は無視し、登録前に一旦全件削除します"_s, u"檀家一括登録"_s, true);
    desk.expect(u"檀家さん 0 件を登録しました"_s, u"檀家一括登録"_s);
    transfer::ImportHouseholds(path(u"in.csv"_s), path(u"err.csv"_s), {}, desk);
    ASSERT_EQ(names(u"*-before.mdb"_s).size(), 2);
    EXPECT_EQ(valueIn(path(u"backup/"_s + names()[1]), u"SELECT tbldnk_nameg FROM tbl_danka"_s), u"原"_s);
    // An import that only adds is no such operation.
    desk.expect(u"檀家さん 0 件を登録しました"_s, u"檀家一括登録"_s);
    transfer::ImportHouseholds(path(u"in.csv"_s), path(u"err.csv"_s), {true, true}, desk);
    EXPECT_EQ(names().size(), 2);
}

TEST_F(Backups, WithoutACopyTheUserDecides) {
    blockBackups();
    const QString reason =
        u"登録簿の控えを作れませんでした。\n\n控えの場所「%1」を作れません。書き込みの許可を確認して下さい。"_s.arg(
            path(u"backup"_s));
    for (const bool goOn : {false, true}) {
        desk.answer(reason + withoutCopy, u"題"_s, goOn);
        EXPECT_EQ(desk::copyBefore(desk, u"題"_s), goOn);
    }
    // Stopped there, nothing is emptied and the error file is not touched.
    QFile input(path(u"in.csv"_s));
    ASSERT_TRUE(input.open(QIODevice::WriteOnly));
    desk.answer(u"入力檀家番号は無視し、登録前に一旦全件削除します"_s, u"檀家一括登録"_s, true);
    desk.answer(reason + withoutCopy, u"檀家一括登録"_s, false);
    EXPECT_FALSE(transfer::ImportHouseholds(path(u"in.csv"_s), path(u"err.csv"_s), {}, desk));
    EXPECT_EQ(query(u"SELECT tbldnk_nameg FROM tbl_danka"_s), u"山田"_s);
    EXPECT_FALSE(QFile::exists(path(u"err.csv"_s)));

    context.dnk_no1 = 7;
    desk.answer(u"檀家さんの情報を抹消しますか　？"_s, u"檀家の抹消"_s, true);
    desk.answer(reason + withoutCopy, u"檀家の抹消"_s, false);
    households::EraseHousehold(context, desk);
    EXPECT_EQ(query(u"SELECT tbldnk_nameg FROM tbl_danka"_s), u"山田"_s);

    QFile::remove(path(u"backup"_s));
    desk.cancelAt = 0;
    desk.answer(u"控えの作成を中止しました。"_s + withoutCopy, u"題"_s, false);
    EXPECT_FALSE(desk::copyBefore(desk, u"題"_s));
    EXPECT_EQ(names(), QStringList());
}

TEST_F(Backups, RestorePutsTheCopyBackAndKeepsWhatWasThere) {
    const QString made = copy();
    execute(u"UPDATE tbl_danka SET tbldnk_nameg = '新'"_s);
    const QString kept = store::restore(made, registered(), {today, QTime(10, 0)});
    EXPECT_EQ(query(u"SELECT tbldnk_nameg FROM tbl_danka"_s), u"山田"_s);
    EXPECT_EQ(valueIn(kept, u"SELECT tbldnk_nameg FROM tbl_danka"_s), u"新"_s);
    EXPECT_TRUE(QFile::exists(made));

    // A broken register with the journal of a broken write: the journal does not get into the restored one.
    for (const QString& name : {registered(), registered() + u"-journal"_s}) {
        QFile file(name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("garbage");
    }
    const QString broken = store::restore(made, registered(), {today, QTime(10, 0, 1)});
    EXPECT_EQ(query(u"SELECT tbldnk_nameg FROM tbl_danka"_s), u"山田"_s);
    EXPECT_FALSE(QFile::exists(registered() + u"-journal"_s));
    QFile file(broken);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "garbage");
    QFile::remove(registered());
    EXPECT_EQ(store::restore(made, registered(), {today, QTime(10, 0)}), QString());
    EXPECT_EQ(query(u"SELECT tbldnk_nameg FROM tbl_danka"_s), u"山田"_s);
}

TEST_F(Backups, RestoreRefusesWhatIsNoRegisterAndARegisterInUse) {
    const QString made = copy();
    QFile other(path(u"other.mdb"_s));
    ASSERT_TRUE(other.open(QIODevice::WriteOnly));
    other.write("no register");
    other.close();
    EXPECT_ANY_THROW(store::restore(other.fileName(), registered(), {today, QTime(10, 0)}));
    EXPECT_THROW(store::restore(path(u"none.mdb"_s), registered(), {today, QTime(10, 0)}), store::Error);
    {
        store::Database database;
        const store::Write write(database);
        EXPECT_THROW(store::restore(made, registered(), {today, QTime(10, 0)}), store::Error);
    }
    EXPECT_EQ(query(u"SELECT tbldnk_nameg FROM tbl_danka"_s), u"山田"_s);
    EXPECT_EQ(QDir(directory.path()).entryList(QDir::Files, QDir::Name),
              (QStringList{u"Hoshiren.mdb"_s, u"other.mdb"_s}));
    EXPECT_EQ(names().size(), 1);
}

TEST_F(Backups, NamesAreBroughtIntoStepWithTheirHouseholds) {
    execute(uR"(
        UPDATE tbl_danka SET tbldnk_namek = 'ヤマダ';
        INSERT INTO tbl_danka (tbldnk_no1, tbldnk_no2, tbldnk_nameg, tbldnk_namek) VALUES
          (8, 0, '原', 'ハラ'), (8, 1, '原田', 'ハラダ');
        INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_no2, tblkzk_dnknameg, tblkzk_dnknamek, tblkzk_nameg) VALUES
          (7, 0, '旧', 'キュウ', '一郎'), (7, 0, '山田', 'ヤマタ', '二郎'), (7, 0, '山田', 'ヤマダ', '三郎'),
          (7, 0, '旧', 'キュウ', '三郎'), (8, 1, '旧', 'キュウ', '分家'), (8, 5, '原', 'ハラ', '本家'),
          (9, 0, '無', 'ム', '無縁');
        INSERT INTO tbl_kakocho (tblkak_no, tblkak_dnknameg, tblkak_zokunameg) VALUES (8, '旧', 'ハナ'), (8, '原田', 'ウメ');
        INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_danknameg, tblhoy_zokunameg, tblhoy_kaiki_mei) VALUES (7, '旧', '祖父', '1周忌');
        INSERT INTO tbl_ohaka (tblhak_no, tblhak_dnk_no, tblhak_dnk_nameg) VALUES (3, 7, '旧'), (4, 0, '');
        UPDATE tbl_kakocho SET tblkak_dnknamek = 'ハラダ' WHERE tblkak_zokunameg = 'ウメ';)"_s);
    store::Database database;
    QStringList found;
    for (const store::NameCopy& copy : store::findNameCopies(database))
        found << u"%1 %2 %3 %4→%5"_s.arg(copy.household).arg(copy.kind, copy.name, copy.copied, copy.own);
    EXPECT_EQ(found,
              (QStringList{u"7 家族 一郎 旧（キュウ）→山田（ヤマダ）"_s, u"7 家族 三郎 旧（キュウ）→山田（ヤマダ）"_s,
                           u"7 家族 二郎 山田（ヤマタ）→山田（ヤマダ）"_s, u"7 法要 祖父 1周忌 旧（）→山田（ヤマダ）"_s,
                           u"7 お墓 3 旧（）→山田（ヤマダ）"_s, u"8 家族 分家 旧（キュウ）→原田（ハラダ）"_s,
                           u"8 過去帳 ハナ 旧（）→"_s}));
    QStringList left;
    for (const store::NameCopy& copy : store::writeNameCopies(database))
        left << copy.name;
    EXPECT_EQ(left, (QStringList{u"三郎"_s, u"ハナ"_s})) << "one would be the other 三郎, one has no sole household";
    EXPECT_EQ(query(u"SELECT tblkzk_nameg, tblkzk_dnknameg, tblkzk_dnknamek, tblkzk_kanaidx FROM tbl_kazoku "
                    "WHERE tblkzk_kanaidx IS NOT NULL ORDER BY 1"_s),
              u"一郎,山田,ヤマダ,ヤ|二郎,山田,ヤマダ,ヤ|分家,原田,ハラダ,ハ"_s);
    EXPECT_EQ(query(u"SELECT (SELECT tblhoy_danknamek FROM tbl_hohyo), (SELECT group_concat(tblhak_dnk_namek) FROM "
                    "tbl_ohaka)"_s),
              u"ヤマダ,ヤマダ"_s);
    EXPECT_EQ(store::findNameCopies(database).size(), 2U);
}
