"""Runs every benchmark and its peers against one sample server and prints the figures as Markdown. See scripts/bench."""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time

HERE = pathlib.Path(__file__).parent
sys.path.insert(0, str(HERE.parent / "Tests/SampleServer/clients"))

from run_tedious import install  # noqa: E402
from sample_server import SampleServer  # noqa: E402

ROWS = int(os.environ.get("VANTOR_BENCHMARK_ROWS", "1000000"))
SQL = f"SELECT * FROM generate_rows({ROWS})"
INSERTS = 10_000  # single ones are slow


def measure(command, environment, **options):
    """Runs a program; what it printed, processor seconds, wall seconds, largest resident memory in MB."""
    begin = time.monotonic()
    with tempfile.TemporaryFile("w+") as output:
        process = subprocess.Popen(command, env=environment, stdout=output, text=True, **options)
        if process.stdin:
            process.stdin.write(options.get("input", ""))
        _, status, usage = os.wait4(process.pid, 0)
        if status != 0:
            raise RuntimeError(f"{command[0]} failed")
        output.seek(0)
        text = output.read(1_000_000)
    return text, usage.ru_utime + usage.ru_stime, time.monotonic() - begin, usage.ru_maxrss / 1024


def figure(text, label):
    return float(re.search(rf"^{re.escape(label)}\s+([\d.]+)", text, re.MULTILINE).group(1))


def table(head, rows):
    print("| " + " | ".join(head) + " |")
    print("|" + "---|" * len(head))
    for row in rows:
        print("| " + " | ".join(row) + " |")
    print()


def query(programs, environment, arguments):
    """Runs vantor-cli query; its processor seconds and memory."""
    _, seconds, _, memory = measure(
        [programs / "vantor-cli", "query", "--server", f"127.0.0.1,{environment['VANTOR_BENCHMARK_PORT']}", "--user", "sa",
         *arguments], {**environment, "VANTOR_PASSWORD": "Sample-1"}, stderr=subprocess.DEVNULL)
    return seconds, memory


def tsql(environment):
    """Runs FreeTDS's own client on the same rows; its processor seconds and memory."""
    with tempfile.TemporaryDirectory() as folder:
        script = pathlib.Path(folder) / "query.sql"
        script.write_text(f"{SQL}\nGO\n")
        with script.open() as source:
            _, seconds, _, memory = measure(
                ["tsql", "-H", "127.0.0.1", "-p", environment["VANTOR_BENCHMARK_PORT"], "-U", "sa", "-P", "Sample-1"],
                {**environment, "TDSVER": "7.4"}, stdin=source, stderr=subprocess.DEVNULL)
    return seconds, memory


def printing(programs, environment):
    print(f"### Printing {ROWS:,} rows of nine columns\n")
    peer, peer_memory = tsql(environment)
    rows = []
    for form in ["csv", "json", "table"]:
        seconds, memory = query(programs, environment, ["--format", form, SQL])
        rows.append([f"vantor-cli query --format {form}", f"{seconds:.2f} s", f"{seconds / peer:.2f}", f"{memory:.0f} MB"])
    rows.append(["FreeTDS tsql", f"{peer:.2f} s", "1.00", f"{peer_memory:.0f} MB"])
    table(["program", "processor time", "ratio", "memory"], rows)


def fetch(programs, environment, tedious):
    text, _, _, _ = measure([programs / "fetch-benchmark"], environment)
    bare = figure(text, "bare loop, processor time")

    def row(name, seconds, memory):
        return [name, f"{seconds:.2f} s", f"{seconds / bare:.2f}", f"{memory:.0f} MB"]

    rows = [
        [ "bare loop, nothing kept", f"{bare:.2f} s", "1.00", "" ],
        row("Vantor, rows kept", figure(text, "result set, processor time"), figure(text, "resident memory of the result set")),
    ]
    rows.append(row("FreeTDS tsql, printing", *tsql(environment)))
    _, seconds, _, memory = measure(["/usr/bin/python3", HERE / "peers/pytds_fetch.py"], environment)
    rows.append(row("python3-tds, fetchall", seconds, memory))
    if tedious:
        _, seconds, _, memory = measure(["node", "--max-old-space-size=8192", HERE / "peers/tedious_fetch.js"], environment)
        rows.append(row("npm tedious, rows kept", seconds, memory))
    print(f"### Fetching {ROWS:,} rows of nine columns\n")
    table(["reader", "processor time", "ratio", "memory"], rows)
    print(f"Delivered by db-lib: {figure(text, 'bytes that db-lib delivered'):.1f} MB, kept in "
          f"{figure(text, 'ratio of memory'):.2f} times as much; first 100 rows visible after "
          f"{figure(text, 'first 100 rows visible after'):.2f} % of the time.\n")


def many_results(programs, environment):
    """Scripts with thousands of results, each size and its double."""
    print("### Thousands of results in a terminal\n")
    rows = []
    with tempfile.TemporaryDirectory() as folder:
        script = pathlib.Path(folder) / "many.sql"
        for name, text in [("PRINT messages", lambda n: "PRINT 'x'\n" * n), ("results of one row", lambda n: "SELECT 1 AS a\n" * n),
                           ("batches of one row (GO)", lambda n: f"SELECT 1 AS a\nGO {n}\n")]:
            for count in [10_000, 20_000, 40_000]:
                script.write_text(text(count))
                seconds, memory = query(programs, environment, ["--file", str(script)])
                rows.append([f"{count:,} {name}", f"{seconds:.2f} s", f"{memory:.0f} MB"])
    table(["script", "processor time", "memory"], rows)


def bulk_insert(programs, environment, tedious):
    text, _, _, _ = measure([programs / "bulk-insert-benchmark"], environment)
    ours = figure(text, "bulk insert, rows per second")
    print(f"### Inserting {figure(text, 'bulk insert, rows'):,.0f} rows of four columns\n")
    rows = [["Vantor bulk insert", f"{figure(text, 'bulk insert, processor time'):.1f} µs", f"{ours:,.0f}"]]
    if tedious:
        text, seconds, _, _ = measure(
            ["node", HERE / "peers/tedious_insert.js"], {**environment, "VANTOR_BENCHMARK_BULK_ROWS": str(INSERTS)})
        rows.append([f"npm tedious, single INSERTs ({INSERTS:,} rows)", f"{seconds / INSERTS * 1e6:.1f} µs",
                     f"{float(text):,.0f}"])
    table(["writer", "client's processor time per row", "rows per second"], rows)


def freebcp(environment, count):
    """FreeTDS's bulk copy of the same rows; its processor seconds and rows per second. None if the server refuses it: the
    sample server has no bulk load. VANTOR_BENCHMARK_PORT names another server."""
    table_name = "tempdb.dbo.freebcp_rows"
    create = ["tsql", "-H", "127.0.0.1", "-p", environment["VANTOR_BENCHMARK_PORT"], "-U", "sa", "-P", "Sample-1"]
    statement = f"CREATE TABLE {table_name} (id int, name nvarchar(50), price money, day date)\nGO\n"
    subprocess.run(create, env={**environment, "TDSVER": "7.4"}, input=statement, text=True, stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL, check=False)
    with tempfile.TemporaryDirectory() as folder:
        source = pathlib.Path(folder) / "rows.csv"
        source.write_text("".join(f"{n},name of row {n},{n % 1000}.25,2026-11-21\n" for n in range(count)))
        begin = time.monotonic()
        usage = os.times().children_user + os.times().children_system
        done = subprocess.run(["freebcp", table_name, "in", str(source), "-S", f"127.0.0.1:{environment['VANTOR_BENCHMARK_PORT']}",
                               "-U", "sa", "-P", "Sample-1", "-c", "-t", ","], env={**environment, "TDSVER": "7.4"},
                              capture_output=True, text=True, check=False)
        seconds = time.monotonic() - begin
        processor = os.times().children_user + os.times().children_system - usage
    copied = re.search(r"(\d+) rows copied", done.stdout)
    return (processor, count / seconds) if done.returncode == 0 and copied and int(copied[1]) == count else None


def importing(programs, environment):
    text, _, _, _ = measure([programs / "import-benchmark"], environment)
    count = int(figure(text, "import, rows"))
    alone = figure(text, "bulk insert alone, processor time")
    ours = figure(text, "import, processor time")
    print(f"### Importing a CSV file of {count:,} rows and four columns\n")
    rows = [["Vantor import", f"{ours:.1f} µs", f"{ours / alone:.2f}", f"{figure(text, 'import, rows per second'):,.0f}"],
            ["bulkInsert alone", f"{alone:.1f} µs", "1.00", f"{figure(text, 'bulk insert alone, rows per second'):,.0f}"]]
    peer = freebcp(environment, count) if shutil.which("freebcp") else None
    if peer:
        rows.append(["freebcp", f"{peer[0] / count * 1e6:.1f} µs", f"{peer[0] / count * 1e6 / alone:.2f}", f"{peer[1]:,.0f}"])
    else:
        rows.append(["freebcp", "refused by this server", "", ""])
    table(["writer", "client's processor time per row", "ratio", "rows per second"], rows)


def lines(title, programs, program, environment):
    print(f"### {title}\n")
    text, _, _, _ = measure([programs / program], environment)
    table(["what", "measured"], [re.split(r"\s{2,}|(?<=only)\s+", line.split(", ", 1)[1], maxsplit=1) for line in text.splitlines()])


def catalog_queries(programs):
    """What vantor-cli tells of every query that only reads, on a database of 50,000 tables."""
    with SampleServer("--tables", "50000") as server:
        text, _, _, _ = measure(
            [programs / "vantor-cli", "catalog", "--all", "--server", f"127.0.0.1,{server.port}", "--user", "sa",
             "--database", "many"], {**os.environ, "VANTOR_PASSWORD": "Sample-1"})
    print("### Catalog queries on a database of 50,000 tables\n")
    table(["query", "rows", "time"],
          [list(match) for match in re.findall(r"^(\w+)\s+ok, (\d+) rows, (\d+ ms)$", text, re.MULTILINE)])


def exporting(programs, environment):
    """The rows of a table as INSERT statements, compared with the same rows as CSV."""
    print("### Exporting %s rows of a table\n" % f"{ROWS:,}")
    query(programs, environment,
          [f"SELECT * INTO tempdb.dbo.Exported FROM generate_rows({ROWS})", "--format", "csv"])
    common = ["--server", f"127.0.0.1,{environment['VANTOR_BENCHMARK_PORT']}", "--user", "sa", "--database", "tempdb"]
    secret = {**environment, "VANTOR_PASSWORD": "Sample-1"}
    figures = []
    with tempfile.TemporaryDirectory() as folder:
        for name, arguments in (
                ("vantor-cli query --format csv", ["query", *common, "--format", "csv", "SELECT * FROM dbo.Exported"]),
                ("vantor-cli export --data-only",
                 ["export", *common, "--tables", "dbo.Exported", "--data-only", "--to", folder + "/rows.sql"]),
                ("vantor-cli export --data-only, gzip",
                 ["export", *common, "--tables", "dbo.Exported", "--data-only", "--to", folder + "/rows.sql.gz"])):
            _, cpu, wall, memory = measure([programs / "vantor-cli", *arguments], secret)
            figures.append((name, cpu, wall, memory))
    table(["program", "processor time", "ratio", "time", "ratio", "memory"],
          [[name, f"{cpu:.2f} s", f"{cpu / figures[0][1]:.2f}", f"{wall:.2f} s", f"{wall / figures[0][2]:.2f}",
            f"{memory:.0f} MB"] for name, cpu, wall, memory in figures])


def main():
    programs = HERE.parent / "build/release/bin"
    os.environ["VANTOR_TEST_SERVER"] = str(programs / "vantor-sample-server")
    modules = HERE.parent / "build/release/Tests/SampleServer/tedious"
    tedious = bool(shutil.which("node")) and install(modules)
    with SampleServer() as server:
        environment = {**os.environ, "VANTOR_BENCHMARK_PORT": str(server.port), "VANTOR_BENCHMARK_SQL": SQL,
                       "NODE_PATH": str(modules / "node_modules")}
        fetch(programs, environment, tedious)
        printing(programs, environment)
        many_results(programs, environment)
        bulk_insert(programs, environment, tedious)
        importing(programs, environment)
        exporting(programs, environment)
        lines("Logging in", programs, "connect-benchmark", environment)
        lines("Listing 50,000 tables in the object tree", programs, "catalog-benchmark", environment)
        catalog_queries(programs)
        lines("Showing results in a grid", programs, "grid-benchmark", environment)
        lines("The desktop program", programs, "desktop-benchmark", environment)
        lines("Splitting scripts of 100 MB", programs, "split-benchmark", environment)
        lines("Completing names", programs, "completion-benchmark", environment)


if __name__ == "__main__":
    main()
