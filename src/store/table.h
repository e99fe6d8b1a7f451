#pragma once

#include "store/database.h"
#include "store/schema.h"

#include <QDate>

#include <string>
#include <tuple>
#include <vector>

namespace store {

// Values as they cross the engine's edge: dates as "YYYY-MM-DD" or NULL (an invalid QDate), optional numbers NULL when
// absent. A text read as NULL is a null QString; how a null QString is written, see Table::insert and Table::edit.
void bindValue(SQLite::Statement& statement, int at, int value);
void bindValue(SQLite::Statement& statement, int at, qint64 value);
void bindValue(SQLite::Statement& statement, int at, const QString& value);
void bindValue(SQLite::Statement& statement, int at, QDate value);
template <class T> void bindValue(SQLite::Statement& statement, int at, const std::optional<T>& value) {
    if (value)
        bindValue(statement, at, static_cast<int>(*value));
    else
        statement.bind(at);
}
void readValue(const SQLite::Column& column, std::int16_t& value);
void readValue(const SQLite::Column& column, qint64& value);
void readValue(const SQLite::Column& column, QString& value);
void readValue(const SQLite::Column& column, QDate& value);
template <class T> void readValue(const SQLite::Column& column, std::optional<T>& value) {
    if (column.isNull())
        value.reset();
    else
        value = static_cast<T>(column.getInt());
}

// "tbl.a, tbl.b, ...": the columns of a row in the order of its description.
template <class Row> const std::string& columnList() {
    static const std::string list = std::apply(
        [](auto... field) {
            std::string text;
            ((text += (text.empty() ? "" : ", ") + std::string(Description<Row>::table) + "." + field.name), ...);
            return text;
        },
        Description<Row>::fields);
    return list;
}

template <class Row> Row readRow(SQLite::Statement& statement) {
    Row row;
    std::apply(
        [&](auto... field) {
            int at = 0;
            (readValue(statement.getColumn(at++), row.*(field.member)), ...);
        },
        Description<Row>::fields);
    return row;
}

// A forward-only selection of whole rows: "SELECT <columns of Row> From <table> " + rest, the values bound in order.
// It holds a read lock from its first row until it is destroyed or read to its end.
template <class Row> class Selection {
  public:
    template <class... Values>
    Selection(Database& database, const std::string& rest, const Values&... values)
        : statement_(database.engine(),
                     "SELECT " + columnList<Row>() + " From " + Description<Row>::table + " " + rest) {
        [[maybe_unused]] int at = 0;
        (bindValue(statement_, ++at, values), ...);
    }

    // Moves to the next row; false at the end.
    bool next() {
        if (!statement_.executeStep())
            return false;
        row_ = readRow<Row>(statement_);
        return true;
    }
    const Row& row() const { return row_; }

  private:
    SQLite::Statement statement_;
    Row row_;
};

template <class Row, class... Values>
std::vector<Row> selectAll(Database& database, const std::string& rest, const Values&... values) {
    std::vector<Row> rows;
    Selection<Row> selection(database, rest, values...);
    while (selection.next())
        rows.push_back(selection.row());
    return rows;
}

// How many rows a selection has: counted by the engine, none is read.
template <class Row, class... Values>
int countRows(Database& database, const std::string& rest, const Values&... values) {
    SQLite::Statement count(database.engine(),
                            std::string("SELECT count(*) From ") + Description<Row>::table + " " + rest);
    [[maybe_unused]] int at = 0;
    (bindValue(count, ++at, values), ...);
    count.executeStep();
    return count.getColumn(0).getInt();
}

// The kana index of a row: the first character of the household's kana name, one blank when that is empty.
QString kanaIndex(const QString& kana);

enum class Seek { equal, atOrAfter, atOrBefore };

// A table opened with one of its indexes as the current one. A seek positions on a row; the walk goes on from there in
// index order (equal keys in the order of writing). Holds a read lock while positioned: let it go out of scope with the
// operation. Statements are prepared once an instance, so a bulk run keeps one.
template <class Row, class... Keys> class Table {
  public:
    Table(Database& database, const Index<Row, Keys...>& index) : database_(database), index_(index) {}

    // Given one to all of the index's keys in order. equal: the first row that bears exactly these keys; atOrAfter: the
    // first row at or after them; atOrBefore: the last row at or before them. Returns whether a row was found.
    template <class... Given> bool seek(Seek how, const Given&... given) {
        static_assert(sizeof...(Given) >= 1 && sizeof...(Given) <= sizeof...(Keys));
        if (how == Seek::atOrBefore)
            return found_ = seekBackward(given...);
        found_ = seekForward(given...);
        if (found_ && how == Seek::equal)
            found_ = bears(std::index_sequence_for<Given...>(), given...);
        // No row found: release the read lock.
        if (!found_)
            release();
        return found_;
    }

    bool noMatch() const { return !found_; }
    bool eof() const { return !found_; }
    const Row& row() const { return row_; }

    // The first row that bears all keys of the given one.
    bool seekKeysOf(const Row& row) {
        return std::apply([this](const auto&... key) { return seek(Seek::equal, key...); }, keysOf(row));
    }
    // Whether the current row bears all keys of the given one.
    bool hasKeysOf(const Row& row) const { return found_ && keysOf(row_) == keysOf(row); }

    // To the next row in index order.
    void moveNext() { found_ = step(); }

    // Ends the walk and its read lock: there is no current row until the next seek.
    void release() {
        if (cursor_)
            cursor_->reset();
        found_ = false;
    }

    // Writes a new row. A null text is written as ''.
    void insert(const Row& row) {
        if (!insert_)
            insert_.emplace(database_.engine(), insertText());
        insert_->reset();
        bindAll(*insert_, row, nullptr);
        insert_->exec();
        insert_->reset();
    }

    // Rewrites the current row. A null text leaves a stored NULL as it is and is written as '' elsewhere. When the edit
    // changes a key of this index, the walk's order is no longer defined: collect the rows first. Throws Error, with
    // nothing written, where the stored row holds a date that is none: writing would lose it.
    void edit(const Row& row) {
        if (!readable_)
            throw Error(0,
                        QStringLiteral("この記録には読めない日付があり、何も書き込まれていません。端末で「hoshiren-db "
                                       "check」を実行して、登録簿を確認して下さい。"));
        if (!update_)
            update_.emplace(database_.engine(), updateText());
        update_->reset();
        bindAll(*update_, row, &row_);
        bindValue(*update_, static_cast<int>(std::tuple_size_v<decltype(Description<Row>::fields)>) + 1, rowid_);
        update_->exec();
        update_->reset();
        row_ = row;
    }

    // Deletes the current row, which ends the walk.
    void remove() {
        const qint64 rowid = rowid_;
        release();
        remove(rowid);
    }

    // Deletes the current row and those that follow it in index order for as long as they are wanted, which ends the
    // walk; gives how many. Rows without a value in a key field are met like the others.
    template <class Wanted> int removeWhile(const Wanted& wanted) {
        std::vector<qint64> rowids;
        for (; found_ && wanted(row_); moveNext())
            rowids.push_back(rowid_);
        release();
        for (const qint64 rowid : rowids)
            remove(rowid);
        return static_cast<int>(rowids.size());
    }

  private:
    using KeyTuple = std::tuple<Keys...>;

    void remove(qint64 rowid) {
        if (!delete_)
            delete_.emplace(database_.engine(),
                            std::string("DELETE FROM ") + Description<Row>::table + " WHERE rowid = ?");
        delete_->reset();
        bindValue(*delete_, 1, rowid);
        delete_->exec();
        delete_->reset();
    }

    template <std::size_t... At, class... Given> bool bears(std::index_sequence<At...>, const Given&... given) const {
        return ((row_.*(std::get<At>(index_.fields).member) == given) && ...);
    }

    KeyTuple keysOf(const Row& row) const {
        return std::apply([&](auto... field) { return KeyTuple(row.*(field.member)...); }, index_.fields);
    }

    std::string keyNames(std::size_t count, const char* direction = "") const {
        std::string text;
        std::size_t at = 0;
        std::apply(
            [&](auto... field) {
                ((text += at < count ? (at ? ", " : "") + std::string(field.name) + direction : std::string(), ++at),
                 ...);
            },
            index_.fields);
        return text;
    }

    std::string seekText(std::size_t count, const char* comparison, const char* direction) const {
        std::string marks = "?";
        for (std::size_t i = 1; i < count; ++i)
            marks += ", ?";
        return "SELECT " + columnList<Row>() + ", rowid FROM " + Description<Row>::table + " INDEXED BY " +
               index_.name + " WHERE (" + keyNames(count) + ") " + comparison + " (" + marks + ") ORDER BY " +
               keyNames(sizeof...(Keys), direction);
    }

    template <class... Given> bool seekForward(const Given&... given) {
        if (!cursor_ || cursorKeys_ != sizeof...(Given)) {
            cursor_.emplace(database_.engine(), seekText(sizeof...(Given), ">=", ""));
            cursorKeys_ = sizeof...(Given);
        }
        cursor_->reset();
        int at = 0;
        (bindValue(*cursor_, ++at, given), ...);
        return step();
    }

    template <class... Given> bool seekBackward(const Given&... given) {
        SQLite::Statement last(database_.engine(), seekText(sizeof...(Given), "<=", " DESC") + " LIMIT 1");
        int at = 0;
        (bindValue(last, ++at, given), ...);
        if (!last.executeStep())
            return false;
        const Row row = readRow<Row>(last);
        const qint64 rowid = last.getColumn(rowidColumn()).getInt64();
        // The walk starts at that row: seek to its keys and pass over equal keys written before it.
        bool found = std::apply([this](const auto&... key) { return this->seekForward(key...); }, keysOf(row));
        while (found && rowid_ != rowid)
            found = step();
        return found;
    }

    static constexpr int rowidColumn() {
        return static_cast<int>(std::tuple_size_v<decltype(Description<Row>::fields)>);
    }

    bool step() {
        if (!cursor_->executeStep()) {
            cursor_->reset();
            return false;
        }
        row_ = readRow<Row>(*cursor_);
        readable_ = datesAreReadable();
        rowid_ = cursor_->getColumn(rowidColumn()).getInt64();
        return true;
    }

    bool datesAreReadable() {
        return std::apply(
            [this](auto... field) {
                int at = 0;
                const auto good = [&](const auto& value) {
                    const int column = at++;
                    if constexpr (std::is_same_v<decltype(value), const QDate&>)
                        return value.isValid() || cursor_->getColumn(column).isNull();
                    else
                        return true;
                };
                return (good(row_.*(field.member)) && ...);
            },
            Description<Row>::fields);
    }

    static std::string insertText() {
        std::string marks;
        std::string names;
        std::apply(
            [&](auto... field) {
                ((names += (names.empty() ? "" : ", ") + std::string(field.name), marks += marks.empty() ? "?" : ", ?"),
                 ...);
            },
            Description<Row>::fields);
        return std::string("INSERT INTO ") + Description<Row>::table + " (" + names + ") VALUES (" + marks + ")";
    }

    static std::string updateText() {
        std::string names;
        std::apply(
            [&](auto... field) { ((names += (names.empty() ? "" : ", ") + std::string(field.name) + " = ?"), ...); },
            Description<Row>::fields);
        return std::string("UPDATE ") + Description<Row>::table + " SET " + names + " WHERE rowid = ?";
    }

    template <class T> static void bindNew(SQLite::Statement& statement, int at, const T& value, const T* stored) {
        if constexpr (std::is_same_v<T, QString>) {
            if (value.isNull() && stored && stored->isNull())
                statement.bind(at);
            else
                bindValue(statement, at, value);
        } else {
            bindValue(statement, at, value);
        }
    }

    static void bindAll(SQLite::Statement& statement, const Row& row, const Row* stored) {
        int at = 0;
        std::apply(
            [&](auto... field) {
                (bindNew(statement, ++at, row.*(field.member), stored ? &(stored->*(field.member)) : nullptr), ...);
            },
            Description<Row>::fields);
    }

    Database& database_;
    Index<Row, Keys...> index_;
    std::optional<SQLite::Statement> cursor_;
    std::size_t cursorKeys_ = 0;
    std::optional<SQLite::Statement> insert_;
    std::optional<SQLite::Statement> update_;
    std::optional<SQLite::Statement> delete_;
    Row row_;
    qint64 rowid_ = 0;
    bool found_ = false;
    bool readable_ = true;
};

// The first row that bears these keys of the index; nothing when there is none.
template <class Row, class... Keys, class... Given>
std::optional<Row> find(Database& database, const Index<Row, Keys...>& index, const Given&... given) {
    Table table(database, index);
    if (!table.seek(Seek::equal, given...))
        return {};
    return table.row();
}

// Rewrites the row with these keys as edit(row) leaves it; false when there is none.
template <class Row, class... Keys, class Edit, class... Given>
bool change(Database& database, const Index<Row, Keys...>& index, Edit edit, const Given&... given) {
    Table table(database, index);
    if (!table.seek(Seek::equal, given...))
        return false;
    Row row = table.row();
    edit(row);
    table.edit(row);
    return true;
}

// Deletes the row with these keys; false when there is none.
template <class Row, class... Keys, class... Given>
bool remove(Database& database, const Index<Row, Keys...>& index, const Given&... given) {
    Table table(database, index);
    if (!table.seek(Seek::equal, given...))
        return false;
    table.remove();
    return true;
}

} // namespace store
