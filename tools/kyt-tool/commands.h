#pragma once
// The sub-commands of kyt-tool. Each takes the arguments after its own name
// and returns the process's exit code.
#include <string>
#include <vector>

int cmd_capture(const std::vector<std::string>& args);
int cmd_csv(const std::vector<std::string>& args);
int cmd_info(const std::vector<std::string>& args);
int cmd_trumpet(const std::vector<std::string>& args);
