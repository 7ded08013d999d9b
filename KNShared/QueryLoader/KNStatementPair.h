#pragma once

#include "KNSharedExport.h"

#include <QString>

#include <memory>

class KNQueryLoader;

/// A statement that is kept in an exact form although a server refuses it or it reaches another object than
/// the one shown, and its corrected counterpart. The generator knows which of them the user prefers; where
/// that is the exact one and they differ, the user is asked first.
struct KNSHARED_EXPORT KNStatementPair
{
    QString exact;
    QString corrected;
    /// A sentence on what the exact statement does instead; empty if both have the same effect.
    QString difference;

    /// Whether the exact statement needs a caution.
    bool differs() const { return !difference.isEmpty() && exact != corrected; }
    const QString &preferred(bool prefersCorrected) const { return prefersCorrected ? corrected : exact; }
    /// A loader of the preferred statement. Its report holds the pair if the exact statement needs a caution.
    std::shared_ptr<KNQueryLoader> loader(bool prefersCorrected) const;
};
