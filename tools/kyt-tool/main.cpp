// kyt-tool: the console's file work without a window, over the core alone.
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "commands.h"

namespace {

void usage() {
    std::fputs(
        "usage: kyt-tool capture RAW [--blocks LIST] [--out FILE]\n"
        "       kyt-tool csv LOG...\n"
        "       kyt-tool info LOG\n"
        "       kyt-tool trumpet LOG [--interval 30|60] [--start MIN] [--length MIN|all] [--rate ML_H]\n",
        stderr);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        usage();
        return 2;
    }
    const std::string command = argv[1];
    const std::vector<std::string> args(argv + 2, argv + argc);
    if (command == "capture") return cmd_capture(args);
    if (command == "csv") return cmd_csv(args);
    if (command == "info") return cmd_info(args);
    if (command == "trumpet") return cmd_trumpet(args);
    usage();
    return 2;
}
