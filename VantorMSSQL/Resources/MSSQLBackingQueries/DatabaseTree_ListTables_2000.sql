SELECT
    o.id AS object_id,
    u.name AS schema_name,
    o.name AS table_name
FROM dbo.sysobjects AS o
INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
WHERE o.xtype = 'U'
    AND OBJECTPROPERTY(o.id, N'IsMSShipped') = 0
    AND o.name <> N'dtproperties'
ORDER BY
    CASE WHEN u.name = USER_NAME() THEN 0 ELSE 1 END,
    u.name,
    o.name
