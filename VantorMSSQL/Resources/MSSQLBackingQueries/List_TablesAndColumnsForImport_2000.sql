-- Columns that take no value from a row (computed, timestamp) are left out. base_type is the system type of a user's
-- type.
SELECT
    c.schema_name,
    c.table_name,
    c.column_name,
    CASE
        WHEN c.xusertype > 256 THEN QUOTENAME(c.type_name)
        WHEN c.xusertype = c.xtype THEN c.base_type
        ELSE c.type_name
    END AS data_type,
    c.is_nullable,
    c.code_page,
    c.has_default,
    c.base_type
FROM (
    SELECT
        u.name AS schema_name,
        o.name AS table_name,
        c.name AS column_name,
        c.colorder,
        c.xtype,
        c.xusertype,
        t.name AS type_name,
        CASE
            WHEN b.name IN (N'decimal', N'numeric')
                THEN b.name + N'(' + CONVERT(nvarchar(10), c.xprec) + N',' + CONVERT(nvarchar(10), c.xscale) + N')'
            WHEN b.name IN (N'nchar', N'nvarchar')
                THEN b.name + N'(' + CONVERT(nvarchar(10), c.length / 2) + N')'
            WHEN b.name IN (N'char', N'varchar', N'binary', N'varbinary')
                THEN b.name + N'(' + CONVERT(nvarchar(10), c.length) + N')'
            ELSE b.name
        END AS base_type,
        CONVERT(bit, c.isnullable) AS is_nullable,
        CASE WHEN c.xtype IN (35, 167, 175)
            THEN CONVERT(int, COLLATIONPROPERTY(c.collation, N'CodePage')) END AS code_page,
        CONVERT(bit, CASE WHEN c.cdefault <> 0 OR COLUMNPROPERTY(o.id, c.name, N'IsIdentity') = 1 THEN 1 ELSE 0 END)
            AS has_default
    FROM dbo.syscolumns AS c
    INNER JOIN dbo.sysobjects AS o ON o.id = c.id
    INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
    INNER JOIN dbo.systypes AS t ON t.xusertype = c.xusertype
    LEFT JOIN dbo.systypes AS b ON b.xusertype = c.xtype
    WHERE o.xtype = 'U'
        AND OBJECTPROPERTY(o.id, N'IsMSShipped') = 0
        AND o.name <> N'dtproperties'
        AND c.iscomputed = 0
        AND c.xtype <> 189
) AS c
ORDER BY c.schema_name, c.table_name, c.colorder
