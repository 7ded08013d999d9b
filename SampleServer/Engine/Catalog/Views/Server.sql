-- sys.*: the server, its databases, principals and sessions.
CREATE VIEW sys.databases AS
SELECT d.name, d.database_id, CAST(NULL AS int) AS source_database_id, CAST(0x01 AS varbinary(85)) AS owner_sid,
    d.create_date,
    CAST(CASE SERVERPROPERTY('ProductMajorVersion') WHEN '16' THEN 160 WHEN '10' THEN 100 WHEN '8' THEN 80 ELSE 150
        END AS tinyint) AS compatibility_level, CAST('SQL_Latin1_General_CP1_CI_AS' AS sysname) AS collation_name,
    CAST(0 AS tinyint) AS user_access, CAST('MULTI_USER' AS nvarchar(60)) AS user_access_desc,
    CAST(0 AS bit) AS is_read_only, CAST(0 AS bit) AS is_auto_close_on, CAST(0 AS bit) AS is_auto_shrink_on,
    CAST(0 AS tinyint) AS state, CAST('ONLINE' AS nvarchar(60)) AS state_desc, CAST(0 AS bit) AS is_in_standby,
    CAST(0 AS bit) AS is_cleanly_shutdown, CAST(0 AS bit) AS is_supplemental_logging_enabled,
    CAST(0 AS tinyint) AS snapshot_isolation_state, CAST('OFF' AS nvarchar(60)) AS snapshot_isolation_state_desc,
    CAST(0 AS bit) AS is_read_committed_snapshot_on, CAST(3 AS tinyint) AS recovery_model,
    CAST('SIMPLE' AS nvarchar(60)) AS recovery_model_desc, CAST(2 AS tinyint) AS page_verify_option,
    CAST('CHECKSUM' AS nvarchar(60)) AS page_verify_option_desc, CAST(1 AS bit) AS is_auto_create_stats_on,
    CAST(1 AS bit) AS is_auto_update_stats_on, CAST(0 AS bit) AS is_fulltext_enabled,
    CAST(0 AS bit) AS is_trustworthy_on, CAST(0 AS bit) AS is_db_chaining_on, CAST(0 AS bit) AS is_published,
    CAST(0 AS bit) AS is_subscribed, CAST(0 AS bit) AS is_distributor, CAST(0 AS bit) AS is_broker_enabled,
    CAST(0 AS bit) AS is_encrypted, CAST(0 AS bit) AS is_query_store_on
FROM sys.[databases$] d
GO
CREATE VIEW sys.database_files AS
SELECT f.file_id, CAST(NULL AS uniqueidentifier) AS file_guid, f.type, f.type_desc, f.file_id - 1 AS data_space_id,
    f.name, f.physical_name, CAST(0 AS tinyint) AS state, CAST('ONLINE' AS nvarchar(60)) AS state_desc, f.size,
    -1 AS max_size, 8192 AS growth, CAST(0 AS bit) AS is_media_read_only, CAST(0 AS bit) AS is_read_only,
    CAST(0 AS bit) AS is_sparse, CAST(0 AS bit) AS is_percent_growth
FROM sys.master_files f
WHERE f.database_id = DB_ID()
GO
CREATE VIEW sys.master_files AS
SELECT d.database_id, CAST(t.id AS int) AS file_id, CAST(NULL AS uniqueidentifier) AS file_guid,
    CAST(t.id - 1 AS tinyint) AS type,
    CAST(CASE t.id WHEN 1 THEN 'ROWS' ELSE 'LOG' END AS nvarchar(60)) AS type_desc,
    CAST(2 - t.id AS int) AS data_space_id,
    CAST(d.name + CASE t.id WHEN 1 THEN '' ELSE '_log' END AS sysname) AS name,
    CAST('memory:' + d.name + CASE t.id WHEN 1 THEN '.mdf' ELSE '_log.ldf' END AS nvarchar(260)) AS physical_name,
    CAST(0 AS tinyint) AS state, CAST('ONLINE' AS nvarchar(60)) AS state_desc, 1024 AS size, -1 AS max_size,
    8192 AS growth
FROM sys.[databases$] d
CROSS JOIN (VALUES (1), (2)) t (id)
GO
CREATE VIEW sys.database_principals AS
SELECT CAST(p.name AS sysname) AS name, p.id AS principal_id, CAST(p.type AS char(1)) AS type,
    CAST(CASE p.type WHEN 'S' THEN 'SQL_USER' ELSE 'DATABASE_ROLE' END AS nvarchar(60)) AS type_desc,
    CAST(CASE p.type WHEN 'S' THEN CASE p.name WHEN 'dbo' THEN 'dbo' ELSE 'guest' END END AS sysname) AS
        default_schema_name, CAST('2022-01-01' AS datetime) AS create_date,
    CAST('2022-01-01' AS datetime) AS modify_date, CAST(NULL AS int) AS owning_principal_id,
    CAST(CASE p.name WHEN 'dbo' THEN 0x01 END AS varbinary(85)) AS sid,
    CAST(CASE WHEN p.id >= 16384 THEN 1 ELSE 0 END AS bit) AS is_fixed_role,
    CAST(CASE p.type WHEN 'S' THEN 1 ELSE 0 END AS int) AS authentication_type,
    CAST('INSTANCE' AS nvarchar(60)) AS authentication_type_desc
FROM (VALUES ('public', 0, 'R'), ('dbo', 1, 'S'), ('guest', 2, 'S'), ('INFORMATION_SCHEMA', 3, 'S'), ('sys', 4,
        'S'), ('db_owner', 16384, 'R'), ('db_datareader', 16390, 'R'), ('db_datawriter', 16391, 'R')) p (name, id,
        type)
GO
CREATE VIEW sys.database_role_members AS
SELECT 16384 AS role_principal_id, 1 AS member_principal_id
GO
CREATE VIEW sys.database_permissions AS
SELECT CAST(0 AS tinyint) AS class, CAST('DATABASE' AS nvarchar(60)) AS class_desc, 0 AS major_id, 0 AS minor_id,
    1 AS grantee_principal_id, 1 AS grantor_principal_id, CAST('CO' AS char(4)) AS type,
    CAST('CONNECT' AS nvarchar(128)) AS permission_name, CAST('G' AS char(1)) AS state,
    CAST('GRANT' AS nvarchar(60)) AS state_desc
GO
CREATE VIEW sys.server_principals AS
SELECT CAST(p.name AS sysname) AS name, p.id AS principal_id,
    CAST(CASE p.id WHEN 1 THEN 0x01 END AS varbinary(85)) AS sid, CAST(p.type AS char(1)) AS type,
    CAST(CASE p.type WHEN 'S' THEN 'SQL_LOGIN' ELSE 'SERVER_ROLE' END AS nvarchar(60)) AS type_desc,
    CAST(0 AS bit) AS is_disabled, CAST('2022-01-01' AS datetime) AS create_date,
    CAST('2022-01-01' AS datetime) AS modify_date,
    CAST(CASE p.type WHEN 'S' THEN 'master' END AS sysname) AS default_database_name,
    CAST(CASE p.type WHEN 'S' THEN 'us_english' END AS sysname) AS default_language_name,
    CAST(0 AS bit) AS is_fixed_role
FROM (VALUES ('sa', 1, 'S'), ('public', 2, 'R'), ('sysadmin', 3, 'R')) p (name, id, type)
GO
CREATE VIEW sys.sql_logins AS
SELECT name, principal_id, sid, type, type_desc, is_disabled, create_date, modify_date, default_database_name,
    default_language_name
FROM sys.server_principals
WHERE type = 'S'
GO
CREATE VIEW sys.server_role_members AS
SELECT 3 AS role_principal_id, 1 AS member_principal_id
GO
CREATE VIEW sys.servers AS
SELECT 0 AS server_id, CAST(@@SERVERNAME AS sysname) AS name, CAST('SQL Server' AS sysname) AS product,
    CAST('SQLNCLI' AS sysname) AS provider, CAST(@@SERVERNAME AS nvarchar(4000)) AS data_source,
    CAST(0 AS bit) AS is_linked
GO
CREATE VIEW sys.configurations AS
SELECT c.id AS configuration_id, CAST(c.name AS nvarchar(35)) AS name, CAST(c.value AS sql_variant) AS value,
    CAST(c.low AS sql_variant) AS minimum, CAST(c.high AS sql_variant) AS maximum,
    CAST(c.value AS sql_variant) AS value_in_use, CAST(c.name AS nvarchar(255)) AS description,
    CAST(1 AS bit) AS is_dynamic, CAST(c.advanced AS bit) AS is_advanced
FROM (VALUES (101, 'recovery interval (min)', 0, 0, 32767, 1), (103, 'user connections', 0, 0, 32767, 1), (109,
        'fill factor (%)', 0, 0, 100, 1), (115, 'nested triggers', 1, 0, 1, 0), (116, 'server trigger recursion',
        1, 0, 1, 0), (117, 'remote access', 1, 0, 1, 0), (124, 'default language', 0, 0, 9999, 0), (505,
        'network packet size (B)', 4096, 512, 32767, 1), (518, 'show advanced options', 0, 0, 1, 0), (1538,
        'cost threshold for parallelism', 5, 0, 32767, 1), (1539, 'max degree of parallelism', 0, 0, 32767, 1),
        (1544, 'max server memory (MB)', 2147483647, 128, 2147483647, 1), (16384, 'Agent XPs', 1, 0, 1, 1), (16390,
        'xp_cmdshell', 0, 0, 1, 1)) c (id, name, value, low, high, advanced)
GO
CREATE VIEW sys.syslanguages AS
SELECT CAST(0 AS smallint) AS langid, CAST('mdy' AS nchar(3)) AS dateformat, CAST(7 AS tinyint) AS datefirst,
    0 AS upgrade, CAST('us_english' AS sysname) AS name, CAST('English' AS sysname) AS alias,
    CAST(1033 AS int) AS lcid, CAST(1033 AS smallint) AS msglangid
GO
CREATE VIEW sys.fn_helpcollations AS
SELECT CAST(c.name AS sysname) AS name, CAST(c.name AS nvarchar(1000)) AS description
FROM (VALUES ('SQL_Latin1_General_CP1_CI_AS'), ('Latin1_General_CI_AS')) c (name)
GO
CREATE VIEW sys.dm_exec_sessions AS
SELECT s.session_id, s.login_time, s.host_name, s.program_name, CAST(NULL AS int) AS host_process_id,
    CAST(NULL AS int) AS client_version, CAST('ODBC' AS nvarchar(32)) AS client_interface_name,
    CAST(0x01 AS varbinary(85)) AS security_id, s.login_name, CAST(NULL AS nvarchar(128)) AS nt_domain,
    CAST(NULL AS nvarchar(128)) AS nt_user_name,
    CAST(CASE s.is_running WHEN 1 THEN 'running' ELSE 'sleeping' END AS nvarchar(30)) AS status, 0 AS cpu_time,
    0 AS memory_usage, 0 AS total_scheduled_time, 0 AS total_elapsed_time, 0 AS endpoint_id,
    s.request_time AS last_request_start_time, s.request_time AS last_request_end_time, CAST(0 AS bigint) AS reads,
    CAST(0 AS bigint) AS writes, CAST(0 AS bigint) AS logical_reads, CAST(1 AS bit) AS is_user_process,
    4096 AS text_size, CAST('us_english' AS nvarchar(128)) AS language, CAST('mdy' AS nvarchar(3)) AS date_format,
    CAST(7 AS smallint) AS date_first, CAST(1 AS bit) AS quoted_identifier,
    CAST(2 AS smallint) AS transaction_isolation_level, -1 AS lock_timeout, 0 AS deadlock_priority,
    CAST(0 AS bigint) AS row_count, 0 AS prev_error, s.login_name AS original_login_name, s.database_id,
    0 AS open_transaction_count
FROM sys.[sessions$] s
GO
CREATE VIEW sys.dm_exec_requests AS
SELECT s.session_id, 0 AS request_id, s.request_time AS start_time, CAST('running' AS nvarchar(30)) AS status,
    CAST('SELECT' AS nvarchar(32)) AS command, CAST(s.session_id AS varbinary(64)) AS sql_handle,
    0 AS statement_start_offset, -1 AS statement_end_offset, CAST(NULL AS varbinary(64)) AS plan_handle,
    s.database_id, 1 AS user_id, CAST(NULL AS uniqueidentifier) AS connection_id,
    CAST(0 AS smallint) AS blocking_session_id, CAST(NULL AS nvarchar(60)) AS wait_type, 0 AS wait_time,
    CAST('' AS nvarchar(60)) AS last_wait_type, CAST('' AS nvarchar(256)) AS wait_resource,
    0 AS open_transaction_count, CAST(0 AS real) AS percent_complete, 0 AS cpu_time,
    DATEDIFF(ms, s.request_time, GETDATE()) AS total_elapsed_time, CAST(0 AS bigint) AS reads,
    CAST(0 AS bigint) AS writes, CAST(0 AS bigint) AS logical_reads
FROM sys.[sessions$] s
WHERE s.is_running = 1
GO
CREATE VIEW sys.dm_exec_connections AS
SELECT CAST(s.session_id AS int) AS session_id, CAST(s.session_id AS int) AS most_recent_session_id,
    s.login_time AS connect_time, CAST('TCP' AS nvarchar(40)) AS net_transport,
    CAST('TSQL' AS nvarchar(40)) AS protocol_type, 0 AS protocol_version, 0 AS endpoint_id,
    CAST('FALSE' AS nvarchar(40)) AS encrypt_option, CAST('SQL' AS nvarchar(40)) AS auth_scheme,
    CAST(0 AS smallint) AS node_affinity, 0 AS num_reads, 0 AS num_writes, s.request_time AS last_read,
    s.request_time AS last_write, 4096 AS net_packet_size, CAST('127.0.0.1' AS varchar(48)) AS client_net_address,
    CAST(NULL AS int) AS client_tcp_port, CAST('127.0.0.1' AS varchar(48)) AS local_net_address,
    CAST(NULL AS int) AS local_tcp_port, CAST(NULL AS uniqueidentifier) AS connection_id,
    CAST(s.session_id AS varbinary(64)) AS most_recent_sql_handle
FROM sys.[sessions$] s
GO
CREATE VIEW sys.dm_exec_query_stats AS
SELECT CAST(s.session_id AS varbinary(64)) AS sql_handle, 0 AS statement_start_offset, -1 AS statement_end_offset,
    CAST(1 AS bigint) AS plan_generation_num, CAST(NULL AS varbinary(64)) AS plan_handle,
    s.request_time AS creation_time, s.request_time AS last_execution_time, CAST(1 AS bigint) AS execution_count,
    CAST(0 AS bigint) AS total_worker_time, CAST(0 AS bigint) AS last_worker_time,
    CAST(0 AS bigint) AS max_worker_time, CAST(0 AS bigint) AS total_physical_reads,
    CAST(0 AS bigint) AS total_logical_reads, CAST(0 AS bigint) AS last_logical_reads,
    CAST(0 AS bigint) AS total_logical_writes, CAST(0 AS bigint) AS last_logical_writes,
    CAST(0 AS bigint) AS total_elapsed_time, CAST(0 AS bigint) AS last_elapsed_time,
    CAST(0 AS bigint) AS max_elapsed_time
FROM sys.[sessions$] s
GO
CREATE FUNCTION sys.dm_exec_sql_text (@handle varbinary(64)) RETURNS TABLE AS RETURN (SELECT CAST(s.database_id AS
        smallint) AS dbid, CAST(NULL AS int) AS objectid, CAST(NULL AS smallint) AS number, CAST(0 AS bit) AS
        encrypted, s.text FROM sys.[sessions$] s WHERE s.session_id = CAST(@handle AS smallint))
GO
CREATE FUNCTION sys.fn_listextendedproperty (@name sysname, @level0type varchar(128), @level0name sysname,
        @level1type varchar(128), @level1name sysname, @level2type varchar(128), @level2name sysname) RETURNS TABLE
        AS RETURN (SELECT CAST(@level1type AS sysname) AS objtype, CAST(COALESCE(@level2name, @level1name) AS
        sysname) AS objname, p.name, p.value FROM sys.[properties$] p WHERE (@name IS NULL OR p.name = @name) AND
        ((@level0name IS NULL AND p.class = 0) OR (p.class = 1 AND p.major_id = OBJECT_ID(QUOTENAME(@level0name) +
        '.' + QUOTENAME(@level1name)) AND p.minor_id = ISNULL(COLUMNPROPERTY(p.major_id, @level2name, 'ColumnId'),
        0))))
GO
CREATE VIEW sys.dm_os_sys_info AS
SELECT 2 AS cpu_count, 1 AS hyperthread_ratio, CAST(4194304 AS bigint) AS physical_memory_kb,
    MIN(create_date) AS sqlserver_start_time
FROM sys.[databases$]
GO
CREATE VIEW sys.dm_server_services AS
SELECT CAST('SQL Server Agent (MSSQLSERVER)' AS nvarchar(256)) AS servicename, 2 AS startup_type,
    CAST('Automatic' AS nvarchar(256)) AS startup_type_desc, 4 AS status,
    CAST('Running' AS nvarchar(256)) AS status_desc
GO
CREATE VIEW sys.dm_tran_locks AS
SELECT CAST('DATABASE' AS nvarchar(60)) AS resource_type, s.database_id AS resource_database_id,
    CAST(0 AS bigint) AS resource_associated_entity_id, CAST('S' AS nvarchar(60)) AS request_mode,
    CAST('GRANT' AS nvarchar(60)) AS request_status, CAST(s.session_id AS int) AS request_session_id
FROM sys.[sessions$] s
