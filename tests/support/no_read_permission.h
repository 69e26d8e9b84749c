#pragma once

#include <linux/capability.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <string>

namespace kyt::test {

// A file this process cannot read, even as root (mode 000, file-permission capabilities dropped).
class NoReadPermission {
public:
    explicit NoReadPermission(std::string path) : path_(std::move(path)) {
        if (path_.empty() || ::chmod(path_.c_str(), 0) != 0) path_.clear();
        if (!path_.empty() && ::geteuid() == 0) taken_ = change_effective(dac_bits, 0);
    }
    ~NoReadPermission() {
        if (taken_) change_effective(0, taken_);
        if (!path_.empty()) ::chmod(path_.c_str(), 0600);
    }

private:
    static constexpr __u32 dac_bits = (1u << CAP_DAC_OVERRIDE) | (1u << CAP_DAC_READ_SEARCH);

    // Takes `off` out of the effective set and puts `on` back; gives the bits of `off` it had.
    static __u32 change_effective(__u32 off, __u32 on) {
        __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
        __user_cap_data_struct data[_LINUX_CAPABILITY_U32S_3]{};
        if (::syscall(SYS_capget, &header, data) != 0) return 0;
        const __u32 had = data[0].effective & off;
        data[0].effective = (data[0].effective & ~off) | (data[0].permitted & on);
        return ::syscall(SYS_capset, &header, data) == 0 ? had : 0;
    }

    std::string path_;
    __u32 taken_ = 0;
};

}  // namespace kyt::test
