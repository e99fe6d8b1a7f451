#pragma once

#include "printing/label_sheet.h"
#include "printing/printed_document.h"

namespace printing {

// Where a label run goes: a printer, a PDF or the screen.
class LabelPrinter {
  public:
    virtual ~LabelPrinter() = default;
    virtual const LabelFont& font() const = 0;
    // Hands all sheets over as one job. Throws PrintFailure when nothing, or not everything, was handed over.
    virtual PrintedJob print(const LabelRun& run) = 0;
};

} // namespace printing
