#pragma once

#include <sys/resource.h>

#include <csignal>

namespace kyt::test {

// A full disk: while it lives, files this process writes stop at `bytes` (0: no limit) and the write fails.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) {
        if (bytes == 0) return;
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &old_);
        const rlimit limit{bytes, old_.rlim_max};
        active_ = setrlimit(RLIMIT_FSIZE, &limit) == 0;
    }
    ~FileSizeLimit() {
        if (active_) setrlimit(RLIMIT_FSIZE, &old_);
    }

private:
    rlimit old_{};
    bool active_ = false;
};

}  // namespace kyt::test
