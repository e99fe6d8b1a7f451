// Date groups and date ranges.
#include "ui/layout.h"

#include <QComboBox>
#include <QLabel>

using namespace Qt::StringLiterals;

namespace ui {

Layout& Layout::dates(const DateNames& names, desk::DateGroup& value) {
    const QString what = rowName_;
    combo(names.era, value.era, 4).named(what + u"　元号"_s);
    QWidget* era = last_;
    combo(names.year, value.year, 2).numeric().named(what + u"　年"_s).unit(u"年"_s);
    combo(names.month, value.month, 2).numeric().named(what + u"　月"_s).unit(u"月"_s);
    combo(names.day, value.day, 2).numeric().named(what + u"　日"_s).unit(u"日"_s);
    note(u"西暦"_s).shown(names.western, value.western, 6).named(what + u"　西暦"_s);
    last_ = era;
    return *this;
}

Layout& Layout::range(const QString& fromName, desk::Text& from, const QString& toName, desk::Text& to,
                      const RangeEvents& events) {
    text(fromName, from, 10).onLeave(events.fromLeft);
    note(u"～"_s).text(toName, to, 10).onLeave(events.toLeft).named(u"検索終了日"_s);
    screen_.onEnter(last_, events.entered);
    return *this;
}

} // namespace ui
