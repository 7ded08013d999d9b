-- Every foreign key, for the order in which rows are inserted.
SELECT
    u.name AS schema_name,
    o.name AS table_name,
    f.name AS key_name,
    ru.name AS referenced_schema_name,
    rt.name AS referenced_table_name,
    OBJECTPROPERTY(f.id, N'CnstIsDisabled') AS is_disabled,
    OBJECTPROPERTY(f.id, N'CnstIsNotTrusted') AS is_not_trusted
FROM dbo.sysreferences AS fk
INNER JOIN dbo.sysobjects AS f ON f.id = fk.constid
INNER JOIN dbo.sysobjects AS o ON o.id = fk.fkeyid
INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
INNER JOIN dbo.sysobjects AS rt ON rt.id = fk.rkeyid
INNER JOIN dbo.sysusers AS ru ON ru.uid = rt.uid
ORDER BY u.name, o.name, f.name
