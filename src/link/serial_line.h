#pragma once
// The serial control, by role: port number, line settings, open, RTS, the two
// buffer counts, receive threshold, input length, output and input. Opening a
// port that cannot be opened, and sending on a closed port, throw SerialError.

#include <deque>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace kyt {

class SerialError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class SerialLine {
public:
    virtual ~SerialLine() = default;
    virtual void set_port_number(int n) = 0;
    virtual int port_number() const = 0;
    virtual void set_settings(std::string_view settings) = 0;  // "9600,N,8,1"
    virtual void set_port_open(bool open) = 0;
    virtual bool port_open() const = 0;
    virtual void set_rts_enable(bool on) = 0;
    virtual int in_buffer_count() = 0;
    virtual void clear_input() = 0;   // input buffer count 0
    virtual void clear_output() = 0;  // output buffer count 0
    virtual void set_rthreshold(int n) = 0;
    virtual void set_input_len(int n) = 0;  // 0: a read takes all that waits
    virtual void output(std::string_view text) = 0;
    virtual std::string input() = 0;
    // The device name behind a port number, for the operator to see.
    virtual std::string device_name(int port) const = 0;
};

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
