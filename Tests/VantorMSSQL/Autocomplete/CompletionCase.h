#pragma once

#include "Autocomplete/KNCompletionCatalog.h"

#include <QStringList>

/// One case of the files below cases; see the README there.
struct CompletionCase
{
    QString line;
    QString text; ///< without the mark of the caret
    qsizetype caret = 0;
    bool isEmpty = false;
    QStringList first;
    QStringList contained;
    QStringList excluded;

    static CompletionCase from(const QString &line);
    /// The cases of a file.
    static QList<CompletionCase> all(const QString &file);
};

/// The database of the cases.
class CompletionDatabase
{
public:
    /// Reads the file "catalog.txt".
    CompletionDatabase();
    const KNCompletionCatalog &catalog() const { return *m_catalog; }

private:
    void add(const QString &kind, const QString &rest);
    void addKey(const QString &rest);

    std::shared_ptr<KNCompletionCatalog> m_catalog = std::make_shared<KNCompletionCatalog>();
};

/// The lines of a file of the cases without comments.
QStringList completionCaseLines(const QString &file);
