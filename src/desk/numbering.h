#pragma once

#include "desk/desk.h"
#include "store/table.h"

#include <cstdint>
#include <optional>

// Two-step issuing of household ("檀家") and grave ("お墓") numbers: propose, and commit once the row is written.
namespace desk {

// 発番できる番号の上限に達しています
extern const QString noNumberLeft;

// The counter of one kind on an open connection; a long run keeps one. Shows nothing.
class Counter {
  public:
    Counter(store::Database& database, const QString& kind) : rows_(database, store::idxno_key), kind_(kind) {}

    // The number after the last one issued; makes the counter row (last number 0) when there is none. Nothing when
    // 32767 has been issued.
    std::optional<std::int16_t> propose();
    // Stores the number as the last one issued; false when the counter row is gone.
    bool commit(std::int16_t number);
    // The same when the counter is lower; makes the counter row when there is none.
    void raise(std::int16_t number);
    // Ends every read that is still open.
    void release() { rows_.release(); }

  private:
    bool find();
    void issue(std::int16_t number);

    store::Table<store::tbl_hatsuban, std::int16_t, QString> rows_;
    QString kind_;
};

// The number after the last one issued; makes the kind's counter row (last number 0) when there is none. Shows
// 発番できる番号の上限に達しています under the title and gives nothing when 32767 has been issued. Throws where the
// counter table cannot be read.
std::optional<std::int16_t> ProposeNumber(store::Database& database, Desk& desk, const QString& kind,
                                          const QString& title);

// Stores the number as the kind's last one issued. Shows a message under the title and stores nothing when the counter
// row is gone; true when it was stored.
bool CommitNumber(store::Database& database, Desk& desk, const QString& kind, std::int16_t number,
                  const QString& title);

} // namespace desk
