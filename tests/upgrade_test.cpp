#include "sample/sample_register.h"
#include "store/backup.h"
#include "store/consistency.h"
#include "store/layout.h"
#include "store/upgrade.h"
#include "support/database_tool.h"
#include "support/older_register.h"
#include "support/register_fixture.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace {

class UpgradeTest : public RegisterFixture {
  protected:
    QByteArray bytes() const {
        QFile in(file);
        EXPECT_TRUE(in.open(QIODevice::ReadOnly));
        return in.readAll();
    }
    // Columns and indexes of every table, as the engine knows them, and the text of every query.
    static QStringList layout(const QString& path) {
        store::Database database(path, store::Layouts::olderToo);
        QStringList lines;
        SQLite::Statement list(
            database.engine(),
            "SELECT m.name, m.type, c.* FROM sqlite_master m, pragma_table_xinfo(m.name) c WHERE m.type IN ('table', "
            "'view') "
            "UNION ALL SELECT m.name || ' ' || i.name, i.\"unique\", i.partial, c.* FROM sqlite_master m, "
            "pragma_index_list(m.name) i, pragma_index_xinfo(i.name) c WHERE m.type = 'table' ORDER BY 1, 2, 3, 4");
        while (list.executeStep()) {
            QString line;
            for (int i = 0; i < list.getColumnCount(); ++i)
                line += QString::fromUtf8(list.getColumn(i).getText("NULL")) + u' ';
            lines << line;
        }
        return lines;
    }
    QString failure(const store::UpgradeSteps& steps) const {
        try {
            store::upgradeRegister(file, now, steps);
        } catch (const store::Error& error) {
            return error.message();
        }
        return {};
    }

    const QString file = store::Database::registerPath();
    const QDateTime now{today, QTime(12, 0)};
};

} // namespace

TEST_F(UpgradeTest, BringsARegisterOfEachNumberToTheNewest) {
    store::createRegister(path(u"new.mdb"_s));
    for (int missing = 1; missing <= static_cast<int>(olderSteps.size()); ++missing) {
        QFile::remove(file);
        sample::makeRegister(file, 20, today);
        makeOlder(file, missing);
        const QByteArray before = bytes();
        EXPECT_TRUE(store::isOlder(file));
        EXPECT_NE(layout(file), layout(path(u"new.mdb"_s)));

        const store::Upgrade upgrade = store::upgradeRegister(file, now, olderSteps);
        EXPECT_EQ(upgrade.from, store::layoutVersion - missing);
        EXPECT_EQ(upgrade.done.size(), missing);
        EXPECT_EQ(upgrade.done.last(), u"マスタの表を加えました。"_s);
        EXPECT_FALSE(store::isOlder(file));
        EXPECT_EQ(layout(file), layout(path(u"new.mdb"_s)));
        store::Database database;
        const auto differences = store::compareLayout(database.engine());
        EXPECT_EQ(differences.missing + differences.other + differences.extra, QStringList());
        EXPECT_EQ(query(u"SELECT count(*), sum(tbldnk_bikou = '新しい版') FROM tbl_danka"_s), u"20,1"_s);

        // The copy is the register as it was, and can be put back though it is older.
        store::restore(upgrade.copy, file, now);
        EXPECT_TRUE(store::isOlder(file));
        EXPECT_EQ(bytes().size(), before.size());
    }
}

TEST_F(UpgradeTest, LeavesTheRegisterAsItWas) {
    makeOlder(file, 3);
    const QByteArray before = bytes();
    const std::pair<const char*, QString> middles[] = {
        {"-- x\nCREATE INDEX idxhak_bohyomei ON tbl_ohaka (tblhak_bohyo_mei); INSERT INTO nowhere VALUES (1)",
         u"no such table: nowhere"_s},
        {"-- x\nCREATE INDEX idxhak_bohyomei ON tbl_ohaka (tblhak_biko)", u"索引 idxhak_bohyomei が違います"_s},
        {"-- x\nSELECT 1", u"索引 idxhak_bohyomei がありません"_s},
        {"-- x\nCOMMIT", u"not authorized"_s},
        {"-- x\nATTACH 'other.mdb' AS other", u"not authorized"_s},
    };
    for (const auto& [middle, words] : middles) {
        const QString told = failure({olderSteps[0], middle, olderSteps[2]});
        EXPECT_TRUE(told.contains(words) && told.contains(u"登録簿は元のままです"_s)) << told.toStdString();
        EXPECT_EQ(bytes(), before) << middle;
    }
    EXPECT_TRUE(failure({olderSteps[1], olderSteps[2]}).contains(u"手順がありません"_s));
    // Another program is at work: nothing is copied and nothing done.
    SQLite::Database other(file.toStdString(), SQLite::OPEN_READWRITE);
    other.exec("BEGIN IMMEDIATE");
    EXPECT_THROW(store::upgradeRegister(file, now, olderSteps), SQLite::Exception);
    other.exec("ROLLBACK");
    EXPECT_EQ(bytes(), before);
    EXPECT_EQ(store::backupsOf(file).size(), std::size(middles));
    // The program itself says what to do, and changes nothing.
    const auto [status, lines] = runDatabaseTool(directory.path(), {u"check"_s, u"Hoshiren.mdb"_s});
    EXPECT_EQ(status, 1);
    EXPECT_TRUE(lines.contains(u"「hoshiren-db upgrade Hoshiren.mdb」を実行"_s)) << lines.toStdString();
    EXPECT_EQ(bytes(), before);
}

TEST_F(UpgradeTest, DatabaseToolTellsWhatItDid) {
    for (const QStringList& arguments : {QStringList{u"upgrade"_s}, {u"upgrade"_s, u"Hoshiren.mdb"_s}})
        EXPECT_EQ(runDatabaseTool(directory.path(), arguments),
                  std::pair(0, u"登録簿は最新の版（%1）です。何も変えていません。\n"_s.arg(store::layoutVersion)));
    EXPECT_TRUE(store::backupsOf(file).empty());
    execute(u"PRAGMA user_version = -7"_s);
    EXPECT_EQ(runDatabaseTool(directory.path(), {u"upgrade"_s}).first, 1);
    // A step for each layout but the first, and each former layout kept to be tried here.
    EXPECT_EQ(store::upgradeSteps().size() + 1, std::size_t{store::layoutVersion});
    for (int number = 1; number < store::layoutVersion; ++number) {
        QFile schema(QStringLiteral(TEST_DATA "/layouts/%1.sql").arg(number));
        ASSERT_TRUE(schema.open(QIODevice::ReadOnly)) << schema.fileName().toStdString();
        QFile::remove(file);
        SQLite::Database(file.toStdString(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE)
            .exec(schema.readAll().toStdString());
        EXPECT_EQ(store::upgradeRegister(file, now).from, number);
    }
}
