#include "printing/label_choice.h"

using namespace Qt::StringLiterals;

namespace printing {

QString rowKey(const store::tbl_hohyo& row) {
    return u"%1\t%2\t"_s.arg(row.tblhoy_no).arg(row.tblhoy_kaiki_yymd.toString(Qt::ISODate)) + row.tblhoy_zokunameg;
}

QString rowKey(const store::tbl_ohaka& row) {
    return QString::number(row.tblhak_no);
}

void openLabelSettings(LabelChoice& choice, desk::LabelBlock asked, desk::ScreenContext& context, desk::Desk& desk,
                       std::function<void()> changed) {
    asked.lbl_anniversaries = choice.anniversaries;
    asked.lbl_start = choice.start;
    asked.lbl_taken = false;
    static_cast<desk::LabelBlock&>(context) = asked;
    desk.open(u"宛名設定"_s, desk::Opening::modal,
              [&choice, &context, memorials = asked.lbl_memorials, changed = std::move(changed)] {
                  // Both lists may have waited for it: it was set for one of them.
                  if (!context.lbl_taken || context.lbl_memorials != memorials)
                      return;
                  context.lbl_taken = false;
                  choice.anniversaries = context.lbl_anniversaries;
                  choice.start = context.lbl_start;
                  choice.stock = stockKept();
                  changed();
              });
}

void startAnew(LabelChoice& choice, desk::Desk& desk) {
    if (std::exchange(choice.start, 0) > 0)
        desk.inform(u"次の宛名は、用紙の1番目から印刷します。"_s);
}

} // namespace printing
