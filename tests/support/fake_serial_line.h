#pragma once

#include <algorithm>
#include <deque>
#include <set>
#include <vector>

#include "link/serial_line.h"

namespace kyt {

// A line in memory: ports in `failing` do not open; commands sent, and every operation in order, are kept.
class FakeSerialLine final : public SerialLine {
public:
    void set_port_number(int n) override { port_ = n, note("port " + std::to_string(n)); }
    int port_number() const override { return port_; }
    void set_settings(std::string_view s) override { note("settings " + std::string(s)); }
    void set_port_open(bool open) override {
        note(open ? "open" : "close");
        if (open && failing.count(port_)) throw SerialError("Port " + std::to_string(port_) + " cannot be opened");
        open_ = open;
    }
    bool port_open() const override { return open_; }
    void set_rts_enable(bool) override { note("rts"); }
    int in_buffer_count() override { return static_cast<int>(pending_.size()); }
    void clear_input() override { pending_.clear(), note("clear input"); }
    void clear_output() override { note("clear output"); }
    void set_rthreshold(int n) override { note("rthreshold " + std::to_string(n)); }
    void set_input_len(int n) override { input_len = n, note("input length " + std::to_string(n)); }
    void output(std::string_view text) override {
        if (!open_) throw SerialError("The serial port is not open.");
        commands.emplace_back(text);
        note("output " + std::string(text));
        if (!replies_.empty()) pending_ += replies_.front(), replies_.pop_front();
    }
    std::string input() override {
        const std::size_t n = input_len > 0 ? std::min<std::size_t>(input_len, pending_.size()) : pending_.size();
        std::string r = pending_.substr(0, n);
        pending_.erase(0, n);
        return r;
    }
    std::string device_name(int port) const override { return "fake" + std::to_string(port); }

    void feed(std::string_view text) { pending_ += text; }
    // Text to feed once the next command has been sent, as an analyser answers.
    void reply_next(std::string_view text) { replies_.emplace_back(text); }

    std::set<int> failing;
    std::vector<std::string> commands, ops;
    int input_len = 0;

private:
    void note(std::string op) { ops.push_back(std::move(op)); }
    int port_ = 1;
    bool open_ = false;
    std::string pending_;
    std::deque<std::string> replies_;
};

}  // namespace kyt
