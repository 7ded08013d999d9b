-- Connections with the login, the program and the way they came in. Without VIEW SERVER STATE (on Azure VIEW DATABASE
-- STATE) only your own is shown.
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
