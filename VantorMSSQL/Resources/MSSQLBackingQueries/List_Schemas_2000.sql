-- Owners take the place of schemas.
SELECT u.name AS schema_name
FROM dbo.sysusers AS u
WHERE u.islogin = 1
    AND u.name <> N'guest'
ORDER BY u.name
