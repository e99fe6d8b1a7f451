// A field stands in several places: these tests hold them together.
#include "store/row_rules.h"

#include "support/register_fixture.h"
#include "transfer/grave_transfer_rules.h"
#include "transfer/household_transfer_rules.h"

#include <QFile>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

using Fields = RegisterFixture;

template <class Row> QStringList columnsOf() {
    QStringList names;
    std::apply([&](auto... field) { ((names << QString::fromUtf8(field.name)), ...); },
               store::Description<Row>::fields);
    return names;
}

// How the schema declares a column for a member of this type.
template <class T> QString declared(const QString& name) {
    const QString between = u" CHECK (%1 BETWEEN %2 AND %3)"_s;
    if constexpr (std::is_same_v<T, std::int16_t>)
        return name + u" INTEGER NOT NULL DEFAULT 0"_s + between.arg(name).arg(INT16_MIN).arg(INT16_MAX);
    else if constexpr (std::is_same_v<T, std::optional<std::int16_t>>)
        return name + u" INTEGER"_s + between.arg(name).arg(INT16_MIN).arg(INT16_MAX);
    else if constexpr (std::is_same_v<T, std::optional<std::int32_t>>)
        return name + u" INTEGER"_s + between.arg(name).arg(INT32_MIN).arg(INT32_MAX);
    else if constexpr (std::is_same_v<T, QDate>)
        return name + u" TEXT CHECK (%1 IS date(%1, '+0 days'))"_s.arg(name);
    else
        return name + u" TEXT"_s;
}

template <class Row> QStringList declarations() {
    QStringList lines;
    const auto add = [&]<class T>(store::Field<Row, T> field) { lines << declared<T>(QString::fromUtf8(field.name)); };
    std::apply([&](auto... field) { (add(field), ...); }, store::Description<Row>::fields);
    return lines;
}

// The members of a struct as the header declares them.
QStringList membersOf(const QString& row) {
    QFile header(QStringLiteral(HOSHIREN_SOURCES "/src/store/schema.h"));
    if (!header.open(QIODevice::ReadOnly))
        return {};
    const QString body =
        QString::fromUtf8(header.readAll()).section(u"\nstruct "_s + row + u" {"_s, 1).section(u"};"_s, 0, 0);
    static const QRegularExpression member(u"^ {4}\\S+ (\\w+)(?: = 0)?;$"_s,
                                           QRegularExpression::MultilineOption |
                                               QRegularExpression::UseUnicodePropertiesOption);
    QStringList names;
    for (const auto& found : member.globalMatch(body))
        names << found.captured(1);
    return names;
}

TEST_F(Fields, EveryColumnIsDescribedAsTheSchemaDeclaresIt) {
    QStringList tables;
    store::forEachTable([&]<class Row>() {
        const QString table = QString::fromUtf8(store::Description<Row>::table);
        tables << table;
        QString columns = query(u"SELECT sql FROM sqlite_master WHERE name = '%1'"_s.arg(table));
        columns = columns.section(u"(\n  "_s, 1).section(u"\n)"_s, 0, 0);
        // Texts in keys are never NULL; in memory that is no other type.
        EXPECT_EQ(columns.remove(u" NOT NULL DEFAULT ''"_s).split(u",\n  "_s), declarations<Row>());
        EXPECT_EQ(membersOf(table), columnsOf<Row>());
    });
    EXPECT_EQ(query(u"SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY rowid"_s), tables.join(u'|'));
}

TEST_F(Fields, EveryIndexHasTheColumnsOfItsDescription) {
    const auto expectSame = [&](const auto& index) {
        const QString name = QString::fromUtf8(index.name);
        QStringList names;
        std::apply([&](auto... field) { ((names << QString::fromUtf8(field.name)), ...); }, index.fields);
        EXPECT_EQ(query(u"SELECT name FROM pragma_index_info('%1') ORDER BY seqno"_s.arg(name)), names.join(u'|'))
            << index.name;
    };
    const auto expectAll = [&](const auto&... index) { (expectSame(index), ...); };
    expectAll(store::idxdnk_no, store::idxkzk_kazoku, store::idxkzk_no, store::idxkak_kakochou, store::idxhak_no,
              store::idxhak_banchi12, store::idxhak_bohyou, store::idxhak_kanrinext, store::idxhoy_hohyo,
              store::idxhoy_yymd, store::idxnen_nengo, store::idxnen_snen, store::idxno_key, store::key_マスタ);
    // What names one row is unique in the file.
    store::forEachTable([&]<class Row>() {
        if constexpr (!std::is_same_v<decltype(store::keyIndex<Row>), const std::nullptr_t>) {
            const QString name = QString::fromUtf8(store::keyIndex<Row>.name);
            EXPECT_TRUE(query(u"SELECT sql FROM sqlite_master WHERE name = '%1'"_s.arg(name)).contains(u" UNIQUE "_s))
                << store::keyIndex<Row>.name;
        }
    });
}

// Each column is a field of the bulk file or left out of it on purpose.
template <class Row> void expectComplete(const transfer::BulkLayout<Row>& layout) {
    EXPECT_EQ(layout.fieldCount(), 17);
    QStringList carried;
    for (const auto& field : layout.fields)
        carried << QString::fromUtf8(field.column);
    carried.removeDuplicates();
    for (const char* column : layout.leftOut)
        carried << QString::fromUtf8(column);
    QStringList columns = columnsOf<Row>();
    carried.sort();
    columns.sort();
    EXPECT_EQ(carried, columns);
}

TEST(BulkLayouts, EveryColumnIsInTheFileOrLeftOutOnPurpose) {
    expectComplete(transfer::householdLayout());
    expectComplete(transfer::graveLayout());
}

// The rule decides on rows in memory as its condition does on those of the file.
template <class Row, class... T>
void expectSame(const store::RowRule<Row, T...>& rule, const char* name, std::size_t fulfilled) {
    store::Database database;
    std::vector<Row> with;
    std::vector<Row> without;
    for (const Row& row : store::selectAll<Row>(database, "ORDER BY rowid"))
        (rule(row) ? with : without).push_back(row);
    EXPECT_EQ(with.size(), fulfilled) << name;
    EXPECT_EQ(store::selectAll<Row>(database, "WHERE " + rule.sql() + " ORDER BY rowid"), with) << name;
    EXPECT_EQ(store::selectAll<Row>(database, "WHERE NOT " + rule.sql() + " ORDER BY rowid"), without) << name;
}

TEST_F(Fields, RulesAreTheSameInCodeAndStatements) {
    execute(
        u"WITH flag(f) AS (VALUES (0), (1), (2)) INSERT INTO tbl_hohyo (tblhoy_no, tblhoy_kaiki_s, "
        "tblhoy_kaiki_rs, tblhoy_tsuchi_s) SELECT row_number() OVER (), s.f, r.f, t.f FROM flag s, flag r, flag t"_s);
    expectSame(store::isOpenForNotice, "open for notice", 1);
    expectSame(store::isHeld, "held", 9);
    expectSame(store::isReserved, "reserved", 9);
    expectSame(store::isNotified, "notified", 9);
    expectSame(store::isAwaited, "awaited", 3);
    execute(u"INSERT INTO tbl_kazoku (tblkzk_nameg, tblkzk_seishikbn) VALUES "
            "('a', '0'), ('b', '1'), ('c', NULL), ('d', ''), ('e', '00')"_s);
    expectSame(store::isLiving, "living", 1);
    execute(u"INSERT INTO tbl_ohaka (tblhak_no, tblhak_haiki_kbn) VALUES (1, 0), (2, 1), (3, 2), (4, -1)"_s);
    expectSame(store::isInUse, "in use", 1);
    expectSame(store::isDisposed, "disposed", 1);
}

template <class Row> void expectHouseholds() {
    store::Database database;
    const std::string join = "JOIN tbl_danka ON " + store::householdSql<Row>() + " WHERE tbldnk_nameg = ? AND " +
                             store::columnOf(store::householdNumber<Row>) + " = ?";
    for (const Row& row : store::selectAll<Row>(database, "")) {
        const std::int16_t number = row.*store::householdNumber<Row>;
        const auto household = store::findHousehold(database, number);
        EXPECT_EQ(household.has_value(), number == 5) << number;
        store::Table households(database, store::idxdnk_no);
        EXPECT_EQ(store::seekHousehold(households, number), household.has_value()) << number;
        EXPECT_EQ(store::selectAll<Row>(database, join, household ? household->tbldnk_nameg : u"本家"_s, number).size(),
                  household ? 1U : 0U)
            << number;
        EXPECT_EQ(store::selectAll<Row>(database,
                                        "WHERE " + store::lostSql<Row>() + " AND " +
                                            store::columnOf(store::householdNumber<Row>) + " = ?",
                                        number)
                      .size(),
                  store::find(database, store::idxdnk_no, number) ? 0U : 1U)
            << number;
    }
}

TEST_F(Fields, TheHouseholdOfARowIsTheSameInCodeAndStatements) {
    execute(u"INSERT INTO tbl_danka (tbldnk_no1, tbldnk_no2, tbldnk_nameg) VALUES (5, 0, '本家'), (5, 1, '分家'), "
            "(7, 1, '分家')"_s);
    for (const QString& number : {u"0"_s, u"5"_s, u"7"_s, u"9"_s})
        execute(u"INSERT INTO tbl_kazoku (tblkzk_no1) VALUES (%1); INSERT INTO tbl_kakocho (tblkak_no) VALUES (%1); "
                "INSERT INTO tbl_hohyo (tblhoy_no) VALUES (%1); "
                "INSERT INTO tbl_ohaka (tblhak_no, tblhak_dnk_no) VALUES (%1, %1)"_s.arg(number));
    expectHouseholds<store::tbl_kazoku>();
    expectHouseholds<store::tbl_kakocho>();
    expectHouseholds<store::tbl_ohaka>();
    expectHouseholds<store::tbl_hohyo>();
}

} // namespace
