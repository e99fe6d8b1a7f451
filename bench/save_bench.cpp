// What a save costs beside the same written by hand: a household changed, a death registered. Works on a copy.
//
//     save_bench REGISTER
#include "compare.h"
#include "silent_desk.h"

#include "family/death_registration_rules.h"
#include "households/registration_rules.h"
#include "store/table.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

constexpr std::int16_t household = 7;

// Says yes to all but the memorials.
class SavingDesk : public bench::SilentDesk {
  public:
    void notify(const QString& text, const QString&, desk::Icon) override {
        if (!text.endsWith(u"更新されました。") && !text.endsWith(u"登録されました。"))
            throw std::runtime_error(text.toStdString());
    }
    bool ask(const QString& text, const QString&, desk::Preset) override { return !text.startsWith(u"法要"); }
};

void run(store::Database& database, const QString& sql) {
    database.engine().exec(sql.toStdString());
}

void changeByHand(const store::tbl_danka& read, const QString& remark) {
    store::Database database;
    store::Write write(database);
    SQLite::Statement change(database.engine(),
                             "UPDATE tbl_danka SET tbldnk_bikou = ? WHERE tbldnk_no1 = ? AND tbldnk_no2 = 0");
    store::bindValue(change, 1, remark);
    store::bindValue(change, 2, read.tbldnk_no1);
    change.exec();
    write.commit();
}

// The deceased is living again, so that he can be registered once more.
void revive(const QString& name) {
    store::Database database;
    store::Write write(database);
    run(database,
        u"DELETE FROM tbl_kakocho WHERE tblkak_no = %1 AND tblkak_zokunameg = '%2'"_s.arg(household).arg(name));
    run(database,
        u"UPDATE tbl_kazoku SET tblkzk_seishikbn = '0' WHERE tblkzk_no1 = %1 AND tblkzk_nameg = '%2'"_s.arg(household)
            .arg(name));
    write.commit();
}

void fill(family::過去登Form& form) {
    for (auto* date : {&form.生年, &form.命日}) {
        date->era.text = u"令和"_s;
        date->year.text = u"8"_s;
        date->month.text = date->day.text = u"1"_s;
    }
    form.frm11_kaimyoug.text = form.frm11_kaimyouk.text = u"カイミョウ"_s;
    form.frm11_kankeisha.text = u"太郎"_s;
    form.frm11_続柄.text = u"子"_s;
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication app(argc, argv);
    if (argc != 2) {
        std::fputs("save_bench REGISTER\n", stderr);
        return 2;
    }
    try {
        const QTemporaryDir folder;
        const QString copy = folder.filePath(u"Hoshiren.mdb"_s);
        if (!QFile::copy(QString::fromLocal8Bit(argv[1]), copy))
            throw std::runtime_error("the register cannot be copied");
        store::Database::setRegisterPath(copy);

        SavingDesk desk;
        desk::ScreenContext context;
        context.publishHousehold(household);
        households::檀家登Form form;
        households::beginHousehold(form, context, desk);
        const store::tbl_danka row = [] {
            store::Database database;
            return store::find(database, store::idxdnk_no, household, 0).value();
        }();
        int remark = 0;
        bench::compare(
            "a household changed", 2, 25, 20,
            [&] {
                form.frm01_biko.text = QString::number(++remark);
                households::UpdateHousehold(form, context, desk);
            },
            [&] { changeByHand(row, QString::number(++remark)); },
            [&] { households::LoadHousehold(form, context, desk); });

        family::過去登Form death;
        family::beginDeathRegister(death, context, desk);
        death.frm11_kazoku.current = 0;
        const QString name = death.frm11_kazoku.currentText();
        family::takeMember(death, context, desk);
        fill(death);
        family::registerDeath(death, context, desk);
        const store::tbl_kakocho entry = [&] {
            store::Database database;
            return store::selectAll<store::tbl_kakocho>(database, "WHERE tblkak_no = ? AND tblkak_zokunameg = ?",
                                                        household, name)
                .at(0);
        }();
        bench::compare(
            "a death registered, and taken back by hand", 2, 25, 10,
            [&] {
                revive(name);
                family::registerDeath(death, context, desk);
            },
            [&] {
                revive(name);
                store::Database database;
                store::Write write(database);
                store::Table(database, store::idxkak_kakochou).insert(entry);
                run(database, u"UPDATE tbl_kazoku SET tblkzk_seishikbn = '1' WHERE tblkzk_no1 = %1 AND tblkzk_nameg = "
                              "'%2'"_s.arg(household)
                                  .arg(name));
                write.commit();
            });
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
