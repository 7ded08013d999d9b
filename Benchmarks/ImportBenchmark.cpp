// Imports a CSV file of four columns, and loads the same rows with bulkInsert. The server is a process of its
// own, so the processor time is the client's alone.

#include "BenchmarkSupport.h"
#include "Import/KNImportRun.h"

#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>

namespace {

QStringList names()
{
    return {QStringLiteral("id"), QStringLiteral("name"), QStringLiteral("price"), QStringLiteral("day")};
}

QStringList types()
{
    return {QStringLiteral("int"), QStringLiteral("nvarchar(50)"), QStringLiteral("money"),
            QStringLiteral("date")};
}

QStringList textsOf(int id)
{
    return {QString::number(id), QStringLiteral("name of row %1").arg(id),
            QStringLiteral("%1.25").arg(id % 1000), QStringLiteral("2026-11-21")};
}

void writeFile(const QString &path, int count)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        std::exit(1);
    file.write("id,name,price,day\n");
    for (int id = 0; id < count; ++id)
        file.write(textsOf(id).join(QLatin1Char(',')).toUtf8() + '\n');
}

KNImportPlan planFor(const QString &path)
{
    KNImportPlan plan;
    plan.file.path = path;
    plan.fileColumns = names();
    plan.tablePath = QStringList{QStringLiteral("#imported")};
    for (qsizetype i = 0; i < names().size(); ++i)
        plan.columns.append({{names()[i], types()[i], true}, i});
    return plan;
}

/// Measures one way to load the rows.
template <typename Load>
void measure(const char *name, int count, const Load &load)
{
    const double processor = processorSeconds();
    const double wall = wallSeconds();
    const KNError error = load();
    if (error) {
        std::fprintf(stderr, "%s\n", error.localizedDescription().toUtf8().constData());
        std::exit(1);
    }
    std::printf("%s, processor time        %.2f us per row\n", name,
                (processorSeconds() - processor) / count * 1e6);
    std::printf("%s, rows per second       %.0f\n", name, count / (wallSeconds() - wall));
}

} // namespace

int main()
{
    keepLogsOutOfTheWay();
    const char *const rowCount = std::getenv("VANTOR_BENCHMARK_BULK_ROWS");
    const int count = rowCount ? std::atoi(rowCount) : 100'000;
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("rows.csv"));
    writeFile(path, count);
    const auto client = connectedClient();
    KNError error;
    for (const char *const table : {"#imported", "#inserted"})
        client->executeNonQuery(
            KNFormat("CREATE TABLE %@ (id int, name nvarchar(50), price money, day date)", table), &error);
    std::printf("import, rows                  %d\n", count);
    measure("import", count, [&] {
        KNImportRun run(planFor(path));
        return run.run(*client, *client->databaseConnectionDetails().createDatabaseImportHelper()).error;
    });
    QList<QList<KNValue>> rows;
    for (int id = 0; id < count; ++id) {
        QList<KNValue> row;
        for (const QString &text : textsOf(id))
            row.append(KNValue(text));
        rows.append(row);
    }
    measure("bulk insert alone", count, [&] {
        KNError failure;
        client->bulkInsert(rows, {QStringLiteral("#inserted")}, names(), types(), {}, &failure);
        return failure;
    });
    return 0;
}
