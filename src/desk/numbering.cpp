#include "desk/numbering.h"

#include "store/table.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace desk {

namespace {

constexpr int firstKey = 0;

store::tbl_hatsuban counterOf(const QString& kind, std::int16_t number) {
    store::tbl_hatsuban row;
    row.tblno_key1 = firstKey;
    row.tblno_key2 = kind;
    row.tblno_sumino = number;
    return row;
}

} // namespace

std::optional<std::int16_t> ProposeNumber(store::Database& database, Desk& desk, const QString& kind,
                                          const QString& title) {
    store::Table counters(database, store::idxno_key);
    if (!counters.seek(store::Seek::equal, firstKey, kind)) {
        counters.insert(counterOf(kind, 0));
        return std::int16_t{1};
    }
    const std::int16_t last = counters.row().tblno_sumino;
    if (last == std::numeric_limits<std::int16_t>::max()) {
        desk.notify(u"発番できる番号の上限に達しています"_s, title);
        return {};
    }
    return static_cast<std::int16_t>(last + 1);
}

bool CommitNumber(store::Database& database, Desk& desk, const QString& kind, std::int16_t number,
                  const QString& title) {
    store::Table counters(database, store::idxno_key);
    if (!counters.seek(store::Seek::equal, firstKey, kind)) {
        desk.notify(u"発番の更新ができません。DBの整合性を確認して下さい"_s, title);
        return false;
    }
    auto row = counters.row();
    row.tblno_sumino = number;
    counters.edit(row);
    return true;
}

void raiseNumber(store::Database& database, const QString& kind, std::int16_t number) {
    store::Table counters(database, store::idxno_key);
    if (!counters.seek(store::Seek::equal, firstKey, kind)) {
        counters.insert(counterOf(kind, number));
        return;
    }
    auto row = counters.row();
    if (row.tblno_sumino >= number)
        return;
    row.tblno_sumino = number;
    counters.edit(row);
}

} // namespace desk
