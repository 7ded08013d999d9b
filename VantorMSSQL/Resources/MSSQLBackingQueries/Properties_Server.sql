-- One row about the server: a column for each property, NULL where it does not apply.
SELECT
    CONVERT(nvarchar(128), SERVERPROPERTY('ServerName')) AS [Name],
    CONVERT(nvarchar(128), SERVERPROPERTY('InstanceName')) AS [Instance],
    CONVERT(nvarchar(128), SERVERPROPERTY('Edition')) AS [Edition],
    CONVERT(nvarchar(128), SERVERPROPERTY('ProductVersion')) AS [Version],
    CONVERT(nvarchar(128), SERVERPROPERTY('ProductLevel')) AS [Level],
    CONVERT(nvarchar(128), SERVERPROPERTY('Collation')) AS [Collation],
    CASE CONVERT(int, SERVERPROPERTY('IsIntegratedSecurityOnly'))
        WHEN 1 THEN N'Windows'
        WHEN 0 THEN N'Windows and SQL Server'
    END AS [Logins],
    CASE CONVERT(int, SERVERPROPERTY('IsClustered')) WHEN 1 THEN N'yes' WHEN 0 THEN N'no' END AS [Clustered],
    SUSER_SNAME() AS [Logged in as],
    CASE IS_SRVROLEMEMBER('sysadmin') WHEN 1 THEN N'yes' WHEN 0 THEN N'no' END AS [Administrator],
    @@LANGUAGE AS [Language]
