SELECT
    l.loginname AS principal_name,
    CASE
        WHEN l.isntgroup = 1 THEN N'WINDOWS_GROUP'
        WHEN l.isntname = 1 THEN N'WINDOWS_LOGIN'
        ELSE N'SQL_LOGIN'
    END AS kind,
    CASE WHEN l.hasaccess = 1 THEN 0 ELSE 1 END AS is_disabled
FROM master.dbo.syslogins AS l
ORDER BY l.loginname
