-- Schemas that a user's table can be in.
SELECT s.name AS schema_name
FROM sys.schemas AS s
WHERE s.schema_id < 16384
    AND s.name NOT IN (N'guest', N'INFORMATION_SCHEMA', N'sys')
ORDER BY s.name
