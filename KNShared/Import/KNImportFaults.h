#pragma once

#include "Foundation/KNError.h"
#include "KNSharedExport.h"

#include <QCoreApplication>
#include <QFile>
#include <QList>
#include <QStringList>

/// A row that was not imported, and why.
struct KNImportFault
{
    quint64 line = 0;
    QString column; ///< null if the whole row is concerned
    QString value;  ///< cut if it is long
    QString reason;
};

/// The faults of an import: the first ones are kept, and all of them go into a file if there is one. Used by
/// one thread at a time.
class KNSHARED_EXPORT KNImportFaults
{
    Q_DECLARE_TR_FUNCTIONS(KNImportFaults)

public:
    static constexpr qsizetype MostKept = 1000;

    /// Creates the file, with line, column, reason and the file's columns as its header. A file that exists
    /// is not overwritten.
    bool openFile(const QString &path, const QStringList &fileColumns, KNError *error);
    /// Keeps a fault, and writes it with the values of its row.
    bool add(const KNImportFault &fault, const QStringList &values, KNError *error);
    /// Writes what is buffered, and closes the file.
    bool closeFile(KNError *error);
    /// Deletes the file that openFile() created.
    void removeFile();

    const QList<KNImportFault> &first() const { return m_first; }
    quint64 count() const { return m_count; }

private:
    bool writeLine(const QStringList &values, KNError *error);
    KNError fileError() const;

    QFile m_file;
    bool m_isCreated = false;
    QList<KNImportFault> m_first;
    quint64 m_count = 0;
};
