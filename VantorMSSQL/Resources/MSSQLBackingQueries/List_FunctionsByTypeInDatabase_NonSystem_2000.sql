-- The caller's clause tells the kinds of function apart by DATA_TYPE.
SELECT
    f.schema_name,
    f.function_name
FROM (
    SELECT
        u.name AS schema_name,
        o.name AS function_name,
        CASE WHEN o.xtype IN ('IF', 'TF') THEN 'TABLE' ELSE 'SCALAR' END AS DATA_TYPE
    FROM dbo.sysobjects AS o
    INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
    WHERE o.xtype IN ('FN', 'IF', 'TF')
        AND OBJECTPROPERTY(o.id, N'IsMSShipped') = 0
) AS f
WHERE 1 = 1 {EXTRA_WHERE_CLAUSE}
ORDER BY f.schema_name, f.function_name
