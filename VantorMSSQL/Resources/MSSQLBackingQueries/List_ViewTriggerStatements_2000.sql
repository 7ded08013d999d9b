-- The triggers of views, or of one view, are named in comments: their texts stand in several rows each.
SELECT
    N'OBJECT' AS kind,
    u.name AS schema_name,
    v.name AS object_name,
    CONVERT(nvarchar(4000), NULL) AS condition,
    N'-- Not scripted: trigger ' + REPLACE(REPLACE(QUOTENAME(g.name), NCHAR(13), N' '), NCHAR(10), N' ') AS statement,
    N'TRIGGER' AS part,
    CONVERT(nvarchar(200), NULL) AS settings
FROM dbo.sysobjects AS g
INNER JOIN dbo.sysobjects AS v ON v.id = g.parent_obj
INNER JOIN dbo.sysusers AS u ON u.uid = v.uid
WHERE g.xtype = 'TR'
    AND v.xtype = 'V'
    AND (N'{OBJECT}' = N'' OR (u.name = N'{SCHEMA}' AND v.name = N'{OBJECT}'))
ORDER BY u.name, v.name, g.name
