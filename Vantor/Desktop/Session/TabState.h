#pragma once

#include "UI/Workspace/KNDocumentState.h"

#include <QString>

/// The state of a query tab that is kept between starts of the program.
struct TabState
{
    QString id;           ///< identifies the tab while it exists
    QString untitledName; ///< the title without a file
    QString filePath;     ///< null without a file
    QString text;         ///< null if it equals the file's
    bool isModified = false;
    qsizetype cursor = 0;
    QString database; ///< null if not known

    KNDocumentState documentState() const;
    /// Missing or damaged fields keep their defaults.
    static TabState fromDocumentState(const KNDocumentState &state);

    friend bool operator==(const TabState &, const TabState &) = default;
};
