#include "reports/capture.h"

#include <algorithm>

#include "common/text.h"
#include "reports/header_replace.h"

namespace kyt {

namespace {

constexpr std::size_t npos = std::string::npos;

// CR LF LF, CR CR blank and CR LF CR: line ends damaged on the way.
bool is_damaged_line_end(char a, char b, char c) {
    return a == CR && ((b == LF && (c == LF || c == CR)) || (b == CR && c == ' '));
}

// An overflow page goes back less its last 2 characters, which were its line
// end, and with a line end of its own. A page that took nothing goes back as
// nothing.
void put_back_pages(std::string& out, const std::vector<std::string>& pages) {
    for (const std::string& page : pages) {
        if (page.size() < 2) {
            out += page;
            continue;
        }
        out.append(page, 0, page.size() - 2);
        out += CRLF;
    }
}

}  // namespace

void process_buffer(std::string& text) {
    const std::size_t n = text.size();
    for (std::size_t i = 0; i + 1 < n; ++i)
        if (static_cast<unsigned char>(text[i]) <= 6) text[i] = ' ';
    static constexpr char repaired[] = {CR, LF, CR, LF};
    for (std::size_t i = 0; i + 2 < n; ++i) {
        if (!is_damaged_line_end(text[i], text[i + 1], text[i + 2])) continue;
        for (std::size_t k = 0; k < 4 && i + k < n; ++k) text[i + k] = repaired[k];
    }
}

void Capture::Process_tempbuffer(std::string& comm_buffer) {
    process_buffer(comm_buffer);
    if (comm_buffer.empty() || ends_transfer(comm_buffer)) return;
    if (comm_buffer.size() > 2) {
        carry_text_ = comm_buffer.substr(comm_buffer.size() - 2);
        comm_buffer.resize(comm_buffer.size() - 2);
    } else if (!lone_error_reply(comm_buffer)) {
        carry_text_ = std::move(comm_buffer);
        comm_buffer.clear();
    }
}

// An error reply is all the analyser sends in place of a transfer, so a
// 2-character block is taken as one at once only before the first line of a
// transfer has arrived: held back, it would wait for text that never comes.
// Inside a transfer the same two characters are a one-letter line ("n", "e",
// "?") whose LF is still on its way, and the carry joins them again.
bool Capture::lone_error_reply(std::string_view text) const {
    return !receiving_ && partial_line_.empty() && classify_error_reply(text) != ReplyError::none;
}

CaptureTick Capture::tick(std::string_view input) {
    CaptureTick t;
    if (done_) return t;
    std::string comm_buffer = std::move(carry_text_);
    carry_text_.clear();
    comm_buffer.append(input);
    t.has_data = !comm_buffer.empty();
    Process_tempbuffer(comm_buffer);
    if (comm_buffer.empty()) return t;

    // The work text is the line left open last time and this tick's text. The
    // open line holds no CR LF, so the first line end lies at its last
    // character or behind it.
    std::string work = std::move(partial_line_);
    partial_line_.clear();
    std::size_t pos = 0;
    std::size_t search_from = work.empty() ? 0 : work.size() - 1;
    work += comm_buffer;
    const std::size_t n = work.size();

    std::string_view shown;
    bool any_shown = false;
    while (pos < n) {
        const std::size_t cr = work.find(CRLF, std::max(pos, search_from));
        const std::size_t end = cr == npos ? n : cr + 2;
        std::string_view line = std::string_view(work).substr(pos, end - pos);
        pos = end;
        const bool error_reply = classify_error_reply(line) != ReplyError::none;
        if (!error_reply && end == n && !ends_transfer(line) && (line.size() < 2 || !ends_with(line, CRLF))) {
            partial_line_ = line;
            break;
        }
        receiving_ = true;
        if (first_buffer_) {
            report_text_.clear();
            first_buffer_ = false;
        }
        append_line(line);
        keep_text_short();

        if (ends_with(line, CRLF)) line.remove_suffix(2);
        if (line.size() == 2) {
            const ReplyError e = short_reply_error(line);
            if (e == ReplyError::none) continue;
            t.errors.push_back(e);
            if (e == ReplyError::not_connected) {
                done_ = t.stopped = true;
                break;
            }
        } else if (!line.empty()) {
            shown = line;
            any_shown = true;
        }
    }
    if (any_shown) t.shown = std::string(shown);
    if (!partial_line_.empty() || t.stopped) return t;

    if (ends_transfer(work)) {
        t.tempfile_text = end_of_transfer();
        t.shown = std::string(end_of_download_text);
        done_ = t.ended = true;
    }
    return t;
}

void Capture::append_line(std::string_view line) {
    if (is_omitted_line(line)) return;
    if (!ends_transfer(line)) {
        report_text_ += line;
        return;
    }
    // The last line of the transfer. A summary ends with a line end in its
    // place; a data log ends right after "END OF DATA", so that the
    // character 7 never reaches the file.
    if (contains(report_text_, "SUMMARY")) {
        report_text_ += CRLF;
        return;
    }
    const std::string_view before_bell = line.substr(0, line.find(BELL));
    if (const std::size_t p = find1(before_bell, "TA"))
        report_text_ += left(before_bell, p + 1) + std::string(CRLF);
    else if (const std::size_t a = find1(before_bell, "A"))
        report_text_ += left(before_bell, a) + std::string(CRLF);
    else
        report_text_ += line;
}

// The head of the report is frozen once "Elapsed" stands in it, or once the
// text passes the limit without it. From then on, as long as no end mark
// ("END" or character 7) has come, text beyond the limit moves to an
// overflow page and the edit text goes back to the head.
void Capture::keep_text_short() {
    if (!head_frozen_) {
        const std::size_t from = elapsed_searched_ > 6 ? elapsed_searched_ - 6 : 0;
        const bool elapsed = report_text_.find("Elapsed", from) != npos;
        elapsed_searched_ = report_text_.size();
        if (!elapsed && report_text_.size() <= capture_text_limit) return;
        head_text_ = report_text_;
        head_frozen_ = true;
        frozen_at_elapsed_ = elapsed;
    }
    if (!end_near_) {
        const std::size_t from = end_mark_searched_ > 2 ? end_mark_searched_ - 2 : 0;
        end_near_ = report_text_.find("END", from) != npos || report_text_.find(BELL, from) != npos;
        end_mark_searched_ = report_text_.size();
    }
    if (end_near_ || report_text_.size() <= capture_text_limit) return;
    overflow_pages_.push_back(report_text_.substr(head_text_.size()));
    report_text_.resize(head_text_.size());  // the edit text always starts with the head
    end_mark_searched_ = report_text_.size();
}

std::string Capture::end_of_transfer() {
    receiving_ = false;
    first_buffer_ = true;
    std::string text = std::move(report_text_);
    process_buffer(text);
    text = cut_at_tech(std::move(text));
    // Where the overflow pages belong when the head froze for its length.
    std::size_t head_end = std::min(head_text_.size(), text.size());

    const ReportRec& rec = setup_.rec;
    text += CRLF;
    text += "        PumpType: " + fit_field(rec.pump_type, 23) + " Pump Tolerance(+/- %): " +
            fit_field(rec.pump_tolerance, 6);
    text += CRLF;
    text += CRLF;
    text += "        Technician: " + fit_field(rec.technician, 21) + " Signature:___________________";
    if (setup_.save_file) text = replace_header(std::move(text), rec, setup_.download_mode, head_end);
    process_buffer(text);
    report_text_ = text;

    // Head, overflow pages, then the rest with the signature lines. The head
    // of a log ends with the line that holds "Elapsed".
    std::size_t size = text.size() + 4;
    for (const std::string& page : overflow_pages_) size += page.size();
    std::string out;
    out.reserve(size);
    if (frozen_at_elapsed_ || overflow_pages_.empty()) {
        const std::size_t e = find1(text, "Elapsed");
        const std::size_t cr = text.find(CRLF, e > 0 ? e - 1 : 0);
        if (cr == npos) {
            out = text + std::string(CRLF);
            put_back_pages(out, overflow_pages_);
        } else {
            out.append(text, 0, cr);
            out += CRLF;
            put_back_pages(out, overflow_pages_);
            out.append(text, cr + 2);
        }
    } else {
        out.append(text, 0, head_end);
        put_back_pages(out, overflow_pages_);
        out.append(text, head_end);
    }
    out += CRLF;
    return out;
}

}  // namespace kyt
