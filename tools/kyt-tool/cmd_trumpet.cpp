// kyt-tool trumpet LOG [--interval 30|60] [--start MIN] [--length MIN|all]
// [--rate ML_H]: the trumpet table of a log, with the settings dialog's
// choices. Without options, what the dialog selects when it opens.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <optional>
#include <string>

#include "commands.h"
#include "common/text.h"
#include "graph/log_reader.h"
#include "common/numbers.h"
#include "trumpet/compute.h"
#include "trumpet/trumpet_settings.h"

namespace {

struct Options {
    std::string log;
    double interval = 60;
    std::optional<std::string> start, length;
    std::optional<double> rate;
};

int usage(const std::string& why) {
    std::fprintf(stderr, "kyt-tool trumpet: %s\n", why.c_str());
    std::fputs("usage: kyt-tool trumpet LOG [--interval 30|60] [--start MIN] [--length MIN|all] [--rate ML_H]\n",
               stderr);
    return 2;
}

// The whole text as a number of the given type, or nothing.
template <typename T>
std::optional<T> number(const std::string& text) {
    T v{};
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), v);
    if (ec != std::errc() || end != text.data() + text.size() || text.empty()) return std::nullopt;
    return v;
}

// The list entry that a whole-minute option names, in the text the list
// holds it as.
std::optional<std::string> entry_of(const std::string& text) {
    const auto minutes = number<int>(text);
    return minutes ? std::optional(std::to_string(*minutes)) : std::nullopt;
}

std::string joined(const std::vector<std::string>& entries) {
    std::string out;
    for (const std::string& e : entries) out += (out.empty() ? "" : " ") + e;
    return out;
}

// Parses the arguments; an error text when they do not make a call.
std::optional<std::string> parse(const std::vector<std::string>& args, Options& o) {
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (!a.starts_with("--")) {
            if (!o.log.empty()) return "one log only";
            o.log = a;
            continue;
        }
        if (i + 1 >= args.size()) return a + " needs a value";
        const std::string& value = args[++i];
        if (a == "--interval") {
            if (value != "30" && value != "60") return "--interval is 30 or 60";
            o.interval = *number<double>(value);
        } else if (a == "--start") {
            o.start = entry_of(value);
            if (!o.start) return "--start takes whole minutes";
        } else if (a == "--length") {
            o.length = kyt::iequals(value, "all") ? std::optional(std::string(kyt::all_entry)) : entry_of(value);
            if (!o.length) return "--length takes whole minutes or all";
        } else if (a == "--rate") {
            o.rate = number<double>(value);
            if (!o.rate || !std::isfinite(*o.rate) || *o.rate == 0) return "--rate takes a number other than 0";
        } else {
            return "unknown option " + a;
        }
    }
    if (o.log.empty()) return "no log named";
    return std::nullopt;
}

int refuse(const kyt::BoxMessage& m) {
    std::fprintf(stderr, "%s\n", m.text.c_str());
    return 1;
}

void put(const char* key, const std::string& value) { std::printf("%s: %s\n", key, value.c_str()); }

}  // namespace

int cmd_trumpet(const std::vector<std::string>& args) {
    Options o;
    if (const auto why = parse(args, o)) return usage(*why);

    kyt::LogReadResult log = kyt::read_log_file(o.log);
    if (!log.accepted()) return refuse(*log.message);
    kyt::LogSeries& series = log.series;
    if (const auto refusal = kyt::check_trumpet_data(series)) return refuse(*refusal);

    // The settings dialog: its load, then the choices made in its lists.
    const double L = series.graph_time[series.graph_last_index];
    const kyt::TrumpSetLoad load = kyt::trumpset_load(L);
    kyt::StartChoice choice = load.choice;
    if (o.length) {
        const auto& entries = load.length_entries;
        if (std::find(entries.begin(), entries.end(), *o.length) == entries.end())
            return usage("--length is one of " + joined(entries));
        choice = kyt::choose_length(L, *o.length);
    }
    if (o.start) {
        const auto& entries = choice.start_entries;
        const auto at = std::find(entries.begin(), entries.end(), *o.start);
        if (at == entries.end() || (!choice.start_enabled && at - entries.begin() != choice.start_selected))
            return usage(std::string("--start is ") + (choice.start_enabled ? "one of " : "") +
                         joined(entries) + " with this length");
        choice.trumpet_start_time = static_cast<std::int16_t>(std::stoi(*o.start));
    }
    const auto end = static_cast<std::int16_t>(choice.calculation_length + choice.trumpet_start_time);
    if (o.rate) series.base_rate = *o.rate;

    const kyt::TrumpetResult r = kyt::graph_trumpet(series, {o.interval, choice.trumpet_start_time, end});
    if (!r.ok()) {
        std::fprintf(stderr, "%s\n", r.error.c_str());
        return 1;
    }
    put("interval", kyt::shortest_text(o.interval));
    put("start", std::to_string(choice.trumpet_start_time));
    put("end", std::to_string(end));
    put("base_rate", kyt::shortest_text(series.base_rate));
    put("avg_rate", kyt::shortest_text(r.trumpet_avg_rate));
    put("avg_error", kyt::shortest_text(r.trumpet_avg_error));
    put("insufficient_points", r.insufficient_points ? "true" : "false");
    for (const auto& row : r.trumpet_table) {
        std::string line;
        for (float v : row) line += (line.empty() ? "" : " ") + kyt::shortest_text(v);
        std::printf("%s\n", line.c_str());
    }
    return 0;
}
