-- One row per column pair. The actions are 0 none, 1 cascade, 2 set null, 3 set default.
SELECT
    f.name AS keyName,
    rs.name AS referencedTableSchema,
    rt.name AS referencedTableName,
    CONVERT(int, f.update_referential_action) AS update_referential_action,
    CONVERT(int, f.delete_referential_action) AS delete_referential_action,
    lc.name AS localColumnName,
    rc.name AS referencedColumnName,
    CONVERT(int, f.is_disabled) AS is_disabled,
    CONVERT(int, f.is_not_trusted) AS is_not_trusted,
    CONVERT(int, f.is_not_for_replication) AS is_not_for_replication
FROM sys.foreign_keys AS f
INNER JOIN sys.tables AS t ON t.object_id = f.parent_object_id
INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
INNER JOIN sys.foreign_key_columns AS fc ON fc.constraint_object_id = f.object_id
INNER JOIN sys.columns AS lc ON lc.object_id = fc.parent_object_id AND lc.column_id = fc.parent_column_id
LEFT JOIN sys.objects AS rt ON rt.object_id = f.referenced_object_id
LEFT JOIN sys.schemas AS rs ON rs.schema_id = rt.schema_id
LEFT JOIN sys.columns AS rc ON rc.object_id = fc.referenced_object_id AND rc.column_id = fc.referenced_column_id
WHERE s.name = N'{TABLE_SCHEMA}'
    AND t.name = N'{TABLE_NAME}'
ORDER BY f.name, fc.constraint_column_id
