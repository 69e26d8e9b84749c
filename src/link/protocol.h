#pragma once
// The wire protocol of the analyser, without any widget or port: the bytes of
// every command the console sends, the splitting of the live tests' poll
// replies, the recognition of the analyser's error replies and the texts the
// console tells for them, and the meaning of the control characters in a text
// stream. The serial layer sends what these functions build; the forms show
// what they return.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kyt {

// ---------------------------------------------------------------- commands
// Every command is ASCII letters and digits closed by one CR; no LF is sent.
// The channel is the analyser's channel letter, "A" to "D", sent as given.

// The second character of "DL": what the analyser is to send.
inline constexpr char download_summary = '1';
inline constexpr char download_data_log = '2';
inline constexpr char download_test_pattern = '3';

// The test numbers of "RT" and "GR" (the download dialog's test_select).
inline constexpr int test_single_rate = 1;
inline constexpr int test_occlusion = 4;

// The wait before and after "ST", in seconds: a fixed cost of every stop.
inline constexpr float stop_wait_seconds = 1.0f;

std::string command_stop(char channel);                          // "ST" ch CR
std::string command_download(char channel, char mode);           // "DL" ch mode CR
std::string command_test_pattern();                              // "DLA3" CR, channel A whatever is chosen
std::string command_print_summary(char channel);                 // "PR" ch "1" CR
std::string command_start_test(char channel, int test_select);   // "RT" ch n CR, n plain decimal
std::string command_attach_test(char channel, int test_select);  // "GR" ch n CR
std::string command_poll(char channel);                          // "GR" ch CR
// "RTA4" ... "RTD4" and CR, one fixed text per channel; a letter outside
// "A" to "D" has no such text and gives "" (nothing is sent).
std::string command_start_occlusion_fixed(char channel);

// The two lines the analyser sends for the test pattern; the full stop that
// ends the second line is the end mark of the port test.
inline constexpr std::string_view test_pattern_first_line = "ABCDEFGHIJKLMNOPQRSTUVWXYZ 0123456789";
inline constexpr std::string_view test_pattern_second_line = "abcdefghijklmnopqrstuvwxyz  !#()-_=:.";
inline constexpr char test_pattern_end_mark = '.';

// ------------------------------------------------------------ text streams
// Character 7 ends a text stream; character 5 stands on a line the console
// leaves out. A block with neither is plain.
bool ends_transfer(std::string_view text);
bool is_omitted_line(std::string_view text);
bool is_plain_block(std::string_view text);

// ----------------------------------------------------------- error replies
enum class ReplyError { none, transmission /* "?" */, not_running /* "e" */, not_connected /* "n" */ };

// The error a first character stands for; none for any other character.
ReplyError reply_error_code(char first);

// An error reply is exactly 2 characters: a code of reply_error_code and a
// control character (below 32). Used on each line of a text stream and on a
// summary block of exactly 2 characters.
ReplyError classify_error_reply(std::string_view reply);

// What a short reply tells, by its first character alone, as the console
// reads a poll reply under 3 characters or a 2-character line of a capture;
// an empty reply tells nothing.
ReplyError short_reply_error(std::string_view reply);

// The text of the box for an error, "" for none. The box has the title
// reply_error_title and the stop-sign style.
const char* reply_error_text(ReplyError error);
inline constexpr const char* reply_error_title = "ERROR";
inline constexpr int reply_error_style = 16;

// The box for an empty reply to the fixed occlusion start command.
std::string channel_access_error_text();
inline constexpr const char* channel_access_error_title = "Communications Error";
inline constexpr int channel_access_error_style = 48;

// ------------------------------------------------------------ poll replies
// A poll reply as the live tests take it: trimmed of blanks; under 3
// characters it is an error reply or nothing, else it is data.
inline constexpr std::size_t poll_data_min_length = 3;

struct PollReply {
    std::string text;                     // the trimmed reply, as comm_buffer holds it
    bool is_data = false;                 // 3 characters or more: split into fields
    ReplyError error = ReplyError::none;  // for a shorter one: by its first character
};
PollReply take_poll_reply(std::string_view raw);

// Splits a reply into count fields: each is the text up to and including the
// first comma, the rest losing its leading blanks; with no comma left, the
// trimmed rest is the field, and it repeats for every later field.
std::vector<std::string> split_reply_fields(std::string_view reply, int count);

// Number of fields of each kind of poll reply.
inline constexpr int rt_field_count = 8;
inline constexpr int ot_field_count = 5;

// The newest values of a single-rate test.
struct RTData {
    char range = ' ';  // flow range letter "A", "B" or "C"
    std::int16_t hours = 0, minutes = 0, seconds = 0;
    double flow = 0;      // ml/hr
    double avg_flow = 0;  // ml/hr
    double volume = 0;    // ml
    double pressure = 0;  // back pressure, mmHg
};

// The kPa figure the occlusion graph scales by: PSI times this factor.
inline constexpr double occlusion_kpa_factor = 7.51;

// The newest values of an occlusion test.
struct OTData {
    std::string mode;  // the first field, kept and not read
    std::int16_t minutes = 0, seconds = 0;
    double psi = 0;
    double mmhg = 0;
    double kpa = 0;  // psi times occlusion_kpa_factor
};

// A parsed poll reply, or why it could not be taken: a time field beyond the
// 16-bit range or a number too large to hold. Such a reply is dropped whole.
template <class Data>
struct Parsed {
    Data data{};
    std::string error;
    bool ok() const { return error.empty(); }
};

Parsed<RTData> process_rt_data(std::string_view reply);
Parsed<OTData> process_ot_data(std::string_view reply);

}  // namespace kyt
