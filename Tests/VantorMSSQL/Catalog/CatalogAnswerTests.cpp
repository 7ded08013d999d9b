#include "Catalog/MSSQLQueryTrials.h"
#include "Catalog/MSSQLSystemDatabaseQueries.h"
#include "Foundation/KNFormat.h"
#include "QueryLoader/KNQueryTemplate.h"
#include "VantorMSSQL/Catalog/AnswerFile.h"
#include "VantorMSSQL/Catalog/CatalogQuestions.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <QSet>

using namespace WireTest;

namespace {

QString typeName(KNValue::Kind kind)
{
    switch (kind) {
    case KNValue::Kind::Null:
        return QStringLiteral("?");
    case KNValue::Kind::Bool:
        return QStringLiteral("bool");
    case KNValue::Kind::Int32:
        return QStringLiteral("int");
    case KNValue::Kind::Int64:
        return QStringLiteral("bigint");
    case KNValue::Kind::Float:
        return QStringLiteral("real");
    case KNValue::Kind::Double:
        return QStringLiteral("float");
    case KNValue::Kind::Decimal:
        return QStringLiteral("decimal");
    case KNValue::Kind::Text:
        return QStringLiteral("text");
    case KNValue::Kind::Date:
        return QStringLiteral("date");
    case KNValue::Kind::Bytes:
        return QStringLiteral("bytes");
    }
    return {};
}

/// Numbers that a server gives out as it likes.
bool isIdentifier(const QString &column)
{
    static const QStringList names{QStringLiteral("object_id"),      QStringLiteral("user_type_id"),
                                   QStringLiteral("schema_id"),      QStringLiteral("default_object_id"),
                                   QStringLiteral("rule_object_id"), QStringLiteral("database_id")};
    return names.contains(column);
}

QString cellText(const KNValue &value, const QString &column)
{
    if (value.isNull())
        return QStringLiteral("NULL");
    if (column == QLatin1String("job_id") || (isIdentifier(column) && value.toInt64() > 0))
        return QStringLiteral("#");
    QString text = value.displayText();
    if (!text.contains(QLatin1Char('\n')))
        return text;
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"))
        .replace(QLatin1Char('\r'), QLatin1String("<CR>"));
    return KNFormat("<<\n%@\n>>", text);
}

/// Column names with the types of their first values, and the rows.
QString answerText(DatabaseResultSet &result, bool varies)
{
    const QStringList names = result.columnNames();
    QList<KNValue::Kind> kinds(names.size(), KNValue::Kind::Null);
    QStringList rows;
    while (result.next()) {
        QStringList cells;
        for (qsizetype i = 0; i < names.size(); ++i) {
            const KNValue value = result.objectForColumnIndex(i);
            if (kinds[i] == KNValue::Kind::Null)
                kinds[i] = value.kind();
            cells.append(cellText(value, names[i]));
        }
        rows.append(cells.join(QStringLiteral(" | ")));
    }
    QStringList head;
    for (qsizetype i = 0; i < names.size(); ++i)
        head.append(varies ? names[i] : names[i] + QLatin1Char(' ') + typeName(kinds[i]));
    return (QStringList{head.join(QStringLiteral(" | "))} + (varies ? QStringList() : rows))
        .join(QLatin1Char('\n'))
        .trimmed();
}

QString answerPath(const QString &title)
{
    return KNFormat("%@/%@.txt", QStringLiteral(CATALOG_ANSWERS_FOLDER), title);
}

bool isAskedOf(const QString &server, const QString &title)
{
    if (server == QLatin1String("2000"))
        return !MSSQLQueryTrials::notOnSQL2000().contains(title);
    return server != QLatin1String("azure") || !MSSQLQueryTrials::notOnAzure().contains(title);
}

class CatalogAnswers : public testing::TestWithParam<const char *>
{
protected:
    CatalogAnswers()
        : m_sample({.arguments = {"--edition", GetParam()}})
    {
    }

    QString server() const { return QString::fromLatin1(GetParam()); }

    /// The answer as text; an error's text when it fails.
    QString ask(const CatalogQuestion &question)
    {
        const auto details = settings(m_sample.port());
        details->setDatabase(question.database);
        std::unique_ptr<MSSQLClient> &client = m_clients[question.database];
        if (!client)
            client =
                connectedClient(std::static_pointer_cast<MSSQLDatabaseConnectionDetails>(details->copy()));
        KNError error;
        const QString text = MSSQLSystemDatabaseQueries(*details).queryByTitle(question.title);
        const auto result = client->executeQuery(KNQueryTemplate::filled(text, question.values), &error);
        if (error || !result)
            return KNFormat("ERROR %@", error.localizedDescription());
        return answerText(*result, question.varies);
    }

private:
    SampleServerFixture m_sample;
    std::map<QString, std::unique_ptr<MSSQLClient>> m_clients;
};

} // namespace

TEST_P(CatalogAnswers, MatchRecordedAnswers)
{
    QMap<QString, QList<std::pair<QString, QString>>> answers;
    for (const CatalogQuestion &question : catalogQuestions()) {
        if (isAskedOf(server(), question.title))
            answers[question.title].append({question.name(), ask(question)});
    }
    for (auto entry = answers.cbegin(); entry != answers.cend(); ++entry) {
        AnswerFile file(answerPath(entry.key()));
        if (qEnvironmentVariableIsSet("VANTOR_RENEW_GOLDEN"))
            file.renew(server(), *entry);
        QStringList asked;
        for (const auto &[question, answer] : *entry) {
            EXPECT_EQ(answer, file.answer(server(), question))
                << entry.key().toStdString() << " " << question.toStdString();
            EXPECT_FALSE(answer.startsWith(QLatin1String("ERROR"))) << entry.key().toStdString();
            asked.append(question);
        }
        EXPECT_EQ(QSet<QString>(asked.cbegin(), asked.cend()),
                  [&] {
                      const QStringList known = file.questions(server());
                      return QSet<QString>(known.cbegin(), known.cend());
                  }())
            << entry.key().toStdString() << " has answers to what is not asked";
    }
}

INSTANTIATE_TEST_SUITE_P(Server, CatalogAnswers, testing::Values("2000", "2008", "2022", "azure"),
                         [](const auto &edition) { return "Of" + std::string(edition.param); });

TEST(CatalogQuestions, AreAskedWithEveryTitle)
{
    QSet<QString> asked(catalogStatements().cbegin(), catalogStatements().cend());
    for (const CatalogQuestion &question : catalogQuestions()) {
        EXPECT_FALSE(catalogStatements().contains(question.title)) << question.title.toStdString();
        asked.insert(question.title);
    }
    const QStringList titles = MSSQLSystemDatabaseQueries(*settings(1)).titles();
    EXPECT_EQ(asked, QSet<QString>(titles.cbegin(), titles.cend()));
}
