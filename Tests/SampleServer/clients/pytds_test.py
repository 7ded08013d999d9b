"""Debian's python3-tds against the sample server, in every protocol version."""

import datetime
import decimal
import sys
import unittest
import uuid

from sample_server import SKIPPED, SampleServer

try:
    import pytds
    from pytds import tds_base
except ImportError:
    print("SKIPPED: pytds is not there (package python3-tds)")
    sys.exit(SKIPPED)

VERSIONS = [tds_base.TDS71, tds_base.TDS72, tds_base.TDS73A, tds_base.TDS73B, tds_base.TDS74]
KNOWS_NEW_DATES = [version for version in VERSIONS if version >= tds_base.TDS73A]

LONG = "ж" * 50_000
EVERYWHERE = [
    ("CAST(1 AS bit)", True),
    ("CAST(255 AS tinyint)", 255),
    ("CAST(-32768 AS smallint)", -32768),
    ("CAST(2147483647 AS int)", 2147483647),
    ("CAST(-9223372036854775808 AS bigint)", -(2**63)),
    ("CAST(-2.5 AS real)", -2.5),
    ("CAST(0.1 AS float)", 0.1),
    ("CAST(214748.3647 AS smallmoney)", decimal.Decimal("214748.3647")),
    ("CAST(-922337203685477.5808 AS money)", decimal.Decimal("-922337203685477.5808")),
    ("CAST('99999999999999999999999999999999999999' AS decimal(38,0))", decimal.Decimal("9" * 38)),
    ("CAST(-12345.6789 AS decimal(9,4))", decimal.Decimal("-12345.6789")),
    ("CAST('1900-01-01' AS smalldatetime)", datetime.datetime(1900, 1, 1)),
    ("CAST('9999-12-31 23:59:59.997' AS datetime)", datetime.datetime(9999, 12, 31, 23, 59, 59, 997000)),
    ("CAST(N'é€' AS char(4))", "é€  "),
    ("CAST(N'é€' AS varchar(10))", "é€"),
    ("CAST('' AS varchar(10))", ""),
    ("CAST(N'é€' AS text)", "é€"),
    ("CAST(N'ж😀' AS nchar(5))", "ж😀  "),
    ("CAST(N'ж😀' AS nvarchar(10))", "ж😀"),
    ("CAST(N'ж😀' AS ntext)", "ж😀"),
    ("CAST(N'é€' AS varchar(max))", "é€"),
    ("CAST(REPLICATE(CAST(N'ж' AS nvarchar(max)), 50000) AS nvarchar(max))", LONG),
    ("CAST(0x00FF AS binary(3))", b"\0\xff\0"),
    ("CAST(0x00FF AS varbinary(10))", b"\0\xff"),
    ("CAST(0x00FF AS varbinary(max))", b"\0\xff"),
    ("CAST(0x00FF AS image)", b"\0\xff"),
    ("CAST('6F9619FF-8B86-D011-B42D-00C04FC964FF' AS uniqueidentifier)",
     uuid.UUID("6F9619FF-8B86-D011-B42D-00C04FC964FF")),
    ("CAST(N'<a>ж</a>' AS xml)", "<a>ж</a>"),
    ("CAST('/1/' AS hierarchyid)", b"\x58"),
    ("CAST(CAST(7 AS int) AS sql_variant)", 7),
    ("CAST(CAST(1.50 AS decimal(5,2)) AS sql_variant)", decimal.Decimal("1.50")),
    ("CAST(CAST(N'é€' AS varchar(5)) AS sql_variant)", "é€"),
    ("CAST(CAST(N'ж' AS nvarchar(5)) AS sql_variant)", "ж"),
    ("CAST(CAST(0x0102 AS varbinary(5)) AS sql_variant)", b"\1\2"),
]
NEW_DATES = [
    ("CAST('0001-01-01' AS date)", datetime.date(1, 1, 1), "0001-01-01"),
    ("CAST('23:59:59.1234567' AS time(7))", datetime.time(23, 59, 59, 123456), "23:59:59.1234567"),
    ("CAST('23:59:59' AS time(0))", datetime.time(23, 59, 59), "23:59:59"),
    ("CAST('9999-12-31 23:59:59.120' AS datetime2(3))",
     datetime.datetime(9999, 12, 31, 23, 59, 59, 120000), "9999-12-31 23:59:59.120"),
    ("CAST('2024-03-01 05:29:59 +05:30' AS datetimeoffset(0))",
     datetime.datetime(2024, 3, 1, 5, 29, 59, tzinfo=datetime.timezone(datetime.timedelta(minutes=330))),
     "2024-03-01 05:29:59 +05:30"),
    ("CAST(CAST('2024-02-29' AS date) AS sql_variant)", datetime.date(2024, 2, 29), "2024-02-29"),
]
TYPES = """bit tinyint smallint int bigint real float smallmoney money decimal(38,5) smalldatetime datetime date time(3)
datetime2(3) datetimeoffset(3) char(5) varchar(5) varchar(max) text nchar(5) nvarchar(5) nvarchar(max) ntext binary(5)
varbinary(5) varbinary(max) image uniqueidentifier xml hierarchyid sql_variant""".split()
PARAMETERS = [True, 255, -(2**31), 2**62, 0.1, decimal.Decimal("-12345.6789"), "ж😀", LONG, pytds.Binary(b"\0\xff"),
              datetime.date(2024, 2, 29), datetime.datetime(2024, 2, 29, 1, 2, 3, 456000),
              uuid.UUID("6F9619FF-8B86-D011-B42D-00C04FC964FF"), None]


class PythonTds(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.server = cls.enterClassContext(SampleServer())

    def connect(self, version=tds_base.TDS74, **options):
        return pytds.connect("127.0.0.1", port=self.server.port, user=self.server.user, database="master",
                             **{"password": self.server.password, "tds_version": version, "autocommit": True,
                                "login_timeout": 30, "timeout": 60, **options})

    def value(self, connection, sql, *parameters):
        with connection.cursor() as cursor:
            cursor.execute(sql, *parameters)
            return cursor.fetchone()[0]

    def test_reads_every_type_in_every_version(self):
        for version in VERSIONS:
            with self.connect(version) as connection:
                for expression, expected in EVERYWHERE:
                    with self.subTest(version=hex(version), expression=expression):
                        self.assertEqual(self.value(connection, f"SELECT {expression}"), expected)

    def test_reads_new_dates_as_dates_or_as_text(self):
        for version in VERSIONS:
            with self.connect(version) as connection:
                for expression, date, text in NEW_DATES:
                    with self.subTest(version=hex(version), expression=expression):
                        expected = date if version in KNOWS_NEW_DATES else text
                        self.assertEqual(self.value(connection, f"SELECT {expression}"), expected)

    def test_reads_the_null_of_every_type_and_rows_of_many_nulls(self):
        columns = ", ".join(f"CAST(NULL AS {name})" for name in TYPES)
        for version in VERSIONS:
            with self.connect(version) as connection, connection.cursor() as cursor:
                for name in TYPES:
                    with self.subTest(version=hex(version), type=name):
                        self.assertIsNone(self.value(connection, f"SELECT CAST(NULL AS {name})"))
                cursor.execute(f"SELECT 1, {columns}, 2")
                self.assertEqual(cursor.fetchall(), [(1, *[None] * len(TYPES), 2)])

    def test_passes_parameters(self):
        with self.connect() as connection:
            for parameter in PARAMETERS:
                with self.subTest(parameter=str(parameter)[:40]):
                    self.assertEqual(self.value(connection, "SELECT %s", (parameter,)), parameter)

    def test_calls_a_procedure_with_output_and_status(self):
        for version in VERSIONS:
            with self.connect(version) as connection, connection.cursor() as cursor:
                cursor.execute("USE shop")
                order = pytds.output(param_type=int)
                total = pytds.output(param_type=decimal.Decimal)
                given = cursor.callproc("sales.PlaceOrder", {"@CustomerId": 1, "@ProductId": 2, "@Quantity": 2,
                                                             "@OrderId": order, "@Total": total})
                self.assertEqual(cursor.get_proc_return_status(), 0)
                values = dict(given) if isinstance(given, dict) else given
                self.assertGreater(values["@OrderId"], 1010)
                self.assertEqual(values["@Total"], 23)

    def test_reads_every_packet_size(self):
        for size in [512, 4096, 32767]:
            with self.connect(blocksize=size) as connection:
                sql = "SELECT REPLICATE(CAST(N'ж' AS nvarchar(max)), 50000)"
                self.assertEqual(self.value(connection, sql), LONG)

    def test_raises_errors_with_their_numbers(self):
        with self.connect() as connection:
            for sql, number in [("SELECT * FROM nowhere", 208), ("SELECT 1 +", 102), ("SELECT nothing", 207)]:
                with self.assertRaises(pytds.Error) as raised:
                    self.value(connection, sql)
                self.assertEqual(raised.exception.msg_no, number)
            self.assertEqual(self.value(connection, "SELECT 1"), 1)

    def test_is_refused_with_a_wrong_password(self):
        with self.assertRaises(pytds.Error) as raised:
            self.connect(password="wrong")
        self.assertEqual(raised.exception.msg_no, 18456)

    def test_cancels_a_wait_and_goes_on(self):
        with self.connect(timeout=1) as connection:
            with self.assertRaises(pytds.TimeoutError):
                self.value(connection, "WAITFOR DELAY '00:10:00'")
            self.assertEqual(self.value(connection, "SELECT 1"), 1)

    def test_commits_and_rolls_back(self):
        with self.connect(autocommit=False) as connection, connection.cursor() as cursor:
            cursor.execute("CREATE TABLE pytds_transactions (a int)")
            connection.commit()
            cursor.execute("INSERT INTO pytds_transactions VALUES (1)")
            connection.commit()
            cursor.execute("INSERT INTO pytds_transactions VALUES (2)")
            connection.rollback()
            cursor.execute("SELECT a FROM pytds_transactions")
            self.assertEqual(cursor.fetchall(), [(1,)])


if __name__ == "__main__":
    unittest.main()
