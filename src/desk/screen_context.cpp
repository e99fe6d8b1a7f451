#include "desk/screen_context.h"

#include "store/schema.h"

using namespace Qt::StringLiterals;

namespace desk {

void HouseholdBlock::takeNames(const store::tbl_danka& row) {
    dnk_nameg = row.tbldnk_nameg;
    dnk_namek = row.tbldnk_namek;
    dnk_kbn = row.tbldnk_dnkkbn == u"檀家"_s ? u"檀家"_s : u"一般"_s;
    dnk_toshug = row.tbldnk_toshug;
    dnk_toshuk = row.tbldnk_toshuk;
    dnk_yubin = row.tbldnk_yubin;
    dnk_jyusho1 = row.tbldnk_jyusho1;
    dnk_jyusho2 = row.tbldnk_jyusho2;
    dnk_tel = row.tbldnk_tel;
    dnk_fax = row.tbldnk_fax;
    dnk_chiku = row.tbldnk_chiku;
    dnk_bikou = row.tbldnk_bikou;
}

void DeceasedBlock::takeEntry(const store::tbl_kakocho& row) {
    kak_zokunameg = row.tblkak_zokunameg;
    kak_zokunamek = row.tblkak_zokunamek;
    kak_kaimyoug = row.tblkak_kaimyoug;
    kak_kaimyouk = row.tblkak_kaimyouk;
    kak_mei_ymd = row.tblkak_mei_ymd;
    kak_kyounen = row.tblkak_kyounen.value_or(0);
    kak_bikou = row.tblkak_bikou;
    kak_kankeisha = row.tblkak_kankeisha;
    kak_zokugara = row.tblkak_zokugara;
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
        static_cast<DeceasedBlock&>(*this) = {};
        static_cast<MemorialBlock&>(*this) = {};
        static_cast<MemberBlock&>(*this) = {};
    }
    dnk_no1 = no1;
}

void ScreenContext::publishHousehold(const HouseholdBlock& household) {
    publishHousehold(household.dnk_no1);
    static_cast<HouseholdBlock&>(*this) = household;
}

void ScreenContext::chooseDeceased(const QString& zokunameg) {
    if (zokunameg != kak_zokunameg)
        static_cast<DeceasedBlock&>(*this) = {};
    kak_zokunameg = zokunameg;
}

} // namespace desk
