SELECT
    ns.name AS schema_name,
    n.name AS object_name,
    ts.name AS referenced_schema_name,
    t.name AS referenced_object_name,
    ISNULL(MAX(OBJECTPROPERTY(o.id, N'IsSchemaBound')), 0) AS is_schema_bound
FROM dbo.sysdepends AS d
INNER JOIN dbo.sysobjects AS o ON o.id = d.id
INNER JOIN dbo.sysobjects AS n ON n.id = CASE WHEN o.parent_obj = 0 THEN o.id ELSE o.parent_obj END
INNER JOIN dbo.sysusers AS ns ON ns.uid = n.uid
INNER JOIN dbo.sysobjects AS t ON t.id = d.depid
INNER JOIN dbo.sysusers AS ts ON ts.uid = t.uid
WHERE o.xtype <> 'TR'
    AND t.id <> n.id
GROUP BY ns.name, n.name, ts.name, t.name
ORDER BY ns.name, n.name, ts.name, t.name
