#include "help/help_topics.h"

#include <array>
#include <filesystem>
#include <system_error>

#include "common/file_text.h"

namespace kyt {

namespace {

constexpr std::array<HelpTopic, 8> main_topics{{
    {0, "lblOverview", "Overview", "Overview", "kytmain0.txt"},
    {1, "lblFileDownload", "File/Download", "File/Download", "kytmain1.txt"},
    {2, "lblFileEdit", "File/Edit Summary or Data Log", "File/Edit Summary", "kytmain2.txt"},
    {3, "lblFileGraph", "File/Graph", "File/Graph Data", "kytmain3.txt"},
    {4, "lblFileExit", "File/Exit Kyt Console", "File/Exit Kyt Console", "kytmain4.txt"},
    {5, "lblOptionsChange", "Options/Change Serial Port", "Options/Change Serial Port", "kytmain5.txt"},
    {6, "lblOptionsTest", "Options/Test Serial Port", "Options/Test Serial Port", "kytmain6.txt"},
    {7, "lblOptionsSysAd", "Options/System Administrator", "Options System Administrator", "kytmain7.txt"},
}};

// Topic 0 is the graph help's introduction, which no label selects.
constexpr std::array<HelpTopic, 20> graph_topics{{
    {0, "", "", "", "KYTgra0.txt"},
    {1, "lblFileOpen", "File/Open", "File/Open", "KYTgra1.txt"},
    {2, "lblTimeWindow", "Time Window", "Time Window", "KYTgra2.txt"},
    {3, "lblFlowScale", "Flow Scale", "Flow Scale", "KYTgra3.txt"},
    {4, "lblTimeScale", "Time Scale", "Time Scale", "KYTgra4.txt"},
    {5, "lblDefault", "Default", "Default", "KYTgra5.txt"},
    {6, "lblSetRate", "Base Rate", "Base Rate", "KYTgra6.txt"},
    {7, "lblFlowOffOn", "Flow Off/On", "Flow Off/On", "KYTgra7.txt"},
    {8, "lblVolumeOffOnLabel2", "Volume Off/On", "Volume Off/On", "KYTgra8.txt"},
    {9, "lblExit", "Exit", "Exit", "KYTgra9.txt"},
    {10, "lblFileSave", "File/Save Graph As Image", "File/Save Graph as Image", "KYTgra10.txt"},
    {11, "lblFileTrumpet", "File/Trumpet Graph", "File/Trumpet Graph", "KYTgra11.txt"},
    {12, "lblSetRateTrump", "Set Rate", "Set Rate", "KYTgra12.txt"},
    {13, "lblNewData", "New Data", "New Data", "KYTgra13.txt"},
    {14, "lblScale", "Scale", "Scale", "KYTgra14.txt"},
    {15, "lblPrintTrump", "Print", "Print", "KYTgra15.txt"},
    {16, "lblSaveTrump", "Save", "Save", "KYTgra16.txt"},
    {17, "lblExitTrump", "Exit", "Exit", "KYTgra17.txt"},
    {18, "lblFilePrint", "File/Print Screen", "File/Print Screen", "KYTgra18.txt"},
    {19, "lblFileExit", "File/Exit Graph", "File/Exit Graph", "KYTgra19.txt"},
}};

constexpr std::array<std::string_view, 10> main_phrases{
    "If the 'Save to File' check box has been ticked",
    "During a download of a summary of data",
    "Text boxes in Windows 3.1 are limited",
    "During receipt of real time data,",
    "The basic editing functions Cut, Copy, Paste and Delete",
    "The final menu item is 'Options/Convert to PRN',",
    "The System Administrator form may be",
    "To create a list of entries for",
    "For each field that MUST be",
    "To save the changes",
};

constexpr std::array<std::string_view, 4> graph_phrases{
    "No other File/... options",
    "Once the data file has been opened",
    "Along with the actual graph",
    "After selecting the",
};

// Code page 1252 at 0x80 to 0x9F; the rest of the high half is Latin-1.
// The five unassigned positions read as U+FFFD.
constexpr std::array<char16_t, 32> cp1252_high{
    0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD, 0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178,
};

void append_utf8(std::string& out, char16_t c) {
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

// One line of the file, as UTF-8, control characters as blanks.
std::string decoded(std::string_view line) {
    std::string out;
    out.reserve(line.size());
    for (const char ch : line) {
        const auto b = static_cast<unsigned char>(ch);
        if (b < 0x20 || b == 0x7F) append_utf8(out, u' ');
        else if (b >= 0x80 && b < 0xA0) append_utf8(out, cp1252_high[b - 0x80]);
        else append_utf8(out, static_cast<char16_t>(b));
    }
    return out;
}

bool starts_paragraph(std::string_view line, HelpContext context) {
    for (const std::string_view phrase : paragraph_phrases(context))
        if (line.find(phrase) != std::string_view::npos) return true;
    return false;
}

std::string join_path(const std::string& folder, std::string_view file) {
    return (std::filesystem::path(folder) / std::filesystem::path(file)).string();
}

}  // namespace

HelpContext help_context_of(std::string_view help_topic) {
    return help_topic == "graph" ? HelpContext::graph : HelpContext::main;
}

std::span<const HelpTopic> help_topics(HelpContext context) {
    if (context == HelpContext::graph) return graph_topics;
    return main_topics;
}

const HelpTopic* find_help_topic(HelpContext context, int page) {
    for (const HelpTopic& t : help_topics(context))
        if (t.page == page) return &t;
    return nullptr;
}

std::span<const std::string_view> paragraph_phrases(HelpContext context) {
    if (context == HelpContext::graph) return graph_phrases;
    return main_phrases;
}

std::string help_text(std::string_view bytes, HelpContext context) {
    std::string text;
    std::size_t pos = 0;
    while (pos < bytes.size()) {
        std::size_t end = bytes.find_first_of("\r\n", pos);
        if (end == std::string_view::npos) end = bytes.size();
        const std::string_view line = bytes.substr(pos, end - pos);
        // CR LF is one line end; a lone CR or LF is one too.
        pos = end;
        if (pos < bytes.size() && bytes[pos] == '\r') ++pos;
        if (pos < bytes.size() && bytes[pos] == '\n' && (pos == end || bytes[pos - 1] == '\r')) ++pos;
        if (starts_paragraph(line, context)) text += "\r\n\r\n";
        text += decoded(line);
        text += ' ';
    }
    return text;
}

HelpPage load_help_page(const std::vector<std::string>& folders, HelpContext context, int page) {
    HelpPage p;
    const HelpTopic* topic = find_help_topic(context, page);
    const std::string help_folder = folders.empty() ? std::string() : folders.front();
    if (!topic) {
        p.text = "There is no help topic " + std::to_string(page) + " here; the help folder is " + help_folder + ".";
        return p;
    }
    p.caption = std::string(topic->window_caption);
    for (const std::string& folder : folders) {
        const std::string path = join_path(folder, topic->file);
        std::error_code ec;
        if (!std::filesystem::is_regular_file(path, ec)) continue;
        const std::uintmax_t size = std::filesystem::file_size(path, ec);
        // Asked first for its own message; a size that cannot be had is
        // left to the read, which then tells the file cannot be read.
        if (!ec && size > max_help_file_bytes) {
            p.text = "The help file " + path + " is too large to be a help text.";
            return p;
        }
        const std::optional<std::string> bytes = read_text_file(path, max_help_file_bytes);
        if (!bytes) {
            p.text = "The help file " + path + " cannot be read.";
        } else if (bytes->empty()) {
            p.text = "The help file " + path + " is empty.";
        } else if (bytes->find('\0') != std::string::npos) {
            // No text holds a NUL: the file is damaged or something else.
            p.text = "The help file " + path + " is not a text file.";
        } else {
            p.text = help_text(*bytes, context);
            p.found = true;
        }
        return p;
    }
    p.text = "The help file " + std::string(topic->file) + " is missing from the help folder " + help_folder + ".";
    return p;
}

BoxMessage hot_keys_message() {
    return {"HOT KEYS:\r\n\r\n"
            "<Ctrl>-A   Append File\r\n"
            "<Ctrl>-C   Copy\r\n"
            "<Ctrl>-D   Download\r\n"
            "<Ctrl>-L   Clear All\r\n"
            "<Ctrl>-P   Print Screen\r\n"
            "<Ctrl>-S   Save File\r\n"
            "<Ctrl>-T   Cut\r\n"
            "<Ctrl>-v   Paste\r\n"
            "<Ctrl>-X   Exit KYT\r\n"
            "DEL        Delete\r\n"
            "F1         Help",
            "HOT KEYS", box_information};
}

BoxMessage help_on_help_message() {
    return {"Click a topic, or move to it with Tab and press Space, to read about it in the topic window. "
            "Exit closes the topic window; Exit Help closes this list.",
            "HELP ON HELP", box_information};
}

std::vector<BoxMessage> kept_help_messages() {
    return {hot_keys_message(),
            help_on_help_message(),
            {"The analyser is reached through Comm 1 to Comm 4: choose one with Options, Change Comm Port, "
             "and check it with Options, Test Serial Port.",
             "HELP ON CONFIGURATION", box_information},
            {"Options, Convert to CSV in the report editor turns the data log on show into a spreadsheet file "
             "beside it.",
             "CONVERT TO PRN", box_information},
            {"Print in the report editor prints the report on show; where no printer exists the page goes to a "
             "PDF file, whose name is told.",
             "PRINT SCREEN", box_information},
            {"Move through a long report with the scroll bar, or with Page Up, Page Down, Ctrl+Home and Ctrl+End.",
             "SCROLL BAR", box_information}};
}

}  // namespace kyt
