// npm's tedious against the sample server on the port VANTOR_SAMPLE_PORT, in every protocol version; encrypted when
// VANTOR_SAMPLE_AUTHORITY names a certificate to trust.
'use strict';

const assert = require('node:assert/strict');
const fs = require('node:fs');
const test = require('node:test');
const { Connection, Request, TYPES } = require('tedious');

const versions = ['7_1', '7_2', '7_3_A', '7_3_B', '7_4'];
const knowsNewDates = (version) => version >= '7_3';
const utc = (text) => new Date(`${text}Z`);
const long = 'ж'.repeat(50000);

// tedious gives numbers of more than 53 bits as text (bigint) or rounded (money, decimal).
const everywhere = [
  ['CAST(1 AS bit)', true],
  ['CAST(255 AS tinyint)', 255],
  ['CAST(-32768 AS smallint)', -32768],
  ['CAST(-2147483648 AS int)', -2147483648],
  ['CAST(9223372036854775807 AS bigint)', '9223372036854775807'],
  ['CAST(-2.5 AS real)', -2.5],
  ['CAST(0.1 AS float)', 0.1],
  ['CAST(-214748.3648 AS smallmoney)', -214748.3648],
  ['CAST(12345678.9012 AS money)', 12345678.9012],
  ['CAST(-12345.6789 AS decimal(9,4))', -12345.6789],
  ["CAST('99999999999999999999999999999999999999' AS decimal(38,0))", 1e38],
  ["CAST('2079-06-06 23:59' AS smalldatetime)", utc('2079-06-06T23:59:00')],
  ["CAST('1753-01-01' AS datetime)", utc('1753-01-01T00:00:00')],
  ["CAST(N'é€' AS char(4))", 'é€  '],
  ["CAST(N'é€' AS varchar(10))", 'é€'],
  ["CAST(N'é€' AS text)", 'é€'],
  ["CAST(N'ж😀' AS nchar(5))", 'ж😀  '],
  ["CAST(N'ж😀' AS nvarchar(10))", 'ж😀'],
  ["CAST(N'ж😀' AS ntext)", 'ж😀'],
  ["CAST(N'é€' AS varchar(max))", 'é€'],
  ["REPLICATE(CAST(N'ж' AS nvarchar(max)), 50000)", long],
  ['CAST(0x00FF AS binary(3))', Buffer.from([0, 255, 0])],
  ['CAST(0x00FF AS varbinary(10))', Buffer.from([0, 255])],
  ['CAST(0x00FF AS varbinary(max))', Buffer.from([0, 255])],
  ['CAST(0x00FF AS image)', Buffer.from([0, 255])],
  ["CAST('6F9619FF-8B86-D011-B42D-00C04FC964FF' AS uniqueidentifier)", '6F9619FF-8B86-D011-B42D-00C04FC964FF'],
  ["CAST(N'<a>ж</a>' AS xml)", '<a>ж</a>'],
  ["CAST('/1/' AS hierarchyid)", Buffer.from([0x58])],
  ['CAST(CAST(7 AS int) AS sql_variant)', 7],
  ["CAST(CAST(N'ж' AS nvarchar(5)) AS sql_variant)", 'ж'],
  // ASCII only: tedious takes length and collation of a variant's varchar in the wrong order.
  ["CAST(CAST('abc' AS varchar(5)) AS sql_variant)", 'abc'],
];

const newDates = [
  ["CAST('0001-01-01' AS date)", utc('0001-01-01T00:00:00'), '0001-01-01'],
  ["CAST('23:59:59.125' AS time(3))", utc('1970-01-01T23:59:59.125'), '23:59:59.125'],
  ["CAST('9999-12-31 23:59:59.120' AS datetime2(3))", utc('9999-12-31T23:59:59.120'), '9999-12-31 23:59:59.120'],
  ["CAST('2024-03-01 05:29:59 +05:30' AS datetimeoffset(0))", utc('2024-02-29T23:59:59'), '2024-03-01 05:29:59 +05:30'],
];

const types = `bit tinyint smallint int bigint real float smallmoney money decimal(38,5) smalldatetime datetime date
  time(3) datetime2(3) datetimeoffset(3) char(5) varchar(5) varchar(max) text nchar(5) nvarchar(5) nvarchar(max) ntext
  binary(5) varbinary(5) varbinary(max) image uniqueidentifier xml hierarchyid sql_variant`.split(/\s+/);

const parameters = [
  [TYPES.Bit, true], [TYPES.TinyInt, 255], [TYPES.SmallInt, -32768], [TYPES.Int, -2147483648],
  [TYPES.BigInt, '-9223372036854775808'], [TYPES.Real, -2.5], [TYPES.Float, 0.1], [TYPES.Money, 12345678.9012],
  [TYPES.Decimal, -12345.6789, { precision: 9, scale: 4 }], [TYPES.DateTime, utc('2024-02-29T01:02:03.457')],
  [TYPES.Date, utc('2024-02-29T00:00:00')], [TYPES.DateTime2, utc('2024-02-29T01:02:03.456')],
  [TYPES.VarChar, 'é€'], [TYPES.NVarChar, 'ж😀'], [TYPES.NVarChar, long], [TYPES.VarBinary, Buffer.from([0, 255])],
  [TYPES.UniqueIdentifier, '6F9619FF-8B86-D011-B42D-00C04FC964FF'], [TYPES.NVarChar, null], [TYPES.Int, null],
];

const authority = process.env.VANTOR_SAMPLE_AUTHORITY;
const encryption = authority
  ? { encrypt: true, cryptoCredentialsDetails: { ca: fs.readFileSync(authority) } }
  : { encrypt: false };

function connect(version = '7_4', login = {}) {
  const connection = new Connection({
    server: '127.0.0.1',
    authentication: { type: 'default', options: { userName: 'sa', password: 'Sample-1', ...login } },
    options: { port: Number(process.env.VANTOR_SAMPLE_PORT), ...encryption, tdsVersion: version, requestTimeout: 60000 },
  });
  return new Promise((resolve, reject) => {
    connection.connect((error) => (error ? reject(error) : resolve(connection)));
  });
}

/** Runs one request and gives its rows as arrays of values, once it is over. */
function run(connection, sql, { prepare = () => {}, how = 'execSqlBatch' } = {}) {
  return new Promise((resolve, reject) => {
    const rows = [];
    const request = new Request(sql, (error) => (error ? reject(error) : resolve(rows)));
    request.on('row', (columns) => rows.push(columns.map((column) => column.value)));
    prepare(request);
    connection[how](request);
  });
}

async function withConnection(version, work) {
  const connection = await connect(version);
  try {
    await work(connection);
  } finally {
    connection.close();
  }
}

for (const version of versions) {
  test(`reads every type in ${version}`, () => withConnection(version, async (connection) => {
    for (const [expression, expected] of everywhere) {
      assert.deepEqual(await run(connection, `SELECT ${expression}`), [[expected]], expression);
    }
    for (const [expression, date, text] of newDates) {
      const [[value]] = await run(connection, `SELECT ${expression}`);
      // deepEqual would compare the fractions below a millisecond, which tedious hangs on its dates.
      assert.equal(+value || value, knowsNewDates(version) ? +date : text, expression);
    }
  }));

  test(`reads NULLs in ${version}`, () => withConnection(version, async (connection) => {
    for (const type of types) {
      assert.deepEqual(await run(connection, `SELECT CAST(NULL AS ${type})`), [[null]], type);
    }
    const columns = types.map((type) => `CAST(NULL AS ${type})`).join(', ');
    assert.deepEqual(await run(connection, `SELECT 1, ${columns}, 2`), [[1, ...types.map(() => null), 2]]);
  }));
}

test('passes parameters to sp_executesql', () => withConnection('7_4', async (connection) => {
  for (const [type, value, options] of parameters) {
    const prepare = (request) => request.addParameter('p', type, value, options);
    const [[answer]] = await run(connection, 'SELECT @p', { prepare, how: 'execSql' });
    assert.deepEqual(answer instanceof Date ? +answer : answer, value instanceof Date ? +value : value, type.name);
  }
}));

test('gets output parameters back', () => withConnection('7_4', async (connection) => {
  const returned = {};
  const prepare = (request) => {
    request.addParameter('input', TYPES.Int, 20);
    request.addOutputParameter('output', TYPES.Int);
    request.on('returnValue', (name, value) => { returned[name] = value; });
  };
  await run(connection, 'SET @output = @input + 1', { prepare, how: 'execSql' });
  assert.deepEqual(returned, { output: 21 });
}));

test('is refused with a wrong password', async () => {
  await assert.rejects(connect('7_4', { password: 'wrong' }), { code: 'ELOGIN' });
});

test('gets errors with number, state, class and line', () => withConnection('7_4', async (connection) => {
  const expected = { number: 208, state: 1, class: 16, lineNumber: 2, message: "Invalid object name 'nowhere'." };
  await assert.rejects(run(connection, 'SELECT 1\nSELECT * FROM nowhere'), expected);
  assert.deepEqual(await run(connection, 'SELECT 1'), [[1]]);
}));

test('cancels a wait and goes on', () => withConnection('7_4', async (connection) => {
  const waiting = run(connection, "WAITFOR DELAY '00:10:00'");
  setTimeout(() => connection.cancel(), 100);
  await assert.rejects(waiting, { code: 'ECANCEL' });
  assert.deepEqual(await run(connection, 'SELECT 1'), [[1]]);
}));

test('commits and rolls back', () => withConnection('7_4', async (connection) => {
  const call = (name) => new Promise((resolve, reject) => {
    connection[name]((error) => (error ? reject(error) : resolve()));
  });
  await run(connection, 'CREATE TABLE tedious_transactions (a int)');
  await call('beginTransaction');
  await run(connection, 'INSERT INTO tedious_transactions VALUES (1)');
  await call('commitTransaction');
  await call('beginTransaction');
  await run(connection, 'INSERT INTO tedious_transactions VALUES (2)');
  await call('rollbackTransaction');
  assert.deepEqual(await run(connection, 'SELECT a FROM tedious_transactions'), [[1]]);
}));
