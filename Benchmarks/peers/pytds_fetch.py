"""Debian's python3-tds: fetches the rows of VANTOR_BENCHMARK_SQL with fetchall()."""

import os

import pytds

connection = pytds.connect("127.0.0.1", "master", "sa", "Sample-1", port=int(os.environ["VANTOR_BENCHMARK_PORT"]))
cursor = connection.cursor()
cursor.execute(os.environ["VANTOR_BENCHMARK_SQL"])
print(len(cursor.fetchall()))
