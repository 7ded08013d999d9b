#pragma once

#include "Import/KNImportRun.h"

#include <chrono>

/// The progress of an import on a terminal: rows, rows per second and the time left, on standard error.
class ImportProgress
{
public:
    ~ImportProgress() { clear(); }

    /// Draws the state if the last one is older than a fifth of a second and standard error is a terminal.
    void show(const KNImportRun::Progress &progress);
    void clear();

    /// Reports the outcome on standard error. Returns the exit status.
    static int printOutcome(const KNImportOutcome &outcome, const KNImportPlan &plan, bool isDryRun);

private:
    using Clock = std::chrono::steady_clock;

    const Clock::time_point m_start = Clock::now();
    Clock::time_point m_drawn = m_start;
    bool m_isVisible = false;
};
