-- Logins and server roles, as far as this login may see them.
SELECT p.name AS principal_name, p.type_desc AS kind, CONVERT(int, p.is_disabled) AS is_disabled
FROM sys.server_principals AS p
WHERE p.type IN ('S', 'U', 'G', 'R', 'E', 'X')
    AND p.name NOT LIKE N'##%'
ORDER BY p.name
