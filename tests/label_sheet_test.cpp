#include "printing/label_sheet.h"
#include "support/label_printer.h"

#include <cmath>

using namespace Qt::StringLiterals;
using printing::LabelLine;

namespace {

class LabelSheet : public ::testing::Test {
  protected:
    // The lines of one label with these texts, on a fresh sheet.
    std::vector<LabelLine> linesOf(const printing::LabelAddress& address) {
        printing::LabelRun run(font);
        missing = run.printLabel(address);
        return run.sheets().front();
    }

    TestFont font;
    QString missing;
};

TEST_F(LabelSheet, PutsTwelveLabelsOnASheetLeftThenRight) {
    printing::LabelRun run(font);
    EXPECT_TRUE(run.isEmpty());
    for (int i = 1; i <= 25; ++i)
        run.printLabel({QString::number(i), u"名"_s, u"一"_s, u"二"_s});
    ASSERT_EQ(run.sheets().size(), 3U);
    struct {
        std::size_t sheet;
        std::size_t label;
        QString text;
        double x;
        double top;
    } const places[] = {
        {0, 0, u"1"_s, 25.0, 26.6},   {0, 1, u"2"_s, 108.8, 26.6},    {0, 2, u"3"_s, 25.0, 69.8},
        {0, 5, u"6"_s, 108.8, 113.0}, {0, 10, u"11"_s, 25.0, 242.6},  {0, 11, u"12"_s, 108.8, 242.6},
        {1, 0, u"13"_s, 25.0, 26.6},  {1, 11, u"24"_s, 108.8, 242.6}, {2, 0, u"25"_s, 25.0, 26.6},
    };
    for (const auto& place : places) {
        const auto& sheet = run.sheets()[place.sheet];
        for (std::size_t line = 0; line < 4; ++line) {
            const LabelLine& set = sheet.at(place.label * 4 + line);
            EXPECT_NEAR(set.x, place.x, 1e-9) << place.text.toStdString();
            EXPECT_NEAR(set.top, place.top + 5.0 * static_cast<double>(line), 1e-9) << place.text.toStdString();
            EXPECT_EQ(set.points, 10.0);
            EXPECT_EQ(set.widthShare, 1.0);
        }
        EXPECT_EQ(sheet.at(place.label * 4).text, place.text);
    }
}

TEST_F(LabelSheet, KeepsEmptyLinesFree) {
    const auto lines = linesOf({{}, u"山田"_s, {}, u"二"_s});
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_NEAR(lines[0].top, 31.6, 1e-9);
    EXPECT_NEAR(lines[1].top, 41.6, 1e-9);
}

TEST_F(LabelSheet, ShrinksALineToItsLabelAndSetsItNarrowerBelowSixPoints) {
    struct {
        int characters; // of 4 mm; a label has room for 80 mm
        double points;
        double share;
    } const cases[] = {{20, 10.0, 1.0}, {21, 10.0 * 80 / 84, 1.0}, {33, 10.0 * 80 / 132, 1.0}, {80, 6.0, 80 / 192.0}};
    for (const auto& each : cases) {
        const auto lines = linesOf({{}, {}, QString(each.characters, u'字'), {}});
        ASSERT_EQ(lines.size(), 1U) << each.characters;
        EXPECT_NEAR(lines[0].points, each.points, 1e-9) << each.characters;
        EXPECT_NEAR(lines[0].widthShare, each.share, 1e-9) << each.characters;
        EXPECT_EQ(lines[0].text.size(), each.characters);
    }
}

TEST_F(LabelSheet, BreaksAddressLine2IntoTheFreeLinesBelow) {
    struct {
        QString text;
        QStringList lines;
        double points;
    } const cases[] = {
        {QString(20, u'字'), {QString(20, u'字')}, 10},
        {QString(50, u'字'), {QString(20, u'字'), QString(20, u'字'), QString(10, u'字')}, 10},
        {QString(80, u'字'), QStringList(4, QString(20, u'字')), 10},
        // At a blank rather than inside a word; never before a closing mark.
        {u"東京都千代田区丸の内 MarunouchiTrustTowerNorth"_s,
         {u"東京都千代田区丸の内 "_s, u"MarunouchiTrustTowerNorth"_s},
         10},
        {QString(19, u'字') + u"字。次"_s, {QString(19, u'字'), u"字。次"_s}, 10},
        // A word wider than the label breaks where it must.
        {QString(50, u'x'), {QString(40, u'x'), QString(10, u'x')}, 10},
        {QString(88, u'字'), {QString(22, u'字'), QString(22, u'字'), QString(22, u'字'), QString(22, u'字')}, 9},
    };
    for (const auto& each : cases) {
        const auto lines = linesOf({{}, {}, {}, each.text});
        ASSERT_EQ(lines.size(), static_cast<std::size_t>(each.lines.size())) << each.text.toStdString();
        for (std::size_t i = 0; i < lines.size(); ++i) {
            EXPECT_EQ(lines[i].text.toStdString(), each.lines[static_cast<qsizetype>(i)].toStdString());
            EXPECT_NEAR(lines[i].top, 41.6 + 5.0 * static_cast<double>(i), 1e-9);
            EXPECT_EQ(lines[i].points, each.points);
            EXPECT_EQ(lines[i].widthShare, 1.0);
        }
    }
}

TEST_F(LabelSheet, LosesNothingOfAnAddressOfAnyLength) {
    const QString text = QString(400, u'字') + u"終"_s;
    const auto lines = linesOf({{}, {}, {}, text});
    ASSERT_EQ(lines.size(), 4U);
    QString whole;
    for (const LabelLine& line : lines) {
        whole += line.text;
        EXPECT_EQ(line.points, 6.0);
        EXPECT_LE(font.width(line.text) * 0.6 * line.widthShare, 80.0 + 1e-9);
    }
    EXPECT_EQ(whole, text);
}

TEST_F(LabelSheet, ReplacesWhatTheFontLacks) {
    const auto lines = linesOf({u"1\n2\t3"_s, u"𠮷田 鷗外 鷗"_s, u"辻\U000E0100"_s, {}});
    EXPECT_EQ(lines[0].text, u"1 2 3"_s);
    EXPECT_EQ(lines[1].text, u"〓田 〓外 〓"_s);
    EXPECT_EQ(lines[2].text, u"辻\U000E0100"_s);
    EXPECT_EQ(missing, u"𠮷鷗"_s);
}

} // namespace
