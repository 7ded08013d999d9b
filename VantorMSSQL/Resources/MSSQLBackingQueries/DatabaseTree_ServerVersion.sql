-- SQL Server 2000 is known by "2000" and "8." in its banner. Newer banners may hold both by chance (build 15.0.2000
-- on Ubuntu 18.04): of such a one the first line is enough, which names the product and the build only.
SELECT
    CASE
        WHEN CONVERT(nvarchar(128), SERVERPROPERTY('ProductVersion')) NOT LIKE N'8.%'
            AND @@VERSION LIKE N'%2000%'
            AND @@VERSION LIKE N'%8.%'
            AND @@VERSION NOT LIKE N'%Azure%'
            THEN LEFT(@@VERSION, CHARINDEX(NCHAR(10), @@VERSION + NCHAR(10)) - 1)
        ELSE @@VERSION
    END AS server_version
