SELECT
    d.name AS database_name,
    CONVERT(int, d.dbid) AS database_id
FROM master.dbo.sysdatabases AS d
WHERE HAS_DBACCESS(d.name) = 1
ORDER BY d.name
