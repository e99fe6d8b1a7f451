#include "printing/label_stock.h"

#include "desk/user_settings.h"
#include "values/numbers.h"

#include <vector>

using namespace Qt::StringLiterals;

namespace printing {
namespace {

constexpr double inset = 4.0;     // of a text in a label, left and right
constexpr double lineTop = 4.0;   // of its first line
constexpr double leastWidth = 30; // of a label that is to hold four lines
constexpr double leastHeight = 25;
constexpr int mostColumns = 10;
constexpr int mostRows = 30;

// A sheet without gaps is one whose gaps are 0.
LabelStock sheet(const QString& key, int columns, int rows, double left, double top, double width, double height,
                 double columnGap = 0, double rowGap = 0) {
    LabelStock stock{.key = key,
                     .name = u"%1面（%2列 × %3段）"_s.arg(columns * rows).arg(columns).arg(rows),
                     .columns = columns,
                     .rows = rows,
                     .left = left,
                     .top = top,
                     .width = width,
                     .height = height,
                     .columnPitch = width + columnGap,
                     .rowPitch = height + rowGap,
                     .textLeft = inset,
                     .textTop = lineTop,
                     .textRoom = width - 2 * inset};
    return stock;
}

LabelStock card(const QString& key, const QString& name, const Paper& paper, const CardPlaces& places) {
    return {.key = key,
            .name = name,
            .paper = paper,
            .width = paper.width,
            .height = paper.height,
            .columnPitch = paper.width,
            .rowPitch = paper.height,
            .card = places};
}

// The seven boxes of a postal code, as they are printed on cards and envelopes of this width: 12 mm from the top and
// 8 mm from the right, 5.7 mm wide and 8 mm high, the first three 7 mm apart, the others 6.8 mm, 7.6 mm between them.
constexpr double boxWidth = 5.7;
constexpr double boxesMiddle = 12 + 8.0 / 2;

std::array<double, 7> boxes(double paperWidth) {
    std::array<double, 7> middles{};
    double middle = paperWidth - 8 - boxWidth / 2;
    for (std::size_t digit = 7; digit-- > 0;) {
        middles[digit] = middle;
        middle -= digit == 3 ? 7.6 : digit > 3 ? 6.8 : 7.0;
    }
    return middles;
}

LabelStock postcardStock() {
    return card(u"hagaki"_s, u"はがき　宛名縦書き"_s, postcard,
                {.digits = boxes(postcard.width),
                 .digitsMiddle = boxesMiddle,
                 .digitPoints = 15,
                 .address1 = 87,
                 .address2 = 78,
                 .addressTop = 28,
                 .addressBottom = 138,
                 .addressPoints = 14,
                 .name = 50,
                 .nameTop = 40,
                 .nameBottom = 136,
                 .namePoints = 26});
}

LabelStock envelopeStock() {
    return card(u"chou3"_s, u"封筒（長形3号）　宛名縦書き"_s, longEnvelope,
                {.digits = boxes(longEnvelope.width),
                 .digitsMiddle = boxesMiddle,
                 .digitPoints = 15,
                 .address1 = 104,
                 .address2 = 93,
                 .addressTop = 36,
                 .addressBottom = 218,
                 .addressPoints = 17,
                 .name = 60,
                 .nameTop = 56,
                 .nameBottom = 214,
                 .namePoints = 32});
}

// The register's own sheet. The text reaches the label's right edge: that is how it was always set.
LabelStock registersSheet() {
    LabelStock stock = sheet(u"2x6"_s, 2, 6, 21.2, 21.6, 83.8, 43.2);
    stock.textLeft = 3.8;
    stock.textTop = 5.0;
    stock.textRoom = 80.0;
    return stock;
}

std::optional<double> millimetres(const QString& text) {
    if (!values::isNumeric(text))
        return std::nullopt;
    bool ok = false;
    const double number = values::halfWidth(text).remove(u',').trimmed().toDouble(&ok);
    return ok ? std::optional(number) : std::nullopt;
}

} // namespace

std::span<const LabelStock> labelStocks() {
    // clang-format off: a line a sheet, as offices buy them
    static const std::vector<LabelStock> stocks{
        registersSheet(),
        //    key      columns, rows   left   top    width height gaps
        sheet(u"2x5"_s, 2, 5, 18.6, 21.5, 86.4, 50.8),
        sheet(u"3x6"_s, 3, 6, 7.2, 8.7, 63.5, 46.6, 2.5),
        sheet(u"3x7"_s, 3, 7, 7.2, 15.15, 63.5, 38.1, 2.5),
        sheet(u"3x8"_s, 3, 8, 6.0, 12.9, 66.0, 33.9),
        postcardStock(),
        envelopeStock(),
    };
    // clang-format on
    return stocks;
}

const LabelStock& standardStock() {
    return labelStocks().front();
}

OwnStock ownStock(const OwnMeasures& measures) {
    const auto fault = [](const QString& text) { return OwnStock{{}, text}; };
    const auto columns = values::readKeyNumber(measures.columns);
    const auto rows = values::readKeyNumber(measures.rows);
    if (!columns || *columns < 1 || *columns > mostColumns)
        return fault(u"用紙の列数は1から%1の数字で入力して下さい"_s.arg(mostColumns));
    if (!rows || *rows < 1 || *rows > mostRows)
        return fault(u"用紙の段数は1から%1の数字で入力して下さい"_s.arg(mostRows));
    struct {
        const QString& text;
        QString name;
        double value = 0;
    } lengths[] = {{measures.width, u"ラベルの幅"_s},     {measures.height, u"ラベルの高さ"_s},
                   {measures.left, u"左の余白"_s},        {measures.top, u"上の余白"_s},
                   {measures.columnGap, u"左右の間隔"_s}, {measures.rowGap, u"上下の間隔"_s}};
    for (auto& [text, name, value] : lengths) {
        const auto read = millimetres(text);
        if (!read || *read < 0)
            return fault(name + u"は0以上の数字（mm）で入力して下さい"_s);
        value = *read;
    }
    const auto [width, height, left, top, columnGap, rowGap] = std::array{
        lengths[0].value, lengths[1].value, lengths[2].value, lengths[3].value, lengths[4].value, lengths[5].value};
    if (width < leastWidth || height < leastHeight)
        return fault(u"ラベルが小さ過ぎます。幅%1mm、高さ%2mm以上で入力して下さい"_s.arg(leastWidth).arg(leastHeight));
    LabelStock stock = sheet(ownStockKey, *columns, *rows, left, top, width, height, columnGap, rowGap);
    stock.name = ownStockName;
    // Sums of tenths of a millimetre are no exact numbers.
    constexpr double exact = 0.001;
    const double right = stock.labelLeft(*columns - 1) + width;
    const double bottom = stock.labelTop(stock.labels() - 1) + height;
    if (right > a4.width + exact)
        return fault(u"ラベルが用紙の幅に入りません（右端 %1mm、用紙 %2mm）"_s.arg(right).arg(a4.width));
    if (bottom > a4.height + exact)
        return fault(u"ラベルが用紙の高さに入りません（下端 %1mm、用紙 %2mm）"_s.arg(bottom).arg(a4.height));
    return {stock, {}};
}

std::optional<LabelStock> stockOf(const QString& key, const OwnMeasures& own) {
    if (key == ownStockKey)
        return ownStock(own).stock;
    for (const LabelStock& stock : labelStocks()) {
        if (stock.key == key)
            return stock;
    }
    return std::nullopt;
}

namespace {

const QString keyOfSheet = u"labels/sheet"_s;

// Where each measure is kept.
template <class Measures, class Take> void eachMeasure(Measures& own, const Take& take) {
    take(u"labels/columns"_s, own.columns);
    take(u"labels/rows"_s, own.rows);
    take(u"labels/width"_s, own.width);
    take(u"labels/height"_s, own.height);
    take(u"labels/left"_s, own.left);
    take(u"labels/top"_s, own.top);
    take(u"labels/columnGap"_s, own.columnGap);
    take(u"labels/rowGap"_s, own.rowGap);
}

} // namespace

KeptStock keptStock() {
    const QSettings settings = desk::userSettings();
    KeptStock kept;
    OwnMeasures own;
    eachMeasure(own, [&](const QString& key, QString& value) { value = settings.value(key, value).toString(); });
    if (ownStock(own).stock)
        kept.own = own;
    const QString key = settings.value(keyOfSheet).toString();
    if (stockOf(key, own))
        kept.key = key;
    return kept;
}

LabelStock stockKept() {
    const KeptStock kept = keptStock();
    return stockOf(kept.key, kept.own).value_or(standardStock());
}

void keepStock(const KeptStock& kept) {
    QSettings settings = desk::userSettings();
    settings.setValue(keyOfSheet, kept.key);
    if (kept.key == ownStockKey)
        eachMeasure(kept.own, [&](const QString& key, const QString& value) { settings.setValue(key, value); });
}

} // namespace printing
