#pragma once

#include <functional>

/// Runs `work` and logs an exception that leaves it: nobody further up could handle it.
void KNLoggedRun(const std::function<void()> &work) noexcept;
