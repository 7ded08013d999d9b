#pragma once

#include "Foundation/KNError.h"

#include <QList>

#include <functional>

/// One property of an object of the tree.
struct KNObjectProperty
{
    QString name;
    QString value; ///< as displayed; not null

    friend bool operator==(const KNObjectProperty &, const KNObjectProperty &) = default;
};

using KNObjectProperties = QList<KNObjectProperty>;

/// Reads the properties of one object. Blocks on the server: any thread except the UI thread. Returns an
/// empty list and sets `error` on failure.
using KNObjectPropertiesLoader = std::function<KNObjectProperties(KNError *error)>;
