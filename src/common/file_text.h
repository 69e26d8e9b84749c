#pragma once
// Whole files as bytes, for the procedures that read a file or write one in
// a single piece.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kyt {

// The file's bytes, or nothing when it cannot be opened or read (a folder,
// a pipe, or a file too large to hold), or when it holds more than max_bytes: a
// file whose size says so is refused before anything is read, and one that
// goes on past it (a device) once it has.
std::optional<std::string> read_text_file(const std::string& path, std::uintmax_t max_bytes = UINTMAX_MAX);

// Replaces the file with `text`; false when it cannot be opened or written.
bool write_text_file(const std::string& path, std::string_view text);

// Replaces the file with `text` only once the whole text is written: the
// text goes to a file beside it first, which then takes the name. On failure
// the file keeps what it held (or stays absent), and `why` tells the reason.
bool replace_file_whole(const std::string& path, std::string_view text, std::string* why = nullptr);

}  // namespace kyt
