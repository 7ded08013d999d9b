-- The hundred statements of the plan cache that took longest on average, with what they cost. A plan that left the
-- cache took its figures along. Needs VIEW SERVER STATE (from SQL Server 2022 on VIEW SERVER PERFORMANCE STATE, on
-- Azure SQL Database VIEW DATABASE STATE). Without it this shows what your own session runs.
BEGIN TRY
	SELECT TOP (100)
		q.execution_count,
		q.total_elapsed_time / q.execution_count / 1000 AS average_elapsed_ms,
		q.max_elapsed_time / 1000 AS longest_elapsed_ms,
		q.total_elapsed_time / 1000 AS total_elapsed_ms,
		q.total_worker_time / q.execution_count / 1000 AS average_cpu_ms,
		q.total_logical_reads / q.execution_count AS average_logical_reads,
		q.total_physical_reads / q.execution_count AS average_physical_reads,
		q.total_logical_writes / q.execution_count AS average_logical_writes,
		q.creation_time AS cached_since,
		q.last_execution_time,
		DB_NAME(t.dbid) AS database_name,
		OBJECT_NAME(t.objectid, t.dbid) AS module_name,
		SUBSTRING(
			t.text,
			q.statement_start_offset / 2 + 1,
			(
				CASE q.statement_end_offset WHEN -1 THEN DATALENGTH(t.text) ELSE q.statement_end_offset END
				- q.statement_start_offset
			) / 2 + 1
		) AS statement_text
	FROM sys.dm_exec_query_stats AS q
	CROSS APPLY sys.dm_exec_sql_text(q.sql_handle) AS t
	WHERE q.execution_count > 0
	ORDER BY average_elapsed_ms DESC
END TRY
BEGIN CATCH
	SELECT
		r.session_id,
		r.status,
		r.command,
		r.start_time,
		r.total_elapsed_time AS elapsed_ms,
		r.cpu_time AS cpu_ms,
		r.logical_reads,
		r.writes,
		DB_NAME(r.database_id) AS database_name,
		ERROR_MESSAGE() AS others_are_not_shown
	FROM sys.dm_exec_requests AS r
	WHERE r.session_id = @@SPID
END CATCH
