#include "search/texts.h"

#include "store/row_rules.h"

#include <algorithm>
#include <array>
#include <limits>
#include <unordered_map>

using namespace Qt::StringLiterals;

namespace search {

namespace {

constexpr char16_t fieldEnd = 0;
constexpr char16_t asFolded = 1;

// Where living members and households, graves and the dead come among equal matches.
unsigned rankOf(Kind kind) {
    switch (kind) {
    case Kind::household:
    case Kind::member:
        return 0;
    case Kind::grave:
        return 1;
    case Kind::departed:
    case Kind::death:
        break;
    }
    return 2;
}

// As a syllabary is ordered: voiced syllables with their unvoiced ones, unless nothing else differs. No reading comes
// last.
int compareReadings(std::u16string_view one, std::u16string_view other) {
    if (one.empty() || other.empty())
        return static_cast<int>(one.empty()) - static_cast<int>(other.empty());
    const auto [left, right] = std::ranges::mismatch(one, other, {}, syllable, syllable);
    if (left != one.end() && right != other.end())
        return syllable(*left) < syllable(*right) ? -1 : 1;
    if (left != one.end() || right != other.end())
        return left == one.end() ? -1 : 1;
    return one.compare(other);
}

} // namespace

const SearchedTable& searchedTable(Kind kind) {
    using store::columnOf;
    using enum Parts;
    static const SearchedTable households{store::Description<store::tbl_danka>::table,
                                          columnOf(&store::tbl_danka::tbldnk_no1),
                                          {{nullptr, u"登録番号"_s},
                                           {columnOf(&store::tbl_danka::tbldnk_nameg), u"檀家名"_s, byBlanks},
                                           {columnOf(&store::tbl_danka::tbldnk_namek), u"カナ"_s, byBlanks},
                                           {columnOf(&store::tbl_danka::tbldnk_toshug), u"当主氏名"_s, byBlanks},
                                           {columnOf(&store::tbl_danka::tbldnk_toshuk), u"当主カナ"_s, byBlanks},
                                           {columnOf(&store::tbl_danka::tbldnk_yubin), u"郵便番号"_s, byHyphens},
                                           {columnOf(&store::tbl_danka::tbldnk_jyusho1), u"住所"_s},
                                           {columnOf(&store::tbl_danka::tbldnk_jyusho2), u"住所"_s},
                                           {columnOf(&store::tbl_danka::tbldnk_tel), u"電話番号"_s, byHyphens},
                                           {columnOf(&store::tbl_danka::tbldnk_fax), u"FAX"_s, byHyphens},
                                           {columnOf(&store::tbl_danka::tbldnk_chiku), u"地区"_s},
                                           {columnOf(&store::tbl_danka::tbldnk_bikou), u"備考"_s}},
                                          1,
                                          2};
    static const SearchedTable members{store::Description<store::tbl_kazoku>::table,
                                       columnOf(&store::tbl_kazoku::tblkzk_no1),
                                       {{columnOf(&store::tbl_kazoku::tblkzk_nameg), u"氏名"_s, byBlanks},
                                        {columnOf(&store::tbl_kazoku::tblkzk_namek), u"カナ"_s, byBlanks},
                                        {columnOf(&store::tbl_kazoku::tblkzk_yubin), u"郵便番号"_s, byHyphens},
                                        {columnOf(&store::tbl_kazoku::tblkzk_jusho1), u"住所"_s},
                                        {columnOf(&store::tbl_kazoku::tblkzk_jusho2), u"住所"_s},
                                        {columnOf(&store::tbl_kazoku::tblkzk_tel), u"電話番号"_s, byHyphens},
                                        {columnOf(&store::tbl_kazoku::tblkzk_fax), u"FAX"_s, byHyphens},
                                        {columnOf(&store::tbl_kazoku::tblkzk_chiku), u"地区"_s},
                                        {columnOf(&store::tbl_kazoku::tblkzk_bikou), u"備考"_s}},
                                       0,
                                       1};
    static const SearchedTable graves{store::Description<store::tbl_ohaka>::table,
                                      columnOf(&store::tbl_ohaka::tblhak_no),
                                      {{nullptr, u"管理番号"_s},
                                       {columnOf(&store::tbl_ohaka::tblhak_banchi1), u"区画"_s},
                                       {columnOf(&store::tbl_ohaka::tblhak_banchi2), u"番地"_s},
                                       {columnOf(&store::tbl_ohaka::tblhak_bohyo_mei), u"墓標"_s},
                                       {columnOf(&store::tbl_ohaka::tblhak_biko), u"備考"_s}},
                                      3,
                                      5};
    static const SearchedTable deaths{store::Description<store::tbl_kakocho>::table,
                                      columnOf(&store::tbl_kakocho::tblkak_no),
                                      {{columnOf(&store::tbl_kakocho::tblkak_zokunameg), u"俗名"_s, byBlanks},
                                       {columnOf(&store::tbl_kakocho::tblkak_zokunamek), u"俗名カナ"_s, byBlanks},
                                       {columnOf(&store::tbl_kakocho::tblkak_kaimyoug), u"戒名"_s, byBlanks},
                                       {columnOf(&store::tbl_kakocho::tblkak_kaimyouk), u"戒名カナ"_s, byBlanks},
                                       {columnOf(&store::tbl_kakocho::tblkak_bikou), u"備考"_s}},
                                      0,
                                      1};
    switch (kind) {
    case Kind::household:
        return households;
    case Kind::member:
    case Kind::departed:
        return members;
    case Kind::grave:
        return graves;
    case Kind::death:
        break;
    }
    return deaths;
}

// Looks for the first and the last character of the word in pieces that the compiler turns into a few wide
// instructions.
template <class Found>
void Texts::eachPlace(const std::u16string& word, std::size_t begin, std::size_t end, Found found) const {
    constexpr std::size_t piece = 64;
    const std::size_t more = word.size() - 1;
    if (end - begin <= more)
        return;
    end -= more;
    const char16_t first = word.front();
    const char16_t last = word.back();
    const auto lookAt = [&](std::size_t at) {
        return text_[at] == first && text_[at + more] == last && text_.compare(at, word.size(), word) == 0;
    };
    // What follows a whole match in its record is of no interest: found() says from where to go on.
    std::size_t next = begin;
    for (std::size_t at = begin; at < end; at += piece) {
        const std::size_t stop = std::min(at + piece, end);
        if (stop - at == piece) {
            if (next >= stop)
                continue;
            const char16_t* here = text_.data() + at;
            std::uint16_t any = 0;
            for (std::size_t i = 0; i < piece; ++i)
                any = static_cast<std::uint16_t>(any | ((here[i] == first) & (here[i + more] == last)));
            if (!any)
                continue;
        }
        for (std::size_t i = std::max(at, next); i < stop; ++i) {
            if (lookAt(i)) {
                next = found(i);
                i = std::max(i, next - 1);
            }
        }
    }
}

Match Texts::matchAt(std::size_t place, std::size_t length) const {
    if (!partStarts_[place])
        return Match::inside;
    const std::size_t end = place + length;
    return text_[end] == fieldEnd || partStarts_[end] ? Match::whole : Match::beginning;
}

// The records that have the word, each with its best match, in their order; of these units only, where some are given.
std::vector<Texts::Hit> Texts::hits(const std::u16string& word, const std::vector<std::uint32_t>* units) const {
    std::vector<Hit> all;
    std::uint32_t record = 0;
    const auto found = [&](std::size_t place) {
        while (records_[record + 1].text <= place)
            ++record;
        const Match match = matchAt(place, word.size());
        if (all.empty() || all.back().record != record)
            all.push_back({record, match});
        else
            all.back().match = std::min(all.back().match, match);
        return match == Match::whole ? records_[record + 1].text : place + 1;
    };
    if (!units) {
        eachPlace(word, 0, text_.size(), found);
        return all;
    }
    for (const std::uint32_t unit : *units) {
        record = units_[unit].first;
        eachPlace(word, records_[record].text, records_[units_[unit + 1].first].text, found);
    }
    return all;
}

std::vector<Candidate> Texts::search(const std::vector<std::u16string>& words,
                                     const std::vector<bool>& ownersLeftOut) const {
    std::vector<Candidate> found;
    if (words.empty() || size() == 0)
        return found;
    const auto counts = [&](const Hit& hit) {
        return ownersLeftOut.empty() || !ownersLeftOut[records_[hit.record].unit];
    };
    if (words.size() == 1) {
        const auto all = hits(words.front(), nullptr);
        found.reserve(all.size());
        for (const Hit& hit : all) {
            if (counts(hit))
                found.push_back({hit.record, hit.match});
        }
        return found;
    }
    // The longest word first: it leaves the fewest units for the others.
    std::vector<const std::u16string*> order;
    for (const auto& word : words)
        order.push_back(&word);
    std::ranges::stable_sort(order, std::ranges::greater(), [](const auto* word) { return word->size(); });
    std::vector<std::vector<Hit>> each;
    std::vector<std::uint32_t> units;
    for (const auto* word : order) {
        const bool few = !each.empty() && units.size() < units_.size() / 4;
        each.push_back(hits(*word, few ? &units : nullptr));
        std::vector<std::uint32_t> having;
        for (const Hit& hit : each.back()) {
            const std::uint32_t unit = records_[hit.record].unit;
            if (counts(hit) && (having.empty() || having.back() != unit))
                having.push_back(unit);
        }
        if (each.size() == 1) {
            units = std::move(having);
        } else {
            std::vector<std::uint32_t> both;
            std::ranges::set_intersection(units, having, std::back_inserter(both));
            units = std::move(both);
        }
        if (units.empty())
            return found;
    }
    return merged(each, units);
}

// Of units in which every word is found: the rows that are listed.
std::vector<Candidate> Texts::merged(const std::vector<std::vector<Hit>>& words,
                                     const std::vector<std::uint32_t>& units) const {
    std::vector<Candidate> found;
    std::vector<std::size_t> at(words.size(), 0);
    std::vector<Match> best(words.size());
    std::vector<Match> own; // of a record's words, record by record
    for (const std::uint32_t unit : units) {
        const std::uint32_t first = units_[unit].first;
        const std::uint32_t end = units_[unit + 1].first;
        own.assign(words.size() * (end - first), Match::none);
        for (std::size_t word = 0; word < words.size(); ++word) {
            const auto& hits = words[word];
            std::size_t& here = at[word];
            while (hits[here].record < first)
                ++here;
            best[word] = Match::none;
            for (; here < hits.size() && hits[here].record < end; ++here) {
                own[(hits[here].record - first) * words.size() + word] = hits[here].match;
                best[word] = std::min(best[word], hits[here].match);
            }
        }
        const bool hasHousehold = records_[first].kind == Kind::household;
        for (std::uint32_t record = first; record < end; ++record) {
            const Match* has = &own[(record - first) * words.size()];
            bool all = true;
            bool adds = hasHousehold && record == first;
            Match worst = Match::whole;
            for (std::size_t word = 0; word < words.size(); ++word) {
                const bool here = has[word] != Match::none;
                all = all && here;
                adds = adds || (here && (!hasHousehold || own[word] == Match::none));
                worst = std::max(worst, here ? has[word] : best[word]);
            }
            if (all || adds)
                found.push_back({record, worst});
        }
    }
    return found;
}

std::uint64_t Texts::placeOf(Candidate candidate) const {
    const Record& record = records_[candidate.record];
    return (static_cast<std::uint64_t>(candidate.match) << 40) |
           (static_cast<std::uint64_t>(rankOf(record.kind)) << 36) | record.order;
}

bool Texts::before(const Texts& oneTexts, Candidate one, const Texts& otherTexts, Candidate other) {
    const auto coarse = [](const Texts& texts, Candidate candidate) {
        return std::pair(candidate.match, rankOf(texts.kind(candidate.record)));
    };
    const auto left = coarse(oneTexts, one);
    const auto right = coarse(otherTexts, other);
    return left != right ? left < right : oneTexts.compareOrder(one.record, otherTexts, other.record) < 0;
}

std::size_t Texts::bytes() const {
    return (text_.capacity() + stored_.capacity()) * sizeof(char16_t) + partStarts_.capacity() / 8 +
           records_.capacity() * sizeof(Record) + units_.capacity() * sizeof(Unit);
}

std::u16string_view Texts::foldedField(std::uint32_t record, std::size_t field) const {
    std::size_t at = records_[record].text;
    for (; field > 0; --field)
        at = text_.find(fieldEnd, at) + 1;
    return std::u16string_view(text_).substr(at, text_.find(fieldEnd, at) - at);
}

QString Texts::stored(std::uint32_t record, std::size_t field) const {
    std::size_t at = records_[record].stored;
    for (std::size_t passed = 0; passed < field; ++passed)
        at = stored_.find(fieldEnd, at) + 1;
    std::u16string_view text = std::u16string_view(stored_).substr(at, stored_.find(fieldEnd, at) - at);
    if (text.size() == 1 && text.front() == asFolded)
        text = foldedField(record, field);
    return QStringView(text.data(), static_cast<qsizetype>(text.size())).toString();
}

// The field of a record in which a word is found best.
std::pair<std::size_t, Match> Texts::bestField(std::uint32_t record, const std::u16string& word) const {
    std::pair<std::size_t, Match> best{0, Match::none};
    const std::size_t begin = records_[record].text;
    eachPlace(word, begin, records_[record + 1].text, [&](std::size_t place) {
        if (const Match match = matchAt(place, word.size()); match < best.second) {
            const auto fields = std::count(text_.begin() + static_cast<std::ptrdiff_t>(begin),
                                           text_.begin() + static_cast<std::ptrdiff_t>(place), fieldEnd);
            best = {static_cast<std::size_t>(fields), match};
        }
        return place + 1;
    });
    return best;
}

QString Texts::matched(std::uint32_t record, const std::vector<std::u16string>& words) const {
    QStringList places;
    const std::uint32_t unit = records_[record].unit;
    for (const auto& word : words) {
        std::uint32_t where = record;
        auto best = bestField(record, word);
        if (best.second == Match::none) {
            for (std::uint32_t other = units_[unit].first; other < units_[unit + 1].first; ++other) {
                if (const auto field = bestField(other, word); field.second < best.second) {
                    best = field;
                    where = other;
                }
            }
        }
        if (best.second == Match::none)
            continue;
        const QString place = searchedTable(kind(where)).fields[best.first].label + u"："_s + stored(where, best.first);
        if (!places.contains(place))
            places << place;
    }
    return places.join(u"、"_s);
}

std::vector<bool> Texts::unitsOf(const std::vector<int>& owners) const {
    std::vector<bool> theirs(units_.size());
    for (std::size_t unit = 0; unit + 1 < units_.size(); ++unit)
        theirs[unit] = std::ranges::find(owners, units_[unit].owner) != owners.end();
    return theirs;
}

std::optional<int> Texts::ownerOfRow(const char* table, qint64 rowid) const {
    for (std::uint32_t record = 0; record < size(); ++record) {
        if (records_[record].rowid == rowid && qstrcmp(searchedTable(kind(record)).table, table) == 0)
            return owner(record);
    }
    return {};
}

// A grave is read under its household's name.
std::u16string_view Texts::kana(std::uint32_t record) const {
    if (kind(record) == Kind::grave) {
        record = units_[records_[record].unit].first;
        if (kind(record) != Kind::household)
            return {};
    }
    return foldedField(record, searchedTable(kind(record)).kana);
}

int Texts::compareOrder(std::uint32_t record, const Texts& otherTexts, std::uint32_t other) const {
    if (const int reading = compareReadings(kana(record), otherTexts.kana(other)))
        return reading;
    const auto one = numbersOf(records_[record]);
    const auto two = numbersOf(otherTexts.records_[other]);
    return one < two ? -1 : one > two;
}

void Texts::putInOrder() {
    // Many rows share a reading: each is weighed once, most of them by their first syllables as one number.
    struct Reading {
        std::uint64_t beginning;
        std::u16string_view text;
        std::uint32_t id;
    };
    std::vector<Reading> readings;
    std::unordered_map<std::u16string_view, std::uint32_t> ids;
    std::vector<std::uint32_t> readingOf(size());
    for (std::uint32_t record = 0; record < size(); ++record) {
        const std::u16string_view text = kana(record);
        const auto [known, fresh] = ids.try_emplace(text, static_cast<std::uint32_t>(readings.size()));
        readingOf[record] = known->second;
        if (!fresh)
            continue;
        std::uint64_t beginning = text.empty() ? std::numeric_limits<std::uint64_t>::max() : 0;
        for (std::size_t at = 0; at < 4 && !text.empty(); ++at)
            beginning = (beginning << 16) | (at < text.size() ? syllable(text[at]) : u'\0');
        readings.push_back({beginning, text, known->second});
    }
    std::ranges::sort(readings, [](const Reading& one, const Reading& other) {
        return one.beginning != other.beginning ? one.beginning < other.beginning
                                                : compareReadings(one.text, other.text) < 0;
    });
    std::vector<std::uint32_t> rank(readings.size());
    for (std::uint32_t at = 0; at < readings.size(); ++at)
        rank[readings[at].id] = at;
    // Number and branch as one, the lowest first.
    const auto numbers = [this](std::uint32_t record) {
        const auto shifted = [](std::int16_t number) { return static_cast<std::uint64_t>(int{number} + 0x8000); };
        return (shifted(records_[record].number) << 16) | shifted(records_[record].branch);
    };
    std::vector<std::pair<std::uint64_t, std::uint32_t>> places;
    places.reserve(size());
    for (std::uint32_t record = 0; record < size(); ++record)
        places.emplace_back((std::uint64_t{rank[readingOf[record]]} << 32) | numbers(record), record);
    std::ranges::sort(places, [this](const auto& one, const auto& other) {
        return one.first != other.first ? one.first < other.first
                                        : numbersOf(records_[one.second]) < numbersOf(records_[other.second]);
    });
    for (std::uint32_t at = 0; at < places.size(); ++at)
        records_[places[at].second].order = at;
}

Texts::Builder::Builder(const Texts* former) : texts_(std::make_shared<Texts>()) {
    if (!former)
        return;
    const auto withRoom = [](std::size_t size) { return size + size / 16; };
    texts_->text_.reserve(withRoom(former->text_.size()));
    texts_->stored_.reserve(withRoom(former->stored_.size()));
    texts_->partStarts_.reserve(withRoom(former->partStarts_.size()));
    texts_->records_.reserve(withRoom(former->records_.size()));
    texts_->units_.reserve(withRoom(former->units_.size()));
}

void Texts::Builder::addField(const SearchedField& field, QStringView stored) {
    const std::size_t begin = texts_->text_.size();
    partStarts_.assign(1, begin);
    appendFolded(stored, field.parts, texts_->text_, partStarts_);
    texts_->partStarts_.resize(texts_->text_.size() + 1);
    for (const std::size_t start : partStarts_)
        texts_->partStarts_[start] = true;
    const std::u16string_view folded = std::u16string_view(texts_->text_).substr(begin);
    if (!folded.empty() && stored == QStringView(folded.data(), static_cast<qsizetype>(folded.size())))
        texts_->stored_ += asFolded;
    else
        // Without the two characters that divide the texts, which only a damaged register holds.
        std::ranges::copy_if(std::u16string_view(stored.utf16(), static_cast<std::size_t>(stored.size())),
                             std::back_inserter(texts_->stored_), [](char16_t c) { return c > asFolded; });
    texts_->text_ += fieldEnd;
    texts_->stored_ += fieldEnd;
}

void Texts::Builder::add(const SearchedRow& row) {
    Texts& texts = *texts_;
    const SearchedTable& table = searchedTable(row.kind);
    const auto record = static_cast<std::uint32_t>(texts.records_.size());
    const bool branch = row.kind == Kind::household && row.branch != store::codes::mainHousehold;
    const bool afterBranch = record > 0 && texts.records_.back().branch != store::codes::mainHousehold;
    if (texts.units_.empty() || texts.units_.back().owner != row.owner || branch || afterBranch) {
        texts.units_.push_back({row.owner, record});
        household_.clear();
    }
    texts.records_.push_back(
        {row.rowid, static_cast<std::uint32_t>(texts.text_.size()), static_cast<std::uint32_t>(texts.stored_.size()),
         static_cast<std::uint32_t>(texts.units_.size() - 1), 0, row.number, row.branch, row.kind});
    std::size_t at = 0;
    for (const SearchedField& field : table.fields) {
        if (!field.column) {
            addField(field, QString::number(row.number));
            continue;
        }
        QStringView text = row.texts[at++];
        // What a member has from the household is found there. Names and remarks are his own.
        const bool own = at <= 2 || at == table.fields.size();
        if (&table == &searchedTable(Kind::member) && !own && std::ranges::find(household_, text) != household_.end())
            text = {};
        addField(field, text);
        if (row.kind == Kind::household)
            household_.push_back(text);
    }
}

std::shared_ptr<const Texts> Texts::Builder::finish() {
    Texts& texts = *texts_;
    const auto end = static_cast<std::uint32_t>(texts.records_.size());
    texts.records_.push_back({0, static_cast<std::uint32_t>(texts.text_.size()), 0,
                              static_cast<std::uint32_t>(texts.units_.size()), 0, 0, 0, Kind::household});
    texts.units_.push_back({0, end});
    const auto giveBack = [](auto& kept) {
        if (kept.capacity() > kept.size() + kept.size() / 8)
            kept.shrink_to_fit();
    };
    giveBack(texts.text_);
    giveBack(texts.stored_);
    giveBack(texts.records_);
    texts.putInOrder();
    return std::exchange(texts_, {});
}

} // namespace search
