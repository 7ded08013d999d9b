-- The parameters of procedures and functions, and the columns that table functions return. The type is written as in
-- a DECLARE; lengths of nchar and nvarchar are kept in bytes.
SELECT
    m.schema_name AS schemaName,
    m.object_name AS objectName,
    m.member_name AS memberName,
    CASE
        WHEN m.is_user_defined = 1 THEN QUOTENAME(m.type_schema) + N'.' + QUOTENAME(m.type_name)
        WHEN m.type_name IN (N'decimal', N'numeric')
            THEN m.type_name + N'(' + CONVERT(nvarchar(10), m.[precision])
                + N',' + CONVERT(nvarchar(10), m.scale) + N')'
        WHEN m.type_name IN (N'time', N'datetime2', N'datetimeoffset')
            THEN m.type_name + N'(' + CONVERT(nvarchar(10), m.scale) + N')'
        WHEN m.type_name NOT IN (N'char', N'varchar', N'nchar', N'nvarchar', N'binary', N'varbinary') THEN m.type_name
        WHEN m.max_length = -1 THEN m.type_name + N'(max)'
        WHEN m.type_name IN (N'nchar', N'nvarchar')
            THEN m.type_name + N'(' + CONVERT(nvarchar(10), m.max_length / 2) + N')'
        ELSE m.type_name + N'(' + CONVERT(nvarchar(10), m.max_length) + N')'
    END AS memberType,
    m.is_parameter AS isParameter
FROM (
    SELECT
        s.name AS schema_name,
        o.name AS object_name,
        p.name AS member_name,
        p.parameter_id AS position,
        p.max_length,
        p.[precision],
        p.scale,
        1 AS is_parameter,
        ISNULL(t.is_user_defined, 0) AS is_user_defined,
        ts.name AS type_schema,
        COALESCE(t.name, TYPE_NAME(p.system_type_id)) AS type_name
    FROM sys.parameters AS p
    INNER JOIN sys.objects AS o ON o.object_id = p.object_id
    INNER JOIN sys.schemas AS s ON s.schema_id = o.schema_id
    LEFT JOIN sys.types AS t ON t.user_type_id = p.user_type_id
    LEFT JOIN sys.schemas AS ts ON ts.schema_id = t.schema_id
    WHERE p.parameter_id > 0
        AND o.is_ms_shipped = 0
    UNION ALL
    SELECT
        s.name AS schema_name,
        o.name AS object_name,
        c.name AS member_name,
        c.column_id AS position,
        c.max_length,
        c.[precision],
        c.scale,
        0 AS is_parameter,
        ISNULL(t.is_user_defined, 0) AS is_user_defined,
        ts.name AS type_schema,
        COALESCE(t.name, TYPE_NAME(c.system_type_id)) AS type_name
    FROM sys.columns AS c
    INNER JOIN sys.objects AS o ON o.object_id = c.object_id
    INNER JOIN sys.schemas AS s ON s.schema_id = o.schema_id
    LEFT JOIN sys.types AS t ON t.user_type_id = c.user_type_id
    LEFT JOIN sys.schemas AS ts ON ts.schema_id = t.schema_id
    WHERE o.type IN ('IF', 'TF', 'FT')
        AND o.is_ms_shipped = 0
) AS m
ORDER BY m.schema_name, m.object_name, m.is_parameter DESC, m.position
