// Serial capture over arbitrary bytes. The first byte of each chunk says how
// many bytes the next tick delivers, so that the fuzzer also chooses where
// the serial port splits the text.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "reports/capture.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view in(reinterpret_cast<const char*>(data), size);
    kyt::ReportRec rec;
    rec.comment = "fuzz";
    rec.set_rates = "100";
    kyt::Capture c({size % 2 == 0, size % 3 == 0 ? '1' : '2', rec});
    kyt::CaptureTick t;
    std::size_t p = 0;
    while (p < in.size() && !t.ended && !t.stopped) {
        const std::size_t wanted = static_cast<unsigned char>(in[p++]) % 64;
        const std::size_t n = std::min(wanted, in.size() - p);
        t = c.tick(in.substr(p, n));
        p += n;
    }
    for (int i = 0; i < 3 && !t.ended && !t.stopped; ++i) t = c.tick({});
    // A finished transfer's file always ends with the line end of its last write.
    if (t.ended && !t.tempfile_text.ends_with("\r\n")) std::abort();
    return 0;
}
