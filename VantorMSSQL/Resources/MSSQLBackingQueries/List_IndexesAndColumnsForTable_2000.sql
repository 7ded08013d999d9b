-- One row per key column, in key order. The primary key's index is called PRIMARY: it changes with the key only. Unique
-- constraints are left out: their indexes cannot be dropped.
SELECT
    CONVERT(int, i.indid) AS IndexId,
    CASE WHEN pk.id IS NOT NULL THEN N'PRIMARY' ELSE i.name END AS indexName,
    CONVERT(int, INDEXPROPERTY(i.id, i.name, N'IsUnique')) AS isUnique,
    CASE WHEN i.indid = 1 THEN 0 ELSE 1 END AS isNonClustered,
    c.name AS columnName
FROM dbo.sysindexes AS i
INNER JOIN dbo.sysobjects AS o ON o.id = i.id
INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
INNER JOIN dbo.sysindexkeys AS ik ON ik.id = i.id AND ik.indid = i.indid
INNER JOIN dbo.syscolumns AS c ON c.id = ik.id AND c.colid = ik.colid
LEFT JOIN dbo.sysobjects AS pk ON pk.parent_obj = i.id AND pk.name = i.name AND pk.xtype = 'PK'
LEFT JOIN dbo.sysobjects AS uq ON uq.parent_obj = i.id AND uq.name = i.name AND uq.xtype = 'UQ'
WHERE u.name = N'{TABLE_SCHEMA}'
    AND o.name = N'{TABLE_NAME}'
    AND o.xtype = 'U'
    AND uq.id IS NULL
    AND i.indid BETWEEN 1 AND 254
    AND INDEXPROPERTY(i.id, i.name, N'IsStatistics') = 0
    AND INDEXPROPERTY(i.id, i.name, N'IsHypothetical') = 0
ORDER BY i.indid, ik.keyno
