-- Grouped by kind, under the names that later catalogs have for it.
SELECT
    u.name + N'.' + o.name AS entry_name,
    u.name AS schema_name,
    o.name AS object_name,
    CASE o.xtype
        WHEN 'U' THEN N'USER_TABLE'
        WHEN 'V' THEN N'VIEW'
        WHEN 'P' THEN N'SQL_STORED_PROCEDURE'
        WHEN 'FN' THEN N'SQL_SCALAR_FUNCTION'
        WHEN 'IF' THEN N'SQL_INLINE_TABLE_VALUED_FUNCTION'
        WHEN 'TF' THEN N'SQL_TABLE_VALUED_FUNCTION'
        ELSE N'SQL_TRIGGER'
    END AS kind
FROM dbo.sysobjects AS o
INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
WHERE o.xtype IN ('U', 'V', 'P', 'FN', 'IF', 'TF', 'TR')
    AND OBJECTPROPERTY(o.id, N'IsMSShipped') = 0
    AND o.name <> N'dtproperties'
ORDER BY kind, u.name, o.name
