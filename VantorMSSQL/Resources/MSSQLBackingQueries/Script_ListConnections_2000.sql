-- Connections with the login, the program and the database they are in.
SELECT
	p.spid AS session_id,
	RTRIM(p.loginame) AS login_name,
	RTRIM(p.hostname) AS host_name,
	RTRIM(p.program_name) AS program_name,
	DB_NAME(p.dbid) AS database_name,
	RTRIM(p.net_library) AS net_transport,
	RTRIM(p.net_address) AS client_net_address,
	RTRIM(p.status) AS status,
	p.login_time AS connect_time,
	p.last_batch AS last_request_start_time
FROM master.dbo.sysprocesses AS p
WHERE p.spid > 50
	AND p.ecid = 0
ORDER BY p.loginame, p.hostname, p.program_name, p.spid
