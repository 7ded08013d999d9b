#pragma once

#include <functional>

/// Runs `work` and logs an exception it throws, for callers that cannot handle exceptions.
void KNLoggedRun(const std::function<void()> &work) noexcept;
