-- Every foreign key, one row per column pair.
SELECT
    s.name AS schemaName,
    t.name AS tableName,
    lc.name AS columnName,
    rs.name AS referencedSchemaName,
    rt.name AS referencedTableName,
    rc.name AS referencedColumnName,
    f.name AS keyName
FROM sys.foreign_keys AS f
INNER JOIN sys.tables AS t ON t.object_id = f.parent_object_id
INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
INNER JOIN sys.tables AS rt ON rt.object_id = f.referenced_object_id
INNER JOIN sys.schemas AS rs ON rs.schema_id = rt.schema_id
INNER JOIN sys.foreign_key_columns AS fc ON fc.constraint_object_id = f.object_id
INNER JOIN sys.columns AS lc ON lc.object_id = fc.parent_object_id AND lc.column_id = fc.parent_column_id
INNER JOIN sys.columns AS rc ON rc.object_id = fc.referenced_object_id AND rc.column_id = fc.referenced_column_id
ORDER BY s.name, t.name, f.name, fc.constraint_column_id
