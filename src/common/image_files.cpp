#include "common/image_files.h"

#include <QBuffer>
#include <QFile>
#include <QImageWriter>
#include <QSaveFile>
#include <QTemporaryFile>
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <unordered_map>
#include <vector>

#include <gif_lib.h>
extern "C" {
#include <uwmf.h>
}

#include "common/qt_text.h"

namespace kyt {

namespace {

std::string lower(std::string_view s) {
    std::string out(s);
    for (char& c : out)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return out;
}

std::string size_problem(const QImage& image) {
    if (image.isNull() || image.width() < 1 || image.height() < 1 || image.width() > max_image_side ||
        image.height() > max_image_side)
        return "The image size must be between 1 and " + std::to_string(max_image_side) + " pixels a side.";
    return {};
}

EncodedImage encode_with_qt(const QImage& image, const char* format, int quality) {
    EncodedImage out;
    QBuffer buffer(&out.bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    writer.setQuality(quality);
    if (!writer.write(image.convertToFormat(QImage::Format_RGB32))) {
        out.bytes.clear();
        out.error = "The image could not be encoded: " + ss(writer.errorString()) + ".";
    }
    return out;
}

// --- GIF ---------------------------------------------------------------------

int append_to_bytes(GifFileType* gif, const GifByteType* data, int length) {
    static_cast<QByteArray*>(gif->UserData)->append(reinterpret_cast<const char*>(data), length);
    return length;
}

struct Palette {
    std::vector<GifColorType> colors;
    std::vector<GifByteType> indices;  // one per pixel, row by row
};

// The image's own colours when it has at most 256. Otherwise the 256 most
// frequent ones, every other colour drawn as the nearest of them: a chart is
// a few flat colours (background, grid, text, curves) plus the shades that
// anti-aliasing blends between them, so its own colours stay exact and only
// the blends move a little.
Palette gif_palette(const QImage& rgb) {
    std::unordered_map<QRgb, std::uint32_t> frequency;
    for (int y = 0; y < rgb.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(rgb.constScanLine(y));
        for (int x = 0; x < rgb.width(); ++x) ++frequency[line[x] & 0xFFFFFFu];
    }
    std::vector<std::pair<std::uint32_t, QRgb>> by_count;
    by_count.reserve(frequency.size());
    for (const auto& [color, count] : frequency) by_count.emplace_back(count, color);
    const std::size_t kept = std::min<std::size_t>(256, by_count.size());
    std::partial_sort(by_count.begin(), by_count.begin() + static_cast<std::ptrdiff_t>(kept), by_count.end(),
                      [](const auto& a, const auto& b) { return a.first != b.first ? a.first > b.first : a.second < b.second; });

    Palette p;
    std::unordered_map<QRgb, GifByteType> index_of;
    for (std::size_t i = 0; i < kept; ++i) {
        const QRgb c = by_count[i].second;
        index_of.emplace(c, static_cast<GifByteType>(i));
        p.colors.push_back(GifColorType{static_cast<GifByteType>(qRed(c)), static_cast<GifByteType>(qGreen(c)),
                                        static_cast<GifByteType>(qBlue(c))});
    }
    auto nearest = [&](QRgb c) {
        int best = 0;
        long best_distance = -1;
        for (std::size_t i = 0; i < p.colors.size(); ++i) {
            const long dr = qRed(c) - p.colors[i].Red, dg = qGreen(c) - p.colors[i].Green, db = qBlue(c) - p.colors[i].Blue;
            const long d = dr * dr + dg * dg + db * db;
            if (best_distance < 0 || d < best_distance) {
                best_distance = d;
                best = static_cast<int>(i);
            }
        }
        return static_cast<GifByteType>(best);
    };
    p.indices.reserve(static_cast<std::size_t>(rgb.width()) * static_cast<std::size_t>(rgb.height()));
    for (int y = 0; y < rgb.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(rgb.constScanLine(y));
        for (int x = 0; x < rgb.width(); ++x) {
            const QRgb c = line[x] & 0xFFFFFFu;
            auto it = index_of.find(c);
            if (it == index_of.end()) it = index_of.emplace(c, nearest(c)).first;
            p.indices.push_back(it->second);
        }
    }
    return p;
}

std::string gif_error(const char* step, int code) {
    const char* why = GifErrorString(code);
    return std::string("The GIF image could not be made (") + step + "): " + (why ? why : "unknown error") + ".";
}

// --- WMF ---------------------------------------------------------------------

std::string wmf_error(const char* step) { return std::string("The metafile could not be made (") + step + ")."; }

}  // namespace

std::optional<ImageFormat> image_format_of(std::string_view file_name) {
    const auto dot = file_name.rfind('.');
    const auto slash = file_name.find_last_of("/\\");
    if (dot == std::string_view::npos || (slash != std::string_view::npos && dot < slash)) return std::nullopt;
    const std::string suffix = lower(file_name.substr(dot + 1));
    if (suffix == "bmp") return ImageFormat::bmp;
    if (suffix == "jpg" || suffix == "jpeg") return ImageFormat::jpg;
    if (suffix == "gif") return ImageFormat::gif;
    if (suffix == "wmf") return ImageFormat::wmf;
    return std::nullopt;
}

EncodedImage encode_gif(const QImage& image) {
    EncodedImage out;
    if (out.error = size_problem(image); !out.error.empty()) return out;
    const QImage rgb = image.convertToFormat(QImage::Format_RGB32);
    Palette palette = gif_palette(rgb);
    // A GIF colour table holds a power of two entries; pad with black.
    const int bits = std::max(1, GifBitSize(static_cast<int>(palette.colors.size())));
    palette.colors.resize(std::size_t{1} << bits, GifColorType{0, 0, 0});

    int code = 0;
    GifFileType* gif = EGifOpen(&out.bytes, append_to_bytes, &code);
    if (!gif) {
        out.error = gif_error("open", code);
        return out;
    }
    ColorMapObject* map = GifMakeMapObject(1 << bits, palette.colors.data());
    bool ok = map && EGifPutScreenDesc(gif, rgb.width(), rgb.height(), bits, 0, map) == GIF_OK &&
              EGifPutImageDesc(gif, 0, 0, rgb.width(), rgb.height(), false, nullptr) == GIF_OK;
    for (int y = 0; ok && y < rgb.height(); ++y)
        ok = EGifPutLine(gif, palette.indices.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(rgb.width()),
                         rgb.width()) == GIF_OK;
    const int write_error = gif->Error;
    if (map) GifFreeMapObject(map);
    int close_error = 0;
    const bool closed = EGifCloseFile(gif, &close_error) == GIF_OK;
    if (!ok || !closed) {
        out.bytes.clear();
        out.error = gif_error("write", ok ? close_error : write_error);
    }
    return out;
}

EncodedImage encode_wmf(const QImage& image) {
    EncodedImage out;
    if (out.error = size_problem(image); !out.error.empty()) return out;
    const int w = image.width(), h = image.height();
    const QImage rgba = image.convertToFormat(QImage::Format_RGBA8888);

    // The metafile library writes to a named file; it gets a scratch file of
    // its own, whose bytes then go where the caller wants them.
    QTemporaryFile scratch;
    if (!scratch.open()) {
        out.error = "The metafile could not be made: no scratch file (" + ss(scratch.errorString()) + ").";
        return out;
    }
    scratch.close();
    const QByteArray scratch_name = QFile::encodeName(scratch.fileName());

    WMFTRACK* wt = nullptr;
    if (wmf_start(scratch_name.constData(), 1u << 20, 1u << 20, &wt) != 0 || !wt) {
        out.error = wmf_error("start");
        return out;
    }
    auto append = [&](char* rec) { return rec && wmf_append(reinterpret_cast<U_METARECORD*>(rec), wt, U_REC_FREE) == 0; };

    bool ok = true;
    U_PAIRF* inches = U_PAIRF_set(static_cast<float>(w) / 96.0f, static_cast<float>(h) / 96.0f);
    char* header = inches ? U_WMRHEADER_set(inches, 96) : nullptr;
    std::free(inches);
    ok = header && wmf_header_append(reinterpret_cast<U_METARECORD*>(header), wt, U_REC_FREE) == 0;
    // Device independence as the format recommends: window extent and origin
    // in logical units, anisotropic mapping.
    ok = ok && append(U_WMRSETWINDOWEXT_set(point16_set(static_cast<int16_t>(w), static_cast<int16_t>(h))));
    ok = ok && append(U_WMRSETWINDOWORG_set(point16_set(0, 0)));
    ok = ok && append(U_WMRSETMAPMODE_set(U_MM_ANISOTROPIC));
    ok = ok && append(U_WMRSETSTRETCHBLTMODE_set(U_COLORONCOLOR));

    char* px = nullptr;
    uint32_t px_bytes = 0;
    PU_RGBQUAD table = nullptr;
    int table_count = 0;
    if (ok) {
        // 24-bit pixels, rows bottom-up as a DIB keeps them.
        ok = RGBA_to_DIB(&px, &px_bytes, &table, &table_count, reinterpret_cast<const char*>(rgba.constBits()), w, h,
                         static_cast<int>(rgba.bytesPerLine()), U_BCBM_COLOR24, 0, 1) == 0 &&
             px;
    }
    if (ok) {
        const U_BITMAPINFOHEADER bmih = bitmapinfoheader_set(w, h, 1, U_BCBM_COLOR24, U_BI_RGB, 0, 3780, 3780, 0, 0);
        PU_BITMAPINFO bmi = bitmapinfo_set(bmih, nullptr);
        ok = bmi && append(U_WMRSTRETCHDIB_set(point16_set(0, 0), point16_set(static_cast<int16_t>(w), static_cast<int16_t>(h)),
                                               point16_set(0, 0), point16_set(static_cast<int16_t>(w), static_cast<int16_t>(h)),
                                               U_DIB_RGB_COLORS, U_SRCCOPY, bmi, px_bytes, px));
        std::free(bmi);
    }
    std::free(px);
    std::free(table);
    ok = ok && append(U_WMREOF_set());
    const std::size_t expected = ok ? wt->used : 0;
    ok = ok && wmf_finish(wt) == 0;
    wmf_free(&wt);
    if (!ok) {
        out.error = wmf_error("records");
        return out;
    }
    // The library does not tell a short write; the length read back does.
    QFile written(scratch.fileName());
    if (!written.open(QIODevice::ReadOnly) || (out.bytes = written.readAll()).size() != static_cast<qsizetype>(expected)) {
        out.bytes.clear();
        out.error = "The metafile could not be made: its scratch file came out short (is the temporary folder full?).";
    }
    return out;
}

EncodedImage encode_image(const QImage& image, ImageFormat format) {
    if (std::string why = size_problem(image); !why.empty()) return {{}, why};
    switch (format) {
        case ImageFormat::bmp: return encode_with_qt(image, "bmp", -1);
        case ImageFormat::jpg: return encode_with_qt(image, "jpg", 90);
        case ImageFormat::gif: return encode_gif(image);
        case ImageFormat::wmf: return encode_wmf(image);
    }
    return {{}, "Unknown image format."};
}

std::string write_file_whole(const std::string& path, const QByteArray& bytes) {
    const std::string prefix = "The file \"" + path + "\" could not be written: ";
    if (path.empty()) return "No file name was given.";
    QSaveFile file(qs_file(path));
    if (!file.open(QIODevice::WriteOnly)) return prefix + ss(file.errorString()) + ".";
    if (file.write(bytes) != bytes.size()) {
        const std::string why = ss(file.errorString());
        file.cancelWriting();
        file.commit();  // removes the temporary file
        return prefix + why + ".";
    }
    if (!file.commit()) return prefix + ss(file.errorString()) + ".";
    return {};
}

std::string write_image_file(const QImage& image, const std::string& path, ImageFormat format) {
    EncodedImage encoded = encode_image(image, format);
    if (!encoded.error.empty()) return "The image \"" + path + "\" was not written. " + encoded.error;
    return write_file_whole(path, encoded.bytes);
}

}  // namespace kyt
