#pragma once

#include "KNSharedExport.h"

#include <QString>

#include <memory>

class KNQueryLoader;

/// A statement kept in an exact form, although the server rejects it or it affects another object than the
/// one shown, and its corrected form. The generator knows which of them the user prefers; if that is the
/// exact one and they differ, the user is asked first.
struct KNSHARED_EXPORT KNStatementPair
{
    QString exact;
    QString corrected;
    /// A sentence on what the exact statement does instead; empty if both have the same effect.
    QString difference;

    /// Whether the exact statement needs a caution.
    bool differs() const { return !difference.isEmpty() && exact != corrected; }
    const QString &preferred(bool prefersCorrected) const { return prefersCorrected ? corrected : exact; }
    /// Returns a loader of the preferred statement. Its report contains the pair if the exact statement needs
    /// a caution.
    std::shared_ptr<KNQueryLoader> loader(bool prefersCorrected) const;
};
