#pragma once

#include <QString>

#include "common/printer.h"
#include "common/qt_text.h"

namespace kyt::test {

// The real printer writing each job as a new PDF file into the folder (see last_pdf()), telling no box.
class PdfPrinter final : public QtPrinter {
public:
    explicit PdfPrinter(const QString& folder)
        : QtPrinter(QtPrinterOptions{.always_pdf = true, .pdf_folder = ss(folder), .pdf_name = {}, .tell = false}) {}
};

}  // namespace kyt::test
