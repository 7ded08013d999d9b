// npm's tedious: fetches the rows of VANTOR_BENCHMARK_SQL and keeps them.
'use strict';

const { Connection, Request } = require('tedious');

const connection = new Connection({
  server: '127.0.0.1',
  authentication: { type: 'default', options: { userName: 'sa', password: 'Sample-1' } },
  options: { port: Number(process.env.VANTOR_BENCHMARK_PORT), encrypt: false, requestTimeout: 0 },
});
connection.connect((failure) => {
  if (failure) throw failure;
  const rows = [];
  const request = new Request(process.env.VANTOR_BENCHMARK_SQL, (error) => {
    if (error) throw error;
    console.log(rows.length);
    connection.close();
  });
  request.on('row', (columns) => rows.push(columns.map((column) => column.value)));
  connection.execSqlBatch(request);
});
