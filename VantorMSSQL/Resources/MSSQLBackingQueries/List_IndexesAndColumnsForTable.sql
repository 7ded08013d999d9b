-- One row per key column, in key order. The primary key's index is called PRIMARY: it changes with the key only. Unique
-- constraints are left out: their indexes cannot be dropped.
SELECT
    i.index_id AS IndexId,
    CASE WHEN i.is_primary_key = 1 THEN N'PRIMARY' ELSE i.name END AS indexName,
    CONVERT(int, i.is_unique) AS isUnique,
    CASE WHEN i.type = 2 THEN 1 ELSE 0 END AS isNonClustered,
    c.name AS columnName
FROM sys.indexes AS i
INNER JOIN sys.tables AS t ON t.object_id = i.object_id
INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
INNER JOIN sys.index_columns AS ic ON ic.object_id = i.object_id AND ic.index_id = i.index_id
INNER JOIN sys.columns AS c ON c.object_id = ic.object_id AND c.column_id = ic.column_id
WHERE s.name = N'{TABLE_SCHEMA}'
    AND t.name = N'{TABLE_NAME}'
    AND i.type IN (1, 2)
    AND i.is_hypothetical = 0
    AND i.is_unique_constraint = 0
    AND ic.key_ordinal > 0
ORDER BY i.index_id, ic.key_ordinal
