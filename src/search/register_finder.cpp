#include "search/register_finder.h"

#include "search/found_rules.h"
#include "store/own_changes.h"
#include "store/row_rules.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace search {

namespace {

constexpr std::chrono::milliseconds betweenLooks{250};
// Rows of one's own that are looked up before a search; the thread is quicker with more.
constexpr std::size_t mostLookedUp = 32;

// One line: the engine's own words are for a message box.
QString inShort(const std::exception& failure) {
    return store::explain(failure).section(u'\n', 0, 0);
}

bool isSearched(const QByteArray& table) {
    return std::ranges::any_of(std::array{Kind::household, Kind::member, Kind::grave, Kind::death},
                               [&table](Kind kind) { return table == searchedTable(kind).table; });
}

} // namespace

RegisterFinder::RegisterFinder(std::function<bool()> resting, std::chrono::milliseconds wait)
    : resting_(std::move(resting)) {
    timer_.callOnTimeout(&receiver_, [this] { look(); });
    timer_.start(wait);
}

RegisterFinder::~RegisterFinder() {
    stopped_ = true;
    if (thread_.joinable())
        thread_.join();
}

void RegisterFinder::look() {
    timer_.start(betweenLooks);
    if (reading_ || (resting_ && resting_()))
        return;
    forgetReplaced();
    if (std::exchange(readAtOnce_, false) || !(store::registerState(store::Database::registerPath()) == state_))
        read();
}

void RegisterFinder::read() {
    if (thread_.joinable())
        thread_.join();
    reading_ = true;
    readingUpTo_ = store::ownChanges(0).upTo;
    const QString path = store::Database::registerPath();
    thread_ = std::thread([this, path, former = texts_] {
        Outcome outcome;
        outcome.state = store::registerState(path);
        try {
            outcome.reading = readRegister(path, former.get(), [this] { return stopped_.load(); });
        } catch (const SQLite::Exception& failure) {
            outcome.failure = inShort(failure);
            outcome.again = (failure.getErrorCode() & 0xff) == SQLITE_BUSY;
        } catch (const std::exception& failure) {
            outcome.failure = inShort(failure);
        }
        QMetaObject::invokeMethod(
            &receiver_, [this, outcome = std::move(outcome)]() mutable { take(std::move(outcome)); },
            Qt::QueuedConnection);
    });
}

void RegisterFinder::take(Outcome outcome) {
    reading_ = false;
    // What was read before serves while the file is in use.
    failure_ = outcome.again && texts_ ? QString() : outcome.failure;
    state_ = outcome.state;
    state_.settled = state_.settled && !outcome.again;
    if (outcome.reading) {
        texts_ = std::move(outcome.reading->texts);
        unreadable_ = outcome.reading->unreadable;
        changesUpTo_ = readingUpTo_;
        changedOwners_.clear();
        newer_.reset();
        leftOut_.clear();
    }
    ++revision_;
}

// Another file under the register's name: what was read is not its.
void RegisterFinder::forgetReplaced() {
    if (!texts_ || store::registerIdentity() == state_.file)
        return;
    texts_.reset();
    newer_.reset();
    changedOwners_.clear();
    leftOut_.clear();
    failure_.clear();
    readAtOnce_ = true;
    ++revision_;
}

// Reads anew what belongs to the households whose rows this program has written. Where that cannot be done now, the
// next search tries again.
void RegisterFinder::followOwnChanges() {
    store::OwnChanges changes = store::ownChanges(changesUpTo_);
    if (changes.upTo == changesUpTo_ || !texts_)
        return;
    std::erase_if(changes.rows, [](const store::ChangedRow& row) { return !isSearched(row.table); });
    if (changes.everything || changes.rows.size() > mostLookedUp) {
        readAtOnce_ = !reading_ || readingUpTo_ != changes.upTo;
        if (readAtOnce_)
            look();
        return;
    }
    const QString path = store::Database::registerPath();
    try {
        std::vector<int> owners = changedOwners_;
        for (const store::ChangedRow& row : changes.rows) {
            for (const auto& owner : {texts_->ownerOfRow(row.table.constData(), row.rowid),
                                      newer_ ? newer_->ownerOfRow(row.table.constData(), row.rowid) : std::nullopt,
                                      readOwnerOf(path, row.table, row.rowid)}) {
                if (owner && std::ranges::find(owners, *owner) == owners.end())
                    owners.push_back(*owner);
            }
        }
        if (!owners.empty()) {
            newer_ = readOwners(path, owners);
            leftOut_ = texts_->unitsOf(owners);
        }
        changedOwners_ = std::move(owners);
        changesUpTo_ = changes.upTo;
    } catch (const std::exception&) {
        // The reading that follows tells what is wrong with the file.
    }
}

desk::FoundList RegisterFinder::find(const QString& typed) {
    desk::FoundList list;
    const auto words = foldedWords(typed);
    if (words.empty())
        return list;
    forgetReplaced();
    if (readAtOnce_)
        look();
    followOwnChanges();
    if (!texts_) {
        list.note = failure_.isEmpty() ? u"登録簿を読んでいます。少しお待ち下さい。"_s : failure_;
        return list;
    }
    struct Place {
        const Texts* texts;
        Candidate candidate;
    };
    std::vector<Place> best;
    std::size_t count = 0;
    const auto take = [&](const Texts& texts, const std::vector<bool>& leftOut) {
        std::vector<Candidate> found = texts.search(words, leftOut);
        count += found.size();
        const auto order = [&texts](Candidate candidate) { return texts.placeOf(candidate); };
        const auto kept = std::min<std::ptrdiff_t>(mostLines, static_cast<std::ptrdiff_t>(found.size()));
        std::ranges::nth_element(found, found.begin() + kept, {}, order);
        for (auto one = found.begin(); one != found.begin() + kept; ++one)
            best.push_back({&texts, *one});
    };
    take(*texts_, leftOut_);
    if (newer_)
        take(*newer_, {});
    std::ranges::sort(best, [](const Place& one, const Place& other) {
        return Texts::before(*one.texts, one.candidate, *other.texts, other.candidate);
    });
    if (best.size() > mostLines)
        best.resize(mostLines);
    for (const Place& place : best)
        list.lines.push_back(lineOf(*place.texts, place.candidate.record, words));
    list.more = static_cast<int>(count - best.size());
    if (!failure_.isEmpty())
        list.note = failure_;
    else if (unreadable_ > 0)
        list.note =
            u"登録簿に読めない記録があり、その檀家さん・お墓（%1件）は探せません。「hoshiren-db check」で確認して下さい。"_s
                .arg(unreadable_);
    else if (list.lines.empty())
        list.note = u"見つかりません。"_s;
    return list;
}

desk::FoundLine RegisterFinder::lineOf(const Texts& texts, std::uint32_t record,
                                       const std::vector<std::u16string>& words) const {
    const Kind kind = texts.kind(record);
    const std::size_t nameField = searchedTable(kind).name;
    const auto text = [&](std::size_t field) { return texts.stored(record, field); };
    const auto withMore = [](const QString& name, const QString& more) {
        return more.isEmpty() ? name : u"%1（%2）"_s.arg(name, more);
    };
    desk::FoundLine line;
    line.kind = static_cast<int>(kind);
    line.rowid = texts.rowid(record);
    line.number = QString::number(texts.number(record));
    line.name = text(nameField);
    line.matched = texts.matched(record, words);
    switch (kind) {
    case Kind::household:
        line.what = u"檀家"_s;
        if (texts.branch(record) != store::codes::mainHousehold)
            line.number += u'-' + QString::number(texts.branch(record));
        line.name = withMore(line.name, text(nameField + 2)); // the head
        break;
    case Kind::member:
        line.what = u"家族"_s;
        break;
    case Kind::departed:
        line.what = u"家族（故人）"_s;
        break;
    case Kind::grave:
        line.what = u"お墓"_s;
        line.name = withMore(line.name, (text(1) + u' ' + text(2)).trimmed()); // section and lot
        break;
    case Kind::death:
        line.what = u"過去帳"_s;
        line.name = withMore(line.name, text(nameField + 2)); // the posthumous name
        break;
    }
    return line;
}

void RegisterFinder::open(const desk::FoundLine& line, desk::ScreenContext& context, desk::Desk& desk) {
    openFound(static_cast<Kind>(line.kind), line, context, desk);
}

} // namespace search
