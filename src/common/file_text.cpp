#include "common/file_text.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace kyt {

std::optional<std::string> read_text_file(const std::string& path, std::uintmax_t max_bytes) {
    std::error_code ec;
    // A folder is no text; a pipe or a socket would hold the open until some
    // other program wrote to it.
    const auto type = std::filesystem::status(path, ec).type();
    if (type == std::filesystem::file_type::directory || type == std::filesystem::file_type::fifo ||
        type == std::filesystem::file_type::socket)
        return std::nullopt;
    const auto size = std::filesystem::file_size(path, ec);
    if (!ec && size > max_bytes) return std::nullopt;
    std::FILE* f = std::fopen(path.c_str(), "rb");
    if (!f) return std::nullopt;
    std::optional<std::string> text;
    try {
        text.emplace();
        if (!ec) text->reserve(static_cast<std::size_t>(size));
        char buffer[1 << 16];
        std::size_t got;
        while ((got = std::fread(buffer, 1, sizeof buffer, f)) > 0) {
            if (got > max_bytes - text->size()) {
                text.reset();
                break;
            }
            text->append(buffer, got);
        }
        if (text && std::ferror(f)) text.reset();
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

bool replace_file_whole(const std::string& path, std::string_view text, std::string* why) {
    const auto fail = [&](int error) {
        if (why) *why = std::strerror(error);
        return false;
    };
    std::error_code ec;
    if (std::filesystem::is_directory(path, ec)) return fail(EISDIR);
    const std::string part = path + ".part";
    std::FILE* f = std::fopen(part.c_str(), "wb");
    if (!f) return fail(errno);
    const bool written = std::fwrite(text.data(), 1, text.size(), f) == text.size() && std::fflush(f) == 0;
    const int write_error = errno;
    if (std::fclose(f) != 0 || !written) {
        const int error = written ? errno : write_error;
        std::remove(part.c_str());
        return fail(error);
    }
    std::filesystem::rename(part, path, ec);
    if (ec) {
        std::remove(part.c_str());
        if (why) *why = ec.message();
        return false;
    }
    return true;
}

}  // namespace kyt
