-- Who is connected, what runs and who waits for whom; the statement of an idle session is its last one. Needs VIEW
-- SERVER STATE (from SQL Server 2022 on VIEW SERVER PERFORMANCE STATE, on Azure SQL Database VIEW DATABASE STATE);
-- without it the text of statements is refused, and there is the own session only, with that refusal. sysprocesses has
-- the database and the transactions of idle sessions in versions before 2012, too.
BEGIN TRY
	SELECT TOP (5000)
		CONVERT(int, s.session_id) AS session_id,
		CONVERT(int, ISNULL(r.blocking_session_id, 0)) AS blocked_by,
		ISNULL(r.status, s.status) AS status,
		s.login_name,
		s.host_name,
		s.program_name,
		DB_NAME(ISNULL(r.database_id, p.dbid)) AS database_name,
		r.command,
		r.wait_type,
		CASE
			WHEN r.session_id IS NOT NULL THEN CONVERT(bigint, r.total_elapsed_time)
			-- A session that has run nothing yet has 1900-01-01, whose seconds exceed an int.
			WHEN s.last_request_end_time > s.login_time
				THEN CONVERT(bigint, DATEDIFF(second, s.last_request_end_time, GETDATE())) * 1000
			ELSE CONVERT(bigint, DATEDIFF(second, s.login_time, GETDATE())) * 1000
		END AS milliseconds,
		CONVERT(int, ISNULL(r.open_transaction_count, p.open_tran)) AS open_transactions,
		CASE
			WHEN r.session_id IS NULL THEN t.text
			ELSE SUBSTRING(
				t.text,
				r.statement_start_offset / 2 + 1,
				(
					CASE r.statement_end_offset WHEN -1 THEN DATALENGTH(t.text) ELSE r.statement_end_offset END
					- r.statement_start_offset
				) / 2 + 1
			)
		END AS statement_text,
		CONVERT(bit, CASE WHEN s.session_id = @@SPID THEN 1 ELSE 0 END) AS is_own,
		CONVERT(nvarchar(4000), NULL) AS refusal
	FROM sys.dm_exec_sessions AS s
	LEFT JOIN sys.dm_exec_requests AS r ON r.session_id = s.session_id
	LEFT JOIN sys.sysprocesses AS p ON p.spid = s.session_id AND p.ecid = 0
	OUTER APPLY (
		SELECT TOP (1) n.most_recent_sql_handle
		FROM sys.dm_exec_connections AS n
		WHERE n.session_id = s.session_id
		ORDER BY n.connect_time DESC
	) AS c
	OUTER APPLY sys.dm_exec_sql_text(ISNULL(r.sql_handle, c.most_recent_sql_handle)) AS t
	WHERE s.is_user_process = 1
	ORDER BY
		CASE WHEN r.blocking_session_id <> 0 THEN 0 WHEN r.session_id IS NOT NULL THEN 1 ELSE 2 END,
		s.session_id
END TRY
BEGIN CATCH
	SELECT
		CONVERT(int, s.session_id) AS session_id,
		0 AS blocked_by,
		s.status,
		s.login_name,
		s.host_name,
		s.program_name,
		DB_NAME() AS database_name,
		NULL AS command,
		NULL AS wait_type,
		CONVERT(bigint, 0) AS milliseconds,
		0 AS open_transactions,
		NULL AS statement_text,
		CONVERT(bit, 1) AS is_own,
		ERROR_MESSAGE() AS refusal
	FROM sys.dm_exec_sessions AS s
	WHERE s.session_id = @@SPID
END CATCH
