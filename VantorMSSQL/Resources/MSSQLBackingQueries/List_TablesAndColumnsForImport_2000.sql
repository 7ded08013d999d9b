-- Columns that take no value from a row (computed, timestamp) are left out.
SELECT
    u.name AS schema_name,
    o.name AS table_name,
    c.name AS column_name,
    CASE
        WHEN t.xusertype > 256 THEN QUOTENAME(t.name)
        WHEN t.name IN (N'decimal', N'numeric')
            THEN t.name + N'(' + CONVERT(nvarchar(10), c.xprec) + N',' + CONVERT(nvarchar(10), c.xscale) + N')'
        WHEN t.name IN (N'nchar', N'nvarchar')
            THEN t.name + N'(' + CONVERT(nvarchar(10), c.length / 2) + N')'
        WHEN t.name IN (N'char', N'varchar', N'binary', N'varbinary')
            THEN t.name + N'(' + CONVERT(nvarchar(10), c.length) + N')'
        ELSE t.name
    END AS data_type,
    CONVERT(bit, c.isnullable) AS is_nullable,
    CASE WHEN c.xtype IN (35, 167, 175)
        THEN CONVERT(int, COLLATIONPROPERTY(c.collation, N'CodePage')) END AS code_page,
    CONVERT(bit, CASE WHEN c.cdefault <> 0 OR COLUMNPROPERTY(o.id, c.name, N'IsIdentity') = 1 THEN 1 ELSE 0 END)
        AS has_default
FROM dbo.syscolumns AS c
INNER JOIN dbo.sysobjects AS o ON o.id = c.id
INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
INNER JOIN dbo.systypes AS t ON t.xusertype = c.xusertype
WHERE o.xtype = 'U'
    AND OBJECTPROPERTY(o.id, N'IsMSShipped') = 0
    AND o.name <> N'dtproperties'
    AND c.iscomputed = 0
    AND c.xtype <> 189
ORDER BY u.name, o.name, c.colorder
