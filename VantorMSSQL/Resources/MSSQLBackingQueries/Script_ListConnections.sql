-- Connections with the login, the program and the way they came in. All of them need VIEW SERVER STATE (from SQL
-- Server 2022 on VIEW SERVER PERFORMANCE STATE and VIEW SERVER SECURITY STATE, on Azure SQL Database VIEW DATABASE
-- STATE). Without it this shows your own session, with less about it.
BEGIN TRY
	SELECT
		s.session_id,
		s.login_name,
		s.host_name,
		s.program_name,
		s.client_interface_name,
		c.client_net_address,
		c.net_transport,
		c.auth_scheme,
		c.encrypt_option,
		c.connect_time,
		s.status,
		s.last_request_start_time,
		s.last_request_end_time,
		c.num_reads AS packets_read,
		c.num_writes AS packets_written
	FROM sys.dm_exec_connections AS c
	INNER JOIN sys.dm_exec_sessions AS s ON s.session_id = c.session_id
	ORDER BY s.login_name, s.host_name, s.program_name, s.session_id
END TRY
BEGIN CATCH
	SELECT
		s.session_id,
		s.login_name,
		s.host_name,
		s.program_name,
		s.client_interface_name,
		s.login_time AS connect_time,
		s.status,
		s.last_request_start_time,
		s.last_request_end_time,
		ERROR_MESSAGE() AS others_are_not_shown
	FROM sys.dm_exec_sessions AS s
	WHERE s.session_id = @@SPID
END CATCH
