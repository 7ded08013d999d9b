#pragma once

#include <QJsonObject>
#include <QString>

/// What is kept of a document between sessions of the program.
struct KNDocumentState
{
    QString id;          ///< identifies the document while it exists; not empty
    QString kind;        ///< selects who restores the document, such as "query"
    QJsonObject content; ///< belongs to the kind; the keys "id", "kind" and "position" are reserved

    friend bool operator==(const KNDocumentState &, const KNDocumentState &) = default;
};
