-- Every database, also one that cannot be opened at the moment: the last column says why. On Azure HAS_DBACCESS knows
-- the current database only.
SELECT
    d.name AS database_name,
    CONVERT(int, d.database_id) AS database_id,
    CASE
        WHEN d.state <> 0 THEN LOWER(REPLACE(d.state_desc, N'_', N' '))
        WHEN CONVERT(int, SERVERPROPERTY('EngineEdition')) IN (5, 6, 11, 12) THEN NULL
        WHEN HAS_DBACCESS(d.name) = 1 THEN NULL
        WHEN d.user_access = 1 THEN N'single user'
        ELSE N'no access'
    END AS unavailable
FROM sys.databases AS d
ORDER BY d.name
