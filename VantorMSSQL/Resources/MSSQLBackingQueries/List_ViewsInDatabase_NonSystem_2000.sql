SELECT
    o.id AS object_id,
    u.name AS schema_name,
    o.name AS view_name
FROM dbo.sysobjects AS o
INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
WHERE o.xtype = 'V'
    AND OBJECTPROPERTY(o.id, N'IsMSShipped') = 0
ORDER BY u.name, o.name
