#pragma once

#include <csignal>

#include <sys/resource.h>

/// While it lives no file of this process can grow beyond `room` bytes: writes fail as they do on a full
/// disk, in every thread.
class FullDisk
{
public:
    explicit FullDisk(rlim_t room = 0)
        : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit = {room, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;

private:
    void (*m_handler)(int);
    rlimit m_before = {};
};
