#include "households/kana_list_rules.h"

#include "store/table.h"

#include <QCollator>
#include <QHash>
#include <QLocale>

#include <algorithm>
#include <numeric>

using namespace Qt::StringLiterals;

namespace households {

namespace {

std::vector<KanaLine> readTab(store::Database& database, const char* query) {
    std::vector<KanaLine> lines;
    SQLite::Statement statement(database.engine(),
                                std::string("SELECT tbldnk_no1, tbldnk_nameg, tbldnk_namek, tbldnk_toshug, "
                                            "tbldnk_chiku, tbldnk_jyusho1, tbldnk_tel, tbldnk_bikou FROM ") +
                                    query);
    while (statement.executeStep()) {
        KanaLine& line = lines.emplace_back();
        store::readValue(statement.getColumn(0), line.no1);
        for (int at = 0; at < static_cast<int>(line.texts.size()); ++at)
            store::readValue(statement.getColumn(at + 1), line.texts[static_cast<std::size_t>(at)]);
    }
    return lines;
}

// Many households share a reading: compute the sort key of each reading only once.
std::vector<KanaLine> inReadingOrder(std::vector<KanaLine> lines) {
    QCollator collator(QLocale(QLocale::Japanese, QLocale::Japan));
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    QHash<QString, int> places;
    std::vector<std::pair<QCollatorSortKey, int>> readings;
    std::vector<int> readingOf(lines.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const QString& kana = lines[i].texts[1];
        auto place = places.find(kana);
        if (place == places.end()) {
            place = places.insert(kana, static_cast<int>(readings.size()));
            readings.emplace_back(collator.sortKey(kana), place.value());
        }
        readingOf[i] = place.value();
    }
    std::ranges::sort(readings, [](const auto& a, const auto& b) { return a.first.compare(b.first) < 0; });
    std::vector<int> rank(readings.size());
    int current = -1;
    for (std::size_t i = 0; i < readings.size(); ++i) {
        if (i == 0 || readings[i - 1].first.compare(readings[i].first) != 0)
            ++current;
        rank[static_cast<std::size_t>(readings[i].second)] = current;
    }
    std::vector<std::size_t> order(lines.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::sort(order, [&](std::size_t a, std::size_t b) {
        const int left = rank[static_cast<std::size_t>(readingOf[a])];
        const int right = rank[static_cast<std::size_t>(readingOf[b])];
        return std::tie(left, lines[a].no1, a) < std::tie(right, lines[b].no1, b);
    });
    std::vector<KanaLine> ordered;
    ordered.reserve(lines.size());
    for (const std::size_t at : order)
        ordered.push_back(std::move(lines[at]));
    return ordered;
}

} // namespace

const std::array<KanaTab, 11>& kanaTabs() {
    static const std::array<KanaTab, 11> tabs{{{u"あ"_s, "qrydnk_aa"},
                                               {u"か"_s, "qrydnk_ka"},
                                               {u"さ"_s, "qrydnk_sa"},
                                               {u"た"_s, "qrydnk_ta"},
                                               {u"な"_s, "qrydnk_na"},
                                               {u"は"_s, "qrydnk_ha"},
                                               {u"ま"_s, "qrydnk_ma"},
                                               {u"や"_s, "qrydnk_ya"},
                                               {u"ら"_s, "ｑｒｙｄｎｋ_ra"},
                                               {u"わ"_s, "qrydnk_wa"},
                                               {u"他"_s, "qrydnk_hoka"}}};
    return tabs;
}

std::array<std::vector<KanaLine>, 11> readKanaTabs() {
    std::array<std::vector<KanaLine>, 11> tabs;
    store::Database database;
    for (std::size_t i = 0; i < tabs.size(); ++i)
        tabs[i] = inReadingOrder(readTab(database, kanaTabs()[i].query));
    return tabs;
}

const std::vector<desk::ListColumn<KanaLine>>& kanaColumns() {
    using Line = const KanaLine&;
    static const std::vector<desk::ListColumn<KanaLine>> columns{
        {u"檀家NO"_s, 800, [](Line line) { return QString::number(line.no1); }, desk::Align::right, desk::Align::right},
        {u"檀家名"_s, 1400, [](Line line) { return line.texts[0]; }},
        {QString(), 1600, [](Line line) { return line.texts[1]; }},
        {u"当主名"_s, 1800, [](Line line) { return line.texts[2]; }},
        {u"地区"_s, 1200, [](Line line) { return line.texts[3]; }},
        {u"住所"_s, 3000, [](Line line) { return line.texts[4]; }},
        {u"電話"_s, 1600, [](Line line) { return line.texts[5]; }},
        {u"備考"_s, 2600, [](Line line) { return line.texts[6]; }}};
    return columns;
}

void beginKanaList(檀家一覧Form& form, desk::ScreenContext&, desk::Desk&) {
    form.tabs = readKanaTabs();
}

void chooseHousehold(檀家一覧Form& form, std::size_t tab, int row, desk::Desk& desk) {
    const std::vector<KanaLine>& lines = form.tabs[tab];
    if (row < 1 || row > static_cast<int>(lines.size())) {
        desk.notify(u"選択位置が有効でありません。"_s, u"檀家一覧"_s);
        return;
    }
    const KanaLine& line = lines[static_cast<std::size_t>(row - 1)];
    form.chosenNo = line.no1;
    form.chosenName = line.texts[0];
    form.chosenTab = tab;
    form.chosenRow = row;
}

void openChosen(const 檀家一覧Form& form, desk::ScreenContext& context, desk::Desk& desk, const QString& screen) {
    context.G初期値();
    context.dnk_no1 = form.chosenNo;
    context.dnk_nameg = form.chosenName;
    desk.open(screen);
}

} // namespace households
