#include "acquisition/logformat.h"

#include "common/text.h"
#include "reports/header_replace.h"

namespace kyt {

namespace {

constexpr std::size_t indent = 9;

std::string page_mark(int page) { return indented_line(67, "p. " + format_picture(page, "00")); }

// Line 21 of the head. The occlusion log shows the rate and the volume only
// when both are given, and both blanks otherwise: a filled value alone is
// lost there, and the log has always looked so.
std::string rate_and_volume(LogKind kind, const ReportRec& rec) {
    const bool keep = kind == LogKind::single_rate || (!rec.set_rates.empty() && !rec.vtbi.empty());
    const std::string rate = keep ? "Set Rate(s): " + fit_field(rec.set_rates, 13) : "Set Rate(s): _____________";
    const std::string volume = keep ? "VTBI: " + fit_field(rec.vtbi, 20) : "VTBI: ____________________";
    return rate + " ml/h  " + volume + " ml";
}

}  // namespace

std::string format_by_size(double v) {
    if (v < 10) return format_picture(v, "0.000");
    if (v < 100) return format_picture(v, "00.00");
    if (v < 1000) return format_picture(v, "000.0");
    return format_picture(v, "0000");
}

std::string log_head(LogKind kind, const ReportRec& rec, char channel, const CivilTime& now) {
    const bool single = kind == LogKind::single_rate;
    std::string s;
    s += text_line("");
    s += text_line("");
    s += page_mark(1);
    s += text_line("");
    s += indented_line(33, "MAROVANT 4500-K");
    s += indented_line(31, "Corvane Systems Inc.");
    s += text_line("");
    s += indented_line(36, "DATA LOG");
    s += text_line("");
    s += indented_line(indent, "Start of Test - Date: " + format_date(now, "mmm d yyyy"));
    s += indented_line(23, "- Time: " + format_date(now, "hh:mm"));
    s += text_line("");
    s += indented_line(indent, "Infusion Device Information:");
    s += text_line("");
    s += indented_line(indent, "Manufacturer: " + fit_field(rec.manufacturer, 18) + " Model: " + fit_field(rec.model, 22));
    s += text_line("");
    s += indented_line(indent, "Serial No.: " + fit_field(rec.serial_no, 20) + " Control No.: " + fit_field(rec.control_no, 16));
    s += text_line("");
    s += indented_line(indent, "Department: " + fit_field(rec.department, 20) + " Location: " + fit_field(rec.location, 19));
    s += text_line("");
    s += indented_line(indent, rate_and_volume(kind, rec));
    s += text_line("");
    s += indented_line(indent, "Comment(s): " + fit_field(rec.comment, 50));
    s += text_line("");
    s += text_line("");
    s += indented_line(indent, "Channel: " + std::string(1, channel));
    s += text_line("");
    if (single) {
        s += indented_line(indent, "SINGLE RATE TEST");
        s += text_line("");
        s += indented_line(indent, "Elapsed   Flow  Avg Flow  Volume  B.Pres");
        s += indented_line(indent, "  Time    (ml/h)  (ml/h)    (ml)  (mmHg)");
    } else {
        s += indented_line(indent, "OCCLUSION PRESSURE TEST");
        s += text_line("");
        s += indented_line(12, "Elasped Time       Occlusion Pressure");
        s += indented_line(12, "                     (psi)     (mmHg)");
    }
    return s;
}

std::string continuation_head(LogKind kind, int page) {
    std::string s = text_line(std::string(1, FF)) + text_line("") + page_mark(page) + text_line("");
    if (kind == LogKind::single_rate) {
        s += indented_line(indent, "Elasped   Flow  Avg Flow  Volume  B.Pres");
        s += indented_line(indent, " Time    (ml/h)  (ml/h)    (ml)   (mmHg)");
    } else {
        s += indented_line(12, "Elasped Time Occl");
        s += indented_line(12, "             (psi) (mmHg) (kPa)");
    }
    return s;
}

std::string single_rate_row(const SingleRateRow& r) {
    return indented_line(indent, format_picture(r.hours, "00") + ":" + format_picture(r.minutes, "00") + ":" +
                                format_picture(r.seconds, "00") + spaces(2) + format_by_size(r.flow) + spaces(3) +
                                format_by_size(r.avg_flow) + spaces(4) + format_by_size(r.volume) + spaces(5) +
                                general_number(r.pressure));
}

std::string occlusion_row(const OcclusionRow& r) {
    return indented_line(16, format_picture(r.minutes, "00") + ":" + format_picture(r.seconds, "00") + spaces(12) +
                            format_picture(r.psi, "00.00") + spaces(6) + format_picture(r.mmhg, "000"));
}

std::string log_close(const ReportRec& rec, bool header_entered) {
    std::string s = text_line("") + indented_line(indent, "END OF DATA") + text_line("");
    if (!header_entered) return s;
    if (!rec.pump_type.empty())
        s += indented_line(indent, "PumpType: " + fit_field(rec.pump_type, 22) + " Pump Tolerance(+/- %): " +
                                  fit_field(rec.pump_tolerance, 6));
    s += text_line("");
    if (!rec.technician.empty())
        s += indented_line(indent, "Technician: " + fit_field(rec.technician, 20) + " Signature:___________________");
    else
        s += indented_line(indent, "Technician:_____________________ Signature:___________________");
    return s;
}

std::string DataLog::head(const ReportRec& rec, char channel, const CivilTime& now) {
    page_number_ = 1;
    line_count_ = 27;
    return log_head(kind_, rec, channel, now);
}

std::string DataLog::count_row() {
    const int limit = kind_ == LogKind::single_rate ? 56 : 55;
    if (++line_count_ <= limit) return {};
    line_count_ = 6;
    return continuation_head(kind_, ++page_number_);
}

bool LogFile::open(const std::string& path) {
    out_.close();
    out_.clear();
    out_.open(path, std::ios::binary | std::ios::out | std::ios::trunc);
    return out_.is_open();
}

bool LogFile::write(std::string_view piece) {
    if (!out_.is_open()) return false;
    out_.write(piece.data(), static_cast<std::streamsize>(piece.size()));
    out_.flush();
    return static_cast<bool>(out_);
}

RunLogs& run_logs() {
    static RunLogs logs;
    return logs;
}

bool start_log(DataLog& log, LogFile& file, const std::string& path, const ReportRec& rec, char channel,
               const CivilTime& now) {
    if (file.open(path) && file.write(log.head(rec, channel, now))) return true;
    file.close();
    return false;
}

std::string summary_file_text(std::string collected, const ReportRec& rec, bool header_entered,
                              char download_mode) {
    std::string text = cut_at_tech(std::move(collected));
    if (header_entered) {
        const std::string tech = fit_field(rec.technician, 21);
        const std::string pump = fit_field(rec.pump_type, 23);
        const std::string tolerance = fit_field(rec.pump_tolerance, 6);
        if (!rec.pump_type.empty())
            text += std::string(CRLF) + "        PumpType: " + pump + " Pump Tolerance(+/- %): " + tolerance +
                    std::string(CRLF);
        if (!rec.technician.empty())
            text += std::string(CRLF) + "        Technician: " + tech + " Signature:___________________";
        else
            text += std::string(CRLF) + "        Technician:______________________ Signature:___________________" +
                    std::string(CRLF);
        text = replace_header(std::move(text), rec, download_mode);
    }
    return text + std::string(CRLF);
}

}  // namespace kyt
