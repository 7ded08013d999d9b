-- The type is written so that a DECLARE takes it: with its length, or precision and scale, and a user's type with its
-- schema. Lengths of nchar and nvarchar are kept in bytes. A table type's system type is 243.
SELECT
    p.name AS parameter_name,
    CASE
        WHEN p.is_user_defined = 1 THEN QUOTENAME(p.type_schema) + N'.' + QUOTENAME(p.type_name)
        WHEN p.type_name IN (N'decimal', N'numeric')
            THEN p.type_name + N'(' + CONVERT(nvarchar(10), p.[precision])
                + N',' + CONVERT(nvarchar(10), p.scale) + N')'
        WHEN p.type_name IN (N'time', N'datetime2', N'datetimeoffset')
            THEN p.type_name + N'(' + CONVERT(nvarchar(10), p.scale) + N')'
        WHEN p.type_name NOT IN (N'char', N'varchar', N'nchar', N'nvarchar', N'binary', N'varbinary') THEN p.type_name
        WHEN p.max_length = -1 THEN p.type_name + N'(max)'
        WHEN p.type_name IN (N'nchar', N'nvarchar')
            THEN p.type_name + N'(' + CONVERT(nvarchar(10), p.max_length / 2) + N')'
        ELSE p.type_name + N'(' + CONVERT(nvarchar(10), p.max_length) + N')'
    END AS parameter_type,
    p.parameter_id,
    p.is_output,
    p.base_type
FROM (
    SELECT
        par.name,
        par.parameter_id,
        par.max_length,
        par.[precision],
        par.scale,
        par.is_output,
        ISNULL(t.is_user_defined, 0) AS is_user_defined,
        ts.name AS type_schema,
        COALESCE(t.name, TYPE_NAME(par.system_type_id)) AS type_name,
        CASE
            WHEN t.system_type_id = 243 THEN N'table type'
            ELSE COALESCE(TYPE_NAME(par.system_type_id), t.name)
        END AS base_type
    FROM sys.parameters AS par
    INNER JOIN sys.objects AS o ON o.object_id = par.object_id
    INNER JOIN sys.schemas AS s ON s.schema_id = o.schema_id
    LEFT JOIN sys.types AS t ON t.user_type_id = par.user_type_id
    LEFT JOIN sys.schemas AS ts ON ts.schema_id = t.schema_id
    WHERE s.name = N'{SCHEMA}'
        AND o.name = N'{PROCEDURE_NAME}'
        AND o.type IN ('P', 'PC', 'IF')
        AND par.parameter_id > 0
) AS p
ORDER BY p.parameter_id
