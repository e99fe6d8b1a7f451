#pragma once

#include "printing/label_printer.h"

#include <QDate>

#include <memory>

class QWidget;

namespace printing {

// The system's default printer, or, where there is none, a new PDF file of that day beside the register. One job a
// print().
std::unique_ptr<LabelPrinter> defaultPrinter(QDate today);

// A PDF file of this name in this directory; an existing one is not touched, the name gets a number then.
std::unique_ptr<LabelPrinter> pdfFile(const QString& directory, const QString& name);

// A window that shows the sheets; nothing is printed or written.
std::unique_ptr<LabelPrinter> preview(QWidget* opener);

} // namespace printing
