-- The object that a name means: of this owner, or without an owner the login's own or else that of dbo. The type is the
-- code of sysobjects; "TY" is a type of a user. A trigger has its table beside it.
SELECT
    u.name AS schema_name,
    o.name AS object_name,
    o.xtype AS object_type,
    pu.name AS parent_schema_name,
    p.name AS parent_name,
    CONVERT(nvarchar(1035), NULL) AS base_name,
    CONVERT(nvarchar(4000), NULL) AS definition
FROM dbo.sysobjects AS o
INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
LEFT JOIN dbo.sysobjects AS p ON p.id = o.parent_obj
LEFT JOIN dbo.sysusers AS pu ON pu.uid = p.uid
WHERE o.id = OBJECT_ID(
    CASE WHEN N'{SCHEMA}' = N'' THEN N'' ELSE QUOTENAME(N'{SCHEMA}') + N'.' END + QUOTENAME(N'{OBJECT}')
)
UNION ALL
SELECT
    u.name AS schema_name,
    t.name AS object_name,
    'TY' AS object_type,
    NULL AS parent_schema_name,
    NULL AS parent_name,
    NULL AS base_name,
    NULL AS definition
FROM dbo.systypes AS t
INNER JOIN dbo.sysusers AS u ON u.uid = t.uid
WHERE t.xusertype > 256
    AND t.name = N'{OBJECT}'
    AND (u.name = N'{SCHEMA}' OR N'{SCHEMA}' = N'')
