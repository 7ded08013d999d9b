-- Every database, also one that cannot be opened at the moment: the last column says why.
SELECT
    d.name AS database_name,
    CONVERT(int, d.dbid) AS database_id,
    CASE
        WHEN HAS_DBACCESS(d.name) = 1 THEN NULL
        WHEN CONVERT(nvarchar(60), DATABASEPROPERTYEX(d.name, N'Status')) <> N'ONLINE'
            THEN LOWER(CONVERT(nvarchar(60), DATABASEPROPERTYEX(d.name, N'Status')))
        WHEN CONVERT(nvarchar(60), DATABASEPROPERTYEX(d.name, N'UserAccess')) = N'SINGLE_USER' THEN N'single user'
        ELSE N'no access'
    END AS unavailable
FROM master.dbo.sysdatabases AS d
ORDER BY d.name
