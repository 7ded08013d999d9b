#pragma once

#include <QString>

/// What is kept of a query tab, so that it can come back.
struct TabState
{
    QString id;           ///< names the tab for as long as it lives
    QString untitledName; ///< what it is called while it has no file
    QString filePath;     ///< null without a file
    QString text;         ///< null when it is that of the file
    bool isModified = false;
    qsizetype cursor = 0;
    QString database; ///< null when it is not known

    friend bool operator==(const TabState &, const TabState &) = default;
};
