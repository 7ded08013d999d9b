-- Primary key first, then the unique constraints, then the foreign keys.
SELECT
    k.name AS key_name,
    CASE WHEN k.xtype = 'PK' THEN 1 ELSE 0 END AS is_primary_key
FROM dbo.sysobjects AS k
INNER JOIN dbo.sysobjects AS o ON o.id = k.parent_obj
WHERE o.id = OBJECT_ID(QUOTENAME(N'{SCHEMA}') + N'.' + QUOTENAME(N'{TABLE}'))
    AND o.xtype = 'U'
    AND k.xtype IN ('PK', 'UQ', 'F')
ORDER BY
    CASE k.xtype WHEN 'PK' THEN 0 WHEN 'UQ' THEN 1 ELSE 2 END,
    k.name
