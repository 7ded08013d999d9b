SELECT c.name AS column_name
FROM sys.indexes AS i
INNER JOIN sys.tables AS t ON t.object_id = i.object_id
INNER JOIN sys.index_columns AS ic ON ic.object_id = i.object_id AND ic.index_id = i.index_id
INNER JOIN sys.columns AS c ON c.object_id = ic.object_id AND c.column_id = ic.column_id
WHERE t.object_id = OBJECT_ID(QUOTENAME(N'{SCHEMA}') + N'.' + QUOTENAME(N'{TABLE}'))
    AND i.is_primary_key = 1
    AND ic.key_ordinal > 0
ORDER BY ic.key_ordinal
