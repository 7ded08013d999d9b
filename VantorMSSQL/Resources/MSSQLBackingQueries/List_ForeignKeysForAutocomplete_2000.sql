-- Every foreign key, one row per column pair.
SELECT
    u.name AS schemaName,
    o.name AS tableName,
    lc.name AS columnName,
    ru.name AS referencedSchemaName,
    rt.name AS referencedTableName,
    rc.name AS referencedColumnName,
    f.name AS keyName
FROM dbo.sysforeignkeys AS fk
INNER JOIN dbo.sysobjects AS f ON f.id = fk.constid
INNER JOIN dbo.sysobjects AS o ON o.id = fk.fkeyid
INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
INNER JOIN dbo.syscolumns AS lc ON lc.id = fk.fkeyid AND lc.colid = fk.fkey
INNER JOIN dbo.sysobjects AS rt ON rt.id = fk.rkeyid
INNER JOIN dbo.sysusers AS ru ON ru.uid = rt.uid
INNER JOIN dbo.syscolumns AS rc ON rc.id = fk.rkeyid AND rc.colid = fk.rkey
ORDER BY u.name, o.name, f.name, fk.keyno
