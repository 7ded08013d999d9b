-- Express, Azure SQL Database and Edge have no agent; 8 is a managed instance. A login also needs to see the jobs.
SELECT
    CONVERT(bit, CASE
        WHEN CONVERT(int, SERVERPROPERTY('EngineEdition')) IN (2, 3, 8)
            AND HAS_DBACCESS(N'msdb') = 1
            AND HAS_PERMS_BY_NAME(N'msdb.dbo.sysjobs_view', N'OBJECT', N'SELECT') = 1
            THEN 1
        ELSE 0
    END) AS is_available
