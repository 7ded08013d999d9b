#pragma once

#include "Database/KNQueryDetails.h"
#include "KNSharedExport.h"
#include "SQL/SQLMetadataTokenizer.h"

#include <QList>

#include <atomic>

/// Splits an editor text into batches to run one by one. Connectors subclass it with their server's rules.
/// One thread splits; cancel() may be called from any thread.
class KNSHARED_EXPORT KNQuerySplitter
{
public:
    explicit KNQuerySplitter(const SQLTokenizerOptions &sqlPreParseOptions);
    virtual ~KNQuerySplitter();
    KNQuerySplitter(const KNQuerySplitter &) = delete;
    KNQuerySplitter &operator=(const KNQuerySplitter &) = delete;

    /// Whether a long text is split to its end, or only as far as callers need that ask for the batches near
    /// its start. False by default.
    bool requiresFullSplit() const { return m_requiresFullSplit; }
    void setRequiresFullSplit(bool required) { m_requiresFullSplit = required; }

    /// Makes a running split return the batches found so far. Any thread.
    void cancel() { m_cancelled = true; }
    bool cancelled() const { return m_cancelled; }

    /// Returns the batches of the text in order. Empty batches are left out.
    virtual QList<KNQueryDetails> doSplitQuery(const QString &text) = 0;

protected:
    /// The part of a text between two separators.
    struct Batch
    {
        QStringView text;
        qsizetype location;  ///< in the whole text
        quint32 repeatCount; ///< from the separator after the batch; 1 if it contains none
    };

    const SQLTokenizerOptions &sqlPreParseOptions() const { return m_sqlPreParseOptions; }

    /// Splits at lines that contain only GO, in any case: white space and closed block comments may precede
    /// it, a repeat count in digits and comments may follow it. GO inside a string, a quoted identifier or a
    /// comment is not a separator. Block comments nest regardless of the options, as they do on the server.
    /// Batches exclude their GO line and the line break before it. Linear in the text's length; the views
    /// point into the text.
    static QList<Batch> splitMSSQLQueries2(QStringView text, const SQLTokenizerOptions &sqlPreParser);

private:
    const SQLTokenizerOptions m_sqlPreParseOptions;
    bool m_requiresFullSplit = false;
    std::atomic<bool> m_cancelled = false;
};
