#include "households/move_rules.h"

#include "desk/safety_copy.h"
#include "store/name_copies.h"
#include "store/row_rules.h"
#include "store/table.h"

using namespace Qt::StringLiterals;

namespace households {

namespace {

bool sameAddress(const store::tbl_danka& one, const store::tbl_danka& other) {
    return one.tbldnk_yubin == other.tbldnk_yubin && one.tbldnk_jyusho1 == other.tbldnk_jyusho1 &&
           one.tbldnk_jyusho2 == other.tbldnk_jyusho2;
}

bool sameNames(const store::tbl_danka& one, const store::tbl_danka& other) {
    return one.tbldnk_nameg == other.tbldnk_nameg && one.tbldnk_namek == other.tbldnk_namek;
}

// Brings a member's copies into step; false where he has none of the household's former values. What was empty was
// never copied.
bool follow(store::tbl_kazoku& member, const store::tbl_danka& before, const store::tbl_danka& after) {
    bool changed = false;
    if (!sameAddress(before, after) && !before.tbldnk_jyusho1.isEmpty() && member.tblkzk_yubin == before.tbldnk_yubin &&
        member.tblkzk_jusho1 == before.tbldnk_jyusho1 && member.tblkzk_jusho2 == before.tbldnk_jyusho2) {
        member.tblkzk_yubin = after.tbldnk_yubin;
        member.tblkzk_jusho1 = after.tbldnk_jyusho1;
        member.tblkzk_jusho2 = after.tbldnk_jyusho2;
        changed = true;
    }
    if (before.tbldnk_tel != after.tbldnk_tel && !before.tbldnk_tel.isEmpty() &&
        member.tblkzk_tel == before.tbldnk_tel) {
        member.tblkzk_tel = after.tbldnk_tel;
        changed = true;
    }
    return changed;
}

// The rows of those left behind, as they are to be.
std::vector<store::tbl_kazoku> followers(store::Database& database, const store::tbl_danka& before,
                                         const store::tbl_danka& after) {
    std::vector<store::tbl_kazoku> members = store::selectAll<store::tbl_kazoku>(
        database, "WHERE tbl_kazoku.tblkzk_no1 = ? AND " + store::isLiving.sql(), before.tbldnk_no1);
    std::erase_if(members, [&](store::tbl_kazoku& member) {
        // A branch may have lived under the same roof: a member whose row names another household stays where he is.
        const bool ours =
            member.tblkzk_no2.value_or(store::codes::mainHousehold) == before.tbldnk_no2 &&
            (member.tblkzk_dnknameg == before.tbldnk_nameg || member.tblkzk_dnknameg == after.tbldnk_nameg);
        return !ours || !follow(member, before, after);
    });
    return members;
}

// Copies of the former names that a branch of the number bears, too: whose they are is not to be told.
int sharedCopies(store::Database& database, const store::tbl_danka& before) {
    const auto others = store::countRows<store::tbl_danka>(
        database, "WHERE tbldnk_no1 = ? AND tbldnk_no2 <> ? AND tbldnk_nameg = ? AND tbldnk_namek = ?",
        before.tbldnk_no1, before.tbldnk_no2, before.tbldnk_nameg, before.tbldnk_namek);
    return others == 0 ? 0
                       : store::countNameCopies(database, before.tbldnk_no1, before.tbldnk_nameg, before.tbldnk_namek);
}

void correctFamily(const desk::Held<store::tbl_danka>& household, const store::tbl_danka& before,
                   const desk::Refusal& words, desk::Desk& desk) {
    store::Database database;
    const auto moved = moveFamily(database, household, before, words, desk);
    if (moved)
        offerCopies(household, before, words, desk, u"家族%1人の住所・電話番号を直しました"_s.arg(*moved));
}

void correctNames(const desk::Held<store::tbl_danka>& household, const store::tbl_danka& before,
                  const desk::Refusal& words, desk::Desk& desk, const std::function<void()>& corrected) {
    if (!desk::copyBefore(desk, words.title)) {
        offerCopies(household, before, words, desk, {}, corrected);
        return;
    }
    store::Database database;
    const auto found = store::findNameCopies(database, before.tbldnk_no1);
    const auto left = store::writeNameCopies(database, before.tbldnk_no1);
    if (corrected)
        corrected();
    if (!left.empty()) {
        QStringList lines;
        for (const store::NameCopy& copy : left)
            lines << copy.kind + u' ' + copy.name + u' ' + copy.copied;
        desk.notify(
            u"次の写しは直せませんでした。同じ名前の記録がほかにあるか、どの檀家のものか決められません。画面で確"
            "かめて下さい。\n\n"_s +
                lines.join(u'\n'),
            words.title);
    }
    // Those left were told of: they are not offered again.
    store::tbl_danka named = before;
    named.tbldnk_nameg = household->tbldnk_nameg;
    named.tbldnk_namek = household->tbldnk_namek;
    offerCopies(household, named, words, desk, u"写し%1件の檀家名を直しました"_s.arg(found.size() - left.size()),
                corrected);
}

} // namespace

int membersLeftBehind(store::Database& database, const store::tbl_danka& before, const store::tbl_danka& after) {
    if (sameAddress(before, after) && before.tbldnk_tel == after.tbldnk_tel)
        return 0;
    return static_cast<int>(followers(database, before, after).size());
}

std::optional<int> moveFamily(store::Database& database, const desk::Held<store::tbl_danka>& household,
                              const store::tbl_danka& before, const desk::Refusal& words, desk::Desk& desk) {
    desk::Standing standing = desk::Standing::gone;
    std::vector<store::tbl_kazoku> members;
    {
        store::Write write(database);
        {
            store::Table households(database, store::idxdnk_no);
            standing = household.seek(households);
        }
        if (standing == desk::Standing::asRead) {
            members = followers(database, before, household.row());
            store::Table family(database, store::idxkzk_kazoku);
            for (const store::tbl_kazoku& member : members) {
                family.seekKeysOf(member);
                family.edit(member);
            }
            family.release();
            write.commit();
        }
    }
    if (desk::refused(standing, household, words, desk))
        return {};
    return static_cast<int>(members.size());
}

void offerCopies(const desk::Held<store::tbl_danka>& household, const store::tbl_danka& before,
                 const desk::Refusal& words, desk::Desk& desk, const QString& done,
                 const std::function<void()>& corrected) {
    store::Database database;
    const store::tbl_danka& after = household.row();
    QStringList texts;
    if (!done.isEmpty())
        texts << done;
    std::vector<desk::Offer> offers;
    if (const int members = membersLeftBehind(database, before, after)) {
        texts << u"家族%1人の住所・電話番号が前のままです"_s.arg(members);
        offers.push_back({u"家族も直す"_s, u"家族%1人も直す"_s.arg(members), u'F',
                          [&household, &desk, before, words] { correctFamily(household, before, words, desk); }});
    }
    if (!sameNames(before, after)) {
        if (const auto copies = store::findNameCopies(database, after.tbldnk_no1).size()) {
            texts << u"家族・過去帳・法要・お墓の写し%1件の檀家名が前のままです"_s.arg(copies);
            offers.push_back({u"写しも直す"_s, u"写し%1件の檀家名も直す"_s.arg(copies), u'N',
                              [&household, &desk, before, words, corrected] {
                                  correctNames(household, before, words, desk, corrected);
                              }});
        }
        if (const int shared = sharedCopies(database, before))
            texts << u"前の檀家名の写し%1件は、同じ名前の枝番の檀家のものと区別できないため、そのままです"_s.arg(
                shared);
    }
    if (!texts.isEmpty())
        desk.offer(texts.join(u"。"_s), std::move(offers));
}

} // namespace households
