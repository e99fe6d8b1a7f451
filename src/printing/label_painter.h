#pragma once

#include "printing/document_painter.h"
#include "printing/label_printer.h"

namespace printing {

// Outlines the labels of a sheet whose corner is the painter's origin; those before `start` are used up.
void paintLabels(QPainter& painter, const LabelStock& stock, double dotsAnInch, int start);

// Labels on the three ways of a document.
std::unique_ptr<LabelPrinter> defaultPrinter(QWidget* opener, QDate today,
                                             std::chrono::milliseconds patience = serverPatience);
std::unique_ptr<LabelPrinter> pdfFile(const QString& directory, const QString& name);
std::unique_ptr<LabelPrinter> preview(QWidget* opener);

} // namespace printing
