#pragma once

#include "printing/label_sheet.h"

#include <stdexcept>

namespace printing {

// A job that could not be handed over; `message` is the Japanese sentence for the user.
class PrintFailure : public std::runtime_error {
  public:
    explicit PrintFailure(const QString& text) : std::runtime_error(text.toStdString()), message(text) {}

    const QString message;
};

// Where a label run goes: a printer, a PDF or the screen.
class LabelPrinter {
  public:
    virtual ~LabelPrinter() = default;
    virtual const LabelFont& font() const = 0;
    // Hands all sheets over as one job. Gives the full path of the file where the job went into one, else an empty
    // text. Throws PrintFailure when nothing, or not everything, was handed over.
    virtual QString print(const std::vector<LabelSheet>& sheets) = 0;
};

} // namespace printing
