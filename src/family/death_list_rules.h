#pragma once

#include "family/household_list.h"

// 過去一: the death register of the context's household, each entry with its next memorial.
namespace family {

struct DeathLine {
    store::tbl_kakocho death;
    QDate today;
    QString memorial;     // the next one's name; empty when none lies ahead
    QString memorialDate; // in era form
};

struct 過去一Form : HouseholdBoxes, desk::ListForm<DeathLine, Position> {
    QDate today; // when the screen was opened; memorials on that day are past

    過去一Form();

  protected:
    bool read(const Position& from, const Take& take) const override;
    void chosen(const DeathLine& line, desk::ScreenContext& context) override;
};

// Messages bear the title 過去帳一覧.
void beginDeathList(過去一Form& form, desk::ScreenContext& context, desk::Desk& desk);
// Open the picked deceased and list anew when that screen has closed.
void openMemorialsOfDeceased(過去一Form& form, desk::ScreenContext& context, desk::Desk& desk); // 個別照会
void openDeceased(過去一Form& form, desk::ScreenContext& context, desk::Desk& desk);            // 故人照会

} // namespace family
