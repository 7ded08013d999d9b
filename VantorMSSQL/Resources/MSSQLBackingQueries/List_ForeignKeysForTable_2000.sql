-- One row per column pair. The actions are 0 none and 1 cascade.
SELECT
    f.name AS keyName,
    ru.name AS referencedTableSchema,
    rt.name AS referencedTableName,
    CONVERT(int, OBJECTPROPERTY(f.id, N'CnstIsUpdateCascade')) AS update_referential_action,
    CONVERT(int, OBJECTPROPERTY(f.id, N'CnstIsDeleteCascade')) AS delete_referential_action,
    lc.name AS localColumnName,
    rc.name AS referencedColumnName,
    CONVERT(int, OBJECTPROPERTY(f.id, N'CnstIsDisabled')) AS is_disabled,
    CONVERT(int, OBJECTPROPERTY(f.id, N'CnstIsNotTrusted')) AS is_not_trusted,
    CASE WHEN OBJECTPROPERTY(f.id, N'CnstIsNotRepl') = 1 THEN 1 ELSE 0 END AS is_not_for_replication
FROM dbo.sysforeignkeys AS fk
INNER JOIN dbo.sysobjects AS f ON f.id = fk.constid
INNER JOIN dbo.sysobjects AS o ON o.id = fk.fkeyid
INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
INNER JOIN dbo.syscolumns AS lc ON lc.id = fk.fkeyid AND lc.colid = fk.fkey
INNER JOIN dbo.sysobjects AS rt ON rt.id = fk.rkeyid
INNER JOIN dbo.sysusers AS ru ON ru.uid = rt.uid
INNER JOIN dbo.syscolumns AS rc ON rc.id = fk.rkeyid AND rc.colid = fk.rkey
WHERE u.name = N'{TABLE_SCHEMA}'
    AND o.name = N'{TABLE_NAME}'
ORDER BY f.name, fk.keyno
