#pragma once
// Image files of graphs: Windows bitmap, JPEG, GIF and Windows metafile.
// Every writer returns the reason it failed as a text for the user (empty
// when the file was written) and never leaves a partial file under the
// chosen name: the bytes go to a temporary file in the same folder, which
// replaces the chosen name only once it is whole.

#include <QByteArray>
#include <QImage>
#include <optional>
#include <string>
#include <string_view>

namespace kyt {

enum class ImageFormat { bmp, jpg, gif, wmf };

// Largest width or height written: a metafile's coordinates are 16-bit, and
// a bitmap of this size already takes a quarter of a gigabyte in memory.
inline constexpr int max_image_side = 8192;

// The format a file name's suffix names, case ignored: "bmp", "jpg" (or
// "jpeg"), "gif", "wmf". Nothing for any other suffix or none.
std::optional<ImageFormat> image_format_of(std::string_view file_name);

// The file bytes of an image in a format, or the reason it cannot be made.
struct EncodedImage {
    QByteArray bytes;
    std::string error;
};
// GIF: the image's own colours when it has at most 256, else its 256 most
// frequent colours with every other drawn as the nearest of them.
EncodedImage encode_gif(const QImage& image);
// WMF: a placeable metafile (96 units an inch, the image's pixel size) whose
// picture is the image as one device-independent bitmap record.
EncodedImage encode_wmf(const QImage& image);
EncodedImage encode_image(const QImage& image, ImageFormat format);

// Writes bytes to a file through a temporary file in the same folder.
// Returns the reason when it could not (folder missing or read-only, disk
// full ...); the chosen name is then untouched.
std::string write_file_whole(const std::string& path, const QByteArray& bytes);

// Encodes and writes an image. Returns the reason when it could not.
std::string write_image_file(const QImage& image, const std::string& path, ImageFormat format);

}  // namespace kyt
