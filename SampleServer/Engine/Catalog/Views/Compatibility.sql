-- The system tables of SQL Server 2000, which later versions keep as views.
CREATE VIEW sys.sysobjects AS
SELECT o.name, o.object_id AS id, CAST(o.type AS char(2)) AS xtype, CAST(o.schema_id AS smallint) AS uid,
    CAST(0 AS smallint) AS info, CAST(0 AS int) AS status, CAST(0 AS int) AS base_schema_ver,
    CAST(0 AS int) AS replinfo, o.parent_object_id AS parent_obj, o.create_date AS crdate,
    CAST(0 AS smallint) AS ftcatid, CAST(0 AS int) AS schema_ver, CAST(0 AS int) AS stats_schema_ver,
    CAST(CASE o.type WHEN 'PK' THEN 'K ' WHEN 'UQ' THEN 'K ' ELSE o.type END AS char(2)) AS type,
    CAST(0 AS smallint) AS userstat, CAST(0 AS smallint) AS sysstat, CAST(0 AS smallint) AS indexdel,
    o.create_date AS refdate, CAST(0 AS int) AS version, CAST(0 AS int) AS deltrig, CAST(0 AS int) AS instrig,
    CAST(0 AS int) AS updtrig, CAST(0 AS int) AS seltrig, CAST(0 AS int) AS category, CAST(0 AS smallint) AS cache
FROM sys.[objects$] o
WHERE o.is_ms_shipped = 0
GO
CREATE VIEW sys.syscolumns AS
SELECT c.name, c.object_id AS id, c.system_type_id AS xtype, CAST(0 AS tinyint) AS typestat,
    CAST(c.user_type_id AS smallint) AS xusertype, c.max_length AS length, c.precision AS xprec, c.scale AS xscale,
    CAST(c.column_id AS smallint) AS colid, CAST(0 AS smallint) AS xoffset, CAST(0 AS tinyint) AS bitpos,
    CAST(0 AS tinyint) AS reserved,
    CAST(CASE c.is_identity WHEN 1 THEN 128 ELSE 0 END + CASE c.is_nullable WHEN 1 THEN 8 ELSE 0 END AS smallint)
        AS colstat, c.default_object_id AS cdefault, 0 AS domain, CAST(0 AS smallint) AS number,
    CAST(c.column_id AS smallint) AS colorder, CAST(NULL AS varbinary(8000)) AS autoval,
    CAST(0 AS smallint) AS offset, 0 AS collationid, CAST(0 AS int) AS language,
    CAST(CASE c.is_identity WHEN 1 THEN 128 ELSE 0 END + CASE c.is_nullable WHEN 1 THEN 8 ELSE 0 END AS tinyint) AS
        status, c.system_type_id AS type, CAST(c.user_type_id AS smallint) AS usertype,
    CAST(NULL AS varchar(255)) AS printfmt,
    CAST(CASE WHEN c.system_type_id IN (48, 52, 56, 59, 60, 62, 104, 106, 108, 122, 127) THEN c.precision WHEN
        c.system_type_id IN (231, 239) AND c.max_length > 0 THEN c.max_length / 2 ELSE c.max_length END AS
        smallint) AS prec,
    CAST(CASE WHEN c.system_type_id IN (48, 52, 56, 60, 106, 108, 122, 127) THEN c.scale END AS int) AS scale,
    CAST(c.is_computed AS int) AS iscomputed, CAST(0 AS int) AS isoutparam,
    CAST(c.is_nullable AS int) AS isnullable, c.collation_name AS collation
FROM sys.[columns$] c
WHERE c.object_id > 0
UNION ALL
SELECT p.name, p.object_id, p.system_type_id, CAST(0 AS tinyint), CAST(p.user_type_id AS smallint), p.max_length,
    p.precision, p.scale, CAST(p.parameter_id AS smallint), CAST(0 AS smallint), CAST(0 AS tinyint),
    CAST(0 AS tinyint), CAST(0 AS smallint), 0, 0, CAST(1 AS smallint), CAST(p.parameter_id AS smallint),
    CAST(NULL AS varbinary(8000)), CAST(0 AS smallint), 0, 0,
    CAST(CASE p.is_output WHEN 1 THEN 64 ELSE 8 END AS tinyint), p.system_type_id, CAST(p.user_type_id AS smallint),
    CAST(NULL AS varchar(255)),
    CAST(CASE WHEN p.system_type_id IN (231, 239) AND p.max_length > 0 THEN p.max_length / 2 WHEN p.precision > 0
        THEN p.precision ELSE p.max_length END AS smallint), CAST(p.scale AS int), 0, CAST(p.is_output AS int), 1,
    CAST(NULL AS nvarchar(128))
FROM sys.[parameters$] p
GO
CREATE VIEW sys.sysindexes AS
SELECT i.object_id AS id,
    CAST(CASE i.is_unique WHEN 1 THEN 2 ELSE 0 END + CASE i.type WHEN 1 THEN 16 ELSE 0 END + CASE i.is_primary_key
        WHEN 1 THEN 2048 ELSE 0 END + CASE i.is_unique_constraint WHEN 1 THEN 4096 ELSE 0 END + CASE
        i.ignore_dup_key WHEN 1 THEN 1 ELSE 0 END AS int) AS status, CAST(0x AS varbinary(6)) AS first,
    CAST(i.index_id AS smallint) AS indid, CAST(0x AS varbinary(6)) AS root, CAST(0 AS smallint) AS minlen,
    CAST(i.key_count AS smallint) AS keycnt, CAST(1 AS smallint) AS groupid, CAST(i.rows / 50 AS int) AS dpages,
    CAST(i.rows / 50 + 1 AS int) AS reserved, CAST(i.rows / 50 + 1 AS int) AS used, i.rows AS rowcnt,
    0 AS rowmodctr, CAST(0 AS tinyint) AS reserved3, CAST(i.fill_factor AS tinyint) AS OrigFillFactor, i.name,
    CAST(i.rows AS int) AS rows
FROM sys.[indexes$] i
GO
CREATE VIEW sys.sysindexkeys AS
SELECT object_id AS id, CAST(index_id AS smallint) AS indid, CAST(column_id AS smallint) AS colid,
    CAST(key_ordinal AS smallint) AS keyno
FROM sys.[index_columns$]
WHERE is_included_column = 0
GO
CREATE VIEW sys.sysforeignkeys AS
SELECT constraint_object_id AS constid, parent_object_id AS fkeyid, referenced_object_id AS rkeyid,
    CAST(parent_column_id AS smallint) AS fkey, CAST(referenced_column_id AS smallint) AS rkey,
    CAST(constraint_column_id AS smallint) AS keyno
FROM sys.[foreign_key_columns$]
GO
CREATE VIEW sys.sysreferences AS
SELECT k.object_id AS constid, k.parent_object_id AS fkeyid, k.referenced_object_id AS rkeyid,
    CAST(k.key_index_id AS smallint) AS rkeyindid,
    CAST((SELECT COUNT(*) FROM sys.[foreign_key_columns$] c WHERE c.constraint_object_id = k.object_id) AS
        smallint) AS keycnt
FROM sys.[foreign_keys$] k
GO
CREATE VIEW sys.syscomments AS
SELECT o.object_id AS id, CAST(1 AS smallint) AS number, CAST(1 AS smallint) AS colid,
    CAST(o.is_encrypted AS smallint) AS status, CAST(NULL AS varbinary(8000)) AS ctext,
    CAST(2 AS smallint) AS texttype, CAST(0 AS smallint) AS language, o.is_encrypted AS encrypted,
    CAST(0 AS bit) AS compressed, CAST(o.definition AS nvarchar(4000)) AS text
FROM sys.[objects$] o
WHERE (o.definition IS NOT NULL OR o.is_encrypted = 1) AND o.is_ms_shipped = 0
UNION ALL
SELECT c.object_id, CAST(c.column_id AS smallint), CAST(1 AS smallint), CAST(0 AS smallint),
    CAST(NULL AS varbinary(8000)), CAST(2 AS smallint), CAST(0 AS smallint), CAST(0 AS bit), CAST(0 AS bit),
    CAST(c.definition AS nvarchar(4000))
FROM sys.computed_columns c
GO
CREATE VIEW sys.systypes AS
SELECT t.name, CAST(t.system_type_id AS tinyint) AS xtype, CAST(0 AS tinyint) AS status,
    CAST(t.user_type_id AS smallint) AS xusertype, t.max_length AS length, t.precision AS xprec, t.scale AS xscale,
    0 AS tdefault, 0 AS domain, CAST(t.schema_id AS smallint) AS uid, CAST(0 AS smallint) AS reserved,
    0 AS collationid, CAST(t.user_type_id AS smallint) AS usertype, CAST(1 AS bit) AS variable,
    t.is_nullable AS allownulls, CAST(t.system_type_id AS tinyint) AS type, CAST(NULL AS varchar(255)) AS printfmt,
    CAST(t.precision AS smallint) AS prec, t.scale, t.collation_name AS collation
FROM sys.[types$] t
GO
CREATE VIEW sys.sysusers AS
SELECT CAST(s.schema_id AS smallint) AS uid, CAST(0 AS smallint) AS status, s.name,
    CAST(NULL AS varbinary(85)) AS sid, CAST(NULL AS varbinary(2048)) AS roles,
    CAST('2022-01-01' AS datetime) AS createdate, CAST('2022-01-01' AS datetime) AS updatedate,
    CAST(0 AS smallint) AS altuid, CAST(NULL AS varbinary(256)) AS password, CAST(0 AS smallint) AS gid,
    CAST(NULL AS varchar(85)) AS environ, 1 AS hasdbaccess, 1 AS islogin, 0 AS isntname, 0 AS isntgroup,
    0 AS isntuser, 1 AS issqluser, 0 AS isaliased, 0 AS issqlrole, 0 AS isapprole
FROM sys.[schemas$] s
GO
CREATE VIEW sys.sysdatabases AS
SELECT d.name, CAST(d.database_id AS smallint) AS dbid, CAST(0x01 AS varbinary(85)) AS sid,
    CAST(0 AS smallint) AS mode, 8 AS status, 0 AS status2, d.create_date AS crdate,
    CAST('1900-01-01' AS datetime) AS reserved, 0 AS category, CAST(80 AS tinyint) AS cmptlevel,
    CAST('memory:' + d.name AS nvarchar(260)) AS filename, CAST(NULL AS smallint) AS version
FROM sys.[databases$] d
GO
CREATE VIEW sys.sysconstraints AS
SELECT o.object_id AS constid, o.parent_object_id AS id, CAST(o.parent_column_id AS smallint) AS colid,
    CAST(0 AS tinyint) AS spare1,
    CAST(CASE o.type WHEN 'PK' THEN 1 WHEN 'UQ' THEN 2 WHEN 'F' THEN 3 WHEN 'C' THEN 4 ELSE 5 END AS int) AS status,
    0 AS actions, 0 AS error
FROM sys.[objects$] o
WHERE o.type IN ('PK', 'UQ', 'F', 'C', 'D')
GO
CREATE VIEW sys.sysproperties AS
SELECT CAST(p.major_id AS int) AS id, CAST(p.minor_id AS smallint) AS smallid,
    CAST(CASE WHEN p.class = 0 THEN 0 WHEN p.minor_id = 0 THEN 3 ELSE 4 END AS tinyint) AS type, p.name, p.value
FROM sys.[properties$] p
WHERE p.class IN (0, 1)
GO
CREATE VIEW sys.sysprotects AS
SELECT 0 AS id, CAST(0 AS smallint) AS uid, CAST(0 AS tinyint) AS action, CAST(205 AS tinyint) AS protecttype,
    CAST(NULL AS varbinary(4000)) AS columns, CAST(1 AS smallint) AS grantor
WHERE 1 = 0
GO
CREATE VIEW sys.sysdepends AS
SELECT d.referencing_id AS id, d.referenced_id AS depid, CAST(1 AS smallint) AS number,
    CAST(0 AS smallint) AS depnumber
FROM sys.[dependencies$] AS d
GO
CREATE VIEW sys.sysprocesses AS
SELECT s.session_id AS spid, CAST(0 AS smallint) AS kpid, CAST(0 AS smallint) AS blocked,
    CAST(0x AS binary(2)) AS waittype, CAST(0 AS bigint) AS waittime, CAST('' AS nchar(32)) AS lastwaittype,
    CAST('' AS nchar(256)) AS waitresource, s.database_id AS dbid, CAST(1 AS smallint) AS uid, 0 AS cpu,
    CAST(0 AS bigint) AS physical_io, 0 AS memusage, s.login_time, s.request_time AS last_batch,
    CAST(0 AS smallint) AS ecid, CAST(0 AS smallint) AS open_tran,
    CAST(CASE s.is_running WHEN 1 THEN 'runnable' ELSE 'sleeping' END AS nchar(30)) AS status,
    CAST(0x01 AS binary(86)) AS sid, CAST(s.host_name AS nchar(128)) AS hostname,
    CAST(s.program_name AS nchar(128)) AS program_name, CAST('' AS nchar(10)) AS hostprocess,
    CAST('AWAITING COMMAND' AS nchar(16)) AS cmd, CAST('' AS nchar(128)) AS nt_domain,
    CAST('' AS nchar(128)) AS nt_username, CAST('' AS nchar(12)) AS net_address,
    CAST('TCP/IP' AS nchar(12)) AS net_library, CAST(s.login_name AS nchar(128)) AS loginame,
    CAST(s.session_id AS binary(20)) AS sql_handle
FROM sys.[sessions$] s
GO
CREATE VIEW sys.syslogins AS
SELECT CAST(sid AS varbinary(85)) AS sid, name, name AS loginname, create_date AS createdate,
    CAST('master' AS sysname) AS dbname, 0 AS isntname, 0 AS isntgroup, 1 AS hasaccess, 1 AS sysadmin
FROM sys.server_principals
WHERE type = 'S'
GO
CREATE VIEW sys.sysfiles AS
SELECT CAST(file_id AS smallint) AS fileid, CAST(1 AS smallint) AS groupid, size, max_size AS maxsize, growth,
    0 AS status, 0 AS perf, name, physical_name AS filename
FROM sys.master_files
WHERE database_id = DB_ID()
GO
CREATE VIEW sys.sysconfigures AS
SELECT CAST(value AS int) AS value, configuration_id AS config, description AS comment,
    CAST(0 AS smallint) AS status
FROM sys.configurations
GO
CREATE VIEW sys.sysservers AS
SELECT CAST(0 AS smallint) AS srvid, name AS srvname, product AS srvproduct, provider AS providername,
    data_source AS datasource
FROM sys.servers
GO
CREATE VIEW sys.spt_values AS
SELECT CAST(NULL AS nvarchar(35)) AS name, CAST(id - 1 AS int) AS number, CAST('P' AS nchar(3)) AS type,
    CAST((id - 1) / 8 + 1 AS int) AS low, POWER(2, CAST((id - 1) % 8 AS int)) AS high, 0 AS status
FROM generate_rows(2048)
UNION ALL
SELECT CAST(v.name AS nvarchar(35)), v.number, CAST(v.type AS nchar(3)), CAST(NULL AS int), CAST(NULL AS int), 0
FROM (VALUES ('No Action', 0, 'I'), ('Cascade', 1, 'I'), ('No', 0, 'B'), ('Yes', 1, 'B'), ('none', 2, 'B')) v
        (name, number, type)
