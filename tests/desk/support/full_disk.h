#pragma once

#include <csignal>
#include <sys/resource.h>

/// While one exists no file grows beyond so many bytes, as if the disk were full.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes)
    {
        m_formerAction = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_former);
        const rlimit limit = {bytes, m_former.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &m_former);
        std::signal(SIGXFSZ, m_formerAction);
    }
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;

private:
    rlimit m_former = {};
    void (*m_formerAction)(int) = nullptr;
};
