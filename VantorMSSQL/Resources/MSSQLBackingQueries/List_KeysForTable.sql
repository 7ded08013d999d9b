-- Primary key first, then the unique constraints, then the foreign keys.
SELECT
    k.name AS key_name,
    CASE WHEN k.type = 'PK' THEN 1 ELSE 0 END AS is_primary_key
FROM sys.objects AS k
INNER JOIN sys.tables AS t ON t.object_id = k.parent_object_id
INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
WHERE s.name + N'.' + t.name = N'{TABLE_NAME}'
    AND k.type IN ('PK', 'UQ', 'F')
ORDER BY
    CASE k.type WHEN 'PK' THEN 0 WHEN 'UQ' THEN 1 ELSE 2 END,
    k.name
