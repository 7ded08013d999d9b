SELECT
    u.name AS schema_name,
    o.name AS procedure_name
FROM dbo.sysobjects AS o
INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
WHERE o.xtype = 'P'
    AND OBJECTPROPERTY(o.id, N'IsMSShipped') = 0
ORDER BY u.name, o.name
