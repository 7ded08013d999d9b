-- Who is connected, what runs and who waits for whom: sp_who with the statement at hand. Blocked sessions come first,
-- then working ones by their time. A negative blocked_by is no session: -2 is an orphaned distributed transaction, -3
-- a deferred recovery, -4 and -5 are latches whose owner is not known. Needs VIEW SERVER STATE (from SQL Server 2022 on
-- VIEW SERVER PERFORMANCE STATE, on Azure SQL Database VIEW DATABASE STATE). Without it this shows your own session.
BEGIN TRY
	SELECT
		s.session_id,
		NULLIF(r.blocking_session_id, 0) AS blocked_by,
		(
			SELECT COUNT(*)
			FROM sys.dm_exec_requests AS b
			WHERE b.blocking_session_id = s.session_id
				AND b.session_id <> s.session_id
		) AS blocks,
		ISNULL(r.status, s.status) AS status,
		s.login_name,
		s.host_name,
		s.program_name,
		DB_NAME(r.database_id) AS database_name,
		r.command,
		r.wait_type,
		r.wait_time AS wait_ms,
		r.wait_resource,
		r.total_elapsed_time AS elapsed_ms,
		ISNULL(r.cpu_time, s.cpu_time) AS cpu_ms,
		ISNULL(r.logical_reads, s.logical_reads) AS logical_reads,
		ISNULL(r.writes, s.writes) AS writes,
		r.open_transaction_count AS open_transactions,
		r.percent_complete,
		SUBSTRING(
			t.text,
			r.statement_start_offset / 2 + 1,
			(
				CASE r.statement_end_offset WHEN -1 THEN DATALENGTH(t.text) ELSE r.statement_end_offset END
				- r.statement_start_offset
			) / 2 + 1
		) AS running_statement,
		OBJECT_NAME(t.objectid, t.dbid) AS module_name,
		s.login_time,
		s.last_request_start_time
	FROM sys.dm_exec_sessions AS s
	LEFT JOIN sys.dm_exec_requests AS r ON r.session_id = s.session_id
	OUTER APPLY sys.dm_exec_sql_text(r.sql_handle) AS t
	WHERE s.is_user_process = 1
	ORDER BY
		CASE WHEN r.blocking_session_id <> 0 THEN 0 WHEN r.session_id IS NOT NULL THEN 1 ELSE 2 END,
		r.total_elapsed_time DESC,
		s.session_id
END TRY
BEGIN CATCH
	SELECT
		s.session_id,
		NULLIF(r.blocking_session_id, 0) AS blocked_by,
		ISNULL(r.status, s.status) AS status,
		s.login_name,
		s.host_name,
		s.program_name,
		DB_NAME(r.database_id) AS database_name,
		r.command,
		r.total_elapsed_time AS elapsed_ms,
		ISNULL(r.cpu_time, s.cpu_time) AS cpu_ms,
		ISNULL(r.logical_reads, s.logical_reads) AS logical_reads,
		ISNULL(r.writes, s.writes) AS writes,
		s.login_time,
		s.last_request_start_time,
		ERROR_MESSAGE() AS others_are_not_shown
	FROM sys.dm_exec_sessions AS s
	LEFT JOIN sys.dm_exec_requests AS r ON r.session_id = s.session_id
	WHERE s.session_id = @@SPID
END CATCH
