// kyt-analyser-sim: a simulated four-channel infusion-device analyser on a
// pseudo-terminal, so that the console can be run and tested with no
// analyser on the desk. See usage_text in options.cpp.

#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "analyser.h"
#include "common/text.h"
#include "faults.h"
#include "line.h"
#include "options.h"

namespace {

using namespace sim;

constexpr Millis line_latency{30};     // the analyser's answer to a poll or a bad command
constexpr Millis stream_latency{500};  // a report starts once the analyser has prepared it
constexpr Millis bell_pause{300};      // the closing character 7 comes on its own
constexpr Millis hang_up_settle{100};  // a reply needs this long to reach the console's side
constexpr Millis hang_up_grace{2000};  // longest wait for the console to read before a hang-up
constexpr std::size_t longest_command = 256;

int signal_pipe[2] = {-1, -1};

void on_signal(int) {
    const int saved = errno;
    const char c = 1;
    [[maybe_unused]] auto n = ::write(signal_pipe[1], &c, 1);
    errno = saved;
}

bool install_signals(std::string& error) {
    if (::pipe(signal_pipe) != 0) {
        error = std::string("cannot make a pipe: ") + std::strerror(errno);
        return false;
    }
    struct sigaction sa {};
    sa.sa_handler = on_signal;
    sigemptyset(&sa.sa_mask);
    for (int s : {SIGTERM, SIGINT, SIGHUP}) sigaction(s, &sa, nullptr);
    return true;
}

// Makes `link` a symbolic link to `device`, replacing a link left behind by
// an earlier run but never a file of another kind.
bool make_link(const std::string& link, const std::string& device, std::string& error) {
    struct stat st {};
    if (::lstat(link.c_str(), &st) == 0 && !S_ISLNK(st.st_mode)) {
        error = link + " exists and is not a symbolic link";
        return false;
    }
    const std::string temp = link + ".new-" + std::to_string(::getpid());
    ::unlink(temp.c_str());
    if (::symlink(device.c_str(), temp.c_str()) != 0 || ::rename(temp.c_str(), link.c_str()) != 0) {
        error = "cannot link " + link + " to " + device + ": " + std::strerror(errno);
        ::unlink(temp.c_str());
        return false;
    }
    return true;
}

// Removes the link unless another run has taken it over since.
void remove_link(const std::string& link, const std::string& device) {
    char target[4096];
    const ssize_t n = ::readlink(link.c_str(), target, sizeof target - 1);
    if (n >= 0 && std::string(target, static_cast<std::size_t>(n)) == device) ::unlink(link.c_str());
}

Millis random_pause(std::mt19937_64& random) { return Millis(std::uniform_int_distribution<int>(5, 40)(random)); }

void send_reply(Line& line, const Reply& reply, const Options& o, std::mt19937_64& random, Clock::time_point now) {
    if (reply.kind == Reply::Kind::none) return;
    const bool stream = reply.kind == Reply::Kind::stream;
    const std::string text = stream && o.damage_line_ends ? damage_line_ends(reply.text, random) : reply.text;
    const std::vector<std::string> pieces = o.split ? split_into_pieces(text, random) : std::vector{text};
    for (std::size_t i = 0; i < pieces.size(); ++i)
        line.send(pieces[i], i == 0 ? (stream ? stream_latency : line_latency) : random_pause(random), now);
    if (reply.bell) line.send(std::string(1, kyt::BELL), bell_pause, now);
}

// The commands the console sent, each closed by CR (an LF is taken as well).
class CommandReader {
public:
    std::vector<std::string> take(const std::string& bytes) {
        std::vector<std::string> commands;
        for (char c : bytes) {
            if (c == kyt::CR || c == kyt::LF) {
                if (!pending_.empty()) commands.push_back(std::move(pending_));
                pending_.clear();
            } else if (pending_.size() < longest_command) {
                pending_ += c;
            }
        }
        return commands;
    }

private:
    std::string pending_;
};

int poll_timeout(const Line& line, Clock::time_point now, bool hang_up_pending) {
    if (!line.is_open()) return -1;
    if (line.blocked() || (hang_up_pending && line.idle())) return 50;
    const auto due = line.next_due();
    if (!due) return -1;
    if (*due <= now) return 0;
    return static_cast<int>(std::chrono::ceil<Millis>(*due - now).count());
}

int serve(const Options& o, Line& line) {
    std::mt19937_64 random(o.seed);
    Analyser analyser(o, Clock::now(), std::time(nullptr));
    CommandReader reader;
    long commands = 0;
    bool hang_up_pending = o.hangup_after && *o.hangup_after == 0;
    std::optional<Clock::time_point> idle_since;

    for (;;) {
        auto now = Clock::now();
        line.write_due(now);
        // A hang-up throws away what the console has not read yet: the last
        // reply is given its time to be taken first.
        if (hang_up_pending && line.is_open() && line.idle()) {
            if (!idle_since) idle_since = now;
            const auto waited = now - *idle_since;
            if ((waited >= hang_up_settle && line.unread() == 0) || waited > hang_up_grace) {
                line.hang_up();
                std::fprintf(stderr, "kyt-analyser-sim: line hung up after %ld commands\n", commands);
            }
        }

        pollfd fds[2] = {{signal_pipe[0], POLLIN, 0}, {line.fd(), 0, 0}};
        if (line.is_open()) fds[1].events = static_cast<short>(POLLIN | (line.blocked() ? POLLOUT : 0));
        const int ready = ::poll(fds, line.is_open() ? 2 : 1, poll_timeout(line, now, hang_up_pending));
        if (ready < 0 && errno != EINTR) {
            std::fprintf(stderr, "kyt-analyser-sim: poll: %s\n", std::strerror(errno));
            return 1;
        }
        if (ready > 0 && (fds[0].revents & POLLIN)) return 0;
        if (!line.is_open() || !(fds[1].revents & POLLIN)) continue;

        now = Clock::now();
        for (const std::string& command : reader.take(line.receive())) {
            ++commands;
            if (hang_up_pending || (o.silent_after && commands > *o.silent_after)) continue;
            send_reply(line, analyser.handle(command, now, std::time(nullptr)), o, random, now);
            if (o.hangup_after && commands >= *o.hangup_after) hang_up_pending = true;
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    const ParsedOptions parsed = parse_options(std::vector<std::string>(argv + 1, argv + argc));
    if (parsed.help) {
        std::fputs(usage_text, stdout);
        return 0;
    }
    if (!parsed.error.empty()) {
        std::fprintf(stderr, "kyt-analyser-sim: %s\n%s", parsed.error.c_str(), usage_text);
        return 2;
    }
    const Options& o = parsed.options;

    std::string error;
    Line line;
    if (!install_signals(error) || !line.open(error) || !make_link(o.link, line.device(), error)) {
        std::fprintf(stderr, "kyt-analyser-sim: %s\n", error.c_str());
        return 1;
    }
    const std::string device = line.device();
    std::printf("%s\n", device.c_str());
    std::fflush(stdout);

    const int status = serve(o, line);
    remove_link(o.link, device);
    return status;
}
