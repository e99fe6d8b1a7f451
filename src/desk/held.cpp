#include "desk/held.h"

#include "values/dates.h"

using namespace Qt::StringLiterals;

namespace desk {

namespace {

QString withHousehold(std::int16_t number, const QString& name) {
    return QString::number(number) + u' ' + name;
}

} // namespace

QString householdLabel(std::int16_t no1, std::int16_t no2) {
    return no2 == 0 ? QString::number(no1) : u"%1-%2"_s.arg(no1).arg(no2);
}

QString labelOf(const store::tbl_danka& row) {
    return householdLabel(row.tbldnk_no1, row.tbldnk_no2);
}

QString labelOf(const store::tbl_kazoku& row) {
    return withHousehold(row.tblkzk_no1, row.tblkzk_nameg);
}

QString labelOf(const store::tbl_kakocho& row) {
    return withHousehold(row.tblkak_no, row.tblkak_zokunameg);
}

QString labelOf(const store::tbl_ohaka& row) {
    return QString::number(row.tblhak_no);
}

QString labelOf(const store::tbl_hohyo& row) {
    return withHousehold(row.tblhoy_no, row.tblhoy_zokunameg) + u' ' + row.tblhoy_kaiki_mei;
}

QString labelOf(const store::tbl_nengo& row) {
    return row.tblnen_nengo;
}

QString labelOf(const store::マスタ& row) {
    return QString::number(row.マ_NO) + u' ' + row.マ_略称;
}

std::optional<AskedRecord> askedHousehold(const ScreenContext& context) {
    if (context.dnk_no1 == 0)
        return {};
    return AskedRecord{keyText(context.dnk_no1, context.dnk_no2), householdLabel(context.dnk_no1, context.dnk_no2)};
}

std::optional<AskedRecord> askedPerson(const ScreenContext& context, const QString& name,
                                       const QString& householdShown) {
    if (context.dnk_no1 == 0)
        return {};
    if (!name.isEmpty())
        return AskedRecord{keyText(context.dnk_no1, context.dnk_nameg, name), withHousehold(context.dnk_no1, name)};
    if (householdShown == QString::number(context.dnk_no1))
        return {};
    return Record::newRecord(householdLabel(context.dnk_no1, context.dnk_no2));
}

int Record::nextMark() {
    static int mark = 0;
    return ++mark;
}

AskedRecord Record::newRecord(const QString& whose) {
    return {keyText(u"new"_s, whose), whose.isEmpty() ? u"新規"_s : whose + u" 新規"_s};
}

void Record::showNew(const QString& whose) {
    forget();
    const AskedRecord record = newRecord(whose);
    showing(record.key, record.label);
    isNew_ = true;
    deleted_ = false;
}

void Record::showing(const QString& key, const QString& label) {
    isNew_ = false;
    key_ = key;
    label_ = label;
    showing_ = nextMark();
}

bool refused(Standing standing, const Record& record, const Refusal& words, Desk& desk) {
    switch (standing) {
    case Standing::asRead:
        return false;
    case Standing::twice:
        desk.notify(
            u"同じ番号・名前の記録が二つあり、どちらか決められません。何も書き込まれていません。端末で「hoshiren-db "
            "check」を実行して、登録簿を確認して下さい。"_s,
            words.title);
        return true;
    case Standing::changed:
    case Standing::gone:
        break;
    }
    if (!record.isNew() && record.registerReplaced())
        desk.notify(u"登録簿が入れ替わりました。画面を開き直して下さい"_s, words.title);
    else if (standing == Standing::changed)
        desk.notify(u"この記録はほかの画面で変更されています。照会し直して下さい"_s, words.title);
    else
        desk.notify(words.gone, words.title);
    return true;
}

} // namespace desk
