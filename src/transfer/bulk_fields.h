#pragma once

#include "store/row_rules.h"
#include "values/dates.h"

#include <QString>

#include <vector>

// Which column stands in which field of a bulk file.
namespace transfer {

// A flag as a bulk file holds it.
inline const QString flagSet = QStringLiteral("1");
inline const QString flagClear = QStringLiteral("0");

inline QString fieldText(const QString& value) {
    return value;
}
inline QString fieldText(std::int16_t value) {
    return QString::number(value);
}
inline QString fieldText(const std::optional<std::int32_t>& yen) {
    return yen ? QString::number(*yen) : QString();
}
inline QString fieldText(QDate value) {
    return values::dateText(value);
}

// One field of a record: the column that it comes from, and what is written of a row.
template <class Row> struct BulkField {
    const char* column;
    QString (*text)(const Row&);
};

template <auto member> struct RowOf;
template <class Row, class T, T Row::*member> struct RowOf<member> { using type = Row; };

// The column as it is.
template <auto member, class Row = typename RowOf<member>::type> BulkField<Row> bulkField() {
    return {store::columnOf(member), [](const Row& row) { return fieldText(row.*member); }};
}

// A flag that says whether the column holds the code.
template <auto member, const QString& code, class Row = typename RowOf<member>::type> BulkField<Row> bulkFlag() {
    return {store::columnOf(member), [](const Row& row) { return row.*member == code ? flagSet : flagClear; }};
}

// The fields of a bulk file in their order, and the columns that are left out of it on purpose.
template <class Row> struct BulkLayout {
    std::vector<BulkField<Row>> fields;
    std::vector<const char*> leftOut;

    int fieldCount() const { return static_cast<int>(fields.size()); }
    std::vector<QString> record(const Row& row) const {
        std::vector<QString> texts;
        texts.reserve(fields.size());
        for (const auto& field : fields)
            texts.push_back(field.text(row));
        return texts;
    }
};

} // namespace transfer
