#include "link/protocol.h"

#include <cmath>
#include <optional>

#include "common/numbers.h"
#include "common/text.h"

namespace kyt {

namespace {

std::string command(std::string_view code, char channel, std::string_view tail = {}) {
    std::string c(code);
    c += channel;
    c += tail;
    c += CR;
    return c;
}

// A field read as a 16-bit whole number (halves to even), or empty when the
// value does not fit.
std::optional<std::int16_t> whole_field(const std::string& field) { return to_int16(leading_number(field)); }

std::string out_of_range(int number, const std::string& field) {
    return "Reply from the analyser not understood: field " + std::to_string(number) + " (" + trim(field) +
           ") is out of range.";
}

// Reads the numeric fields of a reply into their places; the first field that
// cannot be held names the error.
struct FieldReader {
    const std::vector<std::string>& fields;
    std::string error;

    void whole(int number, std::int16_t& into) {
        if (!error.empty()) return;
        if (auto v = whole_field(fields[number - 1])) into = *v;
        else error = out_of_range(number, fields[number - 1]);
    }
    void real(int number, double& into) {
        if (!error.empty()) return;
        const double v = leading_number(fields[number - 1]);
        if (std::isfinite(v)) into = v;
        else error = out_of_range(number, fields[number - 1]);
    }
};

}  // namespace

std::string command_stop(char channel) { return command("ST", channel); }

std::string command_download(char channel, char mode) { return command("DL", channel, std::string(1, mode)); }

std::string command_test_pattern() { return "DLA3" + std::string(1, CR); }

std::string command_print_summary(char channel) { return command("PR", channel, "1"); }

std::string command_start_test(char channel, int test_select) {
    return command("RT", channel, std::to_string(test_select));
}

std::string command_attach_test(char channel, int test_select) {
    return command("GR", channel, std::to_string(test_select));
}

std::string command_poll(char channel) { return command("GR", channel); }

std::string command_start_occlusion_fixed(char channel) {
    switch (channel) {
        case 'A': return "RTA4" + std::string(1, CR);
        case 'B': return "RTB4" + std::string(1, CR);
        case 'C': return "RTC4" + std::string(1, CR);
        case 'D': return "RTD4" + std::string(1, CR);
        default: return {};
    }
}

bool ends_transfer(std::string_view text) { return text.find(BELL) != std::string_view::npos; }

bool is_omitted_line(std::string_view text) { return text.find(ENQ) != std::string_view::npos; }

bool is_plain_block(std::string_view text) { return !ends_transfer(text) && !is_omitted_line(text); }

ReplyError reply_error_code(char first) {
    switch (first) {
        case '?': return ReplyError::transmission;
        case 'e': return ReplyError::not_running;
        case 'n': return ReplyError::not_connected;
        default: return ReplyError::none;
    }
}

ReplyError classify_error_reply(std::string_view reply) {
    if (reply.size() != 2 || static_cast<unsigned char>(reply[1]) >= 32) return ReplyError::none;
    return reply_error_code(reply[0]);
}

ReplyError short_reply_error(std::string_view reply) {
    return reply.empty() ? ReplyError::none : reply_error_code(reply[0]);
}

const char* reply_error_text(ReplyError error) {
    switch (error) {
        case ReplyError::transmission:
            return "Unsuccessful transmission, check all hardware connections and try again.";
        case ReplyError::not_running: return "Test or Autosequence is not running";
        case ReplyError::not_connected: return "Current channel selected is not connected.";
        case ReplyError::none: break;
    }
    return "";
}

std::string channel_access_error_text() {
    return "Channel data could not be accessed." + std::string(CRLF) + "Please check all connections and retry.";
}

PollReply take_poll_reply(std::string_view raw) {
    PollReply r;
    r.text = trim(raw);
    r.is_data = r.text.size() >= poll_data_min_length;
    if (!r.is_data) r.error = short_reply_error(r.text);
    return r;
}

std::vector<std::string> split_reply_fields(std::string_view reply, int count) {
    std::vector<std::string> fields;
    if (count <= 0) return fields;
    fields.reserve(static_cast<std::size_t>(count));
    std::string rest(reply);
    for (int n = 0; n < count; ++n) {
        const std::size_t comma = find1(rest, ",");
        if (comma > 0) {
            fields.push_back(left(rest, comma));
            rest = ltrim(mid(rest, comma + 1));
        } else {
            fields.push_back(trim(rest));
        }
    }
    return fields;
}

Parsed<RTData> process_rt_data(std::string_view reply) {
    const auto f = split_reply_fields(reply, rt_field_count);
    Parsed<RTData> p;
    const std::string mode = trim(f[0]);
    p.data.range = mode.empty() ? ' ' : mode[0];  // a one-character text pads with a blank
    FieldReader read{f, {}};
    read.whole(2, p.data.hours);
    read.whole(3, p.data.minutes);
    read.whole(4, p.data.seconds);
    read.real(5, p.data.flow);
    read.real(6, p.data.avg_flow);
    read.real(7, p.data.volume);
    read.real(8, p.data.pressure);
    if (!read.error.empty()) return {RTData{}, read.error};
    return p;
}

Parsed<OTData> process_ot_data(std::string_view reply) {
    const auto f = split_reply_fields(reply, ot_field_count);
    Parsed<OTData> p;
    p.data.mode = trim(f[0]);
    FieldReader read{f, {}};
    read.whole(2, p.data.minutes);
    read.whole(3, p.data.seconds);
    read.real(4, p.data.psi);
    read.real(5, p.data.mmhg);
    if (!read.error.empty()) return {OTData{}, read.error};
    p.data.kpa = p.data.psi * occlusion_kpa_factor;
    return p;
}

}  // namespace kyt
