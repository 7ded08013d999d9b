#pragma once

#include "Import/KNImportFormat.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

/// Files for tests of imports.
namespace ImportTesting {

/// A folder for one test's files.
class Files
{
public:
    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }
    KNImportFile write(const char *name, const QByteArray &content) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(content), content.size());
        return {file.fileName()};
    }

private:
    QTemporaryDir m_folder;
};

/// The content of a file, with NULL as "<null>" and rows with problems as "!problem".
struct Content
{
    QStringList columns;
    QList<QStringList> rows;
    QList<quint64> lines;
    QString error; ///< null without one
};

inline Content contentOf(const KNImportFile &file)
{
    Content content;
    KNError error;
    const auto reader = KNImportFormat::open(file, &error);
    KNImportRow row;
    while (reader && reader->readRow(&row, &error)) {
        QStringList values;
        for (const QString &value : std::as_const(row.values))
            values.append(value.isNull() ? QStringLiteral("<null>") : value);
        content.rows.append(row.problem.isNull() ? values : QStringList{QLatin1Char('!') + row.problem});
        content.lines.append(row.line);
    }
    if (reader)
        content.columns = reader->columns();
    if (error)
        content.error = error.localizedDescription();
    return content;
}

inline QStringList words(std::initializer_list<const char *> texts)
{
    QStringList words;
    for (const char *text : texts)
        words.append(QString::fromUtf8(text));
    return words;
}

} // namespace ImportTesting
