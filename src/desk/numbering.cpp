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

const QString noNumberLeft = u"発番できる番号の上限に達しています"_s;
const QString notCounted = u"発番の更新ができません。DBの整合性を確認して下さい"_s;

bool Counter::find() {
    return rows_.seek(store::Seek::equal, firstKey, kind_);
}

void Counter::issue(std::int16_t number) {
    auto row = rows_.row();
    row.tblno_sumino = number;
    rows_.edit(row);
}

std::optional<std::int16_t> Counter::propose() {
    if (!find()) {
        rows_.insert(counterOf(kind_, 0));
        return std::int16_t{1};
    }
    const std::int16_t last = rows_.row().tblno_sumino;
    if (last == std::numeric_limits<std::int16_t>::max())
        return {};
    return static_cast<std::int16_t>(last + 1);
}

bool Counter::commit(std::int16_t number) {
    if (!find())
        return false;
    issue(number);
    return true;
}

void Counter::raise(std::int16_t number) {
    if (!find())
        rows_.insert(counterOf(kind_, number));
    else if (rows_.row().tblno_sumino < number)
        issue(number);
}

std::optional<std::int16_t> ProposeNumber(store::Database& database, Desk& desk, const QString& kind,
                                          const QString& title) {
    const auto number = Counter(database, kind).propose();
    if (!number)
        desk.notify(noNumberLeft, title);
    return number;
}

bool CommitNumber(store::Database& database, const QString& kind, std::int16_t number) {
    return Counter(database, kind).commit(number);
}

} // namespace desk
