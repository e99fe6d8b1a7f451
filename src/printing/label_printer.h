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

// What became of a job that was handed over.
struct PrintedJob {
    QString file;    // the full path where it went into a file, else empty
    QString waiting; // where it waits at the printer: the whole message for the user, else empty
};

// Where a label run goes: a printer, a PDF or the screen.
class LabelPrinter {
  public:
    virtual ~LabelPrinter() = default;
    virtual const LabelFont& font() const = 0;
    // Hands all sheets over as one job. Throws PrintFailure when nothing, or not everything, was handed over.
    virtual PrintedJob print(const std::vector<LabelSheet>& sheets) = 0;
};

} // namespace printing
