SELECT
    t.name AS [Name],
    u.name AS [Schema],
    b.name AS [Base type],
    CONVERT(int, t.length) AS [Length (bytes)],
    CONVERT(int, t.prec) AS [Precision],
    CONVERT(int, t.scale) AS [Scale],
    CASE t.allownulls WHEN 1 THEN N'yes' ELSE N'no' END AS [Nullable],
    t.collation AS [Collation]
FROM dbo.systypes AS t
INNER JOIN dbo.sysusers AS u ON u.uid = t.uid
LEFT JOIN dbo.systypes AS b ON b.xusertype = t.xtype
WHERE u.name = N'{SCHEMA}'
    AND t.name = N'{TYPE}'
