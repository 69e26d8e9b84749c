// kyt-tool csv LOG...: each log converted beside itself as the console does,
// with the console's message for each.
#include <cstdio>

#include "commands.h"
#include "reports/csv_convert.h"

int cmd_csv(const std::vector<std::string>& args) {
    if (args.empty()) {
        std::fputs("usage: kyt-tool csv LOG...\n", stderr);
        return 2;
    }
    bool all_converted = true;
    for (const std::string& log : args) {
        const kyt::CsvResult r = kyt::convert_log_to_csv(log);
        const kyt::BoxMessage m = r.message();
        std::printf("%s: %.*s\n", log.c_str(), static_cast<int>(m.text.size()), m.text.data());
        all_converted = all_converted && r.outcome == kyt::CsvOutcome::converted;
    }
    return all_converted ? 0 : 1;
}
