-- Who is connected, what runs and who waits for whom: sp_who with waits, load and idle time. Blocked sessions come
-- first. A negative blocked_by is no session: -2 is an orphaned distributed transaction, -3 a deferred recovery.
SELECT
	p.spid AS session_id,
	CASE WHEN p.blocked <> 0 AND p.blocked <> p.spid THEN p.blocked END AS blocked_by,
	(
		SELECT COUNT(*)
		FROM master.dbo.sysprocesses AS b
		WHERE b.blocked = p.spid
			AND b.spid <> p.spid
	) AS blocks,
	RTRIM(p.status) AS status,
	RTRIM(p.loginame) AS login_name,
	RTRIM(p.hostname) AS host_name,
	RTRIM(p.program_name) AS program_name,
	DB_NAME(p.dbid) AS database_name,
	RTRIM(p.cmd) AS command,
	RTRIM(p.lastwaittype) AS wait_type,
	p.waittime AS wait_ms,
	RTRIM(p.waitresource) AS wait_resource,
	p.cpu AS cpu_ms,
	p.physical_io,
	p.open_tran AS open_transactions,
	DATEDIFF(second, p.last_batch, GETDATE()) AS seconds_since_last_batch,
	p.login_time
FROM master.dbo.sysprocesses AS p
WHERE p.spid > 50
	AND p.ecid = 0
ORDER BY
	CASE WHEN p.blocked <> 0 AND p.blocked <> p.spid THEN 0 WHEN RTRIM(p.status) <> 'sleeping' THEN 1 ELSE 2 END,
	p.cpu DESC,
	p.spid
