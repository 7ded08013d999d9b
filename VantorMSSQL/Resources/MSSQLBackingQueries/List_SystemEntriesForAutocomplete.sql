-- The views, procedures and functions of the schemas sys and INFORMATION_SCHEMA, one row for each of their columns,
-- with its type; one row with NULL for an object without columns.
SELECT
    s.name AS schemaName,
    o.name AS objectName,
    o.type AS objectType,
    c.name AS columnName,
    CASE
        WHEN t.name IN (N'decimal', N'numeric')
            THEN t.name + N'(' + CONVERT(nvarchar(10), c.[precision]) + N',' + CONVERT(nvarchar(10), c.scale) + N')'
        WHEN t.name IN (N'time', N'datetime2', N'datetimeoffset')
            THEN t.name + N'(' + CONVERT(nvarchar(10), c.scale) + N')'
        WHEN t.name NOT IN (N'char', N'varchar', N'nchar', N'nvarchar', N'binary', N'varbinary') THEN t.name
        WHEN c.max_length = -1 THEN t.name + N'(max)'
        WHEN t.name IN (N'nchar', N'nvarchar') THEN t.name + N'(' + CONVERT(nvarchar(10), c.max_length / 2) + N')'
        ELSE t.name + N'(' + CONVERT(nvarchar(10), c.max_length) + N')'
    END AS columnType,
    CONVERT(int, c.is_nullable) AS isNullable
FROM sys.all_objects AS o
INNER JOIN sys.schemas AS s ON s.schema_id = o.schema_id
LEFT JOIN sys.all_columns AS c ON c.object_id = o.object_id
LEFT JOIN sys.types AS t ON t.user_type_id = c.user_type_id
WHERE s.name IN (N'sys', N'INFORMATION_SCHEMA')
    AND o.type IN ('V', 'P', 'PC', 'X', 'FN', 'FS', 'IF', 'TF', 'FT')
ORDER BY s.name, o.name, c.column_id
