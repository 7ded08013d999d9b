SELECT
    c.name AS [Name],
    t.name AS [Type],
    CONVERT(int, c.length) AS [Length (bytes)],
    CONVERT(int, c.prec) AS [Precision],
    CONVERT(int, c.scale) AS [Scale],
    CASE c.isnullable WHEN 1 THEN N'yes' ELSE N'no' END AS [Nullable],
    c.collation AS [Collation],
    CASE COLUMNPROPERTY(c.id, c.name, N'IsIdentity') WHEN 1 THEN N'yes' END AS [Identity],
    m.text AS [Default],
    OBJECT_NAME(NULLIF(c.cdefault, 0)) AS [Default constraint]
FROM dbo.syscolumns AS c
INNER JOIN dbo.systypes AS t ON t.xusertype = c.xusertype
LEFT JOIN dbo.syscomments AS m ON m.id = c.cdefault AND m.colid = 1 AND c.cdefault <> 0
WHERE c.id = OBJECT_ID(QUOTENAME(N'{SCHEMA}') + N'.' + QUOTENAME(N'{OBJECT}'))
    AND c.name = N'{COLUMN}'
    AND c.number = 0
