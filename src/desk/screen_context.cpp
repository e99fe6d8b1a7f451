#include "desk/screen_context.h"

#include "store/codes.h"
#include "store/table.h"
#include "values/dates.h"

using namespace Qt::StringLiterals;

namespace desk {

QString categoryText(bool parishioner) {
    return parishioner ? store::codes::parishioner : store::codes::nonParishioner;
}

QString placeText(bool withinGrounds) {
    return withinGrounds ? store::codes::withinGrounds : store::codes::outsideGrounds;
}

HouseholdBlock HouseholdBlock::of(const store::tbl_danka& row) {
    HouseholdBlock block;
    block.dnk_no1 = row.tbldnk_no1;
    block.dnk_no2 = row.tbldnk_no2;
    block.dnk_nameg = row.tbldnk_nameg;
    block.dnk_namek = row.tbldnk_namek;
    block.dnk_kbn = categoryText(row.tbldnk_dnkkbn == categoryText(true));
    block.dnk_toshug = row.tbldnk_toshug;
    block.dnk_toshuk = row.tbldnk_toshuk;
    block.dnk_haka_basho = row.tbldnk_haka_basho;
    block.dnk_yubin = row.tbldnk_yubin;
    block.dnk_jyusho1 = row.tbldnk_jyusho1;
    block.dnk_jyusho2 = row.tbldnk_jyusho2;
    block.dnk_tel = row.tbldnk_tel;
    block.dnk_fax = row.tbldnk_fax;
    block.dnk_chiku = row.tbldnk_chiku;
    block.dnk_bikou = row.tbldnk_bikou;
    return block;
}

HouseholdBlock HouseholdBlock::numbered(std::int16_t no1) {
    HouseholdBlock block;
    block.dnk_no1 = no1;
    return block;
}

void HouseholdBlock::writeInto(store::tbl_danka& row) const {
    row.tbldnk_nameg = dnk_nameg;
    row.tbldnk_namek = dnk_namek;
    row.tbldnk_dnkkbn = dnk_kbn;
    row.tbldnk_yubin = dnk_yubin;
    row.tbldnk_jyusho1 = dnk_jyusho1;
    row.tbldnk_jyusho2 = dnk_jyusho2;
    row.tbldnk_tel = dnk_tel;
    row.tbldnk_fax = dnk_fax;
    row.tbldnk_chiku = dnk_chiku;
    row.tbldnk_bikou = dnk_bikou;
    row.tbldnk_kanaidx = store::kanaIndex(dnk_namek);
    row.tbldnk_haka_basho = dnk_haka_basho;
    row.tbldnk_toshug = dnk_toshug;
    row.tbldnk_toshuk = dnk_toshuk;
}

DeceasedBlock DeceasedBlock::of(const store::tbl_kakocho& row) {
    DeceasedBlock block;
    block.kak_zokunameg = row.tblkak_zokunameg;
    block.kak_zokunamek = row.tblkak_zokunamek;
    block.kak_kaimyoug = row.tblkak_kaimyoug;
    block.kak_kaimyouk = row.tblkak_kaimyouk;
    block.kak_mei_ymd = row.tblkak_mei_ymd.isValid() ? row.tblkak_mei_ymd : values::zeroDate();
    block.kak_kyounen = row.tblkak_kyounen.value_or(0);
    block.kak_bikou = row.tblkak_bikou;
    block.kak_kankeisha = row.tblkak_kankeisha;
    block.kak_zokugara = row.tblkak_zokugara;
    return block;
}

void ScreenContext::G初期値() {
    const QString relatedPerson = kak_kankeisha;
    const QString relationship = kak_zokugara;
    static_cast<HouseholdBlock&>(*this) = {};
    static_cast<DeceasedBlock&>(*this) = {};
    static_cast<MemorialBlock&>(*this) = {};
    static_cast<MemberBlock&>(*this) = {};
    static_cast<GraveBlock&>(*this) = {};
    kak_kankeisha = relatedPerson;
    kak_zokugara = relationship;
}

void ScreenContext::publishHousehold(std::int16_t no1) {
    if (no1 != dnk_no1) {
        static_cast<HouseholdBlock&>(*this) = {};
        static_cast<MemberBlock&>(*this) = {};
        static_cast<GraveBlock&>(*this) = {};
        clearDeceased();
    }
    dnk_no1 = no1;
}

void ScreenContext::publishHousehold(const HouseholdBlock& household) {
    publishHousehold(household.dnk_no1);
    static_cast<HouseholdBlock&>(*this) = household;
}

void ScreenContext::nameDeceased(const QString& householdName, const QString& zokunameg) {
    if (householdName != dnk_nameg || zokunameg != kak_zokunameg)
        static_cast<DeceasedBlock&>(*this) = {};
    dnk_nameg = householdName;
    kak_zokunameg = zokunameg;
}

void ScreenContext::publishDeceased(const store::tbl_kakocho& entry) {
    publishHousehold(entry.tblkak_no);
    dnk_nameg = entry.tblkak_dnknameg;
    dnk_namek = entry.tblkak_dnknamek;
    static_cast<DeceasedBlock&>(*this) = DeceasedBlock::of(entry);
}

void ScreenContext::clearDeceased() {
    static_cast<DeceasedBlock&>(*this) = {};
    static_cast<MemorialBlock&>(*this) = {};
}

void ScreenContext::forget(const Forgotten& record) {
    if (record.deceased.isEmpty()) {
        if (hak_no == record.grave)
            hak_no = 0;
    } else if (dnk_no1 == record.household && dnk_nameg == record.householdName && kak_zokunameg == record.deceased) {
        clearDeceased();
    }
}

void ScreenContext::forgetDeceased(std::int16_t no1, const QString& householdName, const QString& zokunameg) {
    forgotten_.push_back({no1, householdName, zokunameg, 0});
    forget(forgotten_.back());
}

void ScreenContext::forgetGrave(std::int16_t number) {
    forgotten_.push_back({0, {}, {}, number});
    forget(forgotten_.back());
}

void ScreenContext::forgetAlso(const ScreenContext& other) {
    for (const Forgotten& record : other.forgotten_)
        forget(record);
}

} // namespace desk
