-- Sessions whose batch is still running, the oldest first. DBCC INPUTBUFFER (session_id) shows a session's batch.
SELECT
	p.spid AS session_id,
	DATEDIFF(second, p.last_batch, GETDATE()) AS running_seconds,
	CASE WHEN p.blocked <> 0 AND p.blocked <> p.spid THEN p.blocked END AS blocked_by,
	DB_NAME(p.dbid) AS database_name,
	RTRIM(p.loginame) AS login_name,
	RTRIM(p.hostname) AS host_name,
	RTRIM(p.program_name) AS program_name,
	RTRIM(p.cmd) AS command,
	RTRIM(p.lastwaittype) AS wait_type,
	p.cpu AS cpu_ms,
	p.physical_io,
	p.open_tran AS open_transactions
FROM master.dbo.sysprocesses AS p
WHERE p.spid > 50
	AND p.spid <> @@SPID
	AND p.ecid = 0
	AND RTRIM(p.status) <> 'sleeping'
ORDER BY p.last_batch
