#pragma once
// The console's help: the topics of the main window and of the graph
// screens, each a plain-text file in the help folder, and how a file becomes
// the text of the topic window. Files are 8-bit text in code page 1252.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "common/box_message.h"

namespace kyt {

// Which help list opened the topic window: the main window's or the graph
// screens'.
enum class HelpContext { main, graph };

// "graph" is the graph screens' help; anything else the main window's.
HelpContext help_context_of(std::string_view help_topic);

struct HelpTopic {
    int page;                         // help_page
    std::string_view label;           // objectName of its label on the help list; empty: no label
    std::string_view label_caption;   // what the label shows
    std::string_view window_caption;  // the topic window's caption
    std::string_view file;            // in the help folder
};

// Topics 0 to 7 of the main window, 0 to 19 of the graph screens.
std::span<const HelpTopic> help_topics(HelpContext context);
const HelpTopic* find_help_topic(HelpContext context, int page);

// A line holding one of these starts a new paragraph of the topic window.
std::span<const std::string_view> paragraph_phrases(HelpContext context);

// The topic window's text from a file's bytes: every line followed by one
// blank, lines flowing together; a line that holds one of the context's
// phrases (anywhere, case-sensitive) starts a new paragraph with two CR LF
// in front. CR LF, a lone LF and a lone CR all end a line. The bytes are
// read as code page 1252 and the result is UTF-8; control characters show
// as blanks.
std::string help_text(std::string_view file_bytes, HelpContext context);

// Help files beyond this size are not topic texts.
inline constexpr std::uintmax_t max_help_file_bytes = 1 << 20;

// A topic as the window shows it.
struct HelpPage {
    std::string caption;
    std::string text;  // UTF-8, paragraphs split by CR LF CR LF
    bool found = false;
};

// The topic's file from the first of the folders that holds it. A topic
// that does not exist, or a file that none holds, that cannot be read, is
// empty or holds a NUL (no text does), gives a one-line text that names the
// file and the help folder (the first folder).
HelpPage load_help_page(const std::vector<std::string>& folders, HelpContext context, int page);

// The main window's keys, kept as a message of the help list.
BoxMessage hot_keys_message();

// The help list's short messages: help on help (F1 in the list), the
// configuration, the CSV conversion, printing, the scroll bar.
BoxMessage help_on_help_message();
std::vector<BoxMessage> kept_help_messages();

}  // namespace kyt
