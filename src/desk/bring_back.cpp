#include "desk/bring_back.h"

#include "desk/numbering.h"
#include "store/copy_source.h"

#include <QFile>

#include <algorithm>
#include <map>

using namespace Qt::StringLiterals;

namespace desk {

namespace {

using store::HouseholdThen;
using store::Records;
using store::Was;

// The row's copies of its household's names.
template <class Row> struct NameCopies {
    QString Row::*nameg;
    QString Row::*namek;
    QString Row::*kanaidx;
};
template <class Row> inline constexpr std::nullptr_t nameCopies = nullptr;
template <>
inline constexpr NameCopies<store::tbl_kazoku> nameCopies<store::tbl_kazoku>{
    &store::tbl_kazoku::tblkzk_dnknameg, &store::tbl_kazoku::tblkzk_dnknamek, &store::tbl_kazoku::tblkzk_kanaidx};
template <>
inline constexpr NameCopies<store::tbl_kakocho> nameCopies<store::tbl_kakocho>{
    &store::tbl_kakocho::tblkak_dnknameg, &store::tbl_kakocho::tblkak_dnknamek, &store::tbl_kakocho::tblkak_kanaidx};
template <>
inline constexpr NameCopies<store::tbl_hohyo> nameCopies<store::tbl_hohyo>{
    &store::tbl_hohyo::tblhoy_danknameg, &store::tbl_hohyo::tblhoy_danknamek, &store::tbl_hohyo::tblhoy_kanaidx};
template <>
inline constexpr NameCopies<store::tbl_ohaka> nameCopies<store::tbl_ohaka>{
    &store::tbl_ohaka::tblhak_dnk_nameg, &store::tbl_ohaka::tblhak_dnk_namek, &store::tbl_ohaka::tblhak_kanaidx};

// What becomes of the rows of one household number.
struct Household {
    std::int16_t number = 0; // in the register
    QString refusal;         // why they are left; empty where they are not
    bool taken = false;      // the number is another household's: a new one is needed
    HouseholdThen then;
    QString takenBy;
    std::optional<HouseholdThen> renamed; // as it is called now
};

Household standingOf(store::Database& database, const Records& records, std::int16_t number) {
    Household household;
    household.number = number;
    const auto then = std::ranges::find(records.households, number, &HouseholdThen::number);
    const bool known = then != records.households.end();
    if (known)
        household.then = *then;
    bool comesBack = false;     // a household's own row is among the records
    bool comesBackMain = false; // that of the household which is no branch
    for (const auto& was : records.of<store::tbl_danka>()) {
        comesBack = comesBack || was.row.tbldnk_no1 == number;
        comesBackMain =
            comesBackMain || (was.row.tbldnk_no1 == number && was.row.tbldnk_no2 == store::codes::mainHousehold);
    }
    const auto now = store::householdOf(database, number);
    if (!now) {
        if (known && !comesBack)
            household.refusal =
                u"檀家 %1（%2）が今の登録簿にありません。先に檀家を戻して下さい"_s.arg(number).arg(then->nameg);
        return household;
    }
    if (known && areSame(*then, *now)) {
        if (then->nameg != now->nameg || then->namek != now->namek)
            household.renamed = *now;
        return household;
    }
    household.takenBy = now->nameg;
    if (comesBackMain)
        household.taken = true;
    else
        household.refusal = u"番号 %1 は今は別の檀家（%2）のものです"_s.arg(number).arg(now->nameg);
    return household;
}

// A number that no row of the register bears, at or after the proposed one.
std::optional<std::int16_t> freeNumber(store::Database& database, Counter& counter) {
    constexpr auto used = "SELECT 1 WHERE EXISTS (SELECT 1 FROM tbl_danka WHERE tbldnk_no1 = ?1) OR "
                          "EXISTS (SELECT 1 FROM tbl_kazoku WHERE tblkzk_no1 = ?1) OR "
                          "EXISTS (SELECT 1 FROM tbl_kakocho WHERE tblkak_no = ?1) OR "
                          "EXISTS (SELECT 1 FROM tbl_hohyo WHERE tblhoy_no = ?1) OR "
                          "EXISTS (SELECT 1 FROM tbl_ohaka WHERE tblhak_dnk_no = ?1)";
    for (;;) {
        const auto number = counter.propose();
        if (!number)
            return {};
        SQLite::Statement find(database.engine(), used);
        store::bindValue(find, 1, int{*number});
        if (!find.executeStep())
            return number;
        counter.raise(*number);
    }
}

template <class Row> std::vector<Row> rowsWithKeyOf(store::Database& database, const Row& row) {
    return std::apply(
        [&](auto... field) {
            std::string condition;
            ((condition += (condition.empty() ? "WHERE " : " AND ") + std::string(field.name) + " IS ?"), ...);
            return store::selectAll<Row>(database, condition, row.*(field.member)...);
        },
        store::keyIndex<Row>.fields);
}

bool isOccupied(const store::tbl_ohaka& grave) {
    return store::isInUse(grave) && grave.tblhak_bohyo_kbn != store::codes::vacantGrave;
}

bool samePlace(const store::tbl_ohaka& one, const store::tbl_ohaka& other) {
    return one.tblhak_banchi1 == other.tblhak_banchi1 && one.tblhak_banchi2 == other.tblhak_banchi2;
}

// Whether a grave is no more than what its disposal made of the other: by 廃棄, or when its household was erased.
bool isDisposalOf(const store::tbl_ohaka& now, const store::tbl_ohaka& then) {
    if (!store::isDisposed(now) || now.tblhak_dnk_no != store::codes::noHousehold)
        return false;
    store::tbl_ohaka disposed = then;
    disposed.tblhak_dnk_no = store::codes::noHousehold;
    disposed.tblhak_haiki_kbn = store::codes::yes;
    disposed.tblhak_haiki_ymd = now.tblhak_haiki_ymd;
    if (now == disposed)
        return true;
    store::tbl_ohaka vacant = store::givenBack(then, now.tblhak_haiki_ymd);
    vacant.tblhak_add_ymd = now.tblhak_add_ymd;
    return now == vacant;
}

// One run over the records: first it is decided what becomes of each, then all is written.
class Run {
  public:
    Run(store::Database& database, const Records& records) : database_(database), records_(records) {
        records.forEach([this](const auto& rows) {
            for (const auto& was : rows)
                if (const std::int16_t number = store::numberOf(was.row); number != 0 && !households_.contains(number))
                    households_[number] = standingOf(database_, records_, number);
        });
    }

    // Of the household whose number is another's by now; null where there is none.
    Household* needsNumber() {
        for (auto& [number, household] : households_)
            if (household.taken)
                return &household;
        return nullptr;
    }

    BroughtBack write() {
        records_.forEach([this](const auto& rows) { decide(rows); });
        for (const auto& step : steps_)
            step();
        return result_;
    }

  private:
    template <class Row> void decide(const std::vector<Was<Row>>& rows) {
        for (const Was<Row>& was : rows) {
            Row row = was.row;
            if (const QString reason = moved(row); !reason.isEmpty()) {
                leave(was.row, reason);
                continue;
            }
            // Rows of a household that was renamed may still bear the names it had, which are part of their keys.
            Row former = was.row;
            moved(former, Names::asTheyWere);
            auto standing = rowsWithKeyOf(database_, row);
            if (!(former == row))
                std::ranges::copy(rowsWithKeyOf(database_, former), std::back_inserter(standing));
            if (std::ranges::find(standing, row) != standing.end() ||
                std::ranges::find(standing, former) != standing.end()) {
                ++result_.same;
                continue;
            }
            decide(was, row, standing);
        }
    }

    template <class Row> void decide(const Was<Row>& was, const Row& row, const std::vector<Row>& standing) {
        const auto instead = [&] {
            if constexpr (std::is_same_v<Row, store::tbl_ohaka>) {
                if (!was.became)
                    return std::ranges::find_if(standing, [&](const Row& now) { return isDisposalOf(now, was.row); });
            }
            if (!was.became)
                return standing.end();
            Row became = *was.became;
            moved(became);
            Row formerly = *was.became;
            moved(formerly, Names::asTheyWere);
            return std::ranges::find_if(standing, [&](const Row& now) { return now == became || now == formerly; });
        }();
        if constexpr (std::is_same_v<Row, store::tbl_ohaka>) {
            if (isOccupied(row) && placeIsTaken(row)) {
                leave(row, u"区画・番地には今は別のお墓があります"_s);
                return;
            }
        }
        if (instead != standing.end()) {
            steps_.push_back([this, row, now = *instead] {
                store::Table table(database_, store::keyIndex<Row>);
                for (bool found = table.seekKeysOf(now); found && !(table.row() == now); found = !table.eof())
                    table.moveNext();
                table.editAsRead(row);
            });
        } else if (standing.empty() && was.became) {
            leave(row, u"今の登録簿にありません"_s);
            return;
        } else if (standing.empty() || !hasWholeKey(row)) {
            steps_.push_back([this, row] { store::Table(database_, store::keyIndex<Row>).insertAsRead(row); });
        } else {
            leave(row, reasonFor(row, standing.front()));
            return;
        }
        result_.back << labelled(row);
    }

    // Rows without a value in a key field are not told apart by it.
    template <class Row> static bool hasWholeKey(const Row& row) {
        return std::apply(
            [&row](auto... field) {
                const auto given = [](const auto& key) {
                    if constexpr (std::is_arithmetic_v<std::decay_t<decltype(key)>>)
                        return true;
                    else
                        return !key.isNull();
                };
                return (given(row.*(field.member)) && ...);
            },
            store::keyIndex<Row>.fields);
    }

    template <class Row> QString reasonFor(const Row&, const Row&) const {
        return u"今の記録と違うため、今のものを残しました"_s;
    }
    QString reasonFor(const store::tbl_ohaka& then, const store::tbl_ohaka& now) const {
        if (!samePlace(then, now))
            return u"今は別の区画・番地のお墓です"_s;
        if (now.tblhak_dnk_no != store::codes::noHousehold && now.tblhak_dnk_no != then.tblhak_dnk_no)
            return u"今は檀家 %1 のお墓です"_s.arg(now.tblhak_dnk_no);
        return u"そのあと変更されたため、今のものを残しました"_s;
    }

    bool placeIsTaken(const store::tbl_ohaka& grave) const {
        return std::ranges::any_of(
            store::selectAll<store::tbl_ohaka>(database_, "WHERE tblhak_banchi1 IS ? AND tblhak_banchi2 IS ?",
                                               grave.tblhak_banchi1, grave.tblhak_banchi2),
            [&](const store::tbl_ohaka& other) { return other.tblhak_no != grave.tblhak_no && isOccupied(other); });
    }

    enum class Names { asTheyAre, asTheyWere };

    // Puts the row under its household's number and names in the register; the reason where it has to be left.
    template <class Row> QString moved(Row& row, Names names = Names::asTheyAre) const {
        const auto found = households_.find(store::numberOf(row));
        if (found == households_.end())
            return {};
        const Household& household = found->second;
        if (!household.refusal.isEmpty())
            return household.refusal;
        if constexpr (std::is_same_v<Row, store::tbl_danka>) {
            if (row.tbldnk_oyano == row.tbldnk_no1)
                row.tbldnk_oyano = household.number;
            row.tbldnk_no1 = household.number;
        } else if constexpr (requires { nameCopies<Row>.nameg; }) {
            constexpr auto copies = nameCopies<Row>;
            row.*store::householdNumber<Row> = household.number;
            if (names == Names::asTheyAre && household.renamed && row.*copies.nameg == household.then.nameg &&
                row.*copies.namek == household.then.namek) {
                row.*copies.nameg = household.renamed->nameg;
                row.*copies.namek = household.renamed->namek;
                row.*copies.kanaidx = store::kanaIndex(household.renamed->namek);
            }
        }
        return {};
    }

    template <class Row> void leave(const Row& row, const QString& reason) {
        result_.left << u"%1：%2"_s.arg(labelled(row), reason);
    }

    store::Database& database_;
    const Records& records_;
    std::map<std::int16_t, Household> households_;
    std::vector<std::function<void()>> steps_;
    BroughtBack result_;
};

} // namespace

BroughtBack bringBack(store::Database& database, const Records& records, Desk& desk, const QString& title) {
    // The number that the user agreed to: the question stands while nothing is locked.
    std::optional<std::int16_t> agreed;
    for (;;) {
        std::optional<std::int16_t> number;
        Household taken;
        bool needed = false;
        {
            store::Write write(database);
            Run run(database, records);
            if (Household* household = run.needsNumber()) {
                needed = true;
                Counter counter(database, store::codes::householdNumbers);
                number = freeNumber(database, counter);
                if (number && number == agreed) {
                    counter.commit(*number);
                    household->number = *number;
                }
                taken = *household;
            }
            if (!needed || (number && number == agreed)) {
                BroughtBack result = run.write();
                result.number = number;
                if (!result.back.isEmpty())
                    write.commit();
                return result;
            }
        }
        BroughtBack stopped;
        stopped.stopped = true;
        if (!number) {
            desk.notify(noNumberLeft, title);
            return stopped;
        }
        if (!desk.ask(u"番号 %1 は、今は別の檀家（%2）が使っています。\n「%3」を新しい番号 %4 で戻しますか？"_s
                          .arg(taken.then.number)
                          .arg(taken.takenBy, taken.then.nameg)
                          .arg(*number),
                      title, Preset::no))
            return stopped;
        agreed = number;
    }
}

BroughtBack undoDeletion(const QString& path, Desk& desk, const QString& title) {
    BroughtBack result;
    {
        store::CopySource source(path);
        const Records records = source.reading([&source] { return store::takenBy(source.database()); });
        store::Database database;
        result = bringBack(database, records, desk, title);
    }
    if (result.stopped)
        return result;
    if (result.left.isEmpty()) {
        // What stands in the register again needs no keeping.
        QFile::remove(path);
        desk.inform(toldOf(result));
    } else {
        desk.notify(toldOf(result), title);
    }
    return result;
}

QString toldOf(const BroughtBack& result) {
    constexpr qsizetype namesShown = 5;
    const auto some = [](const QStringList& all, qsizetype shown, const QString& between) {
        const QString text = all.first(std::min(shown, all.size())).join(between);
        return all.size() > shown ? text + between + u"ほか %1件"_s.arg(all.size() - shown) : text;
    };
    QString text;
    if (result.back.isEmpty())
        text = result.left.isEmpty() ? u"すべて今の登録簿にあります。何も変えていません。"_s
                                     : u"戻したものはありません。"_s;
    else
        text = u"元に戻しました（%1件）：%2"_s.arg(result.back.size()).arg(some(result.back, namesShown, u"、"_s));
    if (result.number)
        text += u"\n新しい番号は %1 です。"_s.arg(*result.number);
    if (!result.left.isEmpty()) {
        constexpr qsizetype reasonsShown = 15;
        text +=
            u"\n\n戻さなかったもの（%1件）：\n"_s.arg(result.left.size()) + some(result.left, reasonsShown, u"\n"_s);
    }
    return text;
}

} // namespace desk
