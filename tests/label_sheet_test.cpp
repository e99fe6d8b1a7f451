#include "printing/label_sheet.h"
#include "support/label_printer.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class LabelSheet : public ::testing::Test {
  protected:
    // The lines of one label with these texts, on a fresh sheet.
    std::vector<printing::LabelLine> linesOf(const printing::LabelAddress& address) {
        printing::LabelRun run(font);
        missing = run.printLabel(address).missing;
        return run.sheets().front();
    }

    TestFont font;
    QString missing;
};

TEST_F(LabelSheet, ShrinksALineToItsLabelAndSetsItNarrowerBelowSixPoints) {
    struct {
        int characters; // of 4 mm; a label has room for 80 mm
        double points;
        double share;
    } const cases[] = {{20, 10.0, 1.0}, {33, 10.0 * 80 / 132, 1.0}, {80, 6.0, 80 / 192.0}};
    EXPECT_EQ(linesOf({{}, {}, QString(20, u'字') + u"　 "_s, {}}).front().points, 10.0); // blanks hang over the edge
    for (const auto& each : cases) {
        const auto lines = linesOf({{}, {}, QString(each.characters, u'字'), {}});
        ASSERT_EQ(lines.size(), 1U) << each.characters; // and none for the empty ones
        EXPECT_NEAR(lines[0].top, 36.6, 1e-9);
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
        {QString(80, u'字'), QStringList(4, QString(20, u'字')), 10},
        // At a blank rather than inside a word; never before a closing mark.
        {u"東京都千代田区丸の内 MarunouchiTrustTowerNorth"_s,
         {u"東京都千代田区丸の内 "_s, u"MarunouchiTrustTowerNorth"_s},
         10},
        {QString(19, u'字') + u"字。次"_s, {QString(19, u'字'), u"字。次"_s}, 10},
        // A word wider than the label breaks where it must.
        {QString(50, u'x'), {QString(40, u'x'), QString(10, u'x')}, 10},
        {QString(84, u'字'), QStringList(4, QString(21, u'字')), 9.5},
        // Nothing is left out: the last line is set narrower.
        {QString(401, u'字'), {QString(33, u'字'), QString(33, u'字'), QString(33, u'字'), QString(302, u'字')}, 6},
    };
    for (const auto& each : cases) {
        const auto lines = linesOf({{}, {}, {}, each.text});
        ASSERT_EQ(lines.size(), static_cast<std::size_t>(each.lines.size())) << each.text.toStdString();
        for (std::size_t i = 0; i < lines.size(); ++i) {
            EXPECT_EQ(lines[i].text, each.lines[static_cast<qsizetype>(i)]);
            EXPECT_NEAR(lines[i].top, 41.6 + 5.0 * static_cast<double>(i), 1e-9);
            EXPECT_EQ(lines[i].points, each.points);
            const double width = font.width(lines[i].text.trimmed()) * each.points / 10;
            EXPECT_NEAR(lines[i].widthShare, std::min(1.0, 80 / width), 1e-9);
        }
    }
}

TEST_F(LabelSheet, MeasuresALongTextNoMoreThanAFewTimes) {
    for (const QString& letter : {u"字"_s, u"x"_s, u"あ い"_s}) {
        font.measured = 0;
        const QString text = letter.repeated(5000 / letter.size());
        const auto lines = linesOf({{}, text, {}, text});
        EXPECT_EQ(lines.size(), 5U);
        EXPECT_LT(font.measured, 5 * 5000) << letter.toStdString();
    }
}

TEST_F(LabelSheet, ReplacesWhatTheFontLacks) {
    const auto lines = linesOf({u"1\n2\t3"_s, u"𠮷田 鷗外 鷗"_s, u"辻\U000E0100"_s, {}});
    EXPECT_EQ(lines[0].text, u"1 2 3"_s);
    EXPECT_EQ(lines[1].text, u"〓田 〓外 〓"_s);
    EXPECT_EQ(lines[2].text, u"辻\U000E0100"_s);
    EXPECT_EQ(missing, u"𠮷鷗"_s);
}

} // namespace
