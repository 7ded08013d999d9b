SELECT i.name AS index_name
FROM sys.indexes AS i
INNER JOIN sys.tables AS t ON t.object_id = i.object_id
WHERE t.object_id = OBJECT_ID(QUOTENAME(N'{SCHEMA}') + N'.' + QUOTENAME(N'{TABLE}'))
    AND i.index_id > 0
    AND i.is_hypothetical = 0
ORDER BY i.name
