"""FreeTDS's own tsql against the sample server, in every protocol version."""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest

from sample_server import SKIPPED, SampleServer, make_certificates

VERSIONS = ["7.1", "7.2", "7.3", "7.4"]

# An expression and what tsql prints for it.
EVERYWHERE = [
    ("CAST(1 AS bit)", "1"),
    ("CAST(255 AS tinyint)", "255"),
    ("CAST(-32768 AS smallint)", "-32768"),
    ("CAST(-2147483648 AS int)", "-2147483648"),
    ("CAST(-9223372036854775808 AS bigint)", "-9223372036854775808"),
    ("CAST(1.5 AS real)", "1.5"),
    ("CAST(-1.7976931348623157e308 AS float)", "-1.7976931348623157e+308"),
    ("CAST(-214748.3648 AS smallmoney)", "-214748.3648"),
    ("CAST(922337203685477.5807 AS money)", "922337203685477.5807"),
    ("CAST('-99999999999999999999999999999999999999' AS decimal(38,0))", "-" + "9" * 38),
    ("CAST('0.00000000000000000000000000000000000001' AS numeric(38,38))", "0." + "0" * 37 + "1"),
    ("CAST('2079-06-06 23:59' AS smalldatetime)", "Jun  6 2079 11:59PM"),
    ("CAST('1753-01-01' AS datetime)", "Jan  1 1753 12:00AM"),
    ("CAST('ab' AS char(4))", "ab  "),
    ("CAST(N'é€' AS varchar(10))", "é€"),
    ("CAST(N'é€' AS text)", "é€"),
    ("CAST(N'ж😀' AS nchar(5))", "ж😀  "),
    ("CAST(N'ж😀' AS nvarchar(10))", "ж😀"),
    ("CAST(N'ж😀' AS ntext)", "ж😀"),
    ("CAST(N'é€' AS varchar(max))", "é€"),
    ("CAST(N'ж😀' AS nvarchar(max))", "ж😀"),
    ("CAST(0x00FF AS binary(3))", "00ff00"),
    ("CAST(0x00FF AS varbinary(10))", "00ff"),
    ("CAST(0x00FF AS varbinary(max))", "00ff"),
    ("CAST(0x00FF AS image)", "00ff"),
    ("CAST('6F9619FF-8B86-D011-B42D-00C04FC964FF' AS uniqueidentifier)", "6F9619FF-8B86-D011-B42D-00C04FC964FF"),
    ("CAST(N'<a>ж</a>' AS xml)", "<a>ж</a>"),
]
# The types that came with 7.3; clients before get them as text.
NEW_DATES = [
    ("CAST('0001-01-01' AS date)", "0001-01-01"),
    ("CAST('23:59:59.9999999' AS time(7))", "23:59:59.9999999"),
    ("CAST('23:59:59' AS time(0))", "23:59:59"),
    ("CAST('9999-12-31 23:59:59.9999999' AS datetime2(7))", "9999-12-31 23:59:59.9999999"),
    ("CAST('2024-03-01 05:29:59.123 +05:30' AS datetimeoffset(3))", "2024-03-01 05:29:59.123 +05:30"),
]
TYPES = """bit tinyint smallint int bigint real float smallmoney money decimal(38,5) smalldatetime datetime date time(3)
datetime2(3) datetimeoffset(3) char(5) varchar(5) varchar(max) text nchar(5) nvarchar(5) nvarchar(max) ntext binary(5)
varbinary(5) varbinary(max) image uniqueidentifier xml sql_variant""".split()


def tsql(server, sql, version, *arguments, password=None, conf=os.devnull):
    """What tsql prints for a batch, and its errors."""
    done = subprocess.run(
        ["tsql", "-H", "127.0.0.1", "-p", str(server.port), "-U", server.user,
         "-P", password or server.password, "-o", "q", *arguments],
        input=sql + "\nGO\n",
        env={**os.environ, "TDSVER": version, "FREETDSCONF": conf, "LC_ALL": "C.UTF-8", "LANG": "C.UTF-8"},
        capture_output=True,
        text=True,
        timeout=60,
    )
    return done.stdout, done.stderr


def value(server, expression, version, conf=os.devnull):
    """The one value that a SELECT of the expression prints, after the column's name and before the count."""
    out, err = tsql(server, f"SELECT {expression} AS answer", version, conf=conf)
    lines = out.split("\n")
    if "answer" not in out:
        return f"{out}{err}"
    return lines[next(i for i, line in enumerate(lines) if line.endswith("answer")) + 1]


class Tsql(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.server = cls.enterClassContext(SampleServer())

    def test_reads_every_type_in_every_version(self):
        for version in VERSIONS:
            for expression, expected in EVERYWHERE:
                with self.subTest(version=version, expression=expression):
                    self.assertEqual(value(self.server, expression, version), expected)

    def test_reads_new_dates_as_text_before_they_were_known(self):
        for version in ["7.1", "7.2"]:
            for expression, expected in NEW_DATES:
                with self.subTest(version=version, expression=expression):
                    self.assertEqual(value(self.server, expression, version), expected)

    def test_reads_the_null_of_every_type(self):
        for version in VERSIONS:
            for name in TYPES:
                with self.subTest(version=version, type=name):
                    self.assertEqual(value(self.server, f"CAST(NULL AS {name})", version), "NULL")

    def test_reads_rows_of_many_nulls(self):
        columns = ", ".join(f"CAST(NULL AS {name})" for name in TYPES)
        for version in VERSIONS:
            out, _ = tsql(self.server, f"SELECT 1, {columns}, 2", version)
            self.assertIn("\t".join(["1", *["NULL"] * len(TYPES), "2"]), out)

    def test_shows_errors_with_number_severity_state_and_line(self):
        for version in VERSIONS:
            _, err = tsql(self.server, "SELECT 1\nSELECT * FROM nowhere", version)
            self.assertIn("Msg 208 (severity 16, state 1) from SAMPLE Line 2", err)
            self.assertIn("Invalid object name 'nowhere'.", err)

    def test_shows_what_is_printed(self):
        for version in VERSIONS:
            _, err = tsql(self.server, "PRINT N'gedruckt: ж'", version)
            self.assertIn("gedruckt: ж", err)

    def test_reads_compute_rows_between_the_rows_they_sum_up(self):
        sql = """CREATE TABLE #sums (a int, b money)
INSERT #sums VALUES (1, 2.5), (1, 3.5), (2, 4)
SELECT a, b FROM #sums ORDER BY a COMPUTE SUM(b), COUNT(b) BY a COMPUTE SUM(b)"""
        for version in VERSIONS:
            out, _ = tsql(self.server, sql, version)
            self.assertIn("1\t2.5000\n1\t3.5000\n6.0000\t2\n2\t4.0000\n4.0000\t1\n10.0000\n", out)

    def test_is_refused_with_a_wrong_password(self):
        _, err = tsql(self.server, "SELECT 1", "7.4", password="wrong")
        self.assertIn("Msg 18456 (severity 14, state 1)", err)
        self.assertIn("Login failed for user 'sa'.", err)

    def test_is_refused_an_unknown_database(self):
        _, err = tsql(self.server, "SELECT 1", "7.4", "-D", "nowhere")
        self.assertIn("Msg 4060 (severity 11, state 1)", err)

    def test_logs_in_with_ntlm(self):
        for user in ["DOMAIN\\sa", "OTHER\\SA"]:
            self.server.user = user
            try:
                self.assertEqual(value(self.server, "1", "7.4"), "1")
                _, err = tsql(self.server, "SELECT 1", "7.4", password="wrong")
                self.assertIn(f"Login failed for user '{user}'.", err)
            finally:
                del self.server.user

    def test_finds_the_version_that_is_offered_by_trying_from_the_newest(self):
        for offered in VERSIONS:
            with SampleServer("--tds", offered) as server:
                accepted = [version for version in VERSIONS if value(server, "1", version) == "1"]
                self.assertEqual(accepted, VERSIONS[: VERSIONS.index(offered) + 1])

    def test_connects_with_the_version_left_open(self):
        self.assertEqual(value(self.server, "1", "auto"), "1")


class EncryptedTsql(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = cls.enterClassContext(tempfile.TemporaryDirectory())
        make_certificates(cls.folder)
        cls.files = ["--cert", f"{cls.folder}/server.pem", "--key", f"{cls.folder}/server.key"]
        cls.server = cls.enterClassContext(SampleServer("--tls", "require", *cls.files))

    def conf(self, *lines):
        path = f"{self.folder}/freetds.conf"
        with open(path, "w", encoding="utf-8") as file:
            file.write("\n".join(["[global]", *lines, ""]))
        return path

    def test_logs_in_with_every_version(self):
        for version in VERSIONS:
            self.assertEqual(value(self.server, "N'ж'", version), "ж")

    def test_trusts_the_certificate_of_the_servers_authority(self):
        conf = self.conf("encryption = require", f"ca file = {self.folder}/authority.pem",
                         "check certificate hostname = yes")
        for version in VERSIONS:
            self.assertEqual(value(self.server, "1", version, conf), "1")

    def test_does_not_trust_other_certificates(self):
        _, err = tsql(self.server, "SELECT 1", "7.4", conf=self.conf("encryption = require", "ca file = system"))
        self.assertIn("Adaptive Server connection failed", err)

    def test_is_refused_without_encryption(self):
        _, err = tsql(self.server, "SELECT 1", "7.4", conf=self.conf("encryption = off"))
        self.assertIn("Adaptive Server connection failed", err)

    def test_reads_long_results(self):
        conf = self.conf("encryption = require", "text size = 2147483647")
        out, _ = tsql(self.server, "SELECT * FROM generate_rows(50000)", "7.4", conf=conf)
        self.assertEqual(len(out.splitlines()), 50001)
        # tsql shows no more than so much of a value; all of it crosses the wire.
        self.assertIn("x" * 4000, value(self.server, "REPLICATE(CAST('x' AS varchar(max)), 5000000)", "7.4", conf))

    def test_encrypts_the_login_alone_when_nobody_wants_more(self):
        with SampleServer("--tls", "request", *self.files) as server:
            for version in VERSIONS:
                self.assertEqual(value(server, "1", version), "1")
                self.assertEqual(value(server, "1", version, self.conf("encryption = off")), "1")

    def test_logs_in_with_ntlm(self):
        for mode in ["require", "request"]:
            with SampleServer("--tls", mode, *self.files) as server:
                server.user = "DOMAIN\\sa"
                self.assertEqual(value(server, "1", "7.4"), "1")


if __name__ == "__main__":
    if not shutil.which("tsql"):
        print("SKIPPED: tsql is not there (package freetds-bin)")
        sys.exit(SKIPPED)
    unittest.main()
