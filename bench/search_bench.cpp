// The search over everything on a full register: what a key costs beside a bare loop over the same folded texts, how
// soon after the menu stands the texts are there and what that costs the menu, and what all takes of memory.
//
//     search_bench REGISTER
#include "compare.h"

#include "app/application.h"
#include "app/screens.h"
#include "search/register_finder.h"
#include "store/database.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <string_view>

using namespace Qt::StringLiterals;

namespace {

// How often the words stand in the texts, each text by itself.
std::size_t countByHand(const std::vector<std::u16string_view>& texts, const std::vector<std::u16string>& words) {
    std::size_t count = 0;
    for (const std::u16string_view text : texts) {
        for (const std::u16string& word : words)
            count += text.find(word) != std::u16string_view::npos;
    }
    return count;
}

std::vector<std::u16string_view> fieldsOf(const std::u16string& folded) {
    std::vector<std::u16string_view> fields;
    for (std::size_t at = 0; at < folded.size();) {
        const std::size_t end = folded.find(u'\0', at);
        fields.push_back(std::u16string_view(folded).substr(at, end - at));
        at = end + 1;
    }
    return fields;
}

double milliseconds(const QElapsedTimer& since) {
    return static_cast<double>(since.nsecsElapsed()) / 1e6;
}

// Runs the event loop until the texts are there; gives the longest time that it stood still.
double waitUntilReady(const search::RegisterFinder& finder) {
    double longest = 0;
    QTimer beat;
    beat.setTimerType(Qt::PreciseTimer);
    beat.start(1);
    const QElapsedTimer since = [] {
        QElapsedTimer timer;
        timer.start();
        return timer;
    }();
    QElapsedTimer last = since;
    while (!finder.ready()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
        longest = std::max(longest, milliseconds(last));
        last.restart();
        if (since.hasExpired(60'000))
            throw std::runtime_error("the texts were not read");
    }
    return longest;
}

constexpr double megabyte = 1024 * 1024;

double mostMemory() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) * 1024 / megabyte;
}

void tell(const char* what, double value, const char* unit, double limit) {
    std::printf("%-58s %10.1f %s  (at most %.0f)\n", what, value, unit, limit);
    std::fflush(stdout);
}

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    app::prepare(application);
    if (argc != 2) {
        std::fputs("search_bench REGISTER\n", stderr);
        return 2;
    }
    try {
        store::Database::setRegisterPath(QString::fromLocal8Bit(argv[1]));
        ui::Workplace workplace(app::screens());
        workplace.finder = std::make_unique<search::RegisterFinder>(std::function<bool()>());
        auto& finder = static_cast<search::RegisterFinder&>(*workplace.finder);
        workplace.open(u"メニュー"_s);
        auto* box = workplace.find(u"メニュー"_s)->findChild<QLineEdit*>(u"さがす"_s);
        QCoreApplication::processEvents();
        const double before = mostMemory();
        waitUntilReady(finder);
        {
            // As when the register has changed: the former texts serve until the new ones are there.
            search::RegisterFinder anew({});
            waitUntilReady(anew);
        }
        std::printf("search: %zu rows, %.1f MB of texts; %.1f MB before them\n", finder.texts()->size(),
                    static_cast<double>(finder.bytes()) / megabyte, before);
        tell("search: memory of the program in all, at its most", mostMemory(), "MB", 150);

        const auto fields = fieldsOf(finder.texts()->folded());
        for (const QString& typed : {u"サ"_s, u"さとう"_s, u"佐藤"_s, u"渡邊"_s, u"花子"_s, u"0567"_s, u"大姉"_s,
                                     u"佐藤 東"_s, u"さ き 3"_s, u"見つからない"_s, QString(200, u'あ')}) {
            const auto words = search::foldedWords(typed);
            const QByteArray what = ("search: a key, " + typed.left(8)).toUtf8();
            std::size_t found = 0;
            bench::compare(
                what.constData(), 2.0, 9, 3, [&] { found += finder.find(typed).lines.size(); },
                [&] { found += countByHand(fields, words); });
            std::vector<double> shown;
            for (int round = 0; round < 9; ++round) {
                box->clear();
                QCoreApplication::processEvents();
                QElapsedTimer since;
                since.start();
                box->setText(typed);
                QCoreApplication::processEvents();
                shown.push_back(milliseconds(since));
            }
            tell("    the same in the box, its results painted", median(shown), "ms", 50);
        }

        std::vector<double> ready;
        std::vector<double> still;
        for (int round = 0; round < 7; ++round) {
            ui::Workplace workplace(app::screens());
            workplace.open(u"メニュー"_s);
            QCoreApplication::processEvents();
            QElapsedTimer since;
            since.start();
            search::RegisterFinder finder({});
            still.push_back(waitUntilReady(finder));
            ready.push_back(milliseconds(since));
        }
        tell("search: ready after the menu stands", median(ready), "ms", 1000);
        tell("search: the menu's longest halt meanwhile", median(still), "ms", 16);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
