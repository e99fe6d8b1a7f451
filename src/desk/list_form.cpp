#include "desk/list_form.h"

using namespace Qt::StringLiterals;

namespace desk {

QString listPlace(int first, int last, std::optional<int> total) {
    QStringList parts;
    if (first > 0 && first <= last)
        parts << u"%1–%2"_s.arg(first).arg(last);
    if (total)
        parts << u"%1件"_s.arg(*total);
    return parts.join(u'／');
}

QString noRowsText(bool forward) {
    return forward ? u"　これより後の行はありません。"_s : u"　これより前の行はありません。"_s;
}

} // namespace desk
