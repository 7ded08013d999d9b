-- Every login may read sysprocesses in this version; the statements of other sessions are not among it.
SELECT TOP 5000
	CONVERT(int, p.spid) AS session_id,
	CONVERT(int, p.blocked) AS blocked_by,
	RTRIM(p.status) AS status,
	RTRIM(p.loginame) AS login_name,
	RTRIM(p.hostname) AS host_name,
	RTRIM(p.program_name) AS program_name,
	DB_NAME(p.dbid) AS database_name,
	CASE WHEN RTRIM(p.status) <> 'sleeping' OR p.blocked <> 0 THEN RTRIM(p.cmd) END AS command,
	CASE WHEN p.waittime > 0 THEN RTRIM(p.lastwaittype) END AS wait_type,
	CASE
		-- A session that has run nothing yet has 1900-01-01, whose seconds exceed an int.
		WHEN p.last_batch > p.login_time THEN CONVERT(bigint, DATEDIFF(second, p.last_batch, GETDATE())) * 1000
		ELSE CONVERT(bigint, DATEDIFF(second, p.login_time, GETDATE())) * 1000
	END AS milliseconds,
	CONVERT(int, p.open_tran) AS open_transactions,
	NULL AS statement_text,
	CONVERT(bit, CASE WHEN p.spid = @@SPID THEN 1 ELSE 0 END) AS is_own,
	CONVERT(nvarchar(4000), NULL) AS refusal
FROM master.dbo.sysprocesses AS p
WHERE p.spid > 50
	AND p.ecid = 0
ORDER BY
	CASE WHEN p.blocked <> 0 AND p.blocked <> p.spid THEN 0 WHEN RTRIM(p.status) <> 'sleeping' THEN 1 ELSE 2 END,
	p.spid
