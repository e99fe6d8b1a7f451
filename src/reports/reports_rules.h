#pragma once

#include "desk/desk.h"
#include "desk/form.h"
#include "desk/screen_context.h"
#include "reports/report.h"

#include <optional>

namespace reports {

// Screen 帳票: chooses a report and what it is made for. Messages bear the title "帳票".
struct 帳票Form {
    desk::Combo 帳票種類; // a report's title
    desk::Text 帳票年;
    desk::Text 帳票月;
    desk::Text 帳票日;
    desk::Combo 帳票区分; // one of its kinds

    const Report& chosen() const;
};

void beginReports(帳票Form& form, desk::ScreenContext& context, desk::Desk& desk); // with the first report
// Another report was chosen in 帳票種類: the boxes that it uses show what it is made for as a rule, the others nothing.
void chooseReport(帳票Form& form, desk::ScreenContext& context, desk::Desk& desk);

// Reads the boxes and makes the report. Years may be typed in Western or era form (2027, 令和9, R9); a wrong box turns
// red, takes the keyboard and is told, and there is no report then. The register is released when this returns.
std::optional<printing::Listing> makeReport(帳票Form& form, desk::Desk& desk);

} // namespace reports
