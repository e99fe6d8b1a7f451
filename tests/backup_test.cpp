#include "desk/safety_copy.h"
#include "store/backup.h"
#include "store/name_copies.h"
#include "support/register_fixture.h"
#include "support/test_desk.h"
#include "transfer/household_transfer_rules.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

const QString importing = u"檀家一括登録"_s;
const QString withoutCopy = u"\n\n控えのないまま続けますか？"_s;

class Backups : public RegisterFixture {
  protected:
    Backups() { execute(u"INSERT INTO tbl_danka (tbldnk_no1, tbldnk_nameg) VALUES (7, '山田')"_s); }

    static QString registered() { return store::Database::registerPath(); }
    QStringList names() const { return QDir(path(u"backup"_s)).entryList(QDir::Files, QDir::Name); }
    // A file of that name in the register's folder.
    QString put(const QString& name, const QByteArray& contents = {}) const {
        QDir(directory.path()).mkpath(QFileInfo(name).path());
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
        return file.fileName();
    }
    QString put(QDate day, const QString& kind) const {
        QString name = u"Hoshiren-%1-120000-%2.mdb"_s.arg(day.toString(u"yyyy-MM-dd"), kind);
        put(u"backup/"_s + name);
        return name;
    }
    static QByteArray contents(const QString& name) {
        QFile file(name);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }
    // The statement's one value, read from a file.
    static QString valueIn(const QString& file, const QString& sql) {
        store::Database database(file);
        return QString::fromStdString(database.engine().execAndGet(sql.toStdString()).getString());
    }
    QString copy(store::BackupKind kind = store::BackupKind::byHand) {
        return store::makeBackup(registered(), kind, {today, QTime(9, 3, 12)}).value();
    }
    QString household() { return query(u"SELECT tbldnk_nameg FROM tbl_danka"_s); }
    // The import that empties the register, with what the desk shows behind the user's yes.
    bool import(const std::function<void()>& shows) {
        desk.answer(u"入力檀家番号は無視し、登録前に一旦全件削除します"_s, importing, true);
        shows();
        return transfer::ImportHouseholds(put(u"in.csv"_s), path(u"err.csv"_s), {}, desk).has_value();
    }
    TestDesk desk{today};
};

} // namespace

TEST_F(Backups, CopyHoldsTheRegisterAndIsItsOwnersAlone) {
    const QString made = copy();
    EXPECT_EQ(names(), QStringList{u"Hoshiren-2026-11-22-090312-00001-manual.mdb"_s});
    EXPECT_EQ(valueIn(made, u"SELECT tbldnk_nameg FROM tbl_danka"_s), u"山田"_s);
    constexpr auto others = QFileDevice::ReadGroup | QFileDevice::ReadOther | QFileDevice::ExeOther;
    EXPECT_FALSE((QFile::permissions(made) | QFile::permissions(path(u"backup"_s))) & others);
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
    const QString made = copy.draft().path();
    EXPECT_EQ(valueIn(made, u"SELECT count(*) FROM tbl_danka WHERE tbldnk_nameg = '改姓'"_s), u"19902"_s);
    EXPECT_EQ(valueIn(made, u"PRAGMA integrity_check"_s), u"ok"_s);
}

TEST_F(Backups, NothingDamagedIsACopyNorRestored) {
    execute(u"WITH RECURSIVE n(i) AS (SELECT 100 UNION ALL SELECT i + 1 FROM n WHERE i < 200) INSERT INTO tbl_danka "
            "(tbldnk_no1, tbldnk_bikou) SELECT i, printf('%0200d', i) FROM n"_s);
    const QByteArray good = contents(registered());
    constexpr qsizetype page = 4096;
    QList<QByteArray> damaged;
    for (qsizetype at = 0; at < good.size(); at += page) {
        damaged << good << good;
        damaged[damaged.size() - 2].replace(at, page, QByteArray(page, '\x7f'));
        damaged.last().replace(at, page, QByteArray(page, '\0'));
        for (const qsizetype size : {at, at + 1, at + page - 1})
            damaged << good.left(size);
    }
    // Only a text is hit, which the engine does not look into.
    damaged << good;
    damaged.last().replace(good.indexOf("0000000"), 2, "\xFF\xFE");
    for (const QByteArray& bytes : damaged) {
        put(u"Hoshiren.mdb"_s, bytes);
        EXPECT_THROW(copy(), store::RegisterFault);
        put(u"Hoshiren.mdb"_s, good);
        EXPECT_THROW(store::restore(put(u"copy.mdb"_s, bytes), registered(), {today, QTime(10, 0)}), store::Error);
        ASSERT_FALSE(HasFailure()) << damaged.indexOf(bytes) / 5 << ' ' << damaged.indexOf(bytes) % 5;
    }
    EXPECT_EQ(names(), QStringList());
    EXPECT_EQ(contents(registered()), good);
    // Rows that are all there do not make up for what the register's rules look for.
    execute(u"DROP INDEX idxkzk_no"_s);
    EXPECT_THROW(copy(), store::RegisterFault);
    EXPECT_EQ(names(), QStringList());
}

TEST_F(Backups, ClocksDoNotMixCopiesUp) {
    const auto daily = [this](QDate day) {
        execute(u"UPDATE tbl_danka SET tbldnk_tel = ifnull(tbldnk_tel, 0) + 1"_s);
        return store::makeBackup(registered(), store::BackupKind::daily, {day, QTime(9, 0)}).value();
    };
    const QString old = put(today.addDays(-1), u"daily"_s);
    // A clock that always says the same, until it jumps ahead for a month and is set right.
    for (int start = 0; start < 3; ++start)
        EXPECT_NE(daily(today), QString());
    for (int day = 0; day < 30; ++day)
        daily(today.addDays(365 + day));
    const QString corrected = daily(today.addDays(1));
    const auto backups = store::backupsOf(registered());
    EXPECT_EQ(backups.front().path, corrected);
    EXPECT_EQ(backups.front().number, 34);
    EXPECT_EQ(QFileInfo(backups.back().path).fileName(), old);
    // Nothing has changed since: this day has its copy, the next one has none.
    const auto unchanged = [this](int days) {
        return store::makeBackup(registered(), store::BackupKind::daily, {today.addDays(days), QTime(9, 5)}).value();
    };
    EXPECT_EQ(unchanged(1), QString());
    EXPECT_NE(unchanged(2), QString());
    EXPECT_EQ(store::backupsOf(registered()).front().number, 35);
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
    kept << put(QDate(2020, 1, 1), u"manual"_s) << put(QDate(2020, 1, 2), u"replaced"_s);
    for (const QString& untouched :
         {u"私の控え.mdb"_s, u"Other-2020-01-01-120000-daily.mdb"_s, u"Hoshiren-2026-11-22-000000-daily.mdb.part"_s}) {
        put(u"backup/"_s + untouched);
        kept << untouched;
    }
    // Of the drafts those that nobody writes any more.
    const QString draft = u"hoshiren-0123456789abcdef0123456789abcde%1.draft"_s;
    for (const auto& [number, minutes] : {std::pair(1, 59), {2, 61}}) {
        QFile file(put(u"backup/"_s + draft.arg(number)));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        file.setFileTime(QDateTime::currentDateTime().addSecs(qint64{-60} * minutes),
                         QFileDevice::FileModificationTime);
    }
    kept << draft.arg(1);
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

TEST_F(Backups, AnImportCopiesARegisterThatIsNotEmptyFirst) {
    const auto done = [this] { desk.expect(u"檀家さん 0 件を登録しました"_s, importing); };
    EXPECT_TRUE(import(done));
    ASSERT_EQ(names().filter(u"-before.mdb"_s).size(), 1);
    EXPECT_EQ(valueIn(path(u"backup/"_s + names()[0]), u"SELECT tbldnk_nameg FROM tbl_danka"_s), u"山田"_s);
    for (const auto& [there, copies] : {std::pair{u""_s, 1}, {u"INSERT INTO tbl_ohaka (tblhak_no) VALUES (1)"_s, 2}}) {
        execute(there);
        done();
        transfer::ImportHouseholds(path(u"in.csv"_s), path(u"err.csv"_s), {true, true}, desk);
        EXPECT_EQ(names().size(), copies);
    }
}

TEST_F(Backups, WithoutACopyTheUserDecides) {
    put(u"backup"_s); // where the folder should be
    const QString question =
        u"登録簿の控えを作れませんでした。\n\n控えの場所「%1」を作れません。書き込みの許可を確認して下さい。"_s.arg(
            path(u"backup"_s)) +
        withoutCopy;
    desk.answer(question, u"題"_s, true);
    EXPECT_TRUE(desk::copyBefore(desk, u"題"_s));
    // Stopped there, nothing is emptied and the error file is not touched.
    EXPECT_FALSE(import([&] { desk.answer(question, importing, false); }));
    EXPECT_FALSE(QFile::exists(path(u"err.csv"_s)));
    EXPECT_EQ(household(), u"山田"_s);

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
    EXPECT_EQ(household(), u"山田"_s);
    EXPECT_EQ(valueIn(kept, u"SELECT tbldnk_nameg FROM tbl_danka"_s), u"新"_s);
    EXPECT_TRUE(QFile::exists(made));

    // A broken register with the journal of a broken write: the journal does not get into the restored one.
    put(u"Hoshiren.mdb-journal"_s, "garbage");
    QFile broken(store::restore(made, put(u"Hoshiren.mdb"_s, "garbage"), {today, QTime(10, 0, 1)}));
    EXPECT_FALSE(QFile::exists(registered() + u"-journal"_s));
    EXPECT_EQ(household(), u"山田"_s);
    ASSERT_TRUE(broken.open(QIODevice::ReadOnly));
    EXPECT_EQ(broken.readAll(), "garbage");
    EXPECT_THROW(store::restore(registered(), registered(), {today, QTime(10, 0)}), store::Error);
    EXPECT_EQ(household(), u"山田"_s);
    QFile::remove(registered());
    EXPECT_ANY_THROW(store::restore(put(u"other.mdb"_s, "no register"), registered(), {today, QTime(10, 0)}));
    EXPECT_EQ(QDir(directory.path()).entryList(QDir::Files), QStringList{u"other.mdb"_s});
    EXPECT_EQ(store::restore(made, registered(), {today, QTime(10, 0)}), QString());
    EXPECT_EQ(household(), u"山田"_s);
}

TEST_F(Backups, NoPipeIsOpened) {
    const QString pipe = path(u"pipe.mdb"_s);
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0644), 0);
    const QString made = copy();
    EXPECT_THROW(store::Database{pipe}, store::Error);
    EXPECT_THROW(store::bringBackToOneFile(pipe), store::Error);
    EXPECT_THROW(store::restore(pipe, registered(), {today, QTime(10, 0)}), store::Error);
    EXPECT_THROW(store::restore(made, pipe, {today, QTime(10, 0)}), store::Error);
    EXPECT_TRUE(QFile::permissions(pipe) & QFile::ReadOther);
    EXPECT_EQ(QDir(directory.path()).entryList(QDir::Files | QDir::System),
              (QStringList{u"Hoshiren.mdb"_s, u"pipe.mdb"_s}));
}

TEST_F(Backups, RestoreIsSafeFromTheJournalOfARegisterThatIsGone) {
    const QString made = copy();
    execute(u"UPDATE tbl_danka SET tbldnk_nameg = '新'"_s);
    const QString journal = registered() + u"-journal"_s;
    {
        store::Database database;
        database.engine().exec("PRAGMA cache_size = 1");
        store::Write unfinished(database);
        database.engine().exec("UPDATE tbl_danka SET tbldnk_nameg = '途中';"
                               "UPDATE マスタ SET マ_名称 = マ_名称 || hex(zeroblob(20000))");
        ASSERT_TRUE(QFile::copy(journal, path(u"journal"_s)));
    }
    QFile::remove(registered());
    QFile::rename(path(u"journal"_s), journal);
    EXPECT_EQ(store::restore(made, registered(), {today, QTime(10, 0)}), QString());
    EXPECT_EQ(household(), u"山田"_s);
    EXPECT_EQ(query(u"PRAGMA integrity_check"_s), u"ok"_s);
}

TEST_F(Backups, NamesAreBroughtIntoStepWithTheirHouseholds) {
    execute(uR"(
        UPDATE tbl_danka SET tbldnk_namek = 'ヤマダ';
        INSERT INTO tbl_danka (tbldnk_no1, tbldnk_no2, tbldnk_nameg, tbldnk_namek) VALUES
          (8, 0, '原', 'ハラ'), (8, 1, '原田', 'ハラダ');
        INSERT INTO tbl_kazoku (tblkzk_no1, tblkzk_no2, tblkzk_dnknameg, tblkzk_dnknamek, tblkzk_nameg) VALUES
          (7, 0, '旧', 'キュウ', '一郎'), (7, 0, '山田', 'ヤマタ', '二郎'), (7, 0, '山田', 'ヤマダ', '三郎'),
          (7, 0, '旧', 'キュウ', '三郎'), (8, 1, '旧', 'キュウ', '分家'), (8, 0, '旧', 'キュウ', '新家'), (8, 5, '原', 'ハラ', '本家'),
          (9, 0, '無', 'ム', '無縁');
        INSERT INTO tbl_kakocho (tblkak_no, tblkak_dnknameg, tblkak_zokunameg) VALUES (8, '旧', 'ハナ'), (8, '原田', 'ウメ');
        INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_danknameg, tblhoy_zokunameg, tblhoy_kaiki_mei) VALUES (7, '旧', '祖父', '1周忌');
        INSERT INTO tbl_ohaka (tblhak_no, tblhak_dnk_no, tblhak_dnk_nameg) VALUES (3, 7, '旧'), (4, 0, '');
        UPDATE tbl_kakocho SET tblkak_dnknamek = 'ハラダ' WHERE tblkak_zokunameg = 'ウメ';)"_s);
    store::Database database;
    const auto lines = [](const std::vector<store::NameCopy>& copies) {
        QStringList lines;
        for (const store::NameCopy& copy : copies)
            lines << u"%1 %2 %3 %4→%5"_s.arg(copy.household).arg(copy.kind, copy.name, copy.copied, copy.own);
        return lines;
    };
    // One would be the other 三郎, two have no sole household: 0 is the branch of every member entered on a screen.
    const QStringList left{u"7 家族 三郎 旧（キュウ）→山田（ヤマダ）"_s, u"8 家族 新家 旧（キュウ）→"_s,
                           u"8 過去帳 ハナ 旧（）→"_s};
    EXPECT_EQ(lines(store::findNameCopies(database)),
              (QStringList{u"7 家族 一郎 旧（キュウ）→山田（ヤマダ）"_s, left[0],
                           u"7 家族 二郎 山田（ヤマタ）→山田（ヤマダ）"_s, u"7 法要 祖父 1周忌 旧（）→山田（ヤマダ）"_s,
                           u"7 お墓 3 旧（）→山田（ヤマダ）"_s, u"8 家族 分家 旧（キュウ）→原田（ハラダ）"_s, left[1],
                           left[2]}));
    EXPECT_EQ(lines(store::writeNameCopies(database)), left);
    EXPECT_EQ(query(u"SELECT tblkzk_nameg, tblkzk_dnknameg, tblkzk_dnknamek, tblkzk_kanaidx FROM tbl_kazoku "
                    "WHERE tblkzk_kanaidx IS NOT NULL ORDER BY 1"_s),
              u"一郎,山田,ヤマダ,ヤ|二郎,山田,ヤマダ,ヤ|分家,原田,ハラダ,ハ"_s);
    EXPECT_EQ(query(u"SELECT (SELECT tblhoy_danknamek FROM tbl_hohyo), (SELECT group_concat(tblhak_dnk_namek) FROM "
                    "tbl_ohaka)"_s),
              u"ヤマダ,ヤマダ"_s);
}
