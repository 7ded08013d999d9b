#include "Catalog/MSSQLQueryTrials.h"
#include "Catalog/MSSQLSystemDatabaseQueries.h"
#include "QueryLoader/KNQueryTemplate.h"
#include "Support/PrintQt.h"

#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

namespace QueryTrialsTests {

namespace {

const QHash<QString, QString> &texts()
{
    return MSSQLSystemDatabaseQueries::allQueries();
}

/// What changes something, or is no query.
bool isForTheEditor(const QString &title)
{
    static const QStringList statements{
        QStringLiteral("SQLServerAgentStartJob"),       QStringLiteral("SQLServerAgentStopJob"),
        QStringLiteral("Script_ClearDatabase"),         QStringLiteral("Table_DropPrimaryKey"),
        QStringLiteral("Table_RemoveDefaultForColumn"), QStringLiteral("Table_ReplaceDefaultForColumn")};
    return title.startsWith(QLatin1String("New")) || statements.contains(title);
}

} // namespace

TEST(QueryTrials, TryEveryQueryThatOnlyReadsOnce)
{
    QStringList tried;
    for (const KNQueryTrial &trial : MSSQLQueryTrials::all())
        tried.append(trial.title);
    tried.sort();
    QStringList reading = texts().keys();
    reading.removeIf(
        [](const QString &title) { return title.endsWith(QLatin1String("_2000")) || isForTheEditor(title); });
    reading.sort();
    EXPECT_EQ(tried, reading);
}

TEST(QueryTrials, FillEveryPlaceholderOfBothVariants)
{
    for (const KNQueryTrial &trial : MSSQLQueryTrials::all()) {
        for (const char *suffix : {"", "_2000"}) {
            const QString text = texts().value(trial.title + QLatin1String(suffix));
            EXPECT_EQ(KNQueryTemplate::placeholders(KNQueryTemplate::filled(text, trial.values))
                          .filter(QRegularExpression(QStringLiteral("[A-Z]"))),
                      QStringList())
                << trial.title.toStdString() << suffix;
        }
    }
}

TEST(QueryTrials, TakeTheirObjectsFromQueriesThatWereTriedBefore)
{
    QSet<QString> tried;
    int taken = 0;
    for (const KNQueryTrial &trial : MSSQLQueryTrials::all()) {
        if (!trial.objectsTitle.isEmpty()) {
            ++taken;
            EXPECT_TRUE(tried.contains(trial.objectsTitle)) << trial.title.toStdString();
        }
        tried.insert(trial.title);
    }
    EXPECT_GT(taken, 10);
}

TEST(QueryTrials, SayWhichServerHasNoAnswer)
{
    QSet<QString> titles;
    for (const KNQueryTrial &trial : MSSQLQueryTrials::all())
        titles.insert(trial.title);
    for (const QString &title : MSSQLQueryTrials::notOnSQL2000() + MSSQLQueryTrials::notOnAzure())
        EXPECT_TRUE(titles.contains(title)) << title.toStdString();
    for (const QString &title : MSSQLQueryTrials::notOnSQL2000())
        EXPECT_FALSE(texts().contains(title + QLatin1String("_2000"))) << title.toStdString();
}

} // namespace QueryTrialsTests
