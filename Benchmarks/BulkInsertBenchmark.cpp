// Loads 100,000 rows of four columns with bulkInsert into a temporary table. The server is a process of its
// own, so the processor time is the client's alone.

#include "BenchmarkSupport.h"

#include <cstdio>
#include <cstdlib>

namespace {

QList<QList<KNValue>> rowsOf(int count)
{
    QList<QList<KNValue>> rows;
    rows.reserve(count);
    for (int id = 0; id < count; ++id)
        rows.append({KNValue(QString::number(id)), KNValue(QStringLiteral("name of row %1").arg(id)),
                     KNValue(QStringLiteral("%1.25").arg(id % 1000)), KNValue(QStringLiteral("2026-11-21"))});
    return rows;
}

} // namespace

int main()
{
    keepLogsOutOfTheWay();
    const char *count = std::getenv("VANTOR_BENCHMARK_BULK_ROWS");
    const auto rows = rowsOf(count ? std::atoi(count) : 100'000);
    const auto client = connectedClient();
    KNError error;
    client->executeNonQuery(
        QStringLiteral("CREATE TABLE #bulk (id int, name nvarchar(50), price money, day date)"), &error);
    const QStringList names = {QStringLiteral("id"), QStringLiteral("name"), QStringLiteral("price"),
                               QStringLiteral("day")};
    const QStringList types = {QStringLiteral("int"), QStringLiteral("nvarchar(50)"), QStringLiteral("money"),
                               QStringLiteral("date")};
    const double processor = processorSeconds();
    const double wall = wallSeconds();
    if (error || !client->bulkInsert(rows, {QStringLiteral("#bulk")}, names, types, {}, &error)) {
        std::fprintf(stderr, "%s\n", error.localizedDescription().toUtf8().constData());
        return 1;
    }
    const auto number = static_cast<double>(rows.size());
    std::printf("bulk insert, rows                  %.0f\n", number);
    std::printf("bulk insert, processor time        %.2f us per row\n",
                (processorSeconds() - processor) / number * 1e6);
    std::printf("bulk insert, rows per second       %.0f\n", number / (wallSeconds() - wall));
    return 0;
}
