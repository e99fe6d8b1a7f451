#pragma once

#include "desk/desk.h"
#include "store/table.h"

#include <cstdint>
#include <optional>

// Two-step issuing of household and grave numbers (codes::householdNumbers, graveNumbers): propose, and commit once the
// row is written.
namespace desk {

// 発番できる番号の上限に達しています
extern const QString noNumberLeft;
// 発番の更新ができません。DBの整合性を確認して下さい
extern const QString notCounted;

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

// Stores the number as the kind's last one issued; false, with nothing stored, when the counter row is gone. It is part
// of the write that stores the row, so the caller tells that (notCounted) after the commit, never inside.
bool CommitNumber(store::Database& database, const QString& kind, std::int16_t number);

} // namespace desk
