-- Rows and space of every user table, the largest first. Row data, index pages and free pages add up to what is
-- reserved. The exact figures need VIEW DATABASE STATE (from SQL Server 2022 on VIEW DATABASE PERFORMANCE STATE).
-- Without it they come from the allocation units of the tables that this login may see, and may be a little old.
BEGIN TRY
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
END TRY
BEGIN CATCH
	SELECT
		s.name AS schema_name,
		t.name AS table_name,
		(
			SELECT SUM(r.rows)
			FROM sys.partitions AS r
			WHERE r.object_id = t.object_id
				AND r.index_id IN (0, 1)
		) AS rows_total,
		SUM(a.total_pages) * 8 AS reserved_kb,
		SUM(
			CASE
				WHEN p.index_id IN (0, 1) AND a.type = 1 THEN a.data_pages
				WHEN p.index_id IN (0, 1) THEN a.used_pages
				ELSE 0
			END
		) * 8 AS data_kb,
		SUM(
			a.used_pages
			- CASE
				WHEN p.index_id IN (0, 1) AND a.type = 1 THEN a.data_pages
				WHEN p.index_id IN (0, 1) THEN a.used_pages
				ELSE 0
			END
		) * 8 AS index_kb,
		SUM(a.total_pages - a.used_pages) * 8 AS unused_kb
	FROM sys.tables AS t
	INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
	INNER JOIN sys.partitions AS p ON p.object_id = t.object_id
	INNER JOIN sys.allocation_units AS a
		ON a.container_id = CASE WHEN a.type IN (1, 3) THEN p.hobt_id ELSE p.partition_id END
	WHERE t.is_ms_shipped = 0
	GROUP BY s.name, t.name, t.object_id
	ORDER BY reserved_kb DESC, s.name, t.name
END CATCH
