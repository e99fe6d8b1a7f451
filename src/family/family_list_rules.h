#pragma once

#include "family/household_list.h"
#include "store/row_rules.h"

// 家族一: every member of the context's household, living and deceased, with a birth date.
namespace family {

struct FamilyLine {
    store::tbl_kazoku member;
    int age = 0; // difference of calendar years

    bool living() const { return store::isLiving(member); }
};

struct 家族一Form : HouseholdBoxes, desk::ListForm<FamilyLine, Position> {
    家族一Form();

  protected:
    bool read(const Position& from, const Take& take) const override;
};

// Messages bear the title 家族一覧.
void beginFamilyList(家族一Form& form, desk::ScreenContext& context, desk::Desk& desk);
// 個別照会: opens the picked member, the living in 家族登, the deceased in 過去登, and lists anew when that has closed.
void openMember(家族一Form& form, desk::ScreenContext& context, desk::Desk& desk);

} // namespace family
