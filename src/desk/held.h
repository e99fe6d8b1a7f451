#pragma once

#include "desk/desk.h"
#include "desk/screen_context.h"
#include "store/register_identity.h"
#include "store/table.h"

#include <QString>

#include <optional>
#include <vector>

// The record that a screen shows: its key and the row as it was read, and what becomes of it in the file meanwhile.
namespace desk {

// How the file stands to the row as it was read.
enum class Standing {
    asRead,
    changed,
    gone,
    twice // two rows bear its key: which one was meant cannot be told
};

// What a record is called where the user reads of it: "321", "321-1" of a branch, "321 太郎" of a member.
QString labelOf(const store::tbl_danka& row);
QString labelOf(const store::tbl_kazoku& row);
QString labelOf(const store::tbl_kakocho& row);
QString labelOf(const store::tbl_ohaka& row);
QString labelOf(const store::tbl_hohyo& row);
QString labelOf(const store::tbl_nengo& row);
QString labelOf(const store::マスタ& row);

// "321" or "321-1".
QString householdLabel(std::int16_t no1, std::int16_t no2);

// A record's key as one text: equal for the same record of one table, different for others.
template <class... Keys> QString keyText(const Keys&... keys) {
    QString text;
    const auto add = [&text](const auto& key) {
        if constexpr (std::is_same_v<decltype(key), const QDate&>)
            text += key.toString(Qt::ISODate);
        else if constexpr (std::is_convertible_v<decltype(key), QString>)
            text += key;
        else
            text += QString::number(key);
        text += QChar(0x1f);
    };
    (add(keys), ...);
    return text;
}

template <class Row> QString keyText(const Row& row) requires requires {
    store::Description<Row>::table;
}
{
    return std::apply([&](auto... field) { return keyText(row.*(field.member)...); }, store::keyIndex<Row>.fields);
}

// A record that a screen is asked for: its key as one text, and what the user reads of it.
struct AskedRecord {
    QString key;
    QString label;
};

// The household that the context names; nothing where it names none.
std::optional<AskedRecord> askedHousehold(const ScreenContext& context);

// A person of the context's household, by the household's name as he bears it and his own; without a name a new one,
// and nothing where the screen shows that household already.
std::optional<AskedRecord> askedPerson(const ScreenContext& context, const QString& name,
                                       const QString& householdShown);

// What the kit asks of a screen's record, whatever its table.
class Record {
  public:
    virtual ~Record() = default;

    // Of the record shown, or of the new one being entered; empty before anything was shown.
    const QString& key() const { return key_; }
    const QString& label() const { return label_; }
    bool isNew() const { return isNew_; }

    // Change whenever the boxes show other contents (a record, an empty form), or the record was saved or deleted here.
    int showing() const { return showing_; }
    int ending() const { return ending_; }

    // How the file stands to the record now; asRead for a new one and for one that was deleted here.
    virtual Standing standing(store::Database& database) const = 0;
    // The register's file is another one than when the record was read.
    bool registerReplaced() const { return !(register_ == store::registerIdentity()); }

    // The boxes show a new record; whose tells what it belongs to, a household's label say.
    void showNew(const QString& whose = {});
    // The boxes of the same record were filled anew by the program.
    void filledAnew() { showing_ = nextMark(); }
    // Of a new record, as an opening asks for it.
    static AskedRecord newRecord(const QString& whose);

  protected:
    void showing(const QString& key, const QString& label);
    void ended() { ending_ = nextMark(); }
    void readNow() { register_ = store::registerIdentity(); }
    virtual void forget() = 0;

    bool isNew_ = true;
    bool deleted_ = false;

  private:
    static int nextMark();

    QString key_;
    QString label_;
    int showing_ = 0;
    int ending_ = 0;
    store::RegisterIdentity register_;
};

// Positions the table on the row where the file holds it as it was read.
template <class Row, class... Keys> Standing seekAsRead(store::Table<Row, Keys...>& table, const Row& read) {
    if (!table.seekKeysOf(read))
        return Standing::gone;
    const Row found = table.row();
    table.moveNext();
    if (table.hasKeysOf(read))
        return Standing::twice;
    table.seekKeysOf(read);
    return found == read ? Standing::asRead : Standing::changed;
}

template <class Row> class Held : public Record {
  public:
    Held() = default;

    // The boxes show this row, just read.
    void show(const Row& row) {
        row_ = row;
        deleted_ = false;
        readNow();
        showing(keyText(row), labelOf(row));
    }
    // This screen wrote the row, and showed it or shows it now.
    void wrote(const Row& row) {
        ended();
        show(row);
    }
    // This screen deleted it: the boxes still show it, the file has it no more.
    void removed() {
        ended();
        deleted_ = true;
    }

    bool deletedHere() const { return deleted_; }
    // A record of the file is shown that was not deleted here.
    explicit operator bool() const { return !isNew_ && !deleted_; }
    // The row as read; also of a record deleted here. Only while isNew() is false.
    const Row& row() const { return row_; }
    const Row* operator->() const { return &row_; }

    // Whether a row is shown that bears these keys.
    template <class... Keys> bool bears(const Keys&... keys) const {
        return !isNew_ && keyText(row_) == keyText(keys...);
    }
    // This record where it bears the keys, else the one that the file holds under them now; a new one where there is
    // none.
    template <class... Keys> Held orRead(store::Database& database, const Keys&... keys) const {
        if (bears(keys...))
            return *this;
        Held read;
        if (const auto row = store::find(database, store::keyIndex<Row>, keys...))
            read.show(*row);
        return read;
    }

    // Positions the table on the row where it stands as read.
    template <class... Keys> Standing seek(store::Table<Row, Keys...>& table) const {
        return isNew_ ? Standing::gone : seekAsRead(table, row_);
    }
    Standing standing(store::Database& database) const override {
        if (!*this)
            return Standing::asRead;
        store::Table table(database, store::keyIndex<Row>);
        return seek(table);
    }

  protected:
    void forget() override { row_ = {}; }

  private:
    Row row_;
};

// The words of a refusal.
struct Refusal {
    QString title;
    QString gone; // the message for a record that the file no longer holds
};

// Tells why a record that does not stand as read is left alone. True when it was refused.
bool refused(Standing standing, const Record& record, const Refusal& words, Desk& desk);

// Rewrites the record with what edit(row) makes of it and runs also() on the same connection, as one write, where the
// file holds the row as read; the row written is then the row as read. Otherwise tells why, writes nothing and gives
// false. What fails is thrown, with nothing written.
template <class Row, class Edit, class Also>
bool change(Held<Row>& held, store::Database& database, const Refusal& words, Desk& desk, Edit edit, Also also) {
    Standing standing = Standing::gone;
    Row row;
    {
        store::Write write(database);
        store::Table table(database, store::keyIndex<Row>);
        standing = held.seek(table);
        if (standing == Standing::asRead) {
            row = table.row();
            edit(row);
            table.edit(row);
            table.release();
            also();
            write.commit();
        }
    }
    if (refused(standing, held, words, desk))
        return false;
    held.wrote(row);
    return true;
}

template <class Row, class Edit>
bool change(Held<Row>& held, store::Database& database, const Refusal& words, Desk& desk, Edit edit) {
    return change(held, database, words, desk, edit, [] {});
}

template <class Row> struct Rewritten {
    Row from; // as it was read
    Row to;
};
template <class Row> struct Other {
    Row read;
    std::optional<Row> now; // absent where it is gone
};

// Rewrites several rows as one write where the file holds each as it was read. Otherwise writes nothing and gives those
// that are other now. What fails is thrown, with nothing written.
template <class Row>
std::vector<Other<Row>> rewriteAll(store::Database& database, const std::vector<Rewritten<Row>>& rows) {
    std::vector<Other<Row>> others;
    store::Write write(database);
    store::Table table(database, store::keyIndex<Row>);
    for (const Rewritten<Row>& row : rows) {
        const Standing standing = seekAsRead(table, row.from);
        if (standing != Standing::asRead)
            others.push_back({row.from, standing == Standing::gone ? std::nullopt : std::optional(table.row())});
        else if (others.empty())
            table.edit(row.to);
    }
    table.release();
    if (others.empty())
        write.commit();
    return others;
}

} // namespace desk
