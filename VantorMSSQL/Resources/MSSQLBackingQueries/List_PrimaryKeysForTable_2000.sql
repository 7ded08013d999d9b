-- One row per key column, in key order. A name that the server made up, such as PK__table__0A1B2C3D, is not given.
SELECT
    c.name AS column_name,
    CASE WHEN pk.name NOT LIKE N'PK[_][_]%[_][_]________' THEN pk.name END AS key_name,
    CASE WHEN i.indid = 1 THEN 1 ELSE 0 END AS is_clustered,
    CONVERT(int, INDEXKEY_PROPERTY(i.id, i.indid, ik.keyno, 'IsDescending')) AS is_descending
FROM dbo.sysobjects AS pk
INNER JOIN dbo.sysobjects AS o ON o.id = pk.parent_obj
INNER JOIN dbo.sysindexes AS i ON i.id = o.id AND i.name = pk.name
INNER JOIN dbo.sysindexkeys AS ik ON ik.id = i.id AND ik.indid = i.indid
INNER JOIN dbo.syscolumns AS c ON c.id = ik.id AND c.colid = ik.colid
WHERE o.id = OBJECT_ID(QUOTENAME(N'{SCHEMA}') + N'.' + QUOTENAME(N'{TABLE}'))
    AND pk.xtype = 'PK'
ORDER BY ik.keyno
