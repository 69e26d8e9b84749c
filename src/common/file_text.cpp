#include "common/file_text.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace kyt {

std::optional<std::string> read_text_file(const std::string& path) {
    std::error_code ec;
    if (std::filesystem::is_directory(path, ec)) return std::nullopt;
    std::FILE* f = std::fopen(path.c_str(), "rb");
    if (!f) return std::nullopt;
    std::optional<std::string> text;
    try {
        text.emplace();
        const auto size = std::filesystem::file_size(path, ec);
        if (!ec) text->reserve(static_cast<std::size_t>(size));
        char buffer[1 << 16];
        std::size_t got;
        while ((got = std::fread(buffer, 1, sizeof buffer, f)) > 0) text->append(buffer, got);
        if (std::ferror(f)) text.reset();
    } catch (const std::exception&) {  // too large to hold
        text.reset();
    }
    std::fclose(f);
    return text;
}

bool write_text_file(const std::string& path, std::string_view text) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out) return false;
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    out.close();
    return static_cast<bool>(out);
}

}  // namespace kyt
