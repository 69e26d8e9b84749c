#pragma once
// The analyser's end of the serial line: a pseudo-terminal whose device the
// console opens as its port, and the pieces of output waiting their turn.
//
// The simulator holds the device side open itself, in raw mode from the
// start: so the console may close and reopen its port without the line
// hanging up, and nothing the simulator sends is echoed back to it as if it
// were a command.

#include <chrono>
#include <deque>
#include <optional>
#include <string>

namespace sim {

using Clock = std::chrono::steady_clock;
using Millis = std::chrono::milliseconds;

class Line {
public:
    Line() = default;
    ~Line() { hang_up(); }
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    // Opens the pseudo-terminal; false with the reason when it cannot.
    bool open(std::string& error);
    bool is_open() const { return master_ >= 0; }
    const std::string& device() const { return device_; }
    int fd() const { return master_; }

    // Closes both sides: the console's port sees the line hang up.
    void hang_up();

    // What the console has sent since the last call.
    std::string receive();

    // Queues a piece that goes out `pause` after the piece before it has
    // been written in full (or after now, when nothing waits).
    void send(std::string piece, Millis pause, Clock::time_point now);

    // Writes what is due, as far as the console's side takes it.
    void write_due(Clock::time_point now);

    bool idle() const { return queue_.empty(); }
    // Bytes written that the console has not read yet.
    int unread() const;
    // When the next piece falls due; empty when nothing waits.
    std::optional<Clock::time_point> next_due() const;
    // True when the line took no more of a due piece: wait until it can.
    bool blocked() const { return blocked_; }

private:
    struct Piece {
        std::string bytes;
        Millis pause;
    };
    int master_ = -1;
    int slave_ = -1;
    std::string device_;
    std::deque<Piece> queue_;
    std::size_t written_ = 0;         // bytes of the head piece already out
    Clock::time_point due_{};         // when the head piece may go
    bool blocked_ = false;
};

}  // namespace sim
