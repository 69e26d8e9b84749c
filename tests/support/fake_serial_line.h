#pragma once
// A serial line in memory, for tests.

#include <deque>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "link/serial_line.h"

namespace kyt {

// A line in memory for tests: ports listed in `failing` cannot open, what is
// sent collects in `sent`, and `feed` makes text wait in the input. Every
// operation is noted in `ops` so that tests can check their order.
class FakeSerialLine final : public SerialLine {
public:
    void set_port_number(int n) override;
    int port_number() const override { return port_; }
    void set_settings(std::string_view settings) override;
    void set_port_open(bool open) override;
    bool port_open() const override { return open_; }
    void set_rts_enable(bool on) override;
    int in_buffer_count() override { return static_cast<int>(pending_.size()); }
    void clear_input() override;
    void clear_output() override;
    void set_rthreshold(int n) override;
    void set_input_len(int n) override;
    void output(std::string_view text) override;
    std::string input() override;
    std::string device_name(int port) const override { return "fake" + std::to_string(port); }

    void feed(std::string_view text) { pending_ += text; }
    // Text to feed once the next command has been sent, as an analyser answers.
    void reply_next(std::string_view text) { replies_.emplace_back(text); }

    std::set<int> failing;
    std::string sent;
    std::vector<std::string> commands;
    std::vector<std::string> ops;
    std::string settings;
    int input_len = 0;
    int rthreshold = 0;
    bool rts = false;

private:
    int port_ = 1;
    bool open_ = false;
    std::string pending_;
    std::deque<std::string> replies_;
};

}  // namespace kyt
