#include "printing/label_painter.h"
#include "support/pdf_words.h"

#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using printing::LabelAddress;

namespace {

class LabelPainter : public ::testing::Test {
  protected:
    std::vector<Word> printed(const std::vector<LabelAddress>& addresses) {
        const auto printer = printing::pdfFile(directory.path(), u"宛名"_s);
        printing::LabelRun run(printer->font());
        for (const LabelAddress& address : addresses)
            run.printLabel(address);
        file = printer->print(run).file;
        return wordsOf(file);
    }

    QTemporaryDir directory;
    QString file;
};

TEST_F(LabelPainter, PutsThirteenLabelsToATenthOfAMillimetre) {
    std::vector<LabelAddress> addresses;
    for (int i = 1; i <= 13; ++i) {
        const QString number = QString::number(100 + i);
        addresses.push_back({u"〒"_s + number, u"山田"_s + number, u"川端一丁目"_s + number, u"号室"_s + number});
    }
    const std::vector<Word> words = printed(addresses);
    ASSERT_EQ(words.size(), 13U * 4);
    for (std::size_t label = 0; label < addresses.size(); ++label) {
        const auto& [first, second, third, fourth] = addresses[label];
        const std::size_t row = label % 12 / 2;
        double line = 21.6 + 43.2 * static_cast<double>(row);
        for (const QString& text : {first, second, third, fourth}) {
            line += 5.0;
            const auto found = std::ranges::find(words, text, &Word::text);
            ASSERT_NE(found, words.end()) << text.toStdString();
            EXPECT_EQ(found->page, label < 12 ? 1 : 2) << text.toStdString();
            EXPECT_NEAR(found->left, label % 2 == 0 ? 25.0 : 108.8, 0.1) << text.toStdString();
            EXPECT_NEAR(found->top, line, 0.1) << text.toStdString();
        }
    }
}

// A full sheet from its second label on, and one label of the next: every one at its place.
TEST_F(LabelPainter, PutsTheLabelsOfEverySheetToATenthOfAMillimetre) {
    const struct {
        QString key;
        double left, top, across, down; // of the first text and from label to label, millimetres
    } cases[] = {
        {u"2x6"_s, 25.0, 26.6, 83.8, 43.2},  {u"2x5"_s, 22.6, 25.5, 86.4, 50.8}, {u"3x6"_s, 11.2, 12.7, 66.0, 46.6},
        {u"3x7"_s, 11.2, 19.15, 66.0, 38.1}, {u"3x8"_s, 10.0, 16.9, 66.0, 33.9}, {u"own"_s, 14.0, 16.0, 72.0, 41.0},
    };
    const printing::OwnMeasures own{u"２"_s, u"5"_s, u"70"_s, u"40"_s, u"10"_s, u"12"_s, u"2"_s, u"1"_s};
    for (const auto& each : cases) {
        const auto stock = printing::stockOf(each.key, own);
        ASSERT_TRUE(stock) << each.key.toStdString();
        const auto printer = printing::pdfFile(directory.path(), u"宛名"_s);
        printing::LabelRun run(printer->font(), *stock, 1);
        for (int label = 1; label <= stock->labels(); ++label)
            run.printLabel({u"〒%1"_s.arg(100 + label), {}, {}, u"号室%1"_s.arg(100 + label)});
        const std::vector<Word> words = wordsOf(printer->print(run).file);
        ASSERT_EQ(words.size(), static_cast<std::size_t>(stock->labels()) * 2);
        for (int label = 1; label <= stock->labels(); ++label) {
            const auto found = std::ranges::find(words, u"〒%1"_s.arg(100 + label), &Word::text);
            ASSERT_NE(found, words.end());
            const int place = label % stock->labels();
            EXPECT_EQ(found->page, label < stock->labels() ? 1 : 2);
            EXPECT_NEAR(found->left, each.left + place % stock->columns * each.across, 0.1) << each.key.toStdString();
            EXPECT_NEAR(found->top, each.top + place / stock->columns * each.down, 0.1) << each.key.toStdString();
            const auto fourth = std::ranges::find(words, u"号室%1"_s.arg(100 + label), &Word::text);
            ASSERT_NE(fourth, words.end());
            EXPECT_NEAR(fourth->top, found->top + 15, 0.1);
        }
    }
}

TEST_F(LabelPainter, WritesCardsVertically) {
    const struct {
        QString key;
        double wider; // than a postcard: its boxes stand so much further to the right
        double address1, address2, name;
    } cases[] = {{u"hagaki"_s, 0, 87, 78, 50}, {u"chou3"_s, 20, 104, 93, 60}};
    for (const auto& each : cases) {
        const auto printer = printing::pdfFile(directory.path(), u"宛名"_s);
        printing::LabelRun run(printer->font(), *printing::stockOf(each.key, {}));
        const auto result = run.printLabel({u"６０４-8005"_s, u"山田　太郎"_s, u"寺前12-３"_s, u"コーポ105"_s});
        EXPECT_FALSE(result.tight);
        std::vector<Word> words = wordsOf(printer->print(run).file);
        std::ranges::sort(words, {}, &Word::top);
        const auto expectColumn = [&](double line, const QString& text) {
            QString found;
            for (const Word& word : words) {
                if (std::abs((word.left + word.right) / 2 - line) < 0.1 && word.top > 20)
                    found += word.text;
            }
            EXPECT_EQ(found, text) << each.key.toStdString();
        };
        expectColumn(each.name, u"山田太郎様"_s);
        expectColumn(each.address1, u"寺前一二三"_s); // the dash lies on its side, which is another box
        expectColumn(each.address2, u"コポ一〇五"_s);
        const double boxes[] = {47.15, 54.15, 61.15, 68.75, 75.55, 82.35, 89.15};
        QString digits;
        std::ranges::sort(words, {}, &Word::left);
        for (const Word& word : words) {
            if (word.top > 20)
                continue;
            EXPECT_NEAR((word.left + word.right) / 2, boxes[digits.size()] + each.wider, 0.1);
            digits += word.text;
        }
        EXPECT_EQ(digits, u"6048005"_s);
    }
}

TEST_F(LabelPainter, KeepsALongNameOnItsCard) {
    for (const QString& key : {u"hagaki"_s, u"chou3"_s}) {
        const auto stock = printing::stockOf(key, {});
        for (const auto& [letters, tight] : {std::pair{60, false}, {200, true}}) {
            const auto printer = printing::pdfFile(directory.path(), u"宛名"_s);
            printing::LabelRun run(printer->font(), *stock);
            const QString text = u"山"_s.repeated(letters);
            EXPECT_EQ(run.printLabel({u"1-2"_s, text, text, {}}).tight, tight);
            int seen = 0;
            for (const Word& word : wordsOf(printer->print(run).file)) {
                EXPECT_LT(word.top, stock->paper.height - 8);
                seen += static_cast<int>(word.text.count(u'山'));
            }
            EXPECT_EQ(seen, 2 * letters); // nothing is cut off
        }
    }
}

TEST_F(LabelPainter, KeepsLongTextsOutOfTheNeighbour) {
    const QString eighty = u"東京都千代田区丸の内一丁目九番地"_s.repeated(5);
    QString all;
    for (const Word& word : printed({{eighty, u"WWWWWMMMMM"_s.repeated(8), eighty, eighty}})) {
        EXPECT_LT(word.right, 105.2) << word.text.toStdString();
        EXPECT_LT(word.top, 62) << word.text.toStdString();
        all += word.text;
    }
    EXPECT_EQ(all.count(u"九番地"_s), 3 * 5); // nothing is cut off
}

TEST_F(LabelPainter, MarksWhatNoFontHasAndKeepsEarlierFiles) {
    const QString unassigned = u"\U000E1234"_s;
    printed({{u"一"_s, {}, {}, {}}});
    const QString first = file;
    EXPECT_EQ(printed({{u"二"_s, unassigned + u"髙"_s, {}, {}}}).back().text, u"〓髙"_s);
    EXPECT_NE(file, first);
    EXPECT_EQ(wordsOf(first).front().text, u"一"_s);
    EXPECT_EQ(QFile::permissions(file) & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
}

TEST_F(LabelPainter, ShowsASheetAtATime) {
    QWidget opener;
    const auto printer = printing::preview(&opener);
    printing::LabelRun run(printer->font());
    for (int i = 0; i < 25; ++i)
        run.printLabel({u"100-0001"_s, u"山田　太郎"_s, u"寺前1丁目2-3"_s, {}});
    printer->print(run);
    auto* window = opener.findChild<QDialog*>(u"宛名プレビュー"_s);
    ASSERT_NE(window, nullptr);
    auto* count = window->findChild<QLabel*>(u"枚目"_s);
    EXPECT_EQ(count->text(), u"1 / 3 枚目"_s);
    const QImage first = window->grab().toImage();
    auto* next = window->findChild<QPushButton*>(u"後ページ"_s);
    next->click();
    next->click();
    EXPECT_EQ(count->text(), u"3 / 3 枚目"_s);
    EXPECT_NE(window->grab().toImage(), first); // one label, not twelve
    EXPECT_FALSE(next->isEnabled());
    window->findChild<QPushButton*>(u"前ページ"_s)->click();
    EXPECT_EQ(count->text(), u"2 / 3 枚目"_s);
}

TEST_F(LabelPainter, SaysWhenTheFileCannotBeWritten) {
    const auto printer = printing::pdfFile(directory.filePath(u"無い"_s), u"宛名"_s);
    printing::LabelRun run(printer->font());
    run.printLabel({u"一"_s, {}, {}, {}});
    EXPECT_THROW(printer->print(run), printing::PrintFailure);
}

} // namespace
