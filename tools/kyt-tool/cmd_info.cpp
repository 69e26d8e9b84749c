#include <cstdio>

#include "commands.h"

int cmd_info(const std::vector<std::string>&) {
    std::fputs("kyt-tool info: not built yet\n", stderr);
    return 2;
}
