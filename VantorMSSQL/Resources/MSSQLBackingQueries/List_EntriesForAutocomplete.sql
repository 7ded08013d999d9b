-- Tables and views. columnType carries precision and scale; dataSize (in bytes, -1 for max) is given only where a
-- length belongs behind the type's name. Azure has views of its own in sys that are not marked as shipped.
SELECT
    c.schema_name AS schemaName,
    c.table_name AS tableName,
    c.column_name AS columnName,
    CASE
        WHEN c.is_user_defined = 1 THEN QUOTENAME(c.type_schema) + N'.' + QUOTENAME(c.type_name)
        WHEN c.type_name IN (N'decimal', N'numeric')
            THEN c.type_name + N'(' + CONVERT(nvarchar(10), c.[precision])
                + N',' + CONVERT(nvarchar(10), c.scale) + N')'
        WHEN c.type_name IN (N'time', N'datetime2', N'datetimeoffset')
            THEN c.type_name + N'(' + CONVERT(nvarchar(10), c.scale) + N')'
        ELSE c.type_name
    END AS columnType,
    CASE
        WHEN c.is_user_defined = 0
            AND c.type_name IN (N'char', N'varchar', N'nchar', N'nvarchar', N'binary', N'varbinary')
            THEN CONVERT(int, c.max_length)
    END AS dataSize,
    CONVERT(int, c.[precision]) AS [precision],
    CONVERT(int, c.scale) AS scale,
    CONVERT(int, c.is_nullable) AS isNullable,
    CASE WHEN k.column_id IS NULL THEN 0 ELSE 1 END AS isPrimaryKey
FROM (
    SELECT
        s.name AS schema_name,
        o.name AS table_name,
        col.name AS column_name,
        col.object_id,
        col.column_id,
        col.max_length,
        col.[precision],
        col.scale,
        col.is_nullable,
        ISNULL(t.is_user_defined, 0) AS is_user_defined,
        ts.name AS type_schema,
        COALESCE(t.name, TYPE_NAME(col.system_type_id)) AS type_name
    FROM sys.columns AS col
    INNER JOIN sys.objects AS o ON o.object_id = col.object_id
    INNER JOIN sys.schemas AS s ON s.schema_id = o.schema_id
    LEFT JOIN sys.types AS t ON t.user_type_id = col.user_type_id
    LEFT JOIN sys.schemas AS ts ON ts.schema_id = t.schema_id
    WHERE o.type IN ('U', 'V')
        AND o.is_ms_shipped = 0
        AND s.name <> N'sys'
        AND NOT EXISTS (
            SELECT 1
            FROM sys.extended_properties AS p
            WHERE p.class = 1
                AND p.major_id = o.object_id
                AND p.minor_id = 0
                AND p.name = N'microsoft_database_tools_support'
        )
) AS c
LEFT JOIN (
    SELECT ic.object_id, ic.column_id
    FROM sys.indexes AS i
    INNER JOIN sys.index_columns AS ic ON ic.object_id = i.object_id AND ic.index_id = i.index_id
    WHERE i.is_primary_key = 1
        AND ic.key_ordinal > 0
) AS k ON k.object_id = c.object_id AND k.column_id = c.column_id
ORDER BY c.schema_name, c.table_name, c.object_id, c.column_id
