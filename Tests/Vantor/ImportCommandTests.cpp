#include "Support/TestText.h"
#include "Vantor/Program.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

/// vantor-cli import into a database of its own.
class ImportCommand : public testing::Test
{
protected:
    ImportCommand()
    {
        query("IF DB_ID('import') IS NOT NULL DROP DATABASE import\nGO\nCREATE DATABASE import", "master");
        query(
            "CREATE TABLE dbo.People (id int NOT NULL PRIMARY KEY, name nvarchar(20) NULL, born date NULL)");
    }

    static Outcome runIn(const char *database, const QStringList &arguments)
    {
        return Program(QStringList{arguments.first(), q("--server"),
                                   q("127.0.0.1,%1").arg(SampleServerFixture::shared().port()), q("--user"),
                                   q("sa"), q("--database"), q(database)} +
                       arguments.mid(1))
            .wait();
    }
    static QByteArray query(const char *sql, const char *database = "import")
    {
        const Outcome outcome = runIn(database, {q("query"), q("--format"), q("csv"), q(sql)});
        EXPECT_EQ(outcome.status, 0) << sql << "\n" << outcome.errors.toStdString();
        return outcome.output;
    }
    QString write(const char *name, const QByteArray &content) const
    {
        QFile file(folder.filePath(q(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(content), content.size());
        return file.fileName();
    }
    static Outcome import(const QString &file, std::initializer_list<const char *> arguments)
    {
        QStringList words{q("import"), file};
        for (const char *argument : arguments)
            words.append(q(argument));
        return runIn("import", words);
    }

    QTemporaryDir folder;
};

} // namespace

TEST_F(ImportCommand, FillsATableByNames)
{
    const Outcome outcome =
        import(write("a.csv", "NAME,id,born\nZoë,1,2024-02-29\n,2,\n"), {"--into", "People"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, QByteArray("2 rows imported.\n"));
    EXPECT_EQ(query("SELECT id, name, born FROM dbo.People ORDER BY id"),
              QByteArray("id,name,born\n1,Zoë,2024-02-29\n2,,\n"));
}

TEST_F(ImportCommand, CreatesATableWithTypesThatHoldAllValues)
{
    const Outcome outcome =
        import(write("b.jsonl", "{\"n\":5,\"price\":12.345,\"text\":\"日本\"}\n{\"n\":-1,\"extra\":true}\n"),
               {"--into", "dbo.[new one]", "--create"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(outcome.errors.contains("Column \"price\" becomes decimal(5,3) instead of decimal."))
        << outcome.errors.toStdString();
    EXPECT_EQ(query("SELECT n, price, text, extra FROM dbo.[new one] ORDER BY n"),
              QByteArray("n,price,text,extra\n-1,,,true\n5,12.345,日本,\n"));
}

TEST_F(ImportCommand, AsksForEveryColumnOfTheFile)
{
    const QString file = write("c.csv", "id,who,junk\n1,Ann,x\n");
    const Outcome refused = import(file, {"--into", "People"});
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.errors,
              QByteArray("No column of the table gets \"who\", \"junk\". Use --map COLUMN=FIELD or "
                         "--skip FIELD.\n"));
    EXPECT_EQ(import(file, {"--into", "People", "--map", "name=who", "--skip", "junk", "--constant",
                            "born=2000-01-01"})
                  .status,
              0);
    EXPECT_EQ(query("SELECT * FROM People"), QByteArray("id,name,born\n1,Ann,2000-01-01\n"));
}

TEST_F(ImportCommand, SaysWhenItAssumesAnEncoding)
{
    const QString file = write("latin.csv", "id,name\n1,caf\xe9\n");
    const Outcome assumed = import(file, {"--into", "People", "--dry-run"});
    EXPECT_TRUE(assumed.errors.startsWith("The file is not UTF-8 and is read as Windows-1252."))
        << assumed.errors.toStdString();
    for (const char *const name : {"windows-1252", "latin1"}) {
        const Outcome given = import(file, {"--into", "People", "--dry-run", "--encoding", name});
        EXPECT_EQ(given.errors, QByteArray("1 row can be imported, 0 rows cannot.\n"));
    }
}

TEST_F(ImportCommand, ReportsFaultsInADryRun)
{
    const Outcome outcome = import(write("d.csv", "id,born\n1,2024-02-30\n2,2024-02-29\nx,\n"),
                                   {"--into", "People", "--dry-run"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.errors,
              QByteArray("Line 2, column \"born\", value \"2024-02-30\": This is not a date.\n"
                         "Line 4, column \"id\", value \"x\": This is not a number.\n"
                         "1 row can be imported, 2 rows cannot.\n"));
    EXPECT_EQ(query("SELECT COUNT(*) AS n FROM People"), QByteArray("n\n0\n"));
}

TEST_F(ImportCommand, SaysBeforeTheImportWhichColumnsNeedAValue)
{
    const Outcome outcome = import(write("n.csv", "name\na\n"), {"--into", "People", "--dry-run"});
    EXPECT_TRUE(
        outcome.errors.startsWith("Column \"id\" gets no value, but takes no NULL and has no default.\n"))
        << outcome.errors.toStdString();
}

TEST_F(ImportCommand, SaysThatLaterKeysAreFaultsWhenItSawTheFirstRowsOnly)
{
    const QString file = write("late.jsonl", "{\"id\":1}\n{\"id\":2,\"name\":\"b\"}\n");
    const Outcome outcome = import(file, {"--into", "People", "--analyse", "1"});
    EXPECT_NE(outcome.status, 0);
    EXPECT_TRUE(outcome.errors.contains(
        "Only the first 1 rows were analysed: a later row with another key is a fault."))
        << outcome.errors.toStdString();
    EXPECT_EQ(import(file, {"--into", "People"}).status, 0);
    EXPECT_EQ(query("SELECT id, name FROM People ORDER BY id"), QByteArray("id,name\n1,\n2,b\n"));
}

TEST_F(ImportCommand, SkipsFaultyRows)
{
    const QString faults = folder.filePath(q("faults.csv"));
    const Outcome outcome = runIn("import", {q("import"), write("e.csv", "id\n1\nx\n1\n2\n"), q("--into"),
                                             q("People"), q("--skip-faulty"), faults});
    EXPECT_EQ(outcome.status, 0) << outcome.errors.toStdString();
    EXPECT_TRUE(outcome.errors.startsWith("2 rows imported.\n2 rows refused: see "));
    EXPECT_EQ(query("SELECT COUNT(*) AS n FROM People"), QByteArray("n\n2\n"));
    EXPECT_TRUE(QFile::exists(faults));
}

TEST_F(ImportCommand, ExitsWithTheStatusOfTheFailure)
{
    const QString file = write("f.csv", "id\n1\n1\n");
    EXPECT_EQ(import(file, {"--into", "People"}).status, 1);
    EXPECT_EQ(import(file, {"--into", "Nobody"}).status, 2);
    EXPECT_EQ(import(q("/nonexistent.csv"), {"--into", "People"}).status, 2);
    EXPECT_EQ(import(file, {}).status, 2);
    EXPECT_EQ(import(write("g.dat", "x"), {"--into", "People"}).status, 2);
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // which need several times the memory
TEST_F(ImportCommand, NeedsLittleMemoryForManyRows)
{
    QByteArray lines = "id,name\n";
    for (int i = 0; i < 300'000; ++i)
        lines += QByteArray::number(i) + ",name of a person\n";
    const Outcome outcome = import(write("h.csv", lines), {"--into", "People"});
    EXPECT_EQ(outcome.status, 0) << outcome.errors.toStdString();
    EXPECT_LT(outcome.maximumKilobytes, 200 * 1024);
    EXPECT_EQ(query("SELECT COUNT(*) AS n FROM People"), QByteArray("n\n300000\n"));
}
#endif
