-- Columns that take no value from a row (computed, timestamp, GENERATED ALWAYS) are left out. base_type is the system
-- type of a user's type; it is NULL for types of the CLR.
SELECT
    c.schema_name,
    c.table_name,
    c.column_name,
    CASE
        WHEN c.is_user_defined = 1 THEN QUOTENAME(c.type_schema) + N'.' + QUOTENAME(c.type_name)
        WHEN c.user_type_id <> c.system_type_id AND c.type_name IS NOT NULL THEN c.type_name
        ELSE c.base_type
    END AS data_type,
    c.is_nullable,
    CASE WHEN c.system_type_id IN (35, 167, 175)
        THEN CONVERT(int, COLLATIONPROPERTY(c.collation_name, N'CodePage')) END AS code_page,
    c.has_default,
    c.base_type
FROM (
    SELECT
        s.name AS schema_name,
        o.name AS table_name,
        col.name AS column_name,
        col.column_id,
        col.is_nullable,
        col.system_type_id,
        col.user_type_id,
        col.collation_name,
        CONVERT(bit, CASE WHEN col.default_object_id <> 0 OR col.is_identity = 1 THEN 1 ELSE 0 END) AS has_default,
        ISNULL(t.is_user_defined, 0) AS is_user_defined,
        ts.name AS type_schema,
        t.name AS type_name,
        CASE
            WHEN b.name IN (N'decimal', N'numeric')
                THEN b.name + N'(' + CONVERT(nvarchar(10), col.[precision])
                    + N',' + CONVERT(nvarchar(10), col.scale) + N')'
            WHEN b.name IN (N'time', N'datetime2', N'datetimeoffset')
                THEN b.name + N'(' + CONVERT(nvarchar(10), col.scale) + N')'
            WHEN b.name NOT IN (N'char', N'varchar', N'nchar', N'nvarchar', N'binary', N'varbinary') THEN b.name
            WHEN col.max_length = -1 THEN b.name + N'(max)'
            WHEN b.name IN (N'nchar', N'nvarchar')
                THEN b.name + N'(' + CONVERT(nvarchar(10), col.max_length / 2) + N')'
            ELSE b.name + N'(' + CONVERT(nvarchar(10), col.max_length) + N')'
        END AS base_type
    FROM sys.columns AS col
    INNER JOIN sys.tables AS o ON o.object_id = col.object_id
    INNER JOIN sys.schemas AS s ON s.schema_id = o.schema_id
    LEFT JOIN sys.types AS t ON t.user_type_id = col.user_type_id
    LEFT JOIN sys.types AS b ON b.user_type_id = col.system_type_id
    LEFT JOIN sys.schemas AS ts ON ts.schema_id = t.schema_id
    WHERE o.is_ms_shipped = 0
        AND col.is_computed = 0
        AND col.system_type_id <> 189
        AND ISNULL(COLUMNPROPERTY(col.object_id, col.name, N'GeneratedAlwaysType'), 0) = 0
        AND NOT EXISTS (
            SELECT 1
            FROM sys.extended_properties AS p
            WHERE p.class = 1
                AND p.major_id = o.object_id
                AND p.minor_id = 0
                AND p.name = N'microsoft_database_tools_support'
        )
) AS c
ORDER BY c.schema_name, c.table_name, c.column_id
