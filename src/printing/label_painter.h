#pragma once

#include "printing/label_printer.h"

#include <QDate>

#include <chrono>
#include <memory>

class QWidget;

namespace printing {

// How long a print server may say nothing.
constexpr std::chrono::milliseconds serverPatience = std::chrono::seconds(10);

// The system's printer: the default one, or else the only one, or else the one that the user once chose (he is asked
// where several can be meant, and the choice is kept in his settings). Where there is none, a new PDF file of that day
// beside the register. print() stays until the print server holds the whole job, showing a window over the opener that
// can stop it; one job a print().
std::unique_ptr<LabelPrinter> defaultPrinter(QWidget* opener, QDate today,
                                             std::chrono::milliseconds patience = serverPatience);

// A PDF file of this name in this directory; an existing one is not touched, the name gets a number then.
std::unique_ptr<LabelPrinter> pdfFile(const QString& directory, const QString& name);

// A window that shows the sheets; nothing is printed or written.
std::unique_ptr<LabelPrinter> preview(QWidget* opener);

} // namespace printing
