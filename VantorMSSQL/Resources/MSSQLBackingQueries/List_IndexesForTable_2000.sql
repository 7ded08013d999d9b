-- Statistics stand in sysindexes, too; 0 is the heap and 255 the text pages.
SELECT i.name AS index_name
FROM dbo.sysindexes AS i
INNER JOIN dbo.sysobjects AS o ON o.id = i.id
INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
WHERE u.name + N'.' + o.name = N'{TABLE_NAME}'
    AND o.xtype = 'U'
    AND i.indid BETWEEN 1 AND 254
    AND INDEXPROPERTY(i.id, i.name, N'IsStatistics') = 0
    AND INDEXPROPERTY(i.id, i.name, N'IsHypothetical') = 0
ORDER BY i.name
