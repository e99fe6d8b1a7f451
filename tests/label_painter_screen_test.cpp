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
