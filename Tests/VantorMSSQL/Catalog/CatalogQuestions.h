#pragma once

#include <QList>
#include <QMap>
#include <QString>

/// A named query with what fills its placeholders, asked of the sample databases.
struct CatalogQuestion
{
    QString title;
    QMap<QString, QString> values = {};
    bool varies = false; ///< whether rows differ from run to run: times, sessions
    QString database = QStringLiteral("shop");

    /// The values in one line, as an answer file names them.
    QString name() const;
};

/// The questions whose answers are known.
const QList<CatalogQuestion> &catalogQuestions();
/// Titles that change something, or are no query: they have tests of their own.
const QStringList &catalogStatements();
