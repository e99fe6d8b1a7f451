#include "graves/fee_receipts.h"

#include "store/row_rules.h"
#include "values/dates.h"
#include "values/numbers.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace graves {

namespace {

constexpr int gravesNamed = 10;

QString named(const store::tbl_ohaka& grave) {
    const QString number = u"管理番号 %1"_s.arg(grave.tblhak_no);
    return grave.tblhak_dnk_nameg.isEmpty() ? number : u"%1（%2）"_s.arg(number, grave.tblhak_dnk_nameg);
}

QString whatBecameOf(const desk::Other<store::tbl_ohaka>& grave) {
    if (!grave.now)
        return u"削除されています"_s;
    if (store::isDisposed(*grave.now))
        return u"廃棄されています"_s;
    if (!store::isLinked(*grave.now))
        return u"檀家さんとの紐付けが外されています"_s;
    return u"ほかの画面で変更されています"_s;
}

} // namespace

void FeeSum::add(const store::tbl_ohaka& grave) {
    ++graves;
    yen += grave.tblhak_kanri_ryokin.value_or(0);
    without += grave.tblhak_kanri_ryokin ? 0 : 1;
}

QString sumText(const FeeSum& sum) {
    const QString yen = values::moneyText(sum.yen) + u'円';
    return sum.without == 0 ? yen : yen + u"（金額なし %1件）"_s.arg(sum.without);
}

QString whyNotReceived(const store::tbl_ohaka& grave) {
    QString why;
    if (store::isDisposed(grave))
        why = u"%1は廃棄したお墓のため、受領にできません。"_s;
    else if (!store::isLinked(grave))
        why = u"%1は檀家さんに紐付いていないため、受領にできません。"_s;
    else if (!grave.tblhak_kanri_nxymd.isValid())
        why = u"%1は次回請求日がないため、受領にできません。"_s;
    else if (grave.tblhak_kanri_nxymd.year() >= values::lastYear)
        why = u"%1は次回請求日をこれより先に進められないため、受領にできません。"_s;
    return why.isEmpty() ? why : why.arg(named(grave));
}

FeeSum sumOf(const ChosenGraves& graves) {
    FeeSum sum;
    for (const auto& [number, grave] : graves)
        sum.add(grave);
    return sum;
}

std::vector<Receipt> receiptsOf(const ChosenGraves& graves, QDate day) {
    std::vector<Receipt> receipts;
    for (const auto& [number, grave] : graves) {
        store::tbl_ohaka received = grave;
        received.tblhak_kanri_jrymd = day;
        received.tblhak_kanri_nxymd = grave.tblhak_kanri_nxymd.addYears(1);
        receipts.push_back({grave, std::move(received)});
    }
    return receipts;
}

std::vector<Receipt> takenBack(const std::vector<Receipt>& receipts) {
    std::vector<Receipt> back = receipts;
    for (Receipt& receipt : back)
        std::swap(receipt.from, receipt.to);
    return back;
}

QString changesText(const std::vector<desk::Other<store::tbl_ohaka>>& others) {
    QStringList lines;
    for (const auto& grave : others) {
        if (lines.size() == gravesNamed) {
            lines << u"ほか %1 件"_s.arg(static_cast<int>(others.size()) - gravesNamed);
            break;
        }
        lines << named(grave.read) + u'：' + whatBecameOf(grave);
    }
    return lines.join(u'\n');
}

} // namespace graves
