SELECT
    i.name AS [Name],
    CASE i.indid WHEN 1 THEN N'clustered' ELSE N'nonclustered' END AS [Kind],
    CASE INDEXPROPERTY(i.id, i.name, N'IsUnique') WHEN 1 THEN N'yes' ELSE N'no' END AS [Unique],
    NULLIF(CONVERT(int, i.OrigFillFactor), 0) AS [Fill factor (%)],
    CONVERT(bigint, i.rows) AS [Rows],
    CONVERT(bigint, i.used) * 8 AS [Used (KB)]
FROM dbo.sysindexes AS i
WHERE i.id = OBJECT_ID(QUOTENAME(N'{SCHEMA}') + N'.' + QUOTENAME(N'{OBJECT}'))
    AND i.name = N'{INDEX}'
