#pragma once

#include <QJsonObject>
#include <QString>

/// The saved state of a document, kept between sessions of the program.
struct KNDocumentState
{
    QString id;   ///< identifies the document while it exists; not empty
    QString kind; ///< selects the component that restores the document, such as "query"
    QJsonObject
        content; ///< belongs to the kind; the keys "id", "kind", "position" and "current" are reserved

    friend bool operator==(const KNDocumentState &, const KNDocumentState &) = default;
};
