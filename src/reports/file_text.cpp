#include "reports/file_text.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace kyt {

std::optional<std::string> read_text_file(const std::string& path) {
    std::error_code ec;
    if (std::filesystem::is_directory(path, ec)) return std::nullopt;
    std::ifstream in(path, std::ios::binary);
    if (!in) return std::nullopt;
    try {
        std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        if (in.bad()) return std::nullopt;
        return text;
    } catch (const std::ios_base::failure&) {  // the system refused a read
        return std::nullopt;
    }
}

bool write_text_file(const std::string& path, std::string_view text) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out) return false;
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    out.close();
    return static_cast<bool>(out);
}

}  // namespace kyt
