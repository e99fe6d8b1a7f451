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

// Many households share a reading: each is weighed once.
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

printing::Listing kanaListing(QDate today) {
    printing::ListingTable table;
    table.columns = {{u"檀家NO"_s, desk::Align::right},
                     {u"檀家名"_s},
                     {u"ﾖﾐｶﾞﾅ"_s},
                     {u"当主名"_s},
                     {u"地区"_s},
                     {u"住所"_s},
                     {u"電話"_s},
                     {u"備考"_s}};
    std::size_t households = 0;
    const auto tabs = readKanaTabs();
    for (std::size_t tab = 0; tab < tabs.size(); ++tab) {
        if (tabs[tab].empty())
            continue;
        printing::ListingGroup& group = table.groups.emplace_back();
        group.heading = u"%1　%2件"_s.arg(kanaTabs()[tab].caption).arg(tabs[tab].size());
        for (const KanaLine& line : tabs[tab]) {
            QStringList& cells = group.rows.emplace_back(QStringList{QString::number(line.no1)});
            cells.append(QStringList(line.texts.begin(), line.texts.end()));
        }
        households += tabs[tab].size();
    }
    return {.title = u"檀家一覧"_s,
            .range = u"%1件"_s.arg(households),
            .date = today.toString(u"yyyy年M月d日"_s),
            .blocks = {std::move(table)},
            .nothing = households == 0 ? u"印刷する行がありません。"_s : QString()};
}

void openChosen(const 檀家一覧Form& form, desk::ScreenContext& context, desk::Desk& desk, const QString& screen) {
    context.G初期値();
    context.dnk_no1 = form.chosenNo;
    context.dnk_nameg = form.chosenName;
    desk.open(screen);
}

} // namespace households
