-- The object that a name means: in this schema, or without a schema in the default schema or else in dbo. The type is
-- the code of sys.objects; "TY" is a type of a user. A trigger has its table beside it, a synonym its object, and a
-- system object its definition.
SELECT
    s.name AS schema_name,
    o.name AS object_name,
    o.type AS object_type,
    ps.name AS parent_schema_name,
    p.name AS parent_name,
    y.base_object_name AS base_name,
    CASE WHEN o.is_ms_shipped = 1 THEN OBJECT_DEFINITION(o.object_id) END AS definition
FROM sys.all_objects AS o
INNER JOIN sys.schemas AS s ON s.schema_id = o.schema_id
LEFT JOIN sys.objects AS p ON p.object_id = o.parent_object_id
LEFT JOIN sys.schemas AS ps ON ps.schema_id = p.schema_id
LEFT JOIN sys.synonyms AS y ON y.object_id = o.object_id
WHERE o.object_id = OBJECT_ID(
    CASE WHEN N'{SCHEMA}' = N'' THEN N'' ELSE QUOTENAME(N'{SCHEMA}') + N'.' END + QUOTENAME(N'{OBJECT}')
)
UNION ALL
SELECT
    s.name AS schema_name,
    t.name AS object_name,
    'TY' AS object_type,
    NULL AS parent_schema_name,
    NULL AS parent_name,
    NULL AS base_name,
    NULL AS definition
FROM sys.types AS t
INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
WHERE t.is_user_defined = 1
    AND t.user_type_id = TYPE_ID(
        CASE WHEN N'{SCHEMA}' = N'' THEN N'' ELSE QUOTENAME(N'{SCHEMA}') + N'.' END + QUOTENAME(N'{OBJECT}')
    )
