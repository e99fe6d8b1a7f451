#include "store/name_copies.h"

#include "store/table.h"

using namespace Qt::StringLiterals;

namespace store {

namespace {

struct Holder {
    QString kind;
    const char* table;
    const char* number;
    const char* branch; // null where no row tells its branch
    const char* nameg;
    const char* namek;
    const char* kanaidx;
    const char* name; // an expression
};

const Holder holders[] = {
    {u"家族"_s, "tbl_kazoku", "tblkzk_no1", "tblkzk_no2", "tblkzk_dnknameg", "tblkzk_dnknamek", "tblkzk_kanaidx",
     "tblkzk_nameg"},
    {u"過去帳"_s, "tbl_kakocho", "tblkak_no", nullptr, "tblkak_dnknameg", "tblkak_dnknamek", "tblkak_kanaidx",
     "tblkak_zokunameg"},
    {u"法要"_s, "tbl_hohyo", "tblhoy_no", nullptr, "tblhoy_danknameg", "tblhoy_danknamek", "tblhoy_kanaidx",
     "tblhoy_zokunameg || ' ' || ifnull(tblhoy_kaiki_mei, '')"},
    {u"お墓"_s, "tbl_ohaka", "tblhak_dnk_no", nullptr, "tblhak_dnk_nameg", "tblhak_dnk_namek", "tblhak_kanaidx",
     "tblhak_no"},
};

// A row's household is every branch of its number or, where the row bears a branch number that is there, that branch.
// The main household's 0 tells nothing: it stands in the rows of a branch's members, too.
std::string selection(const Holder& holder, std::optional<std::int16_t> household) {
    const std::string nameg = std::string("ifnull(c.") + holder.nameg + ", '')";
    const std::string namek = std::string("ifnull(c.") + holder.namek + ", '')";
    std::string join = std::string("d.tbldnk_no1 = c.") + holder.number;
    if (holder.branch)
        join += std::string(" AND (d.tbldnk_no2 = c.") + holder.branch + " OR ifnull(c." + holder.branch +
                ", 0) = 0 OR NOT EXISTS (SELECT 1 FROM tbl_danka WHERE tbldnk_no1 = c." + holder.number +
                " AND tbldnk_no2 = c." + holder.branch + "))";
    return std::string("SELECT c.rowid, c.") + holder.number + ", " + holder.name + ", " + nameg + ", " + namek +
           ", count(DISTINCT g || char(31) || k), min(g), min(k) FROM " + holder.table +
           " c JOIN (SELECT tbldnk_no1, tbldnk_no2, ifnull(tbldnk_nameg, '') AS g, ifnull(tbldnk_namek, '') AS k "
           "FROM tbl_danka) d ON " +
           join + (household ? std::string(" WHERE c.") + holder.number + " = " + std::to_string(*household) : "") +
           " GROUP BY c.rowid HAVING sum(g = " + nameg + " AND k = " + namek + ") = 0 ORDER BY 2, 3";
}

struct Found {
    NameCopy copy;
    const Holder* holder;
    qint64 rowid;
    QString ownNameg;
    QString ownNamek;
};

QString together(const QString& nameg, const QString& namek) {
    return u"%1（%2）"_s.arg(nameg, namek);
}

std::vector<Found> find(Database& database, std::optional<std::int16_t> household) {
    std::vector<Found> all;
    for (const Holder& holder : holders) {
        SQLite::Statement rows(database.engine(), selection(holder, household));
        const auto text = [&rows](int column) {
            return QString::fromUtf8(rows.getColumn(column).getText(), rows.getColumn(column).getBytes());
        };
        while (rows.executeStep()) {
            const bool ambiguous = rows.getColumn(5).getInt() > 1;
            all.push_back({{holder.kind, text(2), rows.getColumn(1).getInt(), together(text(3), text(4)),
                            ambiguous ? QString() : together(text(6), text(7)), ambiguous},
                           &holder,
                           rows.getColumn(0).getInt64(),
                           text(6),
                           text(7)});
        }
    }
    std::stable_sort(all.begin(), all.end(),
                     [](const Found& one, const Found& other) { return one.copy.household < other.copy.household; });
    return all;
}

} // namespace

QStringList kindsOfNameCopies() {
    QStringList kinds;
    for (const Holder& holder : holders)
        kinds << holder.kind;
    return kinds;
}

std::vector<NameCopy> findNameCopies(Database& database, std::optional<std::int16_t> household) {
    std::vector<NameCopy> copies;
    for (Found& found : find(database, household))
        copies.push_back(std::move(found.copy));
    return copies;
}

int countNameCopies(Database& database, std::int16_t household, const QString& nameg, const QString& namek) {
    int rows = 0;
    for (const Holder& holder : holders) {
        SQLite::Statement count(database.engine(), std::string("SELECT count(*) FROM ") + holder.table + " WHERE " +
                                                       holder.number + " = ? AND ifnull(" + holder.nameg +
                                                       ", '') = ? AND ifnull(" + holder.namek + ", '') = ?");
        bindValue(count, 1, household);
        bindValue(count, 2, nameg);
        bindValue(count, 3, namek);
        count.executeStep();
        rows += count.getColumn(0).getInt();
    }
    return rows;
}

std::vector<NameCopy> writeNameCopies(Database& database, std::optional<std::int16_t> household) {
    std::vector<NameCopy> left;
    Write write(database);
    for (Found& found : find(database, household)) {
        const Holder& holder = *found.holder;
        bool written = false;
        if (!found.copy.ambiguous) {
            // IGNORE skips a row whose new key another row already has.
            SQLite::Statement update(database.engine(), std::string("UPDATE OR IGNORE ") + holder.table + " SET " +
                                                            holder.nameg + " = ?, " + holder.namek + " = ?, " +
                                                            holder.kanaidx + " = ? WHERE rowid = ?");
            bindValue(update, 1, found.ownNameg);
            bindValue(update, 2, found.ownNamek);
            bindValue(update, 3, kanaIndex(found.ownNamek));
            bindValue(update, 4, found.rowid);
            written = update.exec() == 1;
        }
        if (!written)
            left.push_back(std::move(found.copy));
    }
    write.commit();
    return left;
}

} // namespace store
