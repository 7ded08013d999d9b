// npm's tedious: inserts VANTOR_BENCHMARK_BULK_ROWS rows, one INSERT statement with parameters each, in one transaction.
'use strict';

const { Connection, Request, TYPES } = require('tedious');

const count = Number(process.env.VANTOR_BENCHMARK_BULK_ROWS);
const connection = new Connection({
  server: '127.0.0.1',
  authentication: { type: 'default', options: { userName: 'sa', password: 'Sample-1' } },
  options: { port: Number(process.env.VANTOR_BENCHMARK_PORT), encrypt: false, requestTimeout: 0 },
});

function batch(sql) {
  return new Promise((resolve, reject) => {
    connection.execSqlBatch(new Request(sql, (error) => (error ? reject(error) : resolve())));
  });
}

function insert(id) {
  return new Promise((resolve, reject) => {
    const request = new Request('INSERT INTO #bulk (id, name, price, day) VALUES (@id, @name, @price, @day)', (error) =>
      error ? reject(error) : resolve(),
    );
    request.addParameter('id', TYPES.Int, id);
    request.addParameter('name', TYPES.NVarChar, `name of row ${id}`);
    request.addParameter('price', TYPES.Money, (id % 1000) + 0.25);
    request.addParameter('day', TYPES.Date, new Date('2026-11-21T00:00:00Z'));
    connection.execSql(request);
  });
}

connection.connect(async (failure) => {
  if (failure) throw failure;
  await batch('CREATE TABLE #bulk (id int, name nvarchar(50), price money, day date)');
  const begin = process.hrtime.bigint();
  await batch('BEGIN TRANSACTION');
  for (let id = 0; id < count; ++id) await insert(id);
  await batch('COMMIT');
  const seconds = Number(process.hrtime.bigint() - begin) / 1e9;
  console.log(Math.round(count / seconds));
  connection.close();
});
