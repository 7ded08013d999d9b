-- Primary key first, then the unique constraints, then the foreign keys.
SELECT
    k.name AS key_name,
    CASE WHEN k.type = 'PK' THEN 1 ELSE 0 END AS is_primary_key
FROM sys.objects AS k
INNER JOIN sys.tables AS t ON t.object_id = k.parent_object_id
WHERE t.object_id = OBJECT_ID(QUOTENAME(N'{SCHEMA}') + N'.' + QUOTENAME(N'{TABLE}'))
    AND k.type IN ('PK', 'UQ', 'F')
ORDER BY
    CASE k.type WHEN 'PK' THEN 0 WHEN 'UQ' THEN 1 ELSE 2 END,
    k.name
