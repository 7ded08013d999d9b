SELECT DISTINCT u.name AS schema_name, o.name AS object_name
FROM dbo.sysdepends AS d
INNER JOIN dbo.sysobjects AS o ON o.id = d.id
INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
WHERE d.depid = OBJECT_ID(QUOTENAME(N'{SCHEMA}') + N'.' + QUOTENAME(N'{TABLE}'))
    AND d.id <> d.depid
ORDER BY u.name, o.name
