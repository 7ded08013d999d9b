SELECT c.name AS column_name
FROM dbo.sysobjects AS pk
INNER JOIN dbo.sysobjects AS o ON o.id = pk.parent_obj
INNER JOIN dbo.sysindexes AS i ON i.id = o.id AND i.name = pk.name
INNER JOIN dbo.sysindexkeys AS ik ON ik.id = i.id AND ik.indid = i.indid
INNER JOIN dbo.syscolumns AS c ON c.id = ik.id AND c.colid = ik.colid
WHERE o.id = OBJECT_ID(QUOTENAME(N'{SCHEMA}') + N'.' + QUOTENAME(N'{TABLE}'))
    AND pk.xtype = 'PK'
ORDER BY ik.keyno
