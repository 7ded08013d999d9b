#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

/// What a query is known to answer about the sample databases: a text file with a section per question,
/// headed by the servers that give this answer and the question's values.
///
///     --- 2008 2022 | SCHEMA=sales
///     column text | other int
///     value | 3
class AnswerFile
{
public:
    /// Reads the file; there need not be one.
    explicit AnswerFile(const QString &path);

    /// The answer of a server to a question; null when the file has none.
    QString answer(const QString &server, const QString &question) const;
    /// Every question that has an answer of this server.
    QStringList questions(const QString &server) const;
    /// Replaces what a server answers to its questions, in this order, and writes the file.
    void renew(const QString &server, const QList<std::pair<QString, QString>> &answers);

private:
    struct Section
    {
        QStringList servers;
        QString question;
        QString answer;
    };

    void add(const QString &server, const QString &question, const QString &answer);

    QString m_path;
    QList<Section> m_sections;
};
