#include "store/layout.h"

#include "store/embedded_data.h"

#include <SQLiteCpp/Statement.h>

#include <map>
#include <vector>

using namespace Qt::StringLiterals;

namespace store {

namespace {

struct Object {
    QString kind;
    QString name;
    QStringList words; // of its statement
    auto operator<=>(const Object&) const = default;
};

// A statement's words without blanks, comments and the quotes of names: two statements that mean the same layout give
// the same words, whether they were written so or put together by the engine.
QStringList wordsOf(const QString& sql) {
    QStringList words;
    for (qsizetype at = 0; at < sql.size();) {
        const QChar first = sql[at];
        qsizetype end = at + 1;
        if (first.isSpace()) {
        } else if (QStringView(sql).sliced(at).startsWith(u"--")) {
            end = sql.indexOf(u'\n', at);
        } else if (QStringView(sql).sliced(at).startsWith(u"/*")) {
            end = sql.indexOf(u"*/"_s, at);
            end = end < 0 ? end : end + 2;
        } else if (const QString closing =
                       QStringView(u"\"`[").contains(first) ? (first == u'[' ? u"]"_s : first) : u""_s;
                   !closing.isEmpty()) {
            end = sql.indexOf(closing, at + 1);
            words << sql.mid(at + 1, end < 0 ? -1 : end - at - 1);
            end = end < 0 ? end : end + 1;
        } else if (first == u'\'') {
            end = sql.indexOf(u'\'', at + 1);
            words << sql.mid(at, end < 0 ? -1 : end - at + 1);
            end = end < 0 ? end : end + 1;
        } else {
            const auto isWord = [](QChar one) { return one.isLetterOrNumber() || one.isSurrogate() || one == u'_'; };
            while (isWord(first) && end < sql.size() && isWord(sql[end]))
                ++end;
            words << sql.mid(at, end - at);
        }
        at = end < 0 ? sql.size() : end;
    }
    return words;
}

std::map<QString, Object> objectsOf(SQLite::Database& engine) {
    static const std::map<QString, QString> kinds = {
        {u"table"_s, u"表"_s}, {u"index"_s, u"索引"_s}, {u"view"_s, u"クエリ"_s}, {u"trigger"_s, u"トリガー"_s}};
    std::map<QString, Object> objects;
    SQLite::Statement list(engine,
                           "SELECT type, name, sql FROM sqlite_master WHERE name NOT LIKE 'sqlite~_%' ESCAPE '~'");
    const auto text = [&list](int column) {
        return QString::fromUtf8(list.getColumn(column).getText(), list.getColumn(column).getBytes());
    };
    while (list.executeStep()) {
        const QString kind = kinds.at(text(0));
        objects[kind + u' ' + text(1)] = {kind, text(1), wordsOf(text(2))};
    }
    return objects;
}

// What stands between a table's outer brackets, part by part, and what stands behind them.
struct Table {
    std::vector<QStringList> columns;
    QString kind;

    const QStringList* find(const QString& name) const {
        for (const QStringList& column : columns)
            if (column.value(0) == name)
                return &column;
        return nullptr;
    }
    QStringList names() const {
        QStringList all;
        for (const QStringList& column : columns)
            all << column.value(0);
        return all;
    }
};

Table partsOf(const QStringList& words) {
    Table table;
    int depth = 0;
    qsizetype at = words.indexOf(u"("_s);
    for (; at >= 0 && at < words.size(); ++at) {
        const QString& word = words[at];
        depth += word == u"(" ? 1 : word == u")" ? -1 : 0;
        if (depth == 0)
            break;
        if (depth == 1 && (word == u"(" || word == u","))
            table.columns.emplace_back();
        else
            table.columns.back() << word;
    }
    table.kind = words.mid(at + 1).join(u' ');
    return table;
}

QString otherThan(const QString& found, const QString& right) {
    return u"「%1」（正しくは「%2」）"_s.arg(found, right);
}

void compareTables(const Object& found, const Object& right, LayoutDifferences& differences) {
    const Table present = partsOf(found.words);
    const Table wanted = partsOf(right.words);
    const QString& name = right.name;
    bool sameColumns = present.columns.size() == wanted.columns.size();
    for (const QStringList& column : wanted.columns) {
        const QStringList* own = present.find(column[0]);
        if (!own) {
            differences.missing << u"表 %1 に列 %2 がありません。"_s.arg(name, column[0]);
            differences.readable = sameColumns = false;
        } else if (*own != column) {
            differences.other << u"表 %1 の列 %2 が違います: "_s.arg(name, column[0]) +
                                     otherThan(own->mid(1).join(u' '), column.mid(1).join(u' '));
        }
    }
    for (const QStringList& column : present.columns)
        if (!wanted.find(column.value(0)))
            differences.extra << u"表 %1 の列「%2」は登録簿のものではありません。"_s.arg(name, column.join(u' '));
    if (sameColumns && present.names() != wanted.names())
        differences.other << u"表 %1 の列の順序が違います。"_s.arg(name);
    if (present.kind != wanted.kind)
        differences.other << u"表 %1 の種類が違います: "_s.arg(name) + otherThan(present.kind, wanted.kind);
}

} // namespace

LayoutDifferences compareLayout(SQLite::Database& engine) {
    SQLite::Database fresh(":memory:", SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
    fresh.exec(embedded_schema);
    const auto wanted = objectsOf(fresh);
    const auto present = objectsOf(engine);
    LayoutDifferences differences;
    for (const auto& [title, right] : wanted) {
        const auto found = present.find(title);
        if (found == present.end()) {
            differences.missing << u"%1 がありません。"_s.arg(title);
            differences.readable = differences.readable && right.kind != u"表";
        } else if (found->second.words == right.words) {
        } else if (right.kind == u"表") {
            compareTables(found->second, right, differences);
        } else if (right.kind == u"索引") {
            differences.other << u"%1 が違います: "_s.arg(title) +
                                     otherThan(found->second.words.join(u' '), right.words.join(u' '));
        } else {
            differences.other << u"%1 の内容が違います。"_s.arg(title);
        }
    }
    for (const auto& [title, object] : present)
        if (!wanted.contains(title))
            differences.extra << u"%1 は登録簿のものではありません。"_s.arg(title);
    return differences;
}

} // namespace store
