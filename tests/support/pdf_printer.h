#pragma once
// The printer of tests: the real printer made to write PDF files into a
// folder the test gives (each job a new file, found by last_pdf()), and to
// tell nobody where they went, so that no message box comes.

#include <QString>

#include "common/printer.h"
#include "common/qt_text.h"

namespace kyt::test {

class PdfPrinter final : public QtPrinter {
public:
    explicit PdfPrinter(const QString& folder)
        : QtPrinter(QtPrinterOptions{.always_pdf = true, .pdf_folder = ss(folder), .pdf_name = {}, .tell = false}) {}
};

}  // namespace kyt::test
