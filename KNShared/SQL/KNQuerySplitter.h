#pragma once

#include "Database/KNQueryDetails.h"
#include "KNSharedExport.h"
#include "SQL/SQLMetadataTokenizer.h"

#include <QList>

#include <atomic>

/// Cuts an editor text into the batches that are sent one by one. A connector subclasses it with its server's
/// rules. One thread splits; cancel() may come from any.
class KNSHARED_EXPORT KNQuerySplitter
{
public:
    explicit KNQuerySplitter(const SQLTokenizerOptions &sqlPreParseOptions);
    virtual ~KNQuerySplitter();
    KNQuerySplitter(const KNQuerySplitter &) = delete;
    KNQuerySplitter &operator=(const KNQuerySplitter &) = delete;

    /// Whether a long text is to be split to its end, or only as far as callers need that ask for the batches
    /// near its start. False at first.
    bool requiresFullSplit() const { return m_requiresFullSplit; }
    void setRequiresFullSplit(bool required) { m_requiresFullSplit = required; }

    /// Makes a running split return what it has. Any thread.
    void cancel() { m_cancelled = true; }
    bool cancelled() const { return m_cancelled; }

    /// The batches of the text, in order. Batches without any text are left out.
    virtual QList<KNQueryDetails> doSplitQuery(const QString &text) = 0;

protected:
    /// A piece of a text between two separators.
    struct Batch
    {
        QStringView text;
        qsizetype location;  ///< in the whole text
        quint32 repeatCount; ///< what the separator after it says; 1 when it says nothing
    };

    const SQLTokenizerOptions &sqlPreParseOptions() const { return m_sqlPreParseOptions; }

    /// Cuts at lines with nothing but GO on them, in any case: white space and closed block comments may
    /// stand before it, a count of digits and comments after it. A GO inside a string, a quoted identifier or
    /// a comment is none; block comments nest, whatever the options say, as they do on the server. Batches
    /// come without their GO line and without the line break before it. Linear in the text's length; the
    /// views point into the text.
    static QList<Batch> splitMSSQLQueries2(QStringView text, const SQLTokenizerOptions &sqlPreParser);

private:
    const SQLTokenizerOptions m_sqlPreParseOptions;
    bool m_requiresFullSplit = false;
    std::atomic<bool> m_cancelled = false;
};
