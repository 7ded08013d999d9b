#pragma once

#include "Foundation/KNError.h"
#include "KNSharedExport.h"
#include "QueryLoader/KNStatementPair.h"

#include <QStringList>

/// A KNQueryLoader's report on its text. It does not change the text itself; programs show guardedText()
/// instead.
struct KNSHARED_EXPORT KNQueryReport
{
    /// Set if the text is not the complete script: a catalog query failed, or a definition cannot be read.
    KNError failure;
    /// With a failure: length in UTF-16 units of the beginning of the text that must not run, such as the
    /// DROP before a missing CREATE.
    qsizetype unsafeLength = 0;
    /// Sentences to show before the script, such as that it acts on another object.
    QStringList notices;
    /// Set if the text has a corrected counterpart with another effect.
    KNStatementPair pair = {};

    /// Whether the user should see the text before it runs.
    bool needsAttention() const { return failure || !notices.isEmpty() || pair.differs(); }

    /// The text with the notices, the difference of the pair and the failure as comment lines before it, and
    /// the unsafe part commented out. Lines end with CR LF. Null for a null text.
    QString guardedText(const QString &text) const;
};
