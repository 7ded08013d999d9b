-- type_name is ready for a statement: it carries precision and scale, and a user's type carries its schema.
-- max_length (in bytes, -1 for max) is given only where a length belongs behind the type's name, and a collation only
-- where it is not the database's. base_type is the name of the system type of a user's type.
SELECT
    c.name AS column_name,
    CASE
        WHEN c.is_user_defined = 1 THEN QUOTENAME(c.type_schema) + N'.' + QUOTENAME(c.type_name)
        WHEN c.type_name IN (N'decimal', N'numeric')
            THEN c.type_name + N'(' + CONVERT(nvarchar(10), c.[precision])
                + N',' + CONVERT(nvarchar(10), c.scale) + N')'
        WHEN c.type_name IN (N'time', N'datetime2', N'datetimeoffset')
            THEN c.type_name + N'(' + CONVERT(nvarchar(10), c.scale) + N')'
        ELSE c.type_name
    END AS type_name,
    CASE
        WHEN c.is_user_defined = 0
            AND c.type_name IN (N'char', N'varchar', N'nchar', N'nvarchar', N'binary', N'varbinary')
            THEN CONVERT(int, c.max_length)
    END AS max_length,
    CONVERT(int, c.[precision]) AS [precision],
    CONVERT(int, c.scale) AS scale,
    CONVERT(int, c.is_nullable) AS is_nullable,
    CASE WHEN EXISTS (
        SELECT 1
        FROM sys.indexes AS i
        INNER JOIN sys.index_columns AS ic ON ic.object_id = i.object_id AND ic.index_id = i.index_id
        WHERE i.object_id = c.object_id
            AND i.is_primary_key = 1
            AND ic.column_id = c.column_id
            AND ic.key_ordinal > 0
    ) THEN 1 ELSE 0 END AS is_primary_key,
    d.definition AS default_value,
    CONVERT(int, c.is_identity) AS is_identity,
    CONVERT(int, c.is_computed) AS is_computed,
    NULLIF(c.collation_name, CONVERT(nvarchar(128), DATABASEPROPERTYEX(DB_NAME(), N'Collation'))) AS own_collation,
    CONVERT(int, ISNULL(COLUMNPROPERTY(c.object_id, c.name, N'IsSparse'), 0)) AS is_sparse,
    COALESCE(c.system_type, c.type_name) AS base_type
FROM (
    SELECT
        col.object_id,
        col.column_id,
        col.name,
        col.max_length,
        col.[precision],
        col.scale,
        col.is_nullable,
        col.is_identity,
        col.is_computed,
        col.collation_name COLLATE DATABASE_DEFAULT AS collation_name,
        ISNULL(t.is_user_defined, 0) AS is_user_defined,
        ts.name AS type_schema,
        b.name AS system_type,
        COALESCE(t.name, b.name) AS type_name
    FROM sys.columns AS col
    INNER JOIN sys.objects AS o ON o.object_id = col.object_id
    INNER JOIN sys.schemas AS s ON s.schema_id = o.schema_id
    LEFT JOIN sys.types AS t ON t.user_type_id = col.user_type_id
    LEFT JOIN sys.types AS b ON b.user_type_id = col.system_type_id
    LEFT JOIN sys.schemas AS ts ON ts.schema_id = t.schema_id
    WHERE s.name = N'{SCHEMA_NAME}'
        AND o.name = N'{TABLE_NAME}'
        AND o.type IN ('U', 'V', 'IF')
) AS c
LEFT JOIN sys.default_constraints AS d
    ON d.parent_object_id = c.object_id
    AND d.parent_column_id = c.column_id
ORDER BY c.column_id
