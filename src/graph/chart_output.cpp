#include "graph/chart_output.h"

#include "app/dialogs/file_dialogs.h"
#include "app/dialogs/global_save_open.h"
#include "common/chart.h"
#include "common/dialog_flags.h"
#include "common/message_boxes.h"
#include "common/numbers.h"
#include "common/printer.h"
#include "common/services.h"
#include "common/shared_state.h"
#include "graph/graph_view.h"

namespace kyt {

bool print_page_heading(Printer& p, const std::string& title, double title_size, int blank_lines) {
    p.set_font_size(12);
    bool ok = p.print_line() && p.print_line();
    p.set_x(0.5);
    ok = ok && p.print("Corvane Systems Inc.");
    p.next_zone();
    if (p.orientation() == PageOrientation::landscape) p.next_zone();
    ok = ok && p.print_line(format_date(local_now(), "dddd, mmm d yyyy"));
    for (int i = 0; i < blank_lines; ++i) ok = ok && p.print_line();
    p.set_font_size(title_size);
    p.set_x(0.5);
    p.set_bold(true);
    ok = ok && p.print_line(title);
    p.set_bold(false);
    ok = ok && p.print_line();
    p.set_font_size(12);
    return ok;
}

bool print_chart_box(Printer& p, Chart& chart, double top) {
    const double width = p.orientation() == PageOrientation::landscape ? 9 : 6;
    return p.paint(QRectF(1, top, width, 4), [&](QPainter& painter, const QRectF& rect) { chart.render(painter, rect); });
}

void save_chart_image(Chart& chart, const ImageSaveTexts& texts) {
    SharedState& s = shared();
    CommonDialog& d = common_dialog();
    d.initial_dir = s.dirs.save_dir;
    d.default_ext = "BMP";
    d.title = "SAVE GRAPH AS AN IMAGE";
    d.filter = "BMP - Bitmap (*.bmp)|*.bmp|WMF - Metafile (*.wmf)|*.wmf|JPG - JPEG (*.jpg)|*.jpg";
    d.file_name.clear();
    d.flags = dlg_save_flags;
    const auto ask = [&] {
        try {
            return services().dialogs->show_save(d);
        } catch (const FileDialogError&) {
            return std::string();
        }
    };
    std::string name = ask();
    s.dirs.file_name = name;
    if (name.empty()) {
        msg_box("Image conversion cancelled", box_exclamation, "CANCEL");
        return;
    }
    const std::string suffix = graph_image_suffix(name);
    const ImageFormat format = suffix == "WMF" ? ImageFormat::wmf
                               : suffix == "JPG" ? ImageFormat::jpg
                               : suffix == "GIF" ? ImageFormat::gif
                                                 : ImageFormat::bmp;
    if (suffix != "WMF" && suffix != "BMP" && suffix != "JPG" && suffix != "GIF") {
        msg_box(texts.bad_suffix, box_exclamation, "INVALID SUFFIX");
        return;
    }
    remember_save_folder(name);
    // A name that cannot be written is asked for again; giving up ends it.
    while (!chart.write_image(name, format, chart.size()).empty()) {
        msg_box(texts.bad_name, box_exclamation, "INVALID FILE NAME");
        d.file_name.clear();
        name = ask();
        if (name.empty()) {
            if (!texts.retry_given_up.empty()) msg_box(texts.retry_given_up, box_exclamation, "SAVE CANCELLED");
            return;
        }
    }
}

}  // namespace kyt
