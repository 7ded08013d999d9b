-- The caller writes "base_type(size) NULL". A type that takes no size ends the line behind its nullability with a
-- comment, which swallows the rest.
SELECT
    t.name AS type_name,
    u.name AS schema_name,
    CONVERT(int, t.xusertype) AS user_type_id,
    CONVERT(int, t.xtype) AS system_type_id,
    CONVERT(int, t.length) AS max_length,
    CASE
        WHEN b.name IN (N'decimal', N'numeric')
            THEN CONVERT(nvarchar(10), t.xprec) + N',' + CONVERT(nvarchar(10), t.xscale)
        WHEN b.name = N'float' THEN CONVERT(nvarchar(10), t.xprec)
        WHEN b.name IN (N'nchar', N'nvarchar') THEN CONVERT(nvarchar(10), t.length / 2)
        WHEN b.name IN (N'char', N'varchar', N'binary', N'varbinary') THEN CONVERT(nvarchar(10), t.length)
        ELSE N'no size'
    END AS size,
    CONVERT(int, t.xprec) AS [precision],
    CONVERT(int, t.xscale) AS scale,
    t.collation AS collation_name,
    CONVERT(int, t.uid) AS principal_id,
    CONVERT(int, t.allownulls) AS is_nullable,
    1 AS is_user_defined,
    0 AS is_assembly_type,
    t.tdefault AS default_object_id,
    t.domain AS rule_object_id,
    CONVERT(int, t.uid) AS schema_id,
    0 AS is_table_type,
    CASE
        WHEN b.name IN (
            N'decimal', N'numeric', N'float', N'char', N'varchar', N'nchar', N'nvarchar', N'binary', N'varbinary'
        ) THEN b.name
        ELSE b.name + CASE WHEN t.allownulls = 1 THEN N' NULL' ELSE N' NOT NULL' END + N' -- ' + b.name
    END AS base_type
FROM dbo.systypes AS t
INNER JOIN dbo.sysusers AS u ON u.uid = t.uid
INNER JOIN dbo.systypes AS b ON b.xusertype = t.xtype
WHERE u.name = N'{SCHEMA}'
    AND t.name = N'{TYPE}'
    AND t.xusertype > 256
