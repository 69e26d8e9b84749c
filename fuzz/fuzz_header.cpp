// Header replacement and the report arithmetic over arbitrary report text.
// The first bytes choose the mode and the header values.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "reports/header_replace.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const char mode = static_cast<char>('1' + data[0] % 5);
    const std::size_t value_length = data[1] % 80;
    std::string_view in(reinterpret_cast<const char*>(data) + 2, size - 2);
    const std::string value(in.substr(0, value_length));
    const std::string text(in.substr(std::min(value_length, in.size())));

    kyt::ReportRec rec{value, value, value, value, value, value, value, value, value, value, value, value};
    if (data[0] & 0x80) rec.set_rates = "0";
    std::size_t anchor = text.size() / 2;
    const std::string out = kyt::replace_header(text, rec, mode, anchor);
    // The fields are written in place; only the comment and flow error lines add text.
    if (out.size() < text.size() || anchor > out.size()) std::abort();
    kyt::report_for_header(text, rec, static_cast<std::int16_t>(data[0] % 2 ? 1 : -1));
    return 0;
}
