#pragma once

#include "search/folding.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <optional>
#include <tuple>
#include <vector>

namespace search {

// What a row of the register is found as. A departed member is one whose entry in the death register is missing.
enum class Kind : std::uint8_t { household, member, departed, grave, death };

// A field that is searched: its column, the name by which the user knows it and what parts it has.
struct SearchedField {
    const char* column;
    QString label;
    Parts parts = Parts::none;
};

// The rows of one table that are searched. number is the column of the number shown; a first field without a column
// stands for it.
struct SearchedTable {
    const char* table;
    const char* number;
    std::vector<SearchedField> fields;
    std::size_t name; // field
    std::size_t kana; // field; fields.size() where the table has none
};

const SearchedTable& searchedTable(Kind kind);

// One row as it was read. The texts stand in the order of the table's fields.
struct SearchedRow {
    Kind kind = Kind::household;
    qint64 rowid = 0;
    int owner = 0; // see ownerOf
    std::int16_t number = 0;
    std::int16_t branch = 0; // of households
    std::vector<QStringView> texts;
};

// Rows are searched together that belong to one household number, branches apart; a grave of no household is alone.
constexpr int ownerOf(std::int16_t household) {
    return household;
}
constexpr int ownerOfVacantGrave(std::int16_t grave) {
    return 0x100000 + grave;
}

// How a word was found, the best first: as a whole field or a whole part of one, at the beginning of either, inside.
enum class Match : std::uint8_t { whole, beginning, inside, none };

// A row that was found, by its place in the texts.
struct Candidate {
    std::uint32_t record = 0;
    Match match = Match::none; // of the word that was found worst
};

// The searched texts of many rows: folded once, packed into one piece, with the stored ones beside them where they
// differ. Never changed once built, so that several threads may read it.
class Texts {
  public:
    class Builder;

    // The rows in which every word is found, in register order. One word is found in a field of the row itself. Of
    // several, those that the row does not have may stand in another row of its household; a row that adds no word to
    // its household's own ones is then left out, and the household itself is always there.
    std::vector<Candidate> search(const std::vector<std::u16string>& words,
                                  const std::vector<bool>& ownersLeftOut) const;

    // Whether one candidate is listed before another: by match, then living members and households, graves, the dead,
    // then reading, number and branch.
    static bool before(const Texts& oneTexts, Candidate one, const Texts& otherTexts, Candidate other);
    // The same within these texts as one number.
    std::uint64_t placeOf(Candidate candidate) const;

    std::size_t size() const { return records_.size() - 1; }
    std::size_t bytes() const;
    Kind kind(std::uint32_t record) const { return records_[record].kind; }
    qint64 rowid(std::uint32_t record) const { return records_[record].rowid; }
    int owner(std::uint32_t record) const { return units_[records_[record].unit].owner; }
    std::int16_t number(std::uint32_t record) const { return records_[record].number; }
    std::int16_t branch(std::uint32_t record) const { return records_[record].branch; }
    QString stored(std::uint32_t record, std::size_t field) const;
    // "檀家名：佐藤、区画：東1": where the words were found, as it is stored.
    QString matched(std::uint32_t record, const std::vector<std::u16string>& words) const;

    // The units of these owners, for search().
    std::vector<bool> unitsOf(const std::vector<int>& owners) const;
    // The owner of a row; nothing where it is not here.
    std::optional<int> ownerOfRow(const char* table, qint64 rowid) const;

    // The folded texts, fields ended by U+0000.
    const std::u16string& folded() const { return text_; }

  private:
    struct Record {
        qint64 rowid;
        std::uint32_t text;   // place in text_
        std::uint32_t stored; // place in stored_
        std::uint32_t unit;
        std::uint32_t order; // among all, by reading, number and branch
        std::int16_t number;
        std::int16_t branch;
        Kind kind;
    };
    struct Unit {
        int owner;
        std::uint32_t first; // record
    };
    struct Hit {
        std::uint32_t record;
        Match match;
    };

    static auto numbersOf(const Record& row) { return std::tuple(row.number, row.branch, row.kind, row.rowid); }
    template <class Found>
    void eachPlace(const std::u16string& word, std::size_t begin, std::size_t end, Found found) const;
    Match matchAt(std::size_t place, std::size_t length) const;
    std::vector<Hit> hits(const std::u16string& word, const std::vector<std::uint32_t>* units) const;
    std::vector<Candidate> merged(const std::vector<std::vector<Hit>>& words,
                                  const std::vector<std::uint32_t>& units) const;
    std::pair<std::size_t, Match> bestField(std::uint32_t record, const std::u16string& word) const;
    std::u16string_view foldedField(std::uint32_t record, std::size_t field) const;
    std::u16string_view kana(std::uint32_t record) const;
    int compareOrder(std::uint32_t record, const Texts& otherTexts, std::uint32_t other) const;
    void putInOrder();

    std::u16string text_;
    std::u16string stored_;        // fields ended by U+0000; U+0001 stands for the folded text itself
    std::vector<bool> partStarts_; // places in text_
    std::vector<Record> records_;  // and one more at the end
    std::vector<Unit> units_;      // and one more at the end
};

// Takes rows unit by unit, a household before what belongs to it. A row's texts are looked at until its unit is
// complete.
class Texts::Builder {
  public:
    // Makes as much room as the texts of a former reading needed.
    explicit Builder(const Texts* former = nullptr);
    void add(const SearchedRow& row);
    std::shared_ptr<const Texts> finish();

  private:
    void addField(const SearchedField& field, QStringView stored);

    std::shared_ptr<Texts> texts_;
    std::vector<std::size_t> partStarts_; // of one field
    std::vector<QStringView> household_;  // the texts of the unit's household
};

} // namespace search
