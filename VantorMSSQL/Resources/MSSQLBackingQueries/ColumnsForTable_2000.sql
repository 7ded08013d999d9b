-- type_name carries precision and scale. max_length (in bytes) is given only where a length belongs behind the type's
-- name, and a collation only where it is not the database's. A default is at most 4000 characters here, the first chunk
-- of its text. base_type is the name of the system type of a user's type.
SELECT
    c.name AS column_name,
    CASE
        WHEN t.name IN (N'decimal', N'numeric')
            THEN t.name + N'(' + CONVERT(nvarchar(10), c.xprec) + N',' + CONVERT(nvarchar(10), c.xscale) + N')'
        WHEN t.xusertype > 256 THEN QUOTENAME(t.name)
        ELSE t.name
    END AS type_name,
    CASE
        WHEN t.name IN (N'char', N'varchar', N'nchar', N'nvarchar', N'binary', N'varbinary')
            THEN CONVERT(int, c.length)
    END AS max_length,
    CONVERT(int, c.xprec) AS [precision],
    CONVERT(int, c.xscale) AS scale,
    CONVERT(int, c.isnullable) AS is_nullable,
    CASE WHEN EXISTS (
        SELECT 1
        FROM dbo.sysobjects AS pk
        INNER JOIN dbo.sysindexes AS i ON i.id = pk.parent_obj AND i.name = pk.name
        INNER JOIN dbo.sysindexkeys AS ik ON ik.id = i.id AND ik.indid = i.indid
        WHERE pk.parent_obj = c.id
            AND pk.xtype = 'PK'
            AND ik.colid = c.colid
    ) THEN 1 ELSE 0 END AS is_primary_key,
    d.text AS default_value,
    CONVERT(int, COLUMNPROPERTY(c.id, c.name, N'IsIdentity')) AS is_identity,
    CONVERT(int, c.iscomputed) AS is_computed,
    NULLIF(c.collation, CONVERT(nvarchar(128), DATABASEPROPERTYEX(DB_NAME(), N'Collation'))) AS own_collation,
    0 AS is_sparse,
    b.name AS base_type
FROM dbo.syscolumns AS c
INNER JOIN dbo.sysobjects AS o ON o.id = c.id
INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
INNER JOIN dbo.systypes AS t ON t.xusertype = c.xusertype
LEFT JOIN dbo.systypes AS b ON b.xusertype = c.xtype
LEFT JOIN dbo.sysobjects AS dc ON dc.id = c.cdefault AND dc.parent_obj = c.id
LEFT JOIN dbo.syscomments AS d ON d.id = dc.id AND d.colid = 1
WHERE u.name = N'{SCHEMA_NAME}'
    AND o.name = N'{TABLE_NAME}'
    AND o.xtype IN ('U', 'V')
ORDER BY c.colorder
