#include <cstdio>

#include "commands.h"

int cmd_trumpet(const std::vector<std::string>&) {
    std::fputs("kyt-tool trumpet: not built yet\n", stderr);
    return 2;
}
