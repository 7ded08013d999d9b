#pragma once

#include "Foundation/KNDispatch.h"

#include <QAbstractItemModel>
#include <QApplication>
#include <QTest>

#include <gtest/gtest.h>

#include <functional>

/// What the tests of windows share.
namespace WindowTesting {

/// Lets the program go on until the condition holds; false after a minute.
inline bool waitFor(const std::function<bool()> &condition)
{
    return QTest::qWaitFor(condition, 60000);
}

/// Lets the program go on until no work is left in the background or for the UI thread.
inline bool settle()
{
    return waitFor([] { return KNDispatch::waitUntilIdle(1); });
}

} // namespace WindowTesting
