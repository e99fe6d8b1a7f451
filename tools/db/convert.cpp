// Brings a register in the older format over into a new one beside it.
#include "commands.h"
#include "jet_reader.h"

#include "store/consistency.h"
#include "store/draft.h"
#include "store/table.h"
#include "store/upgrade.h"
#include "values/dates.h"
#include "values/numbers.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <sqlite3.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#ifdef Q_OS_UNIX
#include <sys/resource.h>
#endif

using namespace Qt::StringLiterals;

namespace {

struct Refused {
    QString reason;
};

// What was taken in another form than it had: told once for each column with the number of rows.
using Notes = std::map<QString, int>;

qint64 wholeNumber(const jet::Value& value) {
    if (const auto* number = std::get_if<qint64>(&value))
        return *number;
    if (const auto* number = std::get_if<double>(&value);
        number && std::trunc(*number) == *number && std::abs(*number) < 1e15)
        return static_cast<qint64>(*number);
    if (const auto* text = std::get_if<QString>(&value))
        if (const auto number = values::readWhole(*text))
            return *number;
    throw Refused{u"整数ではありません"_s};
}

template <class T> T inRange(qint64 number) {
    if (number < std::numeric_limits<T>::min() || number > std::numeric_limits<T>::max())
        throw Refused{u"値 %1 が大きすぎます"_s.arg(number)};
    return static_cast<T>(number);
}

// A Null number where the register needs one becomes 0; the note says so.
void take(const jet::Value& value, std::int16_t& field, const QString& column, Notes& notes) {
    if (std::holds_alternative<std::monostate>(value))
        ++notes[u"%1: 空欄を 0 としました"_s.arg(column)];
    else
        field = inRange<std::int16_t>(wholeNumber(value));
}

template <class T> void take(const jet::Value& value, std::optional<T>& field, const QString&, Notes&) {
    const auto* text = std::get_if<QString>(&value);
    if (!std::holds_alternative<std::monostate>(value) && !(text && text->isEmpty()))
        field = inRange<T>(wholeNumber(value));
}

void take(const jet::Value& value, QString& field, const QString&, Notes&) {
    if (const auto* text = std::get_if<QString>(&value))
        field = text->isNull() ? u""_s : *text;
    else if (!std::holds_alternative<std::monostate>(value))
        field = QString::number(wholeNumber(value));
}

void take(const jet::Value& value, QDate& field, const QString& column, Notes& notes) {
    if (const auto* moment = std::get_if<jet::Moment>(&value)) {
        // Before the zero date, too, the fraction counts forward from the day's beginning.
        const double day = std::trunc(moment->days);
        constexpr double farthest = 1e6;
        if (std::abs(day) < farthest)
            field = values::zeroDate().addDays(static_cast<qint64>(day));
        if (!values::makeDate(field.year(), field.month(), field.day()))
            throw Refused{u"日付が範囲外です"_s};
        if (day != moment->days)
            ++notes[u"%1: 時刻を除きました"_s.arg(column)];
    } else if (const auto* text = std::get_if<QString>(&value)) {
        if (text->isEmpty())
            return;
        const auto date = values::readDate(*text);
        if (!date)
            throw Refused{u"日付「%1」を読めません"_s.arg(*text)};
        field = *date;
    } else if (!std::holds_alternative<std::monostate>(value)) {
        throw Refused{u"日付ではありません"_s};
    }
}

class Conversion {
  public:
    Conversion(jet::Database& old, store::Database& target) : old_(old), target_(target) {}

    bool knows(const QString& name) const { return find(name) != nullptr; }
    bool complete() const { return complete_; }

    template <class Row> void run() {
        const QString name = QString::fromUtf8(store::Description<Row>::table);
        const auto* table = find(name);
        if (!table) {
            fail(u"%1: 表がありません。"_s.arg(name));
            return;
        }
        const auto places = placesOf<Row>(*table);
        target_.engine().exec(std::string("DELETE FROM ") + store::Description<Row>::table);
        int read = 0;
        int written = 0;
        Notes notes;
        old_.read(*table, [&](const std::vector<jet::Value>& values) {
            ++read;
            try {
                insert<Row>(values, places, notes);
                ++written;
            } catch (const Refused& refused) {
                fail(u"%1 %2 行目（%3）: %4"_s.arg(name).arg(read).arg(shown(values), refused.reason));
            }
        });
        for (const auto& [note, rows] : notes)
            say(stdout, u"%1（%2 行）"_s.arg(note).arg(rows));
        if (read != table->rows)
            fail(u"%1: ファイルには %2 行とありますが、%3 行しか読めませんでした。"_s.arg(name)
                     .arg(table->rows)
                     .arg(read));
        say(stdout, u"%1: 元 %2 行 → 新 %3 行"_s.arg(name).arg(table->rows).arg(countOf(name)));
    }

  private:
    const jet::Table* find(const QString& name) const {
        for (const auto& table : old_.tables())
            if (table.name.compare(name, Qt::CaseInsensitive) == 0)
                return &table;
        return nullptr;
    }

    void fail(const QString& line) {
        say(stdout, line);
        complete_ = false;
    }

    int countOf(const QString& table) {
        return target_.engine().execAndGet("SELECT count(*) FROM " + table.toStdString()).getInt();
    }

    // The first values of a row, by which the user finds it.
    static QString shown(const std::vector<jet::Value>& values) {
        QStringList texts;
        for (const jet::Value& value : values) {
            if (const auto* text = std::get_if<QString>(&value))
                texts << *text;
            else if (const auto* number = std::get_if<qint64>(&value))
                texts << QString::number(*number);
            if (texts.size() == 5)
                break;
        }
        return texts.join(u"、"_s);
    }

    // Whether a step of the layout brought the column: a register of the older format has none.
    static bool cameLater(const QString& column) {
        const QRegularExpression added(u"\\bADD COLUMN %1\\s"_s.arg(column));
        return std::ranges::any_of(store::upgradeSteps(),
                                   [&](const char* step) { return QString::fromUtf8(step).contains(added); });
    }

    // Where the older table holds each field; nothing where it has no such column.
    template <class Row> std::vector<std::optional<std::size_t>> placesOf(const jet::Table& table) {
        std::vector<std::optional<std::size_t>> places;
        std::vector<bool> used(table.columns.size());
        std::apply(
            [&](auto... field) {
                const auto place = [&](const QString& name) {
                    auto& found = places.emplace_back();
                    for (std::size_t i = 0; i < table.columns.size(); ++i)
                        if (table.columns[i].name.compare(name, Qt::CaseInsensitive) == 0)
                            found = i;
                    if (found)
                        used[*found] = true;
                    else if (!cameLater(name))
                        fail(u"%1: 列 %2 がありません。空欄にします。"_s.arg(table.name, name));
                };
                (place(QString::fromUtf8(field.name)), ...);
            },
            store::Description<Row>::fields);
        for (std::size_t i = 0; i < used.size(); ++i)
            if (!used[i])
                fail(u"%1: 列 %2 は登録簿にない列です。移しません。"_s.arg(table.name, table.columns[i].name));
        return places;
    }

    template <class Row>
    void insert(const std::vector<jet::Value>& values, const std::vector<std::optional<std::size_t>>& places,
                Notes& notes) {
        Row row;
        Notes rowNotes;
        std::apply(
            [&](auto... field) {
                std::size_t at = 0;
                const auto one = [&](const char* name, auto& member) {
                    const auto place = places[at++];
                    if (!place)
                        return;
                    const QString column = QString::fromUtf8(name);
                    try {
                        if (const auto* unreadable = std::get_if<jet::Unreadable>(&values[*place]))
                            throw Refused{unreadable->reason};
                        take(values[*place], member, column, rowNotes);
                    } catch (const Refused& refused) {
                        throw Refused{column + u": "_s + refused.reason};
                    }
                };
                (one(field.name, row.*(field.member)), ...);
            },
            store::Description<Row>::fields);
        write(row);
        for (const auto& [note, rows] : rowNotes)
            notes[note] += rows;
    }

    // Null texts stay Null; in a key they are empty texts, because a key is never Null.
    template <class Row> void write(const Row& row) {
        std::string marks;
        std::apply([&](auto... field) { ((static_cast<void>(field), marks += marks.empty() ? "?" : ", ?"), ...); },
                   store::Description<Row>::fields);
        SQLite::Statement statement(target_.engine(), std::string("INSERT INTO ") + store::Description<Row>::table +
                                                          " (" + columns<Row>() + ") VALUES (" + marks + ")");
        std::apply(
            [&](auto... field) {
                int at = 0;
                const auto bind = [&](const char* name, const auto& value) {
                    ++at;
                    if constexpr (std::is_same_v<std::decay_t<decltype(value)>, QString>)
                        if (value.isNull() && !needed(store::Description<Row>::table, name))
                            return statement.bind(at);
                    store::bindValue(statement, at, value);
                };
                (bind(field.name, row.*(field.member)), ...);
            },
            store::Description<Row>::fields);
        try {
            statement.exec();
        } catch (const SQLite::Exception& failure) {
            if (failure.getExtendedErrorCode() == SQLITE_CONSTRAINT_UNIQUE)
                throw Refused{u"同じ番号・名前の行が既にあります"_s};
            if ((failure.getErrorCode() & 0xff) == SQLITE_CONSTRAINT)
                throw Refused{QString::fromUtf8(failure.what())};
            throw;
        }
    }

    template <class Row> static std::string columns() {
        std::string names;
        std::apply([&](auto... field) { ((names += (names.empty() ? "" : ", ") + std::string(field.name)), ...); },
                   store::Description<Row>::fields);
        return names;
    }

    bool needed(const char* table, const char* column) {
        const auto [known, fresh] = needed_.try_emplace(column);
        if (fresh) {
            SQLite::Statement info(target_.engine(), "SELECT \"notnull\" FROM pragma_table_info(?) WHERE name = ?");
            info.bind(1, table);
            info.bind(2, column);
            known->second = info.executeStep() && info.getColumn(0).getInt() != 0;
        }
        return known->second;
    }

    jet::Database& old_;
    store::Database& target_;
    std::map<std::string, bool> needed_;
    bool complete_ = true;
};

// The address sanitizer's shadow takes terabytes of addresses.
#if defined(__SANITIZE_ADDRESS__)
#define HOSHIREN_SHADOWED
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define HOSHIREN_SHADOWED
#endif
#endif

constexpr int notWhole = 3; // status of the converting process: the register is made, something was not taken

// Far more than a whole register takes.
int secondsFor(qint64 bytes) {
    return static_cast<int>(60 + std::min<qint64>(bytes >> 20, 3600));
}

#ifdef Q_OS_UNIX
void limitProcess(int seconds) {
    const auto limit = [](auto resource, rlim_t most) {
        const rlimit bound{most, most};
        setrlimit(resource, &bound);
    };
    limit(RLIMIT_CPU, static_cast<rlim_t>(seconds));
    limit(RLIMIT_CORE, 0);
#ifndef HOSHIREN_SHADOWED
    limit(RLIMIT_AS, rlim_t{1} << 30);
#endif
}
#endif

// Runs the conversion in a process of its own, so that a file that no check foresaw takes nothing with it. Gives its
// status; what kept it from making a register is told.
int convertApart(const QString& file, const QString& draft) {
    const int seconds = secondsFor(QFileInfo(file).size());
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedChannels);
#ifdef Q_OS_UNIX
    process.setChildProcessModifier([seconds] { limitProcess(seconds); });
#endif
    process.start(QCoreApplication::applicationFilePath(), {u"convert-apart"_s, file, draft});
    const bool ended = process.waitForFinished(seconds * 1000);
    if (!ended) {
        process.kill();
        process.waitForFinished();
    }
    if (!ended || process.exitStatus() != QProcess::NormalExit)
        throw store::Error(0,
                           u"「%1」を読む作業が途中で終わりました。ファイルが壊れているか、大きすぎます。新しい登録簿は"
                           "作られていません。元のファイルはそのままです。その控えがあれば、控えで試して下さい。"_s.arg(
                               QDir::toNativeSeparators(file)));
    return process.exitCode();
}

} // namespace

int convertInto(const QString& file, const QString& draft) {
    QFile source(file);
    if (!source.open(QIODevice::ReadOnly))
        throw store::Error(0, u"「%1」を読めません。読み取りの許可を確認して下さい。\n\n（%2）"_s.arg(
                                  QDir::toNativeSeparators(file), source.errorString()));
    jet::Database old(source);
    store::createRegister(draft);
    store::Database target(draft);
    store::Write write(target);
    Conversion conversion(old, target);
    if (!conversion.knows(u"tbl_danka"_s))
        throw store::Error(0, u"登録簿の表（tbl_danka）がありません。登録簿のファイルか確認して下さい。"_s);
    store::forEachTable([&conversion]<class Row>() { conversion.run<Row>(); });
    write.commit();
    QStringList faults;
    store::findFaults(target, faults);
    for (const QString& fault : faults)
        say(stdout, fault);
    say(stdout, faults.isEmpty() ? u"新しい登録簿に異常はありません。"_s
                                 : u"新しい登録簿に %1 件の異常があります。"_s.arg(faults.size()));
    return conversion.complete() && faults.isEmpty() ? 0 : notWhole;
}

int convertRegister(const QString& file) {
    const QFileInfo info(file);
    const QString path = info.absolutePath() + u'/' + info.completeBaseName() + u"-new.mdb"_s;
    if (!info.exists())
        throw store::Error(0, u"「%1」がありません。"_s.arg(QDir::toNativeSeparators(file)));
    if (!info.isFile())
        throw store::Error(0, u"「%1」は普通のファイルではありません。"_s.arg(QDir::toNativeSeparators(file)));
    if (QFileInfo::exists(path))
        throw store::Error(0, u"「%1」は既にあります。上書きはしません。"_s.arg(QDir::toNativeSeparators(path)));
    // The draft has a folder of its own, which goes with all that is in it, however the run ends.
    const QTemporaryDir folder(path + u".XXXXXX"_s);
    const QString draft = folder.filePath(u"register.mdb"_s);
    const auto cannotMake = [&] {
        return store::Error(
            0, u"「%1」を作れません。書き込みの許可を確認して下さい。"_s.arg(QDir::toNativeSeparators(path)));
    };
    if (!folder.isValid())
        throw cannotMake();
    const int status = convertApart(info.absoluteFilePath(), draft);
    if (status != 0 && status != notWhole)
        return status;
    if (!QFile::rename(draft, path))
        throw cannotMake();
    store::syncFolder(info.absolutePath());
    say(stdout, u"新しい登録簿を作りました: %1"_s.arg(QDir::toNativeSeparators(path)));
    if (status == notWhole)
        say(stdout, u"移せなかったものがあります。上の行を確認して下さい。元のファイルはそのままです。"_s);
    say(stdout,
        u"登録簿の場所で次の命令を実行すると、これが登録簿になります（今の Hoshiren.mdb は backup に残ります）:\n"
        "  hoshiren-db restore %1"_s.arg(QDir::toNativeSeparators(QFileInfo(path).fileName())));
    return status == 0 ? 0 : 1;
}
