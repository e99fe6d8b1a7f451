#include "transfer/bulk_import.h"

#include "desk/safety_copy.h"
#include "store/bulk_writes.h"
#include "transfer/bulk_file.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace transfer {

const QString noInput = u"入力ファイルを指定して下さい。"_s;
const QString noOutput = u"出力ファイルを指定して下さい。"_s;
const QString registersFile = u"登録簿のファイルは指定できません。別のファイルを指定して下さい"_s;
const QString backupsPlace = u"控えの場所（backup フォルダー）には出力できません。別のフォルダーを指定して下さい"_s;
const QString badHouseholdNumber = u"檀家番号を正しく入力して下さい"_s;

bool refusedIf(bool wrong, const QString& message, const QString& title, desk::Desk& desk) {
    if (wrong)
        desk.notify(message, title, desk::Icon::none);
    return wrong;
}

Stored rejected(BulkRecord& record, const QString& message, std::initializer_list<int> numbers) {
    record.reject(message, numbers);
    return Stored::rejected;
}

namespace {

// Records that share one commit. Commits of their own would take longer than all the rest; nothing is counted as stored
// before its commit.
constexpr int recordsPerCommit = 16;

class Run {
  public:
    Run(const ImportJob& job, QFile& input, ErrorFile& errors, store::Database& database, ImportCounts& counts,
        desk::Desk& desk)
        : job_(job), errors_(errors), database_(database), reader_(input, job.fieldCount), size_(input.size()),
          target_(job.open(database)), progress_(desk.progress(job.title)), counts_(counts) {}

    // False when the user has cancelled.
    bool all() {
        BulkRecord record;
        for (bool more = true; more;) {
            store::Write write(database_);
            for (int i = 0; i < recordsPerCommit && (more = reader_.next(record)); ++i)
                take(record);
            target_->settle();
            write.commit();
            counts_ = reading_;
            if (!progress_->advance(percent(), status()) && more)
                return false;
        }
        return true;
    }

  private:
    void take(BulkRecord& record) {
        ++reading_.read;
        if (!record.rejected())
            target_->check(record);
        if (!record.rejected())
            reading_.changed += target_->store(record) == Stored::asChange;
        if (record.rejected()) {
            ++reading_.rejected;
            errors_.write(record.errorLine(job_.errorFields));
        }
    }

    int percent() const { return size_ > 0 ? static_cast<int>(reader_.bytesRead() * 100 / size_) : 100; }
    QString status() const { return u"登録 %1 件　エラー %2 件"_s.arg(counts_.stored()).arg(counts_.rejected); }

    const ImportJob& job_;
    ErrorFile& errors_;
    store::Database& database_;
    BulkReader reader_;
    const qint64 size_;
    std::unique_ptr<ImportTarget> target_;
    std::unique_ptr<desk::Progress> progress_;
    ImportCounts reading_;
    ImportCounts& counts_; // of what has been committed
};

QString report(const ImportJob& job, const ImportCounts& counts) {
    if (counts.rejected > 0)
        return job.subject + u"%1 件中 %2 がエラーで登録されませんでした"_s.arg(counts.read).arg(counts.rejected);
    return job.subject + u"%1 件を登録しました"_s.arg(counts.read);
}

// A table must not be emptied for records that no number can be issued to.
bool numberLeft(const QString& kind) {
    store::Database database;
    return desk::Counter(database, kind).propose().has_value();
}

// Whether the register holds anything that the office has entered.
bool inUse() {
    store::Database database;
    return database.engine()
               .execAndGet("SELECT EXISTS (SELECT 1 FROM tbl_danka) OR EXISTS (SELECT 1 FROM tbl_kazoku) OR "
                           "EXISTS (SELECT 1 FROM tbl_kakocho) OR EXISTS (SELECT 1 FROM tbl_ohaka) OR "
                           "EXISTS (SELECT 1 FROM tbl_hohyo)")
               .getInt() != 0;
}

} // namespace

std::optional<std::int16_t> ImportCounter::next() {
    if (!last_)
        return counter_.propose();
    if (*last_ == std::numeric_limits<std::int16_t>::max())
        return {};
    return static_cast<std::int16_t>(*last_ + 1);
}

void ImportCounter::settle() {
    if (last_)
        counter_.raise(*last_);
    last_.reset();
    counter_.release();
}

std::optional<ImportCounts> importRecords(const ImportJob& job, desk::Desk& desk) {
    const QString registered = store::Database::registerPath();
    if (refusedIf(belongsToRegister(job.input, registered) || belongsToRegister(job.errors, registered), registersFile,
                  job.title, desk) ||
        refusedIf(inBackupFolder(job.errors, registered), backupsPlace, job.title, desk) ||
        refusedIf(sameFile(job.input, job.errors),
                  u"入力ファイルと出力ファイルが同じです。別のファイルを指定して下さい"_s, job.title, desk))
        return {};
    QFile input(job.input);
    openInput(input);
    ErrorFile errors(job.errors);
    errors.check();
    if (!job.emptyingTable.empty() && !numberLeft(job.kind)) {
        desk.notify(desk::noNumberLeft, job.title);
        return {};
    }
    if (!job.question.isEmpty() && !desk.ask(job.question, job.title, desk::Preset::no))
        return {};
    if (inUse() && !desk::copyBefore(desk, job.title))
        return {};

    store::Database database;
    store::BulkWrites bulk(database);
    errors.open();
    if (!job.emptyingTable.empty())
        database.engine().exec(job.emptyingTable);
    ImportCounts counts;
    bool complete = false;
    try {
        {
            Run run(job, input, errors, database, counts, desk);
            complete = run.all();
        }
        bulk.finish();
    } catch (const std::exception& failure) {
        throw store::Error(0, store::explain(failure) +
                                  u"\n\n%1 件目までは処理済みです（登録 %2 件、エラー %3 件）。"_s.arg(counts.read)
                                      .arg(counts.stored())
                                      .arg(counts.rejected));
    }
    desk.notify((complete ? QString() : u"途中で中止しました。\n"_s) + report(job, counts), job.title,
                desk::Icon::none);
    desk.inform(u"新しい記録 %1 件、書き換えた記録 %2 件"_s.arg(counts.stored() - counts.changed).arg(counts.changed));
    return counts;
}

} // namespace transfer
