#pragma once

#include <QTest>
#include <QWidget>

#include <cstdio>
#include <functional>

/// Helpers that take pictures of windows.
namespace Screenshot {

/// Waits for the program; ends this one when nothing comes.
inline void waitFor(const char *what, const std::function<bool()> &condition)
{
    if (QTest::qWaitFor(condition, 60000))
        return;
    std::fprintf(stderr, "There was no %s.\n", what);
    std::exit(1);
}

inline void save(QWidget *window, const QString &folder, const char *name)
{
    const QString path = QStringLiteral("%1/%2.png").arg(folder, QString::fromLatin1(name));
    if (!window->grab().save(path)) {
        std::fprintf(stderr, "%s could not be written.\n", path.toLocal8Bit().constData());
        std::exit(1);
    }
}

} // namespace Screenshot
