#pragma once
// The handling of the program's one serial control (the main window's
// KYTComm): which of the ports 1 to 4 can be used, opening the chosen one at
// fixed line settings, clearing its buffers, the wait the protocol needs, and
// the title and status line kept in step with the port.

#include <string>

namespace kyt {

class SerialError;

inline constexpr const char* kLineSettings = "9600,N,8,1";

void scan_comm_ports();
bool any_comm_port_free();
void open_comm_port();
void close_comm_port();
void reset_comm_buffers();
std::string flush_comm_input();
// Spins for the given seconds on the program's clock, serving no event.
void wait_seconds(float seconds);
void show_comm_port_error();
void update_comm_caption();

// Stops the test on the channel of the last download: a second's wait, fresh
// buffers, "ST" and the channel, the reply read and dropped, another second.
void stop_current_test();
// Tells the meaning of a two-character error reply held in comm_buffer.
void show_reply_error();

// Tells a failure of the serial line itself (a device gone, a send on a
// closed port) in one box, unless it was told already; the caller abandons
// what it was doing.
void tell_serial_error(const SerialError& e);

}  // namespace kyt
