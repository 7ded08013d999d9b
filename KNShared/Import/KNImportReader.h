#pragma once

#include "Foundation/KNError.h"
#include "KNSharedExport.h"

#include <QCoreApplication>
#include <QStringList>

#include <memory>

/// A row of a file, as text.
struct KNImportRow
{
    quint64 line = 0;   ///< where it begins, from 1
    QStringList values; ///< null for NULL; as many as there are columns, unless there is a problem
    QString problem;    ///< why the row cannot be used; null if it can
};

/// Reads the rows of a file one by one, in little memory whatever the size of the file. Used by one thread at
/// a time; blocks on the file.
class KNSHARED_EXPORT KNImportReader
{
    Q_DECLARE_TR_FUNCTIONS(KNImportReader)

public:
    /// A longer value, in bytes of the file, ends the reading with an error: it would need too much memory.
    static constexpr qsizetype LargestValue = 8 * 1024 * 1024;
    static constexpr qsizetype MostColumns = 16384;

    KNImportReader() = default;
    virtual ~KNImportReader();
    KNImportReader(const KNImportReader &) = delete;
    KNImportReader &operator=(const KNImportReader &) = delete;

    /// The names of the columns, without duplicates. Later rows of some formats may add further ones.
    virtual QStringList columns() const = 0;
    /// Reads the next row; false at the end of the file, and with an error. A row with a problem is no error:
    /// the next one can be read.
    virtual bool readRow(KNImportRow *row, KNError *error) = 0;
    /// The encoding of a text that does not say which one it has, if it is not UTF-8; null otherwise.
    virtual QString assumedEncoding() const { return {}; }
    /// The part of the file that was read, from 0 to 1.
    virtual double progress() const = 0;

protected:
    static KNError fileError(const QString &text);
    /// An error for a position of the file; a character of 0 is not shown.
    static KNError errorAt(quint64 line, qsizetype character, const QString &text);
    static QString valueTooLarge();
    /// Names for columns with these titles: empty ones are numbered, and repeated ones, too.
    static QStringList uniqueNames(const QStringList &titles);
};
