#pragma once
// A pseudo-terminal for tests: the master side stays with the test, the slave
// device is what the console opens as a serial port. The test keeps the slave
// open as well and raw, so that the console may open and close it freely.

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

namespace kyt::test {

class Pty {
public:
    Pty() {
        master_ = posix_openpt(O_RDWR | O_NOCTTY);
        if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0) return;
        name_ = ptsname(master_);
        slave_ = ::open(name_.c_str(), O_RDWR | O_NOCTTY);
        termios t{};
        if (slave_ >= 0 && tcgetattr(slave_, &t) == 0) {
            cfmakeraw(&t);
            tcsetattr(slave_, TCSANOW, &t);
        }
        fcntl(master_, F_SETFL, fcntl(master_, F_GETFL) | O_NONBLOCK);
    }
    ~Pty() {
        if (slave_ >= 0) ::close(slave_);
        if (master_ >= 0) ::close(master_);
    }
    Pty(const Pty&) = delete;
    Pty& operator=(const Pty&) = delete;

    bool ok() const { return master_ >= 0 && slave_ >= 0; }
    const std::string& device() const { return name_; }

    // What the console sent, as far as it has arrived.
    std::string read_all() {
        std::string out;
        char buf[512];
        for (;;) {
            const ssize_t n = ::read(master_, buf, sizeof buf);
            if (n <= 0) break;
            out.append(buf, static_cast<std::size_t>(n));
        }
        return out;
    }
    void write(const std::string& s) { [[maybe_unused]] auto n = ::write(master_, s.data(), s.size()); }

private:
    int master_ = -1;
    int slave_ = -1;
    std::string name_;
};

}  // namespace kyt::test
