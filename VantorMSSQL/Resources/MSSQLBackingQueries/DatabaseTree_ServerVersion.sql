-- The callers know Azure by "Azure" in this text and SQL Server 2000 by "2000" and "8.". A banner may hold them for
-- other reasons: "Windows Server 2022 Datacenter: Azure Edition", or build 15.0.2000 on Ubuntu 18.04. So the engine's
-- kind decides: 5 is Azure SQL Database, 6 and 11 are Synapse, 12 is a SQL database in Fabric. Managed instances (8)
-- and Edge (9) are whole servers. Of another server whose banner would be mistaken the first line is enough, which
-- names the product and the build.
SELECT
    CASE
        WHEN v.is_azure = 0 AND v.is_2000 = 0 AND v.line LIKE N'%2000%' AND v.line LIKE N'%8.%'
            THEN REPLACE(v.line, N'8.', N'8 .')
        ELSE v.line
    END AS server_version
FROM (
    SELECT
        b.is_azure,
        b.is_2000,
        CASE
            WHEN b.is_azure = 1 AND b.banner LIKE N'%azure%' THEN b.banner
            WHEN b.is_azure = 1 THEN N'Microsoft SQL Azure - ' + b.banner
            WHEN b.banner LIKE N'%azure%' OR (b.is_2000 = 0 AND b.banner LIKE N'%2000%' AND b.banner LIKE N'%8.%')
                THEN REPLACE(
                    REPLACE(
                        LEFT(b.banner, CHARINDEX(NCHAR(10), b.banner + NCHAR(10)) - 1),
                        N'SQL Azure',
                        N'SQL Managed Instance'
                    ),
                    N'Azure',
                    N''
                )
            ELSE b.banner
        END AS line
    FROM (
        SELECT
            @@VERSION COLLATE Latin1_General_CI_AS AS banner,
            CASE WHEN CONVERT(int, SERVERPROPERTY('EngineEdition')) IN (5, 6, 11, 12) THEN 1 ELSE 0 END AS is_azure,
            CASE WHEN CONVERT(nvarchar(128), SERVERPROPERTY('ProductVersion')) LIKE N'8.%' THEN 1 ELSE 0 END AS is_2000
    ) AS b
) AS v
