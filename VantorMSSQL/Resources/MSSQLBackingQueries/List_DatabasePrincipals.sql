-- Users and roles of the current database, as far as this login may see them.
SELECT p.name AS principal_name, p.type_desc AS kind, 0 AS is_disabled
FROM sys.database_principals AS p
WHERE p.type IN ('S', 'U', 'G', 'R', 'A', 'E', 'X')
ORDER BY p.name
