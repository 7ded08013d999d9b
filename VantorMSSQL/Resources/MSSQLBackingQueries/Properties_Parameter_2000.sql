SELECT
    c.name AS [Name],
    t.name AS [Type],
    CONVERT(int, c.colid) AS [Position],
    CONVERT(int, c.length) AS [Length (bytes)],
    CONVERT(int, c.prec) AS [Precision],
    CONVERT(int, c.scale) AS [Scale],
    CASE c.isoutparam WHEN 1 THEN N'yes' ELSE N'no' END AS [Output]
FROM dbo.syscolumns AS c
INNER JOIN dbo.systypes AS t ON t.xusertype = c.xusertype
WHERE c.id = OBJECT_ID(QUOTENAME(N'{SCHEMA}') + N'.' + QUOTENAME(N'{OBJECT}'))
    AND c.name = N'{PARAMETER}'
    AND c.number = 1
