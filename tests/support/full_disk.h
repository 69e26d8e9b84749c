#pragma once
// A full disk: while a FileSizeLimit lives, files written by this process stop
// growing at the given size (0: no limit), and the write fails instead of the
// process being signalled.

#include <sys/resource.h>

#include <csignal>

namespace kyt::test {

class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) {
        if (bytes == 0) return;
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &old_);
        rlimit limit{bytes, old_.rlim_max};
        active_ = setrlimit(RLIMIT_FSIZE, &limit) == 0;
    }
    ~FileSizeLimit() {
        if (active_) setrlimit(RLIMIT_FSIZE, &old_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit old_{};
    bool active_ = false;
};

}  // namespace kyt::test
