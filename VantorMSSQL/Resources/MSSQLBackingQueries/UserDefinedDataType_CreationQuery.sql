-- The caller writes "base_type(size) NULL". A type that takes no size ends the line behind its nullability with a
-- comment, which swallows the rest, so that the statement runs all the same. Table types and CLR types are no alias.
SELECT
    t.name AS type_name,
    s.name AS schema_name,
    t.user_type_id,
    CONVERT(int, t.system_type_id) AS system_type_id,
    CONVERT(int, t.max_length) AS max_length,
    CASE
        WHEN b.name IN (N'decimal', N'numeric')
            THEN CONVERT(nvarchar(10), t.[precision]) + N',' + CONVERT(nvarchar(10), t.scale)
        WHEN b.name IN (N'time', N'datetime2', N'datetimeoffset') THEN CONVERT(nvarchar(10), t.scale)
        WHEN b.name = N'float' THEN CONVERT(nvarchar(10), t.[precision])
        WHEN b.name NOT IN (N'char', N'varchar', N'nchar', N'nvarchar', N'binary', N'varbinary') THEN N'no size'
        WHEN t.max_length = -1 THEN N'max'
        WHEN b.name IN (N'nchar', N'nvarchar') THEN CONVERT(nvarchar(10), t.max_length / 2)
        ELSE CONVERT(nvarchar(10), t.max_length)
    END AS size,
    CONVERT(int, t.[precision]) AS [precision],
    CONVERT(int, t.scale) AS scale,
    t.collation_name,
    t.principal_id,
    CONVERT(int, t.is_nullable) AS is_nullable,
    CONVERT(int, t.is_user_defined) AS is_user_defined,
    CONVERT(int, t.is_assembly_type) AS is_assembly_type,
    t.default_object_id,
    t.rule_object_id,
    t.schema_id,
    0 AS is_table_type,
    CASE
        WHEN b.name IN (
            N'decimal', N'numeric', N'time', N'datetime2', N'datetimeoffset', N'float',
            N'char', N'varchar', N'nchar', N'nvarchar', N'binary', N'varbinary'
        ) THEN b.name
        ELSE b.name + CASE WHEN t.is_nullable = 1 THEN N' NULL' ELSE N' NOT NULL' END + N' -- ' + b.name
    END AS base_type
FROM sys.types AS t
INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
INNER JOIN sys.types AS b ON b.user_type_id = t.system_type_id
WHERE s.name = N'{SCHEMA}'
    AND t.name = N'{TYPE}'
    AND t.is_user_defined = 1
    AND t.is_assembly_type = 0
