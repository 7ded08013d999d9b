-- Rows and space of every user table, the largest first. Row data, index pages and free pages add up to what is
-- reserved.
SELECT
	s.name AS schema_name,
	t.name AS table_name,
	SUM(CASE WHEN p.index_id IN (0, 1) THEN p.row_count ELSE 0 END) AS rows_total,
	SUM(p.reserved_page_count) * 8 AS reserved_kb,
	SUM(
		CASE
			WHEN p.index_id IN (0, 1)
				THEN p.in_row_data_page_count + p.lob_used_page_count + p.row_overflow_used_page_count
			ELSE 0
		END
	) * 8 AS data_kb,
	SUM(
		p.used_page_count
		- CASE
			WHEN p.index_id IN (0, 1)
				THEN p.in_row_data_page_count + p.lob_used_page_count + p.row_overflow_used_page_count
			ELSE 0
		END
	) * 8 AS index_kb,
	SUM(p.reserved_page_count - p.used_page_count) * 8 AS unused_kb
FROM sys.dm_db_partition_stats AS p
INNER JOIN sys.tables AS t ON t.object_id = p.object_id
INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
WHERE t.is_ms_shipped = 0
GROUP BY s.name, t.name
ORDER BY reserved_kb DESC, s.name, t.name
