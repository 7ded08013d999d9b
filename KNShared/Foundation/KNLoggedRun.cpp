#include "Foundation/KNLoggedRun.h"

#include "Foundation/KNLogHelper.h"

#include <exception>

void KNLoggedRun(const std::function<void()> &work) noexcept
{
    try {
        work();
    } catch (const std::exception &exception) {
        KNLogHelper::sharedInstance()->logMessage("Queued work failed: %s", exception.what());
    } catch (...) {
        KNLogHelper::sharedInstance()->logMessage("Queued work failed with an unknown exception");
    }
}
