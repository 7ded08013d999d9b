-- A database that this login cannot open is left out. On Azure HAS_DBACCESS knows the current database only.
SELECT
    d.name AS database_name,
    CONVERT(int, d.database_id) AS database_id
FROM sys.databases AS d
WHERE HAS_DBACCESS(d.name) = 1
    OR CONVERT(int, SERVERPROPERTY('EngineEdition')) = 5
ORDER BY d.name
