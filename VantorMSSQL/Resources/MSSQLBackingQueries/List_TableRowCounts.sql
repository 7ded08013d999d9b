-- The rows of every table, as the catalog knows them: no scan, and no right beyond seeing the table.
SELECT p.object_id, SUM(p.rows) AS row_count
FROM sys.partitions AS p
INNER JOIN sys.tables AS t ON t.object_id = p.object_id
WHERE p.index_id IN (0, 1)
GROUP BY p.object_id
