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
constexpr int lettersNamed = 20;

// The households that get a label in a range, a number a record.
struct Due {
    bool anyAtOrAfter = false;
    bool anyLeftOut = false; // by choice
    std::vector<std::int16_t> households;
};

template <class Index, class Date, class Household>
Due due(store::Database& database, const Index& index, QDate from, QDate to, const LabelChoice& choice, Date date,
        Household household) {
    Due found;
    store::Table records(database, index);
    found.anyAtOrAfter = records.seek(store::Seek::atOrAfter, from);
    for (; !records.eof() && records.row().*date <= to; records.moveNext()) {
        const auto number = household(records.row());
        if (!number)
            continue;
        if (choice.takes(records.row()))
            found.households.push_back(*number);
        else
            found.anyLeftOut = true;
    }
    return found;
}

Due memorialsDue(store::Database& database, QDate from, QDate to, const LabelChoice& choice) {
    using store::tbl_hohyo;
    return due(database, store::idxhoy_yymd, from, to, choice, &tbl_hohyo::tblhoy_kaiki_yymd, [](const tbl_hohyo& row) {
        return store::isOpenForNotice(row) ? std::optional(row.tblhoy_no) : std::nullopt;
    });
}

Due feesDue(store::Database& database, QDate from, QDate to, const LabelChoice& choice) {
    using store::tbl_ohaka;
    return due(database, store::idxhak_kanrinext, from, to, choice, &tbl_ohaka::tblhak_kanri_nxymd,
               [](const tbl_ohaka& row) { return std::optional(row.tblhak_dnk_no); });
}

QString namesOf(const std::map<std::int16_t, QString>& households) {
    QStringList lines;
    for (const auto& [household, remark] : households) {
        if (lines.size() == householdsNamed) {
            lines << u"ほか %1 件"_s.arg(static_cast<int>(households.size()) - householdsNamed);
            break;
        }
        lines << u"檀家番号 %1：%2"_s.arg(household).arg(remark);
    }
    return lines.join(u'\n');
}

// By household number: what is wrong with its label.
struct Faults {
    std::map<std::int16_t, QString> missing; // the characters that the font lacks
    std::map<std::int16_t, QString> tight;   // the name
};

void tellBeforePrinting(const Faults& faults, desk::Desk& desk) {
    const QString none = u"\n何も印刷していません。\n"_s;
    if (!faults.missing.empty())
        desk.notify(u"印刷できない文字のある宛名があります。檀家登録で直すか、通知選択を外して下さい。"_s + none +
                        namesOf(faults.missing),
                    title);
    if (!faults.tight.empty())
        desk.notify(
            u"長いため、読みにくいほど小さくなる宛名があります。宛名設定で他の用紙を選ぶか、通知選択を外して下さい。"_s +
                none + namesOf(faults.tight),
            title);
}

void tellAfterwards(const Faults& faults, const LabelChoice& choice, desk::Desk& desk) {
    if (!faults.missing.empty())
        desk.notify(u"印刷できない文字を〓にした宛名があります。\n"_s + namesOf(faults.missing), title);
    // The register's own sheet sets them as it always did.
    if (!faults.tight.empty() && choice.stock != standardStock())
        desk.notify(u"長いため、読みにくいほど小さくなった宛名があります。\n"_s + namesOf(faults.tight), title);
}

enum class Way { paper, preview };

LabelOutcome makeLabels(QDate from, QDate to, LabelMode mode, LabelPrinter& printer, Way way, desk::Desk& desk,
                        const LabelChoice& choice) {
    if (!choice.rests.isEmpty()) {
        desk.notify(choice.rests, title);
        return LabelOutcome::noneChosen;
    }
    LabelRun run(printer.font(), choice.stock, choice.start);
    Due records;
    std::size_t notFound = 0;
    Faults faults;
    {
        store::Database database;
        records = mode == LabelMode::memorials ? memorialsDue(database, from, to, choice)
                                               : feesDue(database, from, to, choice);
        store::Table households(database, store::idxdnk_no);
        for (const std::int16_t lbl_dnk_no : records.households) {
            if (!store::seekHousehold(households, lbl_dnk_no)) {
                ++notFound;
                continue;
            }
            const store::tbl_danka& household = households.row();
            const LabelResult label = run.printLabel(
                {household.tbldnk_yubin, household.tbldnk_toshug, household.tbldnk_jyusho1, household.tbldnk_jyusho2});
            if (!label.missing.isEmpty())
                faults.missing[lbl_dnk_no] = label.missing;
            if (label.tight)
                faults.tight[lbl_dnk_no] = household.tbldnk_toshug.left(lettersNamed);
        }
    }
    if (!records.anyAtOrAfter) {
        desk.notify(mode == LabelMode::memorials ? u"法要予定はありません"_s : u"管理費通知予定はありません"_s, title);
        return LabelOutcome::noRecord;
    }
    for (std::size_t i = 0; i < notFound; ++i)
        desk.notify(u"檀家情報を取得出来ません。DBの整合性を確認して下さい"_s, title);
    if (records.households.empty() && records.anyLeftOut) {
        desk.notify(u"印刷する宛名が一つも選ばれていません。通知選択と宛名設定を確認して下さい。"_s, title);
        return LabelOutcome::noneChosen;
    }
    if (run.isEmpty())
        return LabelOutcome::noLabel;
    // The register's own sheet goes out whatever the addresses are.
    if (way == Way::paper && choice.stock != standardStock() && !(faults.missing.empty() && faults.tight.empty())) {
        tellBeforePrinting(faults, desk);
        return LabelOutcome::failed;
    }
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
    tellAfterwards(faults, choice, desk);
    return LabelOutcome::handedOver;
}

} // namespace

LabelOutcome 宛名出力(QDate from, QDate to, LabelMode mode, LabelPrinter& printer, desk::Desk& desk,
                      const LabelChoice& choice) {
    return makeLabels(from, to, mode, printer, Way::paper, desk, choice);
}

void previewLabels(QDate from, QDate to, LabelMode mode, LabelPrinter& preview, desk::Desk& desk,
                   const LabelChoice& choice) {
    if (makeLabels(from, to, mode, preview, Way::preview, desk, choice) == LabelOutcome::noLabel)
        desk.notify(u"印刷する宛名はありません。"_s, title);
}

} // namespace printing
