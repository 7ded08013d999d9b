-- The type is written so that a DECLARE takes it. Of numbered procedures the first one counts.
SELECT
    p.name AS parameter_name,
    CASE
        WHEN t.xusertype > 256 THEN QUOTENAME(t.name)
        WHEN t.name IN (N'decimal', N'numeric')
            THEN t.name + N'(' + CONVERT(nvarchar(10), p.xprec) + N',' + CONVERT(nvarchar(10), p.xscale) + N')'
        WHEN t.name IN (N'nchar', N'nvarchar')
            THEN t.name + N'(' + CONVERT(nvarchar(10), p.length / 2) + N')'
        WHEN t.name IN (N'char', N'varchar', N'binary', N'varbinary')
            THEN t.name + N'(' + CONVERT(nvarchar(10), p.length) + N')'
        ELSE t.name
    END AS parameter_type,
    CONVERT(int, p.colid) AS parameter_id,
    CONVERT(bit, p.isoutparam) AS is_output,
    b.name AS base_type
FROM dbo.syscolumns AS p
INNER JOIN dbo.sysobjects AS o ON o.id = p.id
INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
INNER JOIN dbo.systypes AS t ON t.xusertype = p.xusertype
LEFT JOIN dbo.systypes AS b ON b.xusertype = p.xtype
WHERE u.name = N'{SCHEMA}'
    AND o.name = N'{PROCEDURE_NAME}'
    AND o.xtype = 'P'
    AND p.number <= 1
ORDER BY p.colid
