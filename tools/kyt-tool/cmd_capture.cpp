// kyt-tool capture RAW [--blocks LIST] [--out FILE]: a raw recording of what
// came over the line from the analyser, replayed through the console's own
// capture one block per timer tick, and the file that the end of the
// transfer stores written to FILE. Prints "message: TEXT" for each error
// reply the console would tell, then "ended: yes" or "ended: no".
//
// Exit codes: 0 the transfer ended and FILE was written; 1 it did not end;
// 2 a "not connected" reply stopped it; 3 bad arguments, an unreadable
// recording or an output file that cannot be written. Only 0 writes a file.
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "commands.h"
#include "common/file_text.h"
#include "link/protocol.h"
#include "reports/capture.h"

namespace {

constexpr int exit_ended = 0;
constexpr int exit_not_ended = 1;
constexpr int exit_not_connected = 2;
constexpr int exit_usage = 3;

// What a serial read delivers per 100-ms tick when no split is asked for.
constexpr std::size_t default_block = 64;

// Ticks with nothing new once the recording is used up, as the console's
// timer would go on ticking. The capture holds the last 2 characters of each
// block back for the next tick; these ticks give what is held back its turn
// before the replay decides that the transfer did not end. (A character 7 is
// never held back: a transfer that ends, ends on the tick that brings it.)
constexpr int quiet_ticks = 3;

struct Options {
    std::string raw;
    std::vector<std::size_t> blocks{default_block};
    std::string out;
};

int usage(const std::string& why) {
    std::fprintf(stderr, "kyt-tool capture: %s\n", why.c_str());
    std::fputs("usage: kyt-tool capture RAW [--blocks LIST] [--out FILE]\n", stderr);
    return exit_usage;
}

int refuse(const std::string& why) {
    std::fprintf(stderr, "kyt-tool capture: %s\n", why.c_str());
    return exit_usage;
}

// "3,0,7": block sizes in bytes, used in turn. An error text when the list
// is not such a list.
std::optional<std::string> parse_blocks(const std::string& text, std::vector<std::size_t>& blocks) {
    blocks.clear();
    std::size_t start = 0;
    while (true) {
        const std::size_t comma = text.find(',', start);
        const std::string item = text.substr(start, comma == std::string::npos ? std::string::npos : comma - start);
        std::size_t size = 0;
        const auto [end, ec] = std::from_chars(item.data(), item.data() + item.size(), size);
        if (item.empty() || ec == std::errc::invalid_argument || end != item.data() + item.size())
            return "--blocks takes sizes in bytes, 0 or more, between commas: \"" + item + "\" is not one";
        if (ec == std::errc::result_out_of_range) return "--blocks: \"" + item + "\" is too large";
        blocks.push_back(size);
        if (comma == std::string::npos) break;
        start = comma + 1;
    }
    // Only zeros would be ticks at which nothing ever arrives: the replay
    // would never end, or, cut short, would blame the recording for what the
    // list did. Such a list is a slip, not a question worth answering.
    for (std::size_t size : blocks)
        if (size > 0) return std::nullopt;
    return "--blocks needs a size above 0: with only zeros nothing would ever arrive";
}

std::optional<std::string> parse(const std::vector<std::string>& args, Options& o) {
    bool blocks_given = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (!a.starts_with("--")) {
            if (!o.raw.empty()) return "one recording only";
            o.raw = a;
            continue;
        }
        if (a != "--blocks" && a != "--out") return "unknown option " + a;
        if (i + 1 >= args.size()) return a + " needs a value";
        const std::string& value = args[++i];
        if (a == "--blocks") {
            if (blocks_given) return "--blocks given twice";
            blocks_given = true;
            if (auto why = parse_blocks(value, o.blocks)) return why;
        } else {
            if (!o.out.empty()) return "--out given twice";
            if (value.empty()) return "--out needs a file name";
            o.out = value;
        }
    }
    if (o.raw.empty()) return "no recording named";
    return std::nullopt;
}

// The recording's name with ".dat" in place of its extension, or with ".dat"
// behind it when it has none.
std::string default_output(const std::string& raw) {
    std::filesystem::path p(raw);
    p.replace_extension(".dat");
    return p.string();
}

// A name beside `path` that nothing holds yet, so that the finished file
// can be renamed into place on the same file system.
std::optional<std::string> free_name_beside(const std::string& path) {
    for (int n = 0; n < 1000; ++n) {
        std::string name = path + ".part" + (n > 0 ? std::to_string(n) : "");
        std::error_code ec;
        if (!std::filesystem::exists(std::filesystem::symlink_status(name, ec))) return name;
    }
    return std::nullopt;
}

// Writes the file whole or not at all: written under a temporary name and
// renamed over `path`, so that a failure leaves neither a partial file nor
// a damaged earlier one. An error text when it fails.
std::optional<std::string> write_whole_file(const std::string& path, std::string_view text) {
    const std::optional<std::string> free = free_name_beside(path);
    if (!free) return "cannot write " + path + ": no free name for the temporary file beside it";
    const std::string& temp = *free;
    std::error_code ec;
    if (!kyt::write_text_file(temp, text)) {
        std::filesystem::remove(temp, ec);
        return "cannot write " + path;
    }
    std::filesystem::rename(temp, path, ec);
    if (ec) {
        std::error_code ignored;
        std::filesystem::remove(temp, ignored);
        return "cannot write " + path + ": " + ec.message();
    }
    return std::nullopt;
}

}  // namespace

int cmd_capture(const std::vector<std::string>& args) {
    Options o;
    if (const auto why = parse(args, o)) return usage(*why);
    if (o.out.empty()) o.out = default_output(o.raw);

    const std::optional<std::string> recording = kyt::read_text_file(o.raw);
    if (!recording) return refuse("cannot read the recording " + o.raw);
    // A recording named "x.dat" would otherwise be replaced by its own report.
    std::error_code ec;
    if (std::filesystem::equivalent(o.raw, o.out, ec))
        return refuse("the output " + o.out + " is the recording itself; name another with --out");

    // A download with Save to File off: no header goes in, and download_mode
    // is read only when one does, so the free-text mode of the defaults
    // serves for summaries and data logs alike.
    kyt::Capture capture(kyt::CaptureSetup{});
    const std::string_view data = *recording;
    std::size_t pos = 0, turn = 0;
    int quiet = 0;
    kyt::CaptureTick last;
    while (true) {
        std::string_view block;
        if (pos < data.size()) {
            block = data.substr(pos, o.blocks[turn++ % o.blocks.size()]);
            pos += block.size();
        } else if (quiet++ >= quiet_ticks) {
            break;
        }
        last = capture.tick(block);
        for (const kyt::ReplyError e : last.errors) std::printf("message: %s\n", kyt::reply_error_text(e));
        if (last.ended || last.stopped) break;
    }

    std::printf("ended: %s\n", last.ended ? "yes" : "no");
    std::fflush(stdout);
    if (last.stopped) return exit_not_connected;
    if (!last.ended) return exit_not_ended;
    if (const auto why = write_whole_file(o.out, last.tempfile_text)) return refuse(*why);
    return exit_ended;
}
