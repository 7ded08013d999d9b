-- Tables and views. columnType carries precision and scale; dataSize (in bytes) is given only where a length belongs
-- behind the type's name.
SELECT
    u.name AS schemaName,
    o.name AS tableName,
    c.name AS columnName,
    CASE
        WHEN t.xusertype > 256 THEN QUOTENAME(t.name)
        WHEN t.name IN (N'decimal', N'numeric')
            THEN t.name + N'(' + CONVERT(nvarchar(10), c.xprec) + N',' + CONVERT(nvarchar(10), c.xscale) + N')'
        ELSE t.name
    END AS columnType,
    CASE
        WHEN t.name IN (N'char', N'varchar', N'nchar', N'nvarchar', N'binary', N'varbinary')
            THEN CONVERT(int, c.length)
    END AS dataSize,
    CONVERT(int, c.xprec) AS [precision],
    CONVERT(int, c.xscale) AS scale,
    CONVERT(int, c.isnullable) AS isNullable,
    CASE WHEN k.colid IS NULL THEN 0 ELSE 1 END AS isPrimaryKey
FROM dbo.syscolumns AS c
INNER JOIN dbo.sysobjects AS o ON o.id = c.id
INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
INNER JOIN dbo.systypes AS t ON t.xusertype = c.xusertype
LEFT JOIN (
    SELECT ik.id, ik.colid
    FROM dbo.sysobjects AS pk
    INNER JOIN dbo.sysindexes AS i ON i.id = pk.parent_obj AND i.name = pk.name
    INNER JOIN dbo.sysindexkeys AS ik ON ik.id = i.id AND ik.indid = i.indid
    WHERE pk.xtype = 'PK'
) AS k ON k.id = c.id AND k.colid = c.colid
WHERE o.xtype IN ('U', 'V')
    AND OBJECTPROPERTY(o.id, N'IsMSShipped') = 0
    AND o.name <> N'dtproperties'
ORDER BY u.name, o.name, c.colorder
