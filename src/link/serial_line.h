#pragma once
// The serial control, by role: port number, line settings, open, RTS, the two
// buffer counts, receive threshold, input length, output and input. Opening a
// port that cannot be opened, and sending on a closed port, throw SerialError.

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kyt {

class SerialError : public std::runtime_error {
public:
    // told: the operator has been told of this failure already (a device
    // that went away is told once, however many reads meet it).
    explicit SerialError(const std::string& what, bool told = false) : std::runtime_error(what), told_(told) {}
    bool told() const { return told_; }

private:
    bool told_;
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
    // What to call when the device goes away while the port is open: a USB
    // adapter pulled, the far end of a pseudo-terminal closed. Every read
    // after the loss throws SerialError, so that a reader stops; the loss is
    // told once, by the first of the handler and those errors.
    virtual void set_lost_handler(std::function<void(const SerialError&)> handler) { (void)handler; }
};

}  // namespace kyt
