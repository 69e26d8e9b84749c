#pragma once
// What the log graph and the trumpet graph share on paper and on disk: the
// heading of their printed page and the saving of a chart as an image file.

#include <string>

namespace kyt {

class Chart;
class Printer;

// The page heading: two empty lines, the company and today's date (two
// print zones apart in landscape, one otherwise), `blank_lines` empty lines,
// the title in bold at `title_size` points, one empty line; the text then
// goes on at 12 points. False when the printer failed.
bool print_page_heading(Printer& p, const std::string& title, double title_size, int blank_lines);

// The chart's page box: an inch from the left, `top` inches from the top,
// 4 inches high, 9 wide in landscape or 6 otherwise. False when the printer
// failed.
bool print_chart_box(Printer& p, Chart& chart, double top);

// The texts in which the two graphs tell how saving an image went.
struct ImageSaveTexts {
    std::string bad_suffix;       // a suffix that is not WMF, BMP, JPG or GIF
    std::string bad_name;         // the file could not be written; the dialog opens again
    std::string retry_given_up;   // the second dialog given up; empty: nothing is told
};

// The Save dialog for an image of the chart: the first dot's three
// characters, in upper case, choose the format ("GIF" as well, though the
// filter does not offer it); the folder is remembered. A name that cannot be
// written is told and asked for again until one is written or none given.
void save_chart_image(Chart& chart, const ImageSaveTexts& texts);

}  // namespace kyt
