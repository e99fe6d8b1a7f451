// Date groups and date ranges.
#include "ui/flow_layout.h"
#include "ui/layout.h"

#include <QComboBox>
#include <QLabel>

using namespace Qt::StringLiterals;

namespace ui {

Layout& Layout::dates(const DateNames& names, desk::DateGroup& value) {
    const QString what = rowName_;
    combo(names.era, value.era, 4).named(what + u"　元号"_s);
    QWidget* era = last_;
    // A date is not torn apart.
    const auto part = [&](const QString& name, desk::Combo& box, const QString& unitName) {
        items_->keepNextTogether();
        combo(name, box, 2).numeric().named(what + u'　' + unitName).unit(unitName);
    };
    part(names.year, value.year, u"年"_s);
    part(names.month, value.month, u"月"_s);
    part(names.day, value.day, u"日"_s);
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
