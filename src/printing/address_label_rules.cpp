#include "printing/address_label_rules.h"

#include "store/row_rules.h"
#include "store/table.h"

#include <QDir>

#include <map>
#include <optional>

using namespace Qt::StringLiterals;

namespace printing {

namespace {

const QString title = u"宛名印刷"_s;
constexpr int householdsNamed = 10;

// The households that get a label in a range, a number a record.
struct Due {
    bool anyAtOrAfter = false;
    std::vector<std::int16_t> households;
};

template <class Index, class Date, class Household>
Due due(store::Database& database, const Index& index, QDate from, QDate to, Date date, Household household) {
    Due found;
    store::Table records(database, index);
    found.anyAtOrAfter = records.seek(store::Seek::atOrAfter, from);
    for (; !records.eof() && records.row().*date <= to; records.moveNext()) {
        if (const auto number = household(records.row()))
            found.households.push_back(*number);
    }
    return found;
}

Due memorialsDue(store::Database& database, QDate from, QDate to) {
    using store::tbl_hohyo;
    return due(database, store::idxhoy_yymd, from, to, &tbl_hohyo::tblhoy_kaiki_yymd, [](const tbl_hohyo& row) {
        return store::isOpenForNotice(row) ? std::optional(row.tblhoy_no) : std::nullopt;
    });
}

Due feesDue(store::Database& database, QDate from, QDate to) {
    using store::tbl_ohaka;
    return due(database, store::idxhak_kanrinext, from, to, &tbl_ohaka::tblhak_kanri_nxymd,
               [](const tbl_ohaka& row) { return std::optional(row.tblhak_dnk_no); });
}

QString namesOf(const std::map<std::int16_t, QString>& missing) {
    QStringList lines;
    for (const auto& [household, characters] : missing) {
        if (lines.size() == householdsNamed) {
            lines << u"ほか %1 件"_s.arg(static_cast<int>(missing.size()) - householdsNamed);
            break;
        }
        lines << u"檀家番号 %1：%2"_s.arg(household).arg(characters);
    }
    return lines.join(u'\n');
}

} // namespace

LabelOutcome 宛名出力(QDate from, QDate to, LabelMode mode, LabelPrinter& printer, desk::Desk& desk) {
    LabelRun run(printer.font());
    Due records;
    std::size_t notFound = 0;
    std::map<std::int16_t, QString> missing;
    {
        store::Database database;
        records = mode == LabelMode::memorials ? memorialsDue(database, from, to) : feesDue(database, from, to);
        store::Table households(database, store::idxdnk_no);
        for (const std::int16_t lbl_dnk_no : records.households) {
            if (!store::seekHousehold(households, lbl_dnk_no)) {
                ++notFound;
                continue;
            }
            const store::tbl_danka& household = households.row();
            const QString lacking = run.printLabel({household.tbldnk_yubin, household.tbldnk_toshug,
                                                    household.tbldnk_jyusho1, household.tbldnk_jyusho2})
                                        .missing;
            if (!lacking.isEmpty())
                missing[lbl_dnk_no] = lacking;
        }
    }
    if (!records.anyAtOrAfter) {
        desk.notify(mode == LabelMode::memorials ? u"法要予定はありません"_s : u"管理費通知予定はありません"_s, title);
        return LabelOutcome::noRecord;
    }
    for (std::size_t i = 0; i < notFound; ++i)
        desk.notify(u"檀家情報を取得出来ません。DBの整合性を確認して下さい"_s, title);
    if (run.isEmpty())
        return LabelOutcome::noLabel;
    PrintedJob job;
    try {
        job = printer.print(run);
    } catch (const PrintFailure& failure) {
        desk.notify(failure.message, title);
        return LabelOutcome::failed;
    }
    if (!job.file.isEmpty())
        desk.notify(u"プリンターがないため、宛名をPDFファイルに書き出しました。\n"_s +
                        QDir::toNativeSeparators(job.file),
                    title);
    if (!job.waiting.isEmpty())
        desk.notify(job.waiting, title);
    if (!missing.empty())
        desk.notify(u"印刷できない文字を〓にした宛名があります。\n"_s + namesOf(missing), title);
    return LabelOutcome::handedOver;
}

void previewLabels(QDate from, QDate to, LabelMode mode, LabelPrinter& preview, desk::Desk& desk) {
    if (宛名出力(from, to, mode, preview, desk) == LabelOutcome::noLabel)
        desk.notify(u"印刷する宛名はありません。"_s, title);
}

} // namespace printing
