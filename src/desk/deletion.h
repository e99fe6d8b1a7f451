#pragma once

#include "desk/bring_back.h"
#include "desk/desk.h"
#include "desk/held.h"
#include "store/records.h"

#include <functional>

namespace desk {

// What one operation of the user deletes or gives up, in one or more writes: it is kept beside the register
// (store/kept_deletion.h) before each of them is committed, and can be taken back.
class Deletion {
  public:
    // title: of its messages. what: 削除, 抹消 or 廃棄.
    Deletion(Desk& desk, const QString& title, const QString& what) : desk_(&desk), title_(title), what_(what) {}

    // Runs take(records) as one write. It deletes or rewrites rows and adds them to the records as they were; its false
    // leaves the register alone. Where they cannot be kept, tells why and asks whether to go on without, from the
    // beginning. True when it was written; what fails is thrown, with nothing written.
    bool write(store::Database& database, const std::function<bool(store::Records&)>& take);

    Desk& desk() { return *desk_; }

    // Offers 元に戻す in the bar, if anything was taken and kept.
    void offerUndo() const {
        offerUndo([] {});
    }
    // The same; the record that was deleted is then held as it was, for the screen to show it again.
    template <class Row> void offerUndo(Held<Row>& held) const {
        if (held.isNew())
            return offerUndo();
        offerUndo([&held, row = held.row()] {
            store::Database database;
            store::Table table(database, store::keyIndex<Row>);
            if (held.bears(row) && table.seekKeysOf(row))
                held.show(table.row());
        });
    }

  private:
    void offerUndo(std::function<void()> done) const;
    QString keep(store::Database& database, store::Records& taken);

    Desk* desk_;
    QString title_;
    QString what_;
    store::Records taken_;
    QString label_;        // what was deleted first
    std::size_t kept_ = 0; // of the rows taken
    QString path_;         // where they are kept
    bool keeping_ = true;
};

// Deletes the record held as change() of held.h rewrites one, as a part of the deletion.
template <class Row> bool remove(Held<Row>& held, store::Database& database, const Refusal& words, Deletion& deletion) {
    Standing standing = Standing::gone;
    const bool written = deletion.write(database, [&](store::Records& taken) {
        store::Table table(database, store::keyIndex<Row>);
        standing = held.seek(table);
        if (standing != Standing::asRead)
            return false;
        taken.take(table);
        table.remove();
        return true;
    });
    if (refused(standing, held, words, deletion.desk()) || !written)
        return false;
    held.removed();
    return true;
}

// Rewrites it likewise; what stood there is kept.
template <class Row, class Edit>
bool change(Held<Row>& held, store::Database& database, const Refusal& words, Deletion& deletion, Edit edit) {
    Standing standing = Standing::gone;
    Row row;
    const bool written = deletion.write(database, [&](store::Records& taken) {
        store::Table table(database, store::keyIndex<Row>);
        standing = held.seek(table);
        if (standing != Standing::asRead)
            return false;
        row = table.row();
        edit(row);
        taken.take(table, row);
        table.edit(row);
        return true;
    });
    if (refused(standing, held, words, deletion.desk()) || !written)
        return false;
    held.wrote(row);
    return true;
}

} // namespace desk
