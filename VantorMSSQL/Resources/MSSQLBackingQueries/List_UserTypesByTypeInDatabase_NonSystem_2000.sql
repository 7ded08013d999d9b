-- There are no table types yet; the caller's clause asks for them all the same.
SELECT
    d.schema_name,
    d.type_name
FROM (
    SELECT
        u.name AS schema_name,
        t.name AS type_name,
        0 AS is_table_type
    FROM dbo.systypes AS t
    INNER JOIN dbo.sysusers AS u ON u.uid = t.uid
    WHERE t.xusertype > 256
) AS d
WHERE 1 = 1 {EXTRA_WHERE_CLAUSE}
ORDER BY d.schema_name, d.type_name
