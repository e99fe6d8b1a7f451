#include "search/register_reader.h"

#include "store/row_rules.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QStringDecoder>
#include <QThread>

#include <SQLiteCpp/Transaction.h>
#include <sqlite3.h>

#include <algorithm>
#include <limits>
#include <set>

using namespace Qt::StringLiterals;

namespace search {

namespace {

using store::columnOf;
using store::literal;

constexpr int lowest = std::numeric_limits<std::int16_t>::min();
constexpr int highest = std::numeric_limits<std::int16_t>::max();
constexpr int numbersAtOnce = 512; // households with all that is theirs: some milliseconds
constexpr int vacantGravesAtOnce = 4096;
constexpr int moment = 20;     // ms
constexpr int gap = 2;         // ms
constexpr int patience = 3000; // ms
constexpr int mostUnreadable = 64;

// A connection for reading alone. Not the one of the operations: that one looks a file over by itself where it fails,
// and closing a file ends every lock that the process holds on it, another thread's included.
class Connection {
  public:
    explicit Connection(const QString& path)
        : engine_(QFile::encodeName(path).constData(),
                  SQLite::OPEN_READWRITE | SQLITE_OPEN_EXRESCODE | SQLITE_OPEN_NOMUTEX, moment) {
        sqlite3* handle = engine_.getHandle();
        sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
        // Another program's log is not this one's to end.
        sqlite3_db_config(handle, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
        if (engine_.execAndGet("PRAGMA application_id").getInt() != store::applicationId)
            throw SQLite::Exception("application_id", SQLITE_NOTADB);
        if (engine_.execAndGet("PRAGMA user_version").getInt() != store::layoutVersion)
            throw store::Error(0, u"登録簿ファイルの版が違うので、探せません。"_s);
    }
    SQLite::Database& engine() { return engine_; }
    bool keepsLog() { return engine_.execAndGet("PRAGMA journal_mode").getString() == "wal"; }

  private:
    SQLite::Database engine_;
};

// Rows of one kind, their texts one behind the other.
class Rows {
  public:
    // further: columns read behind those that are searched.
    Rows(SQLite::Database& engine, Kind kind, const std::vector<const char*>& further, const std::string& rest,
         int from, int to)
        : kind_(kind) {
        const SearchedTable& table = searchedTable(kind);
        std::string columns = std::string("rowid, ") + table.number;
        for (const SearchedField& field : table.fields) {
            if (field.column)
                columns += std::string(", ") + field.column, ++searched_;
        }
        for (const char* column : further)
            columns += std::string(", ") + column;
        texts_ = searched_ + further.size();
        SQLite::Statement statement(engine, "SELECT " + columns + " FROM " + table.table + ' ' + rest);
        statement.bind(1, from);
        statement.bind(2, to);
        while (statement.executeStep()) {
            rows_.push_back(
                {statement.getColumn(0).getInt64(), static_cast<std::int16_t>(statement.getColumn(1).getInt())});
            for (std::size_t at = 0; at < texts_; ++at)
                take(statement.getColumn(static_cast<int>(at) + 2));
        }
    }

    std::size_t size() const { return rows_.size(); }
    QStringView text(std::size_t row, std::size_t at) const {
        const std::size_t place = row * texts_ + at;
        const std::size_t begin = place == 0 ? 0 : ends_[place - 1];
        return QStringView(all_.data() + begin, static_cast<qsizetype>(ends_[place] - begin));
    }
    QStringView further(std::size_t row, std::size_t at) const { return text(row, searched_ + at); }
    std::int16_t number(std::size_t row) const { return rows_[row].number; }
    SearchedRow searched(std::size_t row, int owner) const {
        SearchedRow made{kind_, rows_[row].rowid, owner, rows_[row].number, 0, {}};
        made.texts.reserve(searched_);
        for (std::size_t at = 0; at < searched_; ++at)
            made.texts.push_back(text(row, at));
        return made;
    }

  private:
    struct Row {
        qint64 rowid;
        std::int16_t number;
    };

    void take(const SQLite::Column& column) {
        const QByteArrayView stored(column.getText(), column.getBytes());
        const std::size_t before = all_.size();
        all_.resize(before + static_cast<std::size_t>(decoder_.requiredSpace(stored.size())));
        auto* begin = reinterpret_cast<QChar*>(all_.data());
        // What is no text is shown as the replacement character; the rest of the row can be found.
        const QChar* end = decoder_.appendToBuffer(begin + before, stored);
        all_.resize(static_cast<std::size_t>(end - begin));
        ends_.push_back(all_.size());
    }

    Kind kind_;
    std::size_t searched_ = 0; // texts of a row that are
    std::size_t texts_ = 0;    // of a row
    std::u16string all_;
    std::vector<std::size_t> ends_; // of each text in all_
    std::vector<Row> rows_;
    QStringDecoder decoder_{QStringDecoder::Utf8, QStringDecoder::Flag::Stateless};
};

// What belongs to the household numbers from one to another.
class Part {
  public:
    Part(SQLite::Database& engine, int from, int to)
        : reading_(engine), households_(engine, Kind::household, {columnOf(&store::tbl_danka::tbldnk_no2)},
                                        by("idxdnk_no", "tbldnk_no1") + ", tbldnk_no2", from, to),
          members_(engine, Kind::member,
                   {columnOf(&store::tbl_kazoku::tblkzk_dnknameg), columnOf(&store::tbl_kazoku::tblkzk_seishikbn)},
                   by("idxkzk_no", "tblkzk_no1"), from, to),
          deaths_(engine, Kind::death, {columnOf(&store::tbl_kakocho::tblkak_dnknameg)},
                  by("idxkak_kakochou", "tblkak_no"), from, to),
          graves_(engine, Kind::grave, {columnOf(&store::tbl_ohaka::tblhak_dnk_no)},
                  by("idxhak_bohyou", "tblhak_dnk_no"), from, to) {}

    void addTo(Texts::Builder& builder, int from, int to) const {
        std::size_t household = 0;
        std::size_t member = 0;
        std::size_t death = 0;
        std::size_t grave = 0;
        for (int number = from; number <= to; ++number) {
            const int owner = ownerOf(static_cast<std::int16_t>(number));
            std::vector<SearchedRow> branches;
            for (; household < households_.size() && households_.number(household) == number; ++household) {
                SearchedRow row = households_.searched(household, owner);
                row.branch = static_cast<std::int16_t>(households_.further(household, 0).toInt());
                if (row.branch == store::codes::mainHousehold)
                    builder.add(row);
                else
                    branches.push_back(std::move(row));
            }
            std::set<std::pair<QStringView, QStringView>> entries;
            const std::size_t firstDeath = death;
            for (; death < deaths_.size() && deaths_.number(death) == number; ++death)
                entries.emplace(deaths_.further(death, 0), deaths_.text(death, 0));
            for (; member < members_.size() && members_.number(member) == number; ++member) {
                SearchedRow row = members_.searched(member, owner);
                if (members_.further(member, 1) != store::codes::living) {
                    // He is found as the entry that speaks of him.
                    if (entries.contains({members_.further(member, 0), members_.text(member, 0)}))
                        continue;
                    row.kind = Kind::departed;
                }
                builder.add(row);
            }
            if (number != store::codes::noHousehold) {
                for (; grave < graves_.size() && graves_.further(grave, 0).toInt() == number; ++grave)
                    builder.add(graves_.searched(grave, owner));
            } else {
                while (grave < graves_.size() && graves_.further(grave, 0).toInt() == number)
                    ++grave;
            }
            for (std::size_t entry = firstDeath; entry < death; ++entry)
                builder.add(deaths_.searched(entry, owner));
            for (const SearchedRow& branch : branches)
                builder.add(branch);
        }
    }

  private:
    static std::string by(const std::string& index, const std::string& number) {
        return "INDEXED BY " + index + " WHERE " + number + " BETWEEN ? AND ? ORDER BY " + number;
    }

    SQLite::Transaction reading_; // all four tables as they stand at one moment
    Rows households_;
    Rows members_;
    Rows deaths_;
    Rows graves_;
};

// Graves that belong to nobody, by their own number.
void addVacantGraves(SQLite::Database& engine, int from, int to, Texts::Builder& builder) {
    const Rows graves(engine, Kind::grave, {},
                      "INDEXED BY idxhak_no WHERE tblhak_no BETWEEN ? AND ? AND tblhak_dnk_no = " +
                          literal(store::codes::noHousehold) + " ORDER BY tblhak_no",
                      from, to);
    for (std::size_t at = 0; at < graves.size(); ++at)
        builder.add(graves.searched(at, ownerOfVacantGrave(graves.number(at))));
}

void addHouseholds(SQLite::Database& engine, int from, int to, Texts::Builder& builder) {
    const Part part(engine, from, to);
    part.addTo(builder, from, to);
}

int primary(const SQLite::Exception& failure) {
    return failure.getErrorCode() & 0xff;
}

} // namespace

std::optional<Reading> readRegister(const QString& path, const Texts* former, const std::function<bool()>& stopped) {
    Reading reading;
    Texts::Builder builder(former);
    using Add = void (*)(SQLite::Database&, int, int, Texts::Builder&);
    const auto readPart = [&](Add add, int from, int to) {
        for (const QDeadlineTimer end(patience); !stopped();) {
            try {
                bool keepsLog = false;
                {
                    Connection connection(path);
                    keepsLog = connection.keepsLog();
                    add(connection.engine(), from, to, builder);
                }
                // Who ends a bulk run needs the file for himself, and cannot wait for it by the engine's means.
                if (keepsLog)
                    QThread::msleep(gap);
                return;
            } catch (const SQLite::Exception& failure) {
                if (primary(failure) != SQLITE_BUSY || end.hasExpired())
                    throw;
                QThread::msleep(moment);
            }
        }
    };
    // What cannot be read is narrowed down to one number and passed over.
    const auto read = [&](auto& again, Add add, int from, int to) -> void {
        try {
            readPart(add, from, to);
        } catch (const SQLite::Exception& failure) {
            if (primary(failure) != SQLITE_CORRUPT || reading.unreadable >= mostUnreadable)
                throw;
            if (from == to) {
                ++reading.unreadable;
                return;
            }
            const int middle = from + (to - from) / 2;
            again(again, add, from, middle);
            again(again, add, middle + 1, to);
        }
    };
    for (int from = lowest; from <= highest && !stopped(); from += numbersAtOnce)
        read(read, addHouseholds, from, from + numbersAtOnce - 1);
    for (int from = lowest; from <= highest && !stopped(); from += vacantGravesAtOnce)
        read(read, addVacantGraves, from, from + vacantGravesAtOnce - 1);
    if (stopped())
        return {};
    reading.texts = builder.finish();
    return reading;
}

std::shared_ptr<const Texts> readOwners(const QString& path, const std::vector<int>& owners) {
    Connection connection(path);
    Texts::Builder builder;
    for (const int owner : owners) {
        if (owner <= highest)
            addHouseholds(connection.engine(), owner, owner, builder);
        else
            addVacantGraves(connection.engine(), owner - ownerOfVacantGrave(0), owner - ownerOfVacantGrave(0), builder);
    }
    return builder.finish();
}

std::optional<int> readOwnerOf(const QString& path, const QByteArray& table, qint64 rowid) {
    for (const Kind kind : {Kind::household, Kind::member, Kind::death, Kind::grave}) {
        const SearchedTable& searched = searchedTable(kind);
        if (table != searched.table)
            continue;
        Connection connection(path);
        const std::string owner = kind == Kind::grave ? columnOf(&store::tbl_ohaka::tblhak_dnk_no) : searched.number;
        SQLite::Statement row(connection.engine(), "SELECT " + owner + ", " + searched.number + " FROM " +
                                                       searched.table + " WHERE rowid = ?");
        row.bind(1, static_cast<std::int64_t>(rowid));
        if (!row.executeStep())
            return {};
        const auto household = static_cast<std::int16_t>(row.getColumn(0).getInt());
        const auto number = static_cast<std::int16_t>(row.getColumn(1).getInt());
        return kind == Kind::grave && household == store::codes::noHousehold ? ownerOfVacantGrave(number)
                                                                             : ownerOf(household);
    }
    return {};
}

} // namespace search
