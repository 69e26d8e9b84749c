#include "support/fake_serial_line.h"

#include <algorithm>

namespace kyt {

void FakeSerialLine::set_port_number(int n) {
    port_ = n;
    ops.push_back("port " + std::to_string(n));
}

void FakeSerialLine::set_settings(std::string_view s) {
    settings = s;
    ops.push_back("settings " + settings);
}

void FakeSerialLine::set_port_open(bool open) {
    ops.push_back(open ? "open" : "close");
    if (open && failing.count(port_)) throw SerialError("Port " + std::to_string(port_) + " cannot be opened");
    open_ = open;
}

void FakeSerialLine::set_rts_enable(bool on) {
    rts = on;
    ops.push_back("rts");
}

void FakeSerialLine::clear_input() {
    pending_.clear();
    ops.push_back("clear input");
}

void FakeSerialLine::clear_output() { ops.push_back("clear output"); }

void FakeSerialLine::set_rthreshold(int n) {
    rthreshold = n;
    ops.push_back("rthreshold " + std::to_string(n));
}

void FakeSerialLine::set_input_len(int n) {
    input_len = n;
    ops.push_back("input length " + std::to_string(n));
}

void FakeSerialLine::output(std::string_view text) {
    if (!open_) throw SerialError("The serial port is not open.");
    sent += text;
    commands.emplace_back(text);
    ops.push_back("output " + std::string(text));
    if (!replies_.empty()) {
        pending_ += replies_.front();
        replies_.pop_front();
    }
}

std::string FakeSerialLine::input() {
    const std::size_t n = input_len > 0 ? std::min<std::size_t>(input_len, pending_.size()) : pending_.size();
    std::string r = pending_.substr(0, n);
    pending_.erase(0, n);
    return r;
}

}  // namespace kyt
