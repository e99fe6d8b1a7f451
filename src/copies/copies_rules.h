#pragma once

#include "desk/desk.h"
#include "desk/form.h"
#include "desk/screen_context.h"
#include "store/comparison.h"

#include <QString>

#include <vector>

// The register's copies and what deletions took: screen 控え, whose messages bear the title "控え".
namespace copies {

// A file that something can be brought back from.
struct Source {
    QString path;
    QString name; // as the user reads of it: the time and what it is
    bool deletion = false;
    bool proven = false; // looked over when it was made
};

struct 控えForm {
    desk::Grid 控え一覧;
    desk::Text 絞り込み; // a number or a part of a name: only lines with it are shown
    desk::Text 比較結果; // what is shown below
    desk::Grid 控え内容;

    std::vector<Source> sources;                // line by line
    int chosen = 0;                             // line of the source compared, 0 none
    std::vector<store::Difference> differences; // of that one
    std::vector<std::size_t> shown;             // which of them, line by line
};

// How many lines of differences are shown at once; the others are told of and found by 絞り込み.
constexpr std::size_t linesShown = 2000;

// Fills the list: copies by their number, deletions by theirs, newest first. One that cannot be read is listed as such.
void beginCopies(控えForm& form, desk::ScreenContext& context, desk::Desk& desk);
// Compares the source clicked with the register as it is now, with a progress that can be cancelled; one that was not
// looked over when it was made is looked over first. A source that is gone or damaged is told of, and the list read
// anew.
void chooseSource(控えForm& form, desk::ScreenContext& context, desk::Desk& desk);
void narrow(控えForm& form, desk::ScreenContext& context, desk::Desk& desk);
void chooseRecord(控えForm& form, desk::ScreenContext& context, desk::Desk& desk);

// 全部戻す: puts the whole copy in the register's place after a question; what is there is kept first. Of a deletion,
// brings back all that it took.
void restoreAll(控えForm& form, desk::ScreenContext& context, desk::Desk& desk);
// 選んで戻す: brings back the record chosen with what is its own (desk::bringBack) and tells what was not.
void bringBackChosen(控えForm& form, desk::ScreenContext& context, desk::Desk& desk);

} // namespace copies
