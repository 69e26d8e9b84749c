#include "options.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>

namespace sim {

const char* const usage_text =
    "usage: kyt-analyser-sim --link PATH [options]\n"
    "Serves the analyser's side of the serial protocol on a pseudo-terminal and\n"
    "makes PATH a symbolic link to its device, until SIGTERM or SIGINT.\n"
    "  --channels ABCD        channels with a pump (default ABCD); others answer \"n\"\n"
    "  --rate ML_H            set rate of every pump, ml/h (default 100)\n"
    "  --rate A=10,B=250      set rates by channel (a plain number sets all)\n"
    "  --speed N              simulated seconds per real second (default 1)\n"
    "  --seed N               seed of the pump model (default 1)\n"
    "  --split                every reply reaches the line in several pieces\n"
    "  --damage-line-ends     text streams carry CR LF LF, CR CR blank, CR LF CR\n"
    "  --silent-after N       answer N commands, then nothing more\n"
    "  --hangup-after N       answer N commands, then hang up the line\n";

namespace {

std::optional<double> number(const std::string& s) {
    if (s.empty()) return std::nullopt;
    char* end = nullptr;
    errno = 0;
    const double v = std::strtod(s.c_str(), &end);
    if (errno != 0 || *end != '\0' || !std::isfinite(v)) return std::nullopt;
    return v;
}

std::optional<long> count(const std::string& s) {
    const auto v = number(s);
    if (!v || *v < 0 || *v != std::floor(*v) || *v > 1e15) return std::nullopt;
    return static_cast<long>(*v);
}

bool valid_rate(double v) { return v > 0 && v <= 9999; }

// "100", "A=10,B=250" or a mix: a plain number sets every channel, a lettered
// one its own channel, later items over earlier ones.
std::string parse_rates(const std::string& text, Options& o) {
    std::size_t start = 0;
    while (start <= text.size()) {
        const std::size_t comma = text.find(',', start);
        const std::string item = text.substr(start, comma == std::string::npos ? std::string::npos : comma - start);
        const bool lettered = item.size() >= 2 && item[1] == '=';
        const int ch = lettered ? channel_index(item[0]) : -1;
        const auto v = number(lettered ? item.substr(2) : item);
        if ((lettered && ch < 0) || !v || !valid_rate(*v))
            return "--rate: \"" + item + "\" is not a rate (ml/h above 0 up to 9999, or A=rate ... D=rate)";
        for (int i = 0; i < channel_count; ++i)
            if (!lettered || i == ch) o.rate[i] = *v;
        if (comma == std::string::npos) break;
        start = comma + 1;
    }
    return {};
}

std::string parse_channels(const std::string& text, Options& o) {
    if (text.empty()) return "--channels: name at least one channel of ABCD";
    o.pump.fill(false);
    for (char c : text) {
        const int i = channel_index(c);
        if (i < 0) return std::string("--channels: \"") + c + "\" is not a channel of ABCD";
        o.pump[i] = true;
    }
    return {};
}

}  // namespace

ParsedOptions parse_options(const std::vector<std::string>& args) {
    ParsedOptions r;
    Options& o = r.options;
    for (std::size_t i = 0; i < args.size(); ++i) {
        std::string name = args[i];
        std::optional<std::string> inline_value;
        if (const auto eq = name.find('='); name.rfind("--", 0) == 0 && eq != std::string::npos) {
            inline_value = name.substr(eq + 1);
            name.resize(eq);
        }
        if (name == "--help" || name == "-h") {
            r.help = true;
            return r;
        }
        if (name == "--split" || name == "--damage-line-ends") {
            (name == "--split" ? o.split : o.damage_line_ends) = true;
            continue;
        }
        std::string value;
        if (inline_value) value = *inline_value;
        else if (i + 1 < args.size()) value = args[++i];
        else {
            r.error = name + " needs a value";
            return r;
        }
        if (name == "--link") {
            o.link = value;
            if (value.empty()) r.error = "--link: the path is empty";
        } else if (name == "--channels") {
            r.error = parse_channels(value, o);
        } else if (name == "--rate") {
            r.error = parse_rates(value, o);
        } else if (name == "--speed") {
            const auto v = number(value);
            if (v && *v > 0 && *v <= 1e6) o.speed = *v;
            else r.error = "--speed: \"" + value + "\" is not a speed above 0";
        } else if (name == "--seed") {
            const auto v = count(value);
            if (v) o.seed = static_cast<std::uint64_t>(*v);
            else r.error = "--seed: \"" + value + "\" is not a whole number";
        } else if (name == "--silent-after" || name == "--hangup-after") {
            const auto v = count(value);
            if (!v) r.error = name + ": \"" + value + "\" is not a count of commands";
            else (name == "--silent-after" ? o.silent_after : o.hangup_after) = *v;
        } else {
            r.error = "unknown option " + name;
        }
        if (!r.error.empty()) return r;
    }
    if (o.link.empty()) r.error = "--link PATH is required";
    return r;
}

}  // namespace sim
