#include "Autocomplete/KNCompletionList.h"
#include "Autocomplete/MSSQLCompletionLoader.h"
#include "Autocomplete/MSSQLDialect.h"
#include "Implementations/MSSQLQuoting.h"
#include "SQL/Scope/KNSQLTokens.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <ctime>

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr double Slowness = 20; // of sanitized code
#else
constexpr double Slowness = 1;
#endif

double processorMilliseconds()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

/// A database of tables with 15 columns each; names repeat as they do in practice.
std::shared_ptr<const KNCompletionCatalog> catalogOf(int columns)
{
    const auto entires = std::make_shared<MSSQLAutocompleteEntires>();
    for (int index = 0; index < columns; ++index) {
        const int table = index / 15;
        entires->addColumn(QStringLiteral("dbo"), QStringLiteral("CustomerOrderTable%1").arg(table),
                           QStringLiteral("ColumnOfTable%1Number%2").arg(table % 500).arg(index % 15),
                           QStringLiteral("nvarchar(60)"));
    }
    entires->createCache(QStringLiteral("dbo"));
    const auto catalog = MSSQLCompletionLoader::tables(entires, QStringLiteral("dbo"));
    catalog->createIndex();
    return catalog;
}

/// A script of 10,000 lines in one batch, without the line that is typed.
QString script()
{
    QString text = QStringLiteral("DECLARE @from datetime = '20200101';\n");
    for (int line = 1; line < 10'000; ++line)
        text += QStringLiteral("SELECT o.Id, COUNT(*) AS Total FROM dbo.Orders%1 o WHERE o.Id > %1 -- line\n")
                    .arg(line);
    return text;
}

/// The mean time in milliseconds from a key press to the list, while the line is typed in the script's
/// middle.
double timeOf(const KNCompletionCatalog &catalog, const QString &typed)
{
    const QString text = script();
    const qsizetype middle = text.indexOf(u'\n', text.size() / 2) + 1;
    KNSQLTokens tokens(MSSQLDialect::shared());
    tokens.setText(text); // as when the file was opened
    double spent = 0;
    for (qsizetype length = 1; length <= typed.size(); ++length) {
        QString edited = text;
        edited.insert(middle, typed.left(length) + u'\n');
        const double begin = processorMilliseconds();
        tokens.setText(edited);
        const KNSQLScope scope = KNAnalyseSQLScope(tokens, middle + length);
        KNCompletions({tokens, scope, &catalog, MSSQLQuoting::quotedName});
        spent += processorMilliseconds() - begin;
    }
    return spent / static_cast<double>(typed.size());
}

void expectSpeed(int columns, double limit)
{
    const auto catalog = catalogOf(columns);
    for (const char *const typed :
         {"SELECT o.ColumnOfTable FROM CustomerOrderTable12 o", "SELECT columnnumber", "SELECT * FROM cot",
          "UPDATE CustomerOrderTable7 SET con"}) {
        const double mean = timeOf(*catalog, QString::fromLatin1(typed));
        std::printf("%d columns, \"%s\": %.1f ms for each key\n", columns, typed, mean);
        EXPECT_LE(mean, limit * Slowness) << typed;
    }
}

} // namespace

TEST(CompletionSpeed, ListAppearsWithin16MillisecondsFor15000Columns)
{
    expectSpeed(15'000, 16);
}

TEST(CompletionSpeed, ListAppearsWithin30MillisecondsFor200000Columns)
{
    expectSpeed(200'000, 30);
}
