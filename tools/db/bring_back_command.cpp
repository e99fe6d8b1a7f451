#include "commands.h"

#include "desk/bring_back.h"
#include "store/backup.h"
#include "store/comparison.h"
#include "store/copy_source.h"
#include "store/kept_deletion.h"
#include "values/numbers.h"

#include <QDir>
#include <QFileInfo>
#include <QTextStream>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int usageStatus = 2;

const QString graves = u"お墓"_s;
const QString everything = u"全部"_s;

// Speaks in the terminal; a question is answered on the standard input, and はい has to be written out.
class TerminalDesk : public desk::Desk {
  public:
    void notify(const QString& text, const QString&, desk::Icon) override { say(stdout, text); }
    bool ask(const QString& text, const QString&, desk::Preset) override {
        say(stdout, text + u"（はい・いいえ）"_s);
        return QTextStream(stdin).readLine().trimmed() == u"はい"_s;
    }
    void inform(const QString& text) override { say(stdout, text); }
    QDate today() const override { return QDate::currentDate(); }
    void open(const QString&, desk::Opening, std::function<void()>) override {}
    void close() override {}
    std::unique_ptr<desk::Progress> progress(const QString&) override {
        struct Silent : desk::Progress {
            bool advance(int, const QString&) override { return true; }
        };
        return std::make_unique<Silent>();
    }
};

QString shortPath(const QString& path) {
    return QDir::toNativeSeparators(QDir::current().relativeFilePath(path));
}

int listSources() {
    const int status = listBackups();
    for (const store::KeptDeletion& one : store::deletionsOf(store::Database::registerPath()))
        say(stdout, u"%1　%2　%3　%4"_s.arg(one.made.toString(u"yyyy/MM/dd HH:mm:ss"), one.what, one.label,
                                            shortPath(one.path)));
    return status;
}

QString howText(store::Difference::How how) {
    switch (how) {
    case store::Difference::How::onlyInCopy:
        return u"控えだけ"_s;
    case store::Difference::How::onlyNow:
        return u"今だけ"_s;
    case store::Difference::How::other:
        return u"違う"_s;
    case store::Difference::How::same:
        break;
    }
    return u"同じ"_s;
}

int showDifferences(store::CopySource& source) {
    const auto differences = store::compareWithNow(source, store::Database::registerPath());
    for (const store::Difference& one : *differences)
        say(stdout, u"%1　%2　%3　%4　%5"_s
                        .arg(howText(one.how), store::kindText(one.kind),
                             one.household == 0 ? QString() : QString::number(one.household), one.name, one.what)
                        .trimmed());
    say(stdout, differences->empty() ? u"控えと今の登録簿に違いはありません。"_s
                                     : u"控えと今の登録簿の違い: %1 件"_s.arg(differences->size()));
    return 0;
}

template <class Row>
void addNamed(store::Records& records, store::CopySource& source, store::RecordKind kind, const std::string& condition,
              std::int16_t number, const QString& name) {
    SQLite::Statement rows(source.database().engine(), std::string("SELECT rowid FROM ") +
                                                           store::Description<Row>::table + " WHERE " + condition +
                                                           " ORDER BY rowid");
    store::bindValue(rows, 1, int{number});
    store::bindValue(rows, 2, name);
    while (rows.executeStep())
        records.add(source.record(kind, rows.getColumn(0).getInt64()));
}

// What the arguments behind the file name; nothing where they name nothing that could be.
std::optional<store::Records> chosen(store::CopySource& source, const QStringList& arguments) {
    using enum store::RecordKind;
    if (arguments == QStringList{everything})
        return source.isDeletion() ? std::optional(store::takenBy(source.database())) : std::nullopt;
    const bool ofGrave = arguments.size() == 2 && arguments[0] == graves;
    const auto number = values::readKeyNumber(arguments[ofGrave ? 1 : 0]);
    if (!number || *number < 1 || arguments.size() > 2)
        return {};
    store::Records records;
    if (arguments.size() == 1)
        return source.household(*number);
    if (ofGrave) {
        addNamed<store::tbl_ohaka>(records, source, grave, "tblhak_no = ? AND ? <> ''", *number, graves);
        return records;
    }
    addNamed<store::tbl_kazoku>(records, source, member, "tblkzk_no1 = ? AND tblkzk_nameg = ?", *number, arguments[1]);
    addNamed<store::tbl_kakocho>(records, source, deceased, "tblkak_no = ? AND tblkak_zokunameg = ?", *number,
                                 arguments[1]);
    return records;
}

// Looked over when it was made.
bool isProven(const store::CopySource& source) {
    const QString path = QFileInfo(source.path()).canonicalFilePath();
    return source.isDeletion() ||
           std::ranges::any_of(store::backupsOf(store::Database::registerPath()), [&path](const store::Backup& copy) {
               return store::isProven(copy) && QFileInfo(copy.path).canonicalFilePath() == path;
           });
}

} // namespace

int bringBack(const QStringList& arguments) {
    if (arguments.isEmpty())
        return listSources();
    store::CopySource source(arguments.first());
    if (arguments.size() == 1)
        return showDifferences(source);
    if (!isProven(source))
        source.prove([](int) { return true; });
    std::optional<store::Records> records;
    source.reading([&] { records = chosen(source, arguments.mid(1)); });
    if (!records)
        return usageStatus;
    if (records->size() == 0) {
        say(stderr, u"控えにその記録はありません。何も変えていません。"_s);
        return 1;
    }
    TerminalDesk terminal;
    store::Database database;
    const desk::BroughtBack result = desk::bringBack(database, *records, terminal, {});
    say(stdout, result.stopped ? u"何も変えていません。"_s : desk::toldOf(result));
    return result.stopped || !result.left.isEmpty() ? 1 : 0;
}
