-- Views, procedures, functions and types, by the type codes of sysobjects; "TY" is a type of a user.
SELECT
    u.name AS schemaName,
    o.name AS objectName,
    o.xtype AS objectType
FROM dbo.sysobjects AS o
INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
WHERE o.xtype IN ('V', 'P', 'FN', 'IF', 'TF')
    AND OBJECTPROPERTY(o.id, N'IsMSShipped') = 0
UNION ALL
SELECT
    u.name AS schemaName,
    t.name AS objectName,
    'TY' AS objectType
FROM dbo.systypes AS t
INNER JOIN dbo.sysusers AS u ON u.uid = t.uid
WHERE t.xusertype > 256
ORDER BY schemaName, objectName
