-- The views of INFORMATION_SCHEMA, which are in master, one row for each of their columns, with its type.
SELECT
    u.name AS schemaName,
    o.name AS objectName,
    o.xtype AS objectType,
    c.name AS columnName,
    CASE
        WHEN t.name IN (N'nchar', N'nvarchar') THEN t.name + N'(' + CONVERT(nvarchar(10), c.length / 2) + N')'
        WHEN t.name IN (N'char', N'varchar', N'binary', N'varbinary')
            THEN t.name + N'(' + CONVERT(nvarchar(10), c.length) + N')'
        ELSE t.name
    END AS columnType,
    CONVERT(int, c.isnullable) AS isNullable
FROM master.dbo.sysobjects AS o
INNER JOIN master.dbo.sysusers AS u ON u.uid = o.uid
INNER JOIN master.dbo.syscolumns AS c ON c.id = o.id
INNER JOIN master.dbo.systypes AS t ON t.xusertype = c.xusertype
WHERE u.name = N'INFORMATION_SCHEMA'
    AND o.xtype = 'V'
ORDER BY u.name, o.name, c.colid
