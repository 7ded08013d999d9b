-- Every foreign key, for the order in which rows are inserted.
SELECT
    s.name AS schema_name,
    t.name AS table_name,
    f.name AS key_name,
    rs.name AS referenced_schema_name,
    rt.name AS referenced_table_name,
    CONVERT(int, f.is_disabled) AS is_disabled,
    CONVERT(int, f.is_not_trusted) AS is_not_trusted
FROM sys.foreign_keys AS f
INNER JOIN sys.tables AS t ON t.object_id = f.parent_object_id
INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
INNER JOIN sys.tables AS rt ON rt.object_id = f.referenced_object_id
INNER JOIN sys.schemas AS rs ON rs.schema_id = rt.schema_id
ORDER BY s.name, t.name, f.name
