// kyt-tool info LOG: the figures the graph screen starts from, one
// "key: value" line each, or the console's refusal and exit code 1.
#include <cstdio>
#include <string>

#include "commands.h"
#include "graph/log_reader.h"
#include "common/numbers.h"

namespace {

void put(const char* key, const std::string& value) { std::printf("%s: %s\n", key, value.c_str()); }

}  // namespace

int cmd_info(const std::vector<std::string>& args) {
    if (args.size() != 1) {
        std::fputs("usage: kyt-tool info LOG\n", stderr);
        return 2;
    }
    const kyt::LogReadResult log = kyt::read_log_file(args[0]);
    if (!log.accepted()) {
        std::fprintf(stderr, "%s\n", log.message->text.c_str());
        return 1;
    }
    const kyt::LogSeries& s = log.series;
    put("graph_last_index", std::to_string(s.graph_last_index));
    put("max_flow", kyt::shortest_text(s.max_flow));
    put("min_flow", kyt::shortest_text(s.min_flow));
    put("final_avg_flow", kyt::shortest_text(s.final_avg_flow));
    put("avg_flow_whole", std::to_string(s.avg_flow_whole));
    put("max_volume", kyt::shortest_text(s.max_volume));
    put("flow_scale_min", kyt::shortest_text(s.flow_scale_min));
    put("flow_scale_max", kyt::shortest_text(s.flow_scale_max));
    put("base_rate", kyt::shortest_text(s.base_rate));
    return 0;
}
