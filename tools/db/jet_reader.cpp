#include "jet_reader.h"

#include "transfer/cp932.h"

#include <QFile>
#include <QtEndian>

#include <mdbtools.h>

#include <array>
#include <stdexcept>

using namespace Qt::StringLiterals;

namespace jet {

namespace {

constexpr int offsetMask = 0x1fff; // of a row's place; the bits above say deleted or moved
constexpr quint32 inlineText = 0x80000000;
constexpr quint32 singlePage = 0x40000000;
constexpr quint32 lengthMask = 0x3fffffff;

struct TableCloser {
    void operator()(MdbTableDef* table) const { mdb_free_tabledef(table); }
};
using OpenTable = std::unique_ptr<MdbTableDef, TableCloser>;

// Two bytes a character or, behind a mark, one byte where the upper one is zero; a zero byte changes over.
std::optional<QString> unpack(QByteArrayView bytes) {
    const auto plain = [](QByteArrayView part) -> std::optional<QString> {
        if (part.size() % 2)
            return {};
        QString text(part.size() / 2, Qt::Uninitialized);
        qFromLittleEndian<char16_t>(part.data(), text.size(), text.data());
        return text;
    };
    if (!bytes.startsWith("\xff\xfe"))
        return plain(bytes);
    QString text;
    bool packed = true;
    for (qsizetype at = 2; at < bytes.size();) {
        if (bytes[at] == 0) {
            packed = !packed;
            ++at;
        } else if (packed) {
            text += QChar(static_cast<uchar>(bytes[at++]));
        } else {
            const auto unit = plain(bytes.sliced(at, std::min<qsizetype>(2, bytes.size() - at)));
            if (!unit)
                return {};
            text += *unit;
            at += 2;
        }
    }
    return text;
}

} // namespace

struct Database::Handle {
    MdbHandle* mdb = nullptr;

    ~Handle() {
        if (mdb)
            mdb_close(mdb);
    }

    MdbCatalogEntry* entry(const QString& name) const {
        for (guint i = 0; i < mdb->catalog->len; ++i) {
            auto* found = static_cast<MdbCatalogEntry*>(g_ptr_array_index(mdb->catalog, i));
            if (QString::fromUtf8(found->object_name) == name)
                return found;
        }
        throw std::runtime_error("table not found");
    }

    OpenTable open(MdbCatalogEntry* entry) const {
        OpenTable table(mdb_read_table(entry));
        if (!table || !mdb_read_columns(table.get()))
            throw std::runtime_error(std::string("cannot read the layout of ") + entry->object_name);
        return table;
    }

    static MdbColumn* column(const MdbTableDef* table, guint number) {
        return static_cast<MdbColumn*>(g_ptr_array_index(table->columns, number));
    }

    Value text(const std::optional<QByteArray>& bytes) const {
        if (!bytes)
            return Unreadable{u"長い文字列のページを読めません"_s};
        if (IS_JET3(mdb)) {
            QString decoded;
            if (transfer::cp932::decode(*bytes, decoded))
                return decoded;
        } else if (const auto unpacked = unpack(*bytes); unpacked && unpacked->isValidUtf16()) {
            return *unpacked;
        }
        return Unreadable{u"文字コードに誤りがあります"_s};
    }

    // The bytes of a long text: behind its head, in a row of another page, or in a chain of such rows.
    std::optional<QByteArray> longText(const unsigned char* head, int size) const {
        if (size < MDB_MEMO_OVERHEAD)
            return {};
        const auto word = qFromLittleEndian<quint32>(head);
        const qsizetype length = word & lengthMask;
        if (word & inlineText) {
            if (size < MDB_MEMO_OVERHEAD + length)
                return {};
            return QByteArray(reinterpret_cast<const char*>(head) + MDB_MEMO_OVERHEAD, length);
        }
        QByteArray bytes;
        auto place = qFromLittleEndian<quint32>(head + 4);
        const bool chain = !(word & singlePage);
        while (place && bytes.size() < length) {
            void* page = nullptr;
            int offset = 0;
            size_t stored = 0;
            if (mdb_find_pg_row(mdb, static_cast<int>(place), &page, &offset, &stored) || stored < (chain ? 4U : 1U))
                return {};
            const char* part = static_cast<const char*>(page) + offset;
            place = chain ? qFromLittleEndian<quint32>(part) : 0;
            bytes.append(part + (chain ? 4 : 0), static_cast<qsizetype>(stored) - (chain ? 4 : 0));
        }
        if (bytes.size() < length)
            return {};
        bytes.truncate(length);
        return bytes;
    }

    Value value(MdbColumn& column, const MdbField& field) const {
        const unsigned char* bytes = mdb->pg_buf + field.start;
        if (column.col_type == MDB_BOOL)
            return qint64{!field.is_null};
        if (field.is_null)
            return {};
        switch (column.col_type) {
        case MDB_BYTE:
            return qint64{*bytes};
        case MDB_INT:
            return qint64{qFromLittleEndian<qint16>(bytes)};
        case MDB_LONGINT:
            return qint64{qFromLittleEndian<qint32>(bytes)};
        case MDB_MONEY:
            return static_cast<double>(qFromLittleEndian<qint64>(bytes)) / 10000;
        case MDB_FLOAT:
            return double{qFromLittleEndian<float>(bytes)};
        case MDB_DOUBLE:
            return qFromLittleEndian<double>(bytes);
        case MDB_NUMERIC: {
            const std::unique_ptr<char, decltype(&g_free)> digits(
                mdb_numeric_to_string(mdb, field.start, column.col_scale, column.col_prec), g_free);
            return QByteArray(digits.get()).toDouble();
        }
        case MDB_DATETIME:
            return Moment{qFromLittleEndian<double>(bytes)};
        case MDB_TEXT:
            return text(QByteArray(reinterpret_cast<const char*>(bytes), field.siz));
        case MDB_MEMO:
            return text(longText(bytes, field.siz));
        default:
            return Unreadable{u"取り込めない型の値です"_s};
        }
    }
};

Database::Database(const QString& path) : handle_(std::make_unique<Handle>()) {
    // Names of tables and columns come in UTF-8 whatever the terminal speaks.
    qunsetenv("MDBICONV");
    handle_->mdb = mdb_open(QFile::encodeName(path).constData(), MDB_NOFLAGS);
    if (!handle_->mdb || !mdb_read_catalog(handle_->mdb, MDB_TABLE))
        throw std::runtime_error("no readable Jet database");
}

Database::~Database() = default;

std::vector<Database::Table> Database::tables() {
    std::vector<Table> all;
    for (guint i = 0; i < handle_->mdb->catalog->len; ++i) {
        auto* entry = static_cast<MdbCatalogEntry*>(g_ptr_array_index(handle_->mdb->catalog, i));
        if (!mdb_is_user_table(entry))
            continue;
        const OpenTable open = handle_->open(entry);
        Table table{QString::fromUtf8(entry->object_name), {}, static_cast<int>(open->num_rows)};
        for (guint column = 0; column < open->num_cols; ++column)
            table.columns.push_back(QString::fromUtf8(Handle::column(open.get(), column)->name));
        all.push_back(std::move(table));
    }
    return all;
}

// The library walks the rows; their fields are taken from the page itself, because it tells neither Null from an empty
// text nor a character outside the basic plane from two question marks.
void Database::read(const Table& table, const std::function<void(const std::vector<Value>&)>& row) {
    const OpenTable open = handle_->open(handle_->entry(table.name));
    MdbHandle* mdb = handle_->mdb;
    mdb_rewind_table(open.get());
    while (mdb_fetch_row(open.get())) {
        int start = 0;
        size_t size = 0;
        std::array<MdbField, MDB_MAX_COLS> fields{};
        if (mdb_find_row(mdb, static_cast<int>(open->cur_row) - 1, &start, &size))
            throw std::runtime_error("a row has no place on its page");
        const int count = mdb_crack_row(open.get(), start & offsetMask, size, fields.data());
        std::vector<Value> values(table.columns.size());
        for (int i = 0; i < count; ++i) {
            const MdbField& field = fields[static_cast<std::size_t>(i)];
            const auto number = static_cast<guint>(field.colnum);
            values.at(number) = handle_->value(*Handle::column(open.get(), number), field);
        }
        row(values);
    }
}

} // namespace jet
