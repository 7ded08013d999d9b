#pragma once

#include "TableDesign/MSSQLDesignedTable.h"

#include <QCoreApplication>

/// Sentences on what a statement that is kept in its exact form does instead of what the user asked for. Each
/// function adds none where the exact statement does the same as the corrected one. Used by one thread.
class MSSQLStatementCaution
{
    Q_DECLARE_TR_FUNCTIONS(MSSQLStatementCaution)

public:
    /// The statement names a table, or a trigger of it, without the schema.
    void addWithoutSchema(const MSSQLDesignedTable &table);
    void addWithoutSchema(const MSSQLDesignedTable &table, const QString &trigger);
    /// The statement names the table by its exactName().
    void addToExactName(const MSSQLDesignedTable &table);
    /// The statement holds `text` where it means the object with this path.
    void addUnlessRead(const QString &text, const QStringList &path);
    /// The parts stand in a literal of sp_rename, joined by dots, and no character of them is escaped.
    void addUnlessReadInRename(const QStringList &parts);
    /// The text stands in a literal without escapes and, unless `isUnicode`, without the prefix N.
    void addUnlessReadInLiteral(const QString &text, bool isUnicode);
    /// A translated sentence; null adds nothing.
    void add(const QString &sentence);

    /// The sentences with blanks between them, each once; null without any.
    QString text() const { return m_sentences.isEmpty() ? QString() : m_sentences.join(QLatin1Char(' ')); }

private:
    void addMisread();

    QStringList m_sentences;
};
