// Spreadsheet conversion of arbitrary log text, line by line.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "reports/csv_convert.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view in(reinterpret_cast<const char*>(data), size);
    const kyt::CsvText r = kyt::convert_log_text(in);
    // A conversion that met its end mark has written the heading rows before it.
    if (r.complete && r.csv.find(",,Elasped,,Flow,Avg Flow,Volume,B.Pres\r\n") == std::string::npos) std::abort();
    kyt::time_colons_to_commas(in);
    return 0;
}
