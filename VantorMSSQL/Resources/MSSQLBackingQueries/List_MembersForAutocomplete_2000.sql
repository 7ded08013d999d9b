-- The parameters of procedures and functions, and the columns that table functions return: parameters begin with @.
SELECT
    u.name AS schemaName,
    o.name AS objectName,
    m.name AS memberName,
    CASE
        WHEN t.xusertype > 256 THEN QUOTENAME(t.name)
        WHEN t.name IN (N'decimal', N'numeric')
            THEN t.name + N'(' + CONVERT(nvarchar(10), m.xprec) + N',' + CONVERT(nvarchar(10), m.xscale) + N')'
        WHEN t.name IN (N'nchar', N'nvarchar')
            THEN t.name + N'(' + CONVERT(nvarchar(10), m.length / 2) + N')'
        WHEN t.name IN (N'char', N'varchar', N'binary', N'varbinary')
            THEN t.name + N'(' + CONVERT(nvarchar(10), m.length) + N')'
        ELSE t.name
    END AS memberType,
    CASE WHEN m.name LIKE N'@%' THEN 1 ELSE 0 END AS isParameter
FROM dbo.syscolumns AS m
INNER JOIN dbo.sysobjects AS o ON o.id = m.id
INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
INNER JOIN dbo.systypes AS t ON t.xusertype = m.xusertype
WHERE o.xtype IN ('P', 'FN', 'IF', 'TF')
    AND OBJECTPROPERTY(o.id, N'IsMSShipped') = 0
    AND m.name <> N''
    AND m.number <= 1
ORDER BY u.name, o.name, isParameter DESC, m.colid
