#pragma once

#include <QDate>
#include <QString>

#include <cstdint>
#include <vector>

namespace store {
struct tbl_danka;
struct tbl_kakocho;
} // namespace store

namespace desk {

struct HouseholdBlock {
    std::int16_t dnk_no1 = 0; // 0: no household chosen
    std::int16_t dnk_no2 = 0;
    QString dnk_nameg;
    QString dnk_namek;
    QString dnk_kbn; // codes::parishioner or nonParishioner
    QString dnk_toshug;
    QString dnk_toshuk;
    QString dnk_haka_basho; // codes::withinGrounds or outsideGrounds
    QString dnk_yubin;
    QString dnk_jyusho1;
    QString dnk_jyusho2;
    QString dnk_tel;
    QString dnk_fax;
    QString dnk_chiku;
    QString dnk_bikou;

    // The boxes of a screen, unsaved edits included, for the screen that it opens. Otherwise that one reads the
    // household by its numbers.
    bool dnk_handedOver = false;

    static HouseholdBlock of(const store::tbl_danka& row);
    // A household named by its number, for a screen that reads it.
    static HouseholdBlock numbered(std::int16_t no1);
    // Writes all but the numbers into a row.
    void writeInto(store::tbl_danka& row) const;
};

// The codes of a household's category and of its graves' place (store/codes.h).
QString categoryText(bool parishioner);
QString placeText(bool withinGrounds);

struct DeceasedBlock {
    QString kak_zokunameg;
    QString kak_zokunamek;
    QString kak_kaimyoug;
    QString kak_kaimyouk;
    QDate kak_mei_ymd = QDate(1899, 12, 30); // the zero date when cleared
    std::int16_t kak_kyounen = 0;
    QString kak_bikou;
    QString kak_kankeisha;
    QString kak_zokugara;

    // The boxes of a screen, for the screen that it opens. Otherwise that one reads the entry by its key.
    bool kak_handedOver = false;

    static DeceasedBlock of(const store::tbl_kakocho& row);
    bool operator==(const DeceasedBlock&) const = default;
};

struct MemorialBlock {
    QDate hoy_kaiki_yymd = QDate(1899, 12, 30);
};

struct MemberBlock {
    QString kzk_nameg;
};

struct GraveBlock {
    std::int16_t hak_no = 0;
};

// State of one save attempt.
struct CheckState {
    QString chk_msgflg = QStringLiteral("0"); // "1" once a message has been chosen
    QString chk_errflg = QStringLiteral("0"); // "1" when any check failed
    QString chk_msg;
    std::int16_t chk_dterr = 0; // 1 when the last date group checked is wrong
    std::int16_t chk_dtidx = 0; // field number, 1 to 8, of the date group being checked
    QString chk_ymd;            // Western date of the last group, "yyyy/mm/dd", or empty
};

// The hand-off record between screens: one for the whole run.
struct ScreenContext : HouseholdBlock, DeceasedBlock, MemorialBlock, MemberBlock, GraveBlock, CheckState {
    std::int16_t hak_himo_no = 0; // grave chosen in a picker, 0 none

    // The screen that opens shows the branch of dnk_no2; 檀家登 starts from the household that is no branch otherwise.
    bool dnk_branchNamed = false;

    // Clears the record: household, deceased (its related person and relationship apart), memorial, member and grave;
    // hak_himo_no and the check state keep their values.
    void G初期値();

    // Sets the household number. When it is another household's, the rest of the block is emptied, and deceased,
    // member, memorial and grave with it, so that nothing of one household is looked for in another.
    void publishHousehold(std::int16_t no1);
    // The same with the whole block.
    void publishHousehold(const HouseholdBlock& household);

    // Names a deceased by the key of his entry: the household's name as the entry bears it, the secular name. Another
    // one than the present empties the rest of the block.
    void nameDeceased(const QString& householdName, const QString& zokunameg);
    // Publishes an entry whole, the household's names as the entry bears them included.
    void publishDeceased(const store::tbl_kakocho& entry);
    // No deceased, and no memorial of one, is chosen.
    void clearDeceased();

    // The record was deleted: removes its name from the context, here and in what other screens keep.
    void forgetDeceased(std::int16_t no1, const QString& householdName, const QString& zokunameg);
    void forgetGrave(std::int16_t number);
    // Removes as well what the other context has removed since the last call.
    void forgetAlso(const ScreenContext& other);
    void allForgot() { forgotten_.clear(); }

    // What was handed over from boxes holds for one opening only, and so does the naming of a branch.
    void endHandOver() { dnk_handedOver = kak_handedOver = dnk_branchNamed = false; }

  private:
    struct Forgotten {
        std::int16_t household = 0;
        QString householdName;
        QString deceased; // empty: a grave
        std::int16_t grave = 0;
    };
    void forget(const Forgotten& record);
    std::vector<Forgotten> forgotten_;
};

} // namespace desk
