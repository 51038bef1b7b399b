// Small disk: while one lives, no file may grow beyond a size, as on a full disk.
#pragma once

#include <csignal>
#include <sys/resource.h>

/// Holds for this process and those that it starts.
class SmallDisk {
public:
    explicit SmallDisk(rlim_t bytes)
    {
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit limit = {bytes, before.rlim_max};
        signalBefore = std::signal(SIGXFSZ, SIG_IGN);
        set = setrlimit(RLIMIT_FSIZE, &limit) == 0;
    }
    ~SmallDisk()
    {
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, signalBefore);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    bool set;   ///< whether the limit holds

private:
    rlimit before;
    void (*signalBefore)(int);
};
