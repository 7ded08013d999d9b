-- Statistics stand in sysindexes, too; 0 is the heap and 255 the text pages.
SELECT i.name AS index_name
FROM dbo.sysindexes AS i
INNER JOIN dbo.sysobjects AS o ON o.id = i.id
WHERE o.id = OBJECT_ID(QUOTENAME(N'{SCHEMA}') + N'.' + QUOTENAME(N'{TABLE}'))
    AND o.xtype = 'U'
    AND i.indid BETWEEN 1 AND 254
    AND INDEXPROPERTY(i.id, i.name, N'IsStatistics') = 0
    AND INDEXPROPERTY(i.id, i.name, N'IsHypothetical') = 0
ORDER BY i.name
