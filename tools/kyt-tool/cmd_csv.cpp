#include <cstdio>

#include "commands.h"

int cmd_csv(const std::vector<std::string>&) {
    std::fputs("kyt-tool csv: not built yet\n", stderr);
    return 2;
}
