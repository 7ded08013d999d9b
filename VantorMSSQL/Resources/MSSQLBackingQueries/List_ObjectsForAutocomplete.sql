-- What the tables' own query does not tell: views, procedures, functions, synonyms, sequences and types, by the type
-- codes of sys.objects; "TY" is a type of a user.
SELECT
    s.name AS schemaName,
    o.name AS objectName,
    o.type AS objectType
FROM sys.objects AS o
INNER JOIN sys.schemas AS s ON s.schema_id = o.schema_id
WHERE o.type IN ('V', 'P', 'PC', 'FN', 'FS', 'IF', 'TF', 'FT', 'SN', 'SO')
    AND o.is_ms_shipped = 0
    AND s.name <> N'sys'
UNION ALL
SELECT
    s.name AS schemaName,
    t.name AS objectName,
    'TY' AS objectType
FROM sys.types AS t
INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
WHERE t.is_user_defined = 1
ORDER BY schemaName, objectName
