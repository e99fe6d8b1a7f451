#pragma once

#include <QString>
#include <QStringView>

#include <cstddef>
#include <string>
#include <vector>

// Texts as the search compares them: full and half width, upper and lower case, hiragana and katakana, and the forms of
// data/variants.txt are one; blanks, hyphens, brackets and middle dots do not count, nor does a long mark behind a
// digit, which is how a hyphen comes out of the input method. What is stored is never changed by this.
namespace search {

// Where a text has parts that somebody may ask for by themselves: a given name behind a blank, the last digits of a
// telephone number behind a hyphen.
enum class Parts { none, byBlanks, byHyphens };

// Appends the folded form of a text. It has no character U+0000 to U+001F.
void appendFolded(QStringView stored, std::u16string& text);
// The same; partStarts gets the place in `text` at which each part but the first begins.
void appendFolded(QStringView stored, Parts parts, std::u16string& text, std::vector<std::size_t>& partStarts);

// The folded words of what was typed, divided at blanks and line breaks, each once; empty where nothing is left of it.
std::vector<std::u16string> foldedWords(const QString& typed);

// Where a folded katakana stands in the syllabary: voiced ones with their unvoiced ones. Other characters stay.
char16_t syllable(char16_t folded);

} // namespace search
