// Reads one million rows of nine mixed columns into a result set, beside the bare db-lib loop over the same
// rows, and prints the ratios. The server is a process of its own, so the processor time is the client's
// alone.

#include "BenchmarkSupport.h"
#include "Implementations/MSSQLDatabaseResultSet.h"

#include <benchmark/benchmark.h>
#include <sybdb.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace {

int rowCount()
{
    const char *rows = std::getenv("VANTOR_BENCHMARK_ROWS");
    return rows ? std::atoi(rows) : 1'000'000;
}

QString sql()
{
    return KNFormat("SELECT * FROM generate_rows(%d)", rowCount());
}

/// Facts that the benchmarks find out beside their time.
struct Findings
{
    double deliveredBytes = 0;
    double residentBytes = 0;
    double firstRowsShare = 1;
};

Findings &findings()
{
    static Findings found;
    return found;
}

void bareLoop(benchmark::State &state)
{
    LOGINREC *login = dblogin();
    DBSETLUSER(login, SampleServerFixture::User);
    DBSETLPWD(login, SampleServerFixture::Password);
    DBSETLCHARSET(login, "UTF-8");
    dbsetlversion(login, DBVERSION_74);
    DBPROCESS *handle = tdsdbopen(login, KNFormat("127.0.0.1:%d", benchmarkPort()).toLatin1().constData(), 1);
    dbloginfree(login);
    if (!handle)
        std::abort();
    for (auto _ : state) {
        double bytes = 0;
        dbcmd(handle, sql().toLatin1().constData());
        dbsqlexec(handle);
        dbresults(handle);
        const int columns = dbnumcols(handle);
        while (dbnextrow(handle) == REG_ROW) {
            for (int column = 1; column <= columns; ++column) {
                benchmark::DoNotOptimize(dbdata(handle, column));
                bytes += dbdatlen(handle, column);
            }
        }
        while (dbresults(handle) == SUCCEED) {
        }
        findings().deliveredBytes = bytes;
    }
    dbclose(handle);
}

void resultSet(benchmark::State &state)
{
    const auto client = connectedClient();
    for (auto _ : state) {
        const double before = residentBytes();
        KNError error;
        const auto rows = client->executeQuery(sql(), &error);
        if (!rows || rows->rowCount() != rowCount())
            std::abort();
        findings().residentBytes = std::max(findings().residentBytes, residentBytes() - before);
    }
}

void firstRows(benchmark::State &state)
{
    using Clock = std::chrono::steady_clock;
    const auto client = connectedClient();
    for (auto _ : state) {
        KNResultSetHolder holder;
        KNError error;
        const auto start = Clock::now();
        const QString text = sql();
        std::thread worker([&] {
            client->executeQueryDetails({{text, {0, text.size()}, 0}}, holder, {}, &error);
        });
        while (!holder.waitForMoreThan(0, std::chrono::seconds(1))) {
        }
        while (!holder.resultSets().first()->rows().waitForMoreThan(99, std::chrono::seconds(1))) {
        }
        const auto first = Clock::now();
        worker.join();
        findings().firstRowsShare = std::chrono::duration<double>(first - start) / (Clock::now() - start);
    }
}

/// Remembers the processor time of each repetition.
class Reporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs) {
            if (run.run_type == Run::RT_Iteration)
                m_seconds[run.run_name.function_name].push_back(run.cpu_accumulated_time /
                                                                static_cast<double>(run.iterations));
        }
        ConsoleReporter::ReportRuns(runs);
    }

    double median(const std::string &name)
    {
        auto &seconds = m_seconds[name];
        if (seconds.empty())
            return 0;
        std::sort(seconds.begin(), seconds.end());
        return seconds[seconds.size() / 2];
    }

private:
    std::map<std::string, std::vector<double>> m_seconds;
};

} // namespace

int main(int argumentCount, char **arguments)
{
    keepLogsOutOfTheWay();
    benchmark::Initialize(&argumentCount, arguments);
    // The memory is measured first, on a heap that nothing has grown yet.
    benchmark::RegisterBenchmark("result set", resultSet)
        ->MeasureProcessCPUTime()
        ->Iterations(1)
        ->Repetitions(5);
    benchmark::RegisterBenchmark("bare loop", bareLoop)
        ->MeasureProcessCPUTime()
        ->Iterations(1)
        ->Repetitions(5);
    benchmark::RegisterBenchmark("first rows", firstRows)->MeasureProcessCPUTime()->Iterations(1);
    Reporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);

    const double bare = reporter.median("bare loop");
    const double ours = reporter.median("result set");
    std::printf("\nrows                              %d\n", rowCount());
    std::printf("bare loop, processor time         %.3f s\n", bare);
    std::printf("result set, processor time        %.3f s\n", ours);
    std::printf("ratio of processor time           %.2f\n", ours / bare);
    std::printf("bytes that db-lib delivered       %.1f MB\n", findings().deliveredBytes / 1e6);
    std::printf("resident memory of the result set %.1f MB\n", findings().residentBytes / 1e6);
    std::printf("ratio of memory                   %.2f\n",
                findings().residentBytes / findings().deliveredBytes);
    std::printf("first 100 rows visible after      %.2f %% of the total time\n",
                100 * findings().firstRowsShare);
    return 0;
}
