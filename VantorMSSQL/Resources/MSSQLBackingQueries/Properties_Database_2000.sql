SELECT
    d.name AS [Name],
    LOWER(CONVERT(nvarchar(60), DATABASEPROPERTYEX(d.name, 'Status'))) AS [State],
    CONVERT(nvarchar(30), d.crdate, 120) AS [Created],
    SUSER_SNAME(d.sid) AS [Owner],
    CONVERT(nvarchar(128), DATABASEPROPERTYEX(d.name, 'Collation')) AS [Collation],
    CONVERT(int, d.cmptlevel) AS [Compatibility level],
    LOWER(CONVERT(nvarchar(60), DATABASEPROPERTYEX(d.name, 'Recovery'))) AS [Recovery model],
    LOWER(REPLACE(CONVERT(nvarchar(60), DATABASEPROPERTYEX(d.name, 'UserAccess')), N'_', N' ')) AS [Access],
    (SELECT COUNT(*) FROM dbo.sysobjects AS o WHERE o.xtype = 'U') AS [Tables]
FROM master.dbo.sysdatabases AS d
WHERE d.dbid = DB_ID()
