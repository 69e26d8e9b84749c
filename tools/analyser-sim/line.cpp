#include "line.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace sim {

bool Line::open(std::string& error) {
    master_ = posix_openpt(O_RDWR | O_NOCTTY);
    if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0) {
        error = std::string("cannot open a pseudo-terminal: ") + std::strerror(errno);
        hang_up();
        return false;
    }
    const char* name = ptsname(master_);
    device_ = name ? name : "";
    slave_ = device_.empty() ? -1 : ::open(device_.c_str(), O_RDWR | O_NOCTTY);
    termios t{};
    if (slave_ < 0 || tcgetattr(slave_, &t) != 0) {
        error = "cannot open the device " + device_ + ": " + std::strerror(errno);
        hang_up();
        return false;
    }
    cfmakeraw(&t);
    cfsetispeed(&t, B9600);
    cfsetospeed(&t, B9600);
    tcsetattr(slave_, TCSANOW, &t);
    fcntl(master_, F_SETFL, fcntl(master_, F_GETFL) | O_NONBLOCK);
    return true;
}

void Line::hang_up() {
    if (slave_ >= 0) ::close(slave_);
    if (master_ >= 0) ::close(master_);
    slave_ = master_ = -1;
    queue_.clear();
    written_ = 0;
    blocked_ = false;
}

std::string Line::receive() {
    std::string out;
    if (master_ < 0) return out;
    char buf[512];
    for (;;) {
        const ssize_t n = ::read(master_, buf, sizeof buf);
        if (n <= 0) break;
        out.append(buf, static_cast<std::size_t>(n));
    }
    return out;
}

void Line::send(std::string piece, Millis pause, Clock::time_point now) {
    if (master_ < 0 || piece.empty()) return;
    if (queue_.empty()) due_ = now + pause;
    queue_.push_back({std::move(piece), pause});
}

void Line::write_due(Clock::time_point now) {
    blocked_ = false;
    while (master_ >= 0 && !queue_.empty() && now >= due_) {
        const std::string& bytes = queue_.front().bytes;
        const ssize_t n = ::write(master_, bytes.data() + written_, bytes.size() - written_);
        if (n < 0) {
            if (errno == EINTR) continue;
            // EAGAIN: the console's side is full; anything else: nobody can
            // take it now. Either way the piece waits for the next turn.
            blocked_ = true;
            return;
        }
        written_ += static_cast<std::size_t>(n);
        if (written_ < bytes.size()) continue;
        queue_.pop_front();
        written_ = 0;
        if (!queue_.empty()) due_ = now + queue_.front().pause;
    }
}

int Line::unread() const {
    int n = 0;
    if (slave_ < 0 || ::ioctl(slave_, FIONREAD, &n) != 0) return 0;
    return n;
}

std::optional<Clock::time_point> Line::next_due() const {
    if (queue_.empty()) return std::nullopt;
    return due_;
}

}  // namespace sim
