#include "support/register_fixture.h"

#include "store/database.h"

#include <QSettings>

using namespace Qt::StringLiterals;

RegisterFixture::RegisterFixture() {
    // What a test's user chooses is not what the machine's user chose.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, directory.path());
    store::Database::setRegisterPath(path(u"Hoshiren.mdb"_s));
    store::createRegister(store::Database::registerPath());
}

RegisterFixture::~RegisterFixture() = default;

void RegisterFixture::execute(const QString& sql) {
    store::Database database;
    database.engine().exec(sql.toStdString());
}

void RegisterFixture::refuseRows(const QString& table, const QString& condition) {
    execute(u"PRAGMA writable_schema = ON; UPDATE sqlite_master SET sql = replace(sql, '\n) STRICT', "
            "', CONSTRAINT \"disk full\" CHECK (NOT (%2))\n) STRICT') WHERE name = '%1'"_s.arg(
                table, QString(condition).replace(u'\'', u"''"_s)));
}

QString RegisterFixture::query(const QString& sql) {
    store::Database database;
    SQLite::Statement statement(database.engine(), sql.toStdString());
    QStringList rows;
    while (statement.executeStep()) {
        QStringList cells;
        for (int i = 0; i < statement.getColumnCount(); ++i)
            cells << (statement.isColumnNull(i) ? u"NULL"_s : QString::fromUtf8(statement.getColumn(i).getText()));
        rows << cells.join(u","_s);
    }
    return rows.join(u"|"_s);
}

store::tbl_danka sampleHousehold(std::int16_t number) {
    store::tbl_danka row;
    row.tbldnk_no1 = number;
    row.tbldnk_nameg = u"山田"_s;
    row.tbldnk_namek = u"ヤマダ"_s;
    row.tbldnk_dnkkbn = u"檀家"_s;
    row.tbldnk_yubin = u"100-0001"_s;
    row.tbldnk_jyusho1 = u"寺前1丁目2-3"_s;
    row.tbldnk_tel = u"03-1234-5678"_s;
    row.tbldnk_kanaidx = u"ヤ"_s;
    row.tbldnk_haka_basho = u"境内"_s;
    row.tbldnk_toshug = u"山田　太郎"_s;
    row.tbldnk_toshuk = u"ヤマダ タロウ"_s;
    row.tbldnk_oyano = std::int16_t{0};
    row.tbldnk_bunkekbn = u"0"_s;
    row.tbldnk_addymd = QDate(2020, 4, 1);
    return row;
}
