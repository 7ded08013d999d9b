-- Who is connected, what runs and who waits for whom: sp_who with the statement at hand. Blocked sessions come first,
-- then working ones by their time. Without VIEW SERVER STATE (on Azure VIEW DATABASE STATE) only your own session is
-- shown.
SELECT
	s.session_id,
	CASE WHEN r.blocking_session_id > 0 THEN r.blocking_session_id END AS blocked_by,
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
	AND s.session_id <> @@SPID
ORDER BY
	CASE WHEN r.blocking_session_id > 0 THEN 0 WHEN r.session_id IS NOT NULL THEN 1 ELSE 2 END,
	r.total_elapsed_time DESC,
	s.session_id
