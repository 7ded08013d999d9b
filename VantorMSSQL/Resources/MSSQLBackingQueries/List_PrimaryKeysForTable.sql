-- One row per key column, in key order. A name that the server made up is not given.
SELECT
    c.name AS column_name,
    CASE WHEN k.is_system_named = 0 THEN k.name END AS key_name,
    CASE WHEN i.type = 1 THEN 1 ELSE 0 END AS is_clustered,
    CONVERT(int, ic.is_descending_key) AS is_descending
FROM sys.indexes AS i
INNER JOIN sys.tables AS t ON t.object_id = i.object_id
INNER JOIN sys.index_columns AS ic ON ic.object_id = i.object_id AND ic.index_id = i.index_id
INNER JOIN sys.columns AS c ON c.object_id = ic.object_id AND c.column_id = ic.column_id
INNER JOIN sys.key_constraints AS k ON k.parent_object_id = i.object_id AND k.unique_index_id = i.index_id
WHERE t.object_id = OBJECT_ID(QUOTENAME(N'{SCHEMA}') + N'.' + QUOTENAME(N'{TABLE}'))
    AND i.is_primary_key = 1
    AND ic.key_ordinal > 0
ORDER BY ic.key_ordinal
