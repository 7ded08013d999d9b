-- One row per key column of every index and the primary key, in key order. Unique constraints are left out. This
-- version has no included columns, filters, compression and partitions, and an index cannot be disabled.
SELECT
    i.name AS index_name,
    c.name AS column_name,
    0 AS is_included,
    CONVERT(int, INDEXKEY_PROPERTY(i.id, i.indid, ik.keyno, N'IsDescending')) AS is_descending,
    CONVERT(int, i.OrigFillFactor) AS fill_factor,
    CONVERT(int, INDEXPROPERTY(i.id, i.name, N'IsPadIndex')) AS is_padded,
    CASE WHEN i.status & 1 = 1 THEN 1 ELSE 0 END AS ignores_duplicates,
    CASE WHEN i.status & 16777216 <> 0 THEN 1 ELSE 0 END AS is_without_recompute,
    CASE WHEN INDEXPROPERTY(i.id, i.name, N'IsRowLockDisallowed') = 1 THEN 0 ELSE 1 END AS allows_row_locks,
    CASE WHEN INDEXPROPERTY(i.id, i.name, N'IsPageLockDisallowed') = 1 THEN 0 ELSE 1 END AS allows_page_locks,
    0 AS is_disabled,
    CONVERT(nvarchar(4000), NULL) AS filter_definition,
    CONVERT(nvarchar(4000), NULL) AS compression,
    0 AS is_sequential,
    CASE WHEN i.groupid <> base.groupid THEN FILEGROUP_NAME(i.groupid) END AS data_space,
    CONVERT(nvarchar(128), NULL) AS partition_column,
    CASE WHEN k.xtype = 'PK' THEN 1 ELSE 0 END AS is_primary_key
FROM dbo.sysindexes AS i
INNER JOIN dbo.sysobjects AS o ON o.id = i.id
INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
INNER JOIN dbo.sysindexes AS base ON base.id = i.id AND base.indid IN (0, 1)
INNER JOIN dbo.sysindexkeys AS ik ON ik.id = i.id AND ik.indid = i.indid
INNER JOIN dbo.syscolumns AS c ON c.id = ik.id AND c.colid = ik.colid
LEFT JOIN dbo.sysobjects AS k ON k.parent_obj = i.id AND k.name = i.name AND k.xtype IN ('PK', 'UQ')
WHERE u.name = N'{TABLE_SCHEMA}'
    AND o.name = N'{TABLE_NAME}'
    AND o.xtype = 'U'
    AND (k.id IS NULL OR k.xtype = 'PK')
    AND i.indid BETWEEN 1 AND 254
    AND INDEXPROPERTY(i.id, i.name, N'IsStatistics') = 0
    AND INDEXPROPERTY(i.id, i.name, N'IsHypothetical') = 0
ORDER BY i.indid, ik.keyno
