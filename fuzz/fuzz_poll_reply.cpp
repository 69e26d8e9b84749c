// Poll replies from the analyser, as any bytes: the reply taken from the
// line, split as single-rate and occlusion data, and the error-reply tests.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "link/protocol.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view raw(reinterpret_cast<const char*>(data), size);
    kyt::classify_error_reply(raw);
    kyt::short_reply_error(raw);
    const kyt::PollReply reply = kyt::take_poll_reply(raw);
    if (reply.is_data) {
        kyt::process_rt_data(reply.text);
        kyt::process_ot_data(reply.text);
    }
    return 0;
}
