// Cuts scripts of 100 MB into their batches.

#include "BenchmarkSupport.h"
#include "SQL/KNQuerySplitter.h"

#include <cstdio>

namespace {

void report(const char *what, const QString &piece)
{
    constexpr qsizetype Size = 100'000'000; // UTF-16 units, as many bytes in the file
    const QString text = piece.repeated(Size / piece.size());
    const auto splitter = MSSQLDatabaseConnectionDetails().createQuerySplitter();
    splitter->setRequiresFullSplit(true);
    const double begin = processorSeconds();
    const auto batches = splitter->doSplitQuery(text);
    const double seconds = processorSeconds() - begin;
    std::printf("split, %-28s%.0f MB/s, %lld batches\n", what,
                static_cast<double>(text.size()) / 1e6 / seconds, static_cast<long long>(batches.size()));
}

} // namespace

int main()
{
    keepLogsOutOfTheWay();
    report("statements",
           QStringLiteral("-- A row\r\nINSERT INTO [dbo].[Customers] ([CustomerID], [Name], [City]) VALUES "
                          "(12345, N'O''Brien & Sons', 'Dublin')\r\nGO\r\n"));
    report("one batch", QStringLiteral("INSERT INTO [dbo].[Customers] ([CustomerID], [Name], [City]) VALUES "
                                       "(12345, N'O''Brien & Sons', 'Dublin')\r\n"));
    report("procedures",
           QStringLiteral("CREATE PROCEDURE p @a int AS\r\nBEGIN\r\n  /* what it does */\r\n  SELECT a.x, "
                          "b.y FROM dbo.a AS a JOIN dbo.b AS b ON b.id = a.id WHERE a.n > @a * 1.5\r\n"
                          "END\r\nGO\r\n"));
    return 0;
}
