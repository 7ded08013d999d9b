-- A login that comes in through a group may have no default schema; dbo serves it then.
SELECT ISNULL(SCHEMA_NAME(), N'dbo') AS schema_name
