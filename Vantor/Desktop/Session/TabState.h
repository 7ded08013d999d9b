#pragma once

#include "UI/Workspace/KNDocumentState.h"

#include <QString>

/// What is kept of a query between sessions of the program.
struct TabState
{
    QString id;           ///< identifies the tab while it exists
    QString untitledName; ///< the title without a file
    QString filePath;     ///< null without a file
    QString text;         ///< null if it is that of the file
    bool isModified = false;
    qsizetype cursor = 0;
    QString database; ///< null if it is not known

    KNDocumentState documentState() const;
    /// Fields that are missing or damaged keep their defaults.
    static TabState fromDocumentState(const KNDocumentState &state);

    friend bool operator==(const TabState &, const TabState &) = default;
};
