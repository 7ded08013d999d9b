-- One row about the current database: a column for each property, NULL where it does not apply.
SELECT
    d.name AS [Name],
    LOWER(REPLACE(d.state_desc, N'_', N' ')) AS [State],
    CONVERT(nvarchar(30), d.create_date, 120) AS [Created],
    SUSER_SNAME(d.owner_sid) AS [Owner],
    d.collation_name AS [Collation],
    CONVERT(int, d.compatibility_level) AS [Compatibility level],
    LOWER(REPLACE(d.recovery_model_desc, N'_', N' ')) AS [Recovery model],
    LOWER(REPLACE(d.user_access_desc, N'_', N' ')) AS [Access],
    CASE d.is_read_only WHEN 1 THEN N'yes' ELSE N'no' END AS [Read-only],
    CASE d.is_read_committed_snapshot_on WHEN 1 THEN N'on' ELSE N'off' END AS [Read committed snapshot],
    LOWER(d.snapshot_isolation_state_desc) AS [Snapshot isolation],
    (SELECT SUM(CONVERT(bigint, f.size)) * 8 FROM sys.database_files AS f WHERE f.type = 0) AS [Data files (KB)],
    (SELECT SUM(CONVERT(bigint, f.size)) * 8 FROM sys.database_files AS f WHERE f.type = 1) AS [Log files (KB)],
    (SELECT COUNT(*) FROM sys.tables AS t WHERE t.is_ms_shipped = 0) AS [Tables],
    (SELECT COUNT(*) FROM sys.views AS v WHERE v.is_ms_shipped = 0) AS [Views],
    (SELECT COUNT(*) FROM sys.procedures AS p WHERE p.is_ms_shipped = 0) AS [Procedures]
FROM sys.databases AS d
WHERE d.database_id = DB_ID()
