SELECT i.name AS index_name
FROM sys.indexes AS i
INNER JOIN sys.views AS t ON t.object_id = i.object_id
INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
WHERE s.name + N'.' + t.name = N'{TABLE_NAME}'
    AND i.index_id > 0
    AND i.is_hypothetical = 0
ORDER BY i.name
