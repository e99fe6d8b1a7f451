#pragma once

#include "desk/desk.h"
#include "printing/label_choice.h"
#include "printing/label_printer.h"

#include <QDate>

#include <cstdint>

namespace printing {

enum class LabelMode : std::int16_t { memorials = 1, fees = 2 };

enum class LabelOutcome {
    noRecord,   // no record lies at or after the from date: told
    noLabel,    // records lie there, but none within the range that gets a label: nothing is said
    noneChosen, // records of the range get a label, but none of them is chosen, or none may be now: told
    handedOver,
    failed, // the job was not, or could not be, handed over: told
};

// Prints one label for every memorial open for notice, or for every grave with a billing date, from the one date to the
// other (both included), in the order of their dates; of those the ones chosen, on the sheet chosen. Marks nothing.
// Messages bear the title "宛名印刷": a household that cannot be found (its record gets no label and takes no place),
// the name of the file where the job went into one, and why it waits at the printer. Characters that the font lacks are
// told afterwards on the register's own sheet; on any other they, and texts too long to be read, are told before and
// nothing is printed.
LabelOutcome 宛名出力(QDate from, QDate to, LabelMode mode, LabelPrinter& printer, desk::Desk& desk,
                      const LabelChoice& choice = {});

// The same on a preview, which shows them all and tells when there is nothing to show.
void previewLabels(QDate from, QDate to, LabelMode mode, LabelPrinter& preview, desk::Desk& desk,
                   const LabelChoice& choice = {});

} // namespace printing
