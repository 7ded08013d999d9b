SELECT
    u.name AS principal_name,
    CASE
        WHEN u.issqlrole = 1 THEN N'DATABASE_ROLE'
        WHEN u.isapprole = 1 THEN N'APPLICATION_ROLE'
        ELSE N'SQL_USER'
    END AS kind,
    0 AS is_disabled
FROM dbo.sysusers AS u
ORDER BY u.name
