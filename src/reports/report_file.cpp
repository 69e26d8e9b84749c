#include "reports/report_file.h"

#include <algorithm>

#include "common/text.h"

namespace kyt {

bool is_report_text(std::string_view text) {
    return text.find("LOG") != std::string_view::npos || text.find("SUMMARY") != std::string_view::npos;
}

std::string report_text_of_file(std::string_view file_bytes) {
    std::string text;
    text.reserve(file_bytes.size() + file_bytes.size() / 32);
    std::size_t pos = 0;
    std::string_view line;
    while (next_line(file_bytes, pos, line)) {
        text += line;
        text += "\r\n";
    }
    return text;
}

std::string report_file_name(const Folders& files, char download_mode) {
    switch (download_mode) {
        case '1': return trim(files.summary_file);
        case '2': return trim(files.log_file);
        case '4': return trim(files.receive_file);
        case '5': return trim(files.edit_file);
        default: return {};
    }
}

std::vector<PrintStep> report_print_steps(std::string_view file_text, std::string_view name_to_print) {
    std::vector<PrintStep> steps;
    const auto print = [&](std::string text) { steps.push_back({PrintStep::line, std::move(text)}); };
    const auto page = [&] { steps.push_back({PrintStep::new_page, {}}); };
    bool summary = false;
    int page_number = 1;
    std::size_t pos = 0;
    std::string_view view;
    while (next_line(file_text, pos, view)) {
        std::string line(view);
        if (line.find("SUMMARY") != std::string::npos) summary = true;
        if (summary && line.find('\f') != std::string::npos) {
            page();
            ++page_number;
            print({});
            print("                                                                  p. " + std::to_string(page_number));
            print({});
            print("        Filename " + std::string(name_to_print));
        }
        if (line.find("p.") != std::string::npos) {
            // The first page starts by itself.
            if (line.find("p. 01") == std::string::npos) page();
            const std::string over = "Filename:  " + std::string(name_to_print);
            if (line.size() > 8) {
                const std::size_t n = std::min({over.size(), std::size_t{60}, line.size() - 8});
                line.replace(8, n, over, 0, n);
            }
        }
        print(std::move(line));
    }
    return steps;
}

}  // namespace kyt
