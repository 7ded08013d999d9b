#pragma once

#include "Foundation/KNDispatch.h"

#include <QAbstractItemModel>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
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
    // What runs may still queue something for the UI thread, and that something for the background.
    constexpr int Rounds = 3;
    for (int round = 0; round < Rounds; ++round) {
        if (!waitFor([] { return KNDispatch::waitUntilIdle(1); }))
            return false;
        QTest::qWait(0); // every event that is there, and what is to be deleted
    }
    return true;
}

/// The widgets of a window that can have the focus and are read out without a name.
inline QStringList namelessWidgets(QWidget &window)
{
    QStringList nameless;
    for (QWidget *const widget : window.findChildren<QWidget *>()) {
        // A part of a combo or spin box is read out as the whole.
        if (!widget->isVisible() || (widget->focusPolicy() & Qt::TabFocus) == 0 || widget->focusProxy() ||
            qobject_cast<QComboBox *>(widget->parent()) || qobject_cast<QAbstractSpinBox *>(widget->parent()))
            continue;
        const QAccessibleInterface *const interface = QAccessible::queryAccessibleInterface(widget);
        if (!interface || interface->text(QAccessible::Name).isEmpty())
            nameless.append(QString::fromLatin1(widget->metaObject()->className()) + QLatin1Char(' ') +
                            widget->objectName());
    }
    return nameless;
}

} // namespace WindowTesting
