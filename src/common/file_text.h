#pragma once
// Whole files as bytes, for the procedures that read a file or write one in
// a single piece.

#include <optional>
#include <string>
#include <string_view>

namespace kyt {

// The file's bytes, or nothing when it cannot be opened or read (a folder,
// or a file too large to hold).
std::optional<std::string> read_text_file(const std::string& path);

// Replaces the file with `text`; false when it cannot be opened or written.
bool write_text_file(const std::string& path, std::string_view text);

}  // namespace kyt
