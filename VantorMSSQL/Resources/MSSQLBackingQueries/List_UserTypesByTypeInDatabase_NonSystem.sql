-- The caller's clause asks for is_table_type, which sys.types has only since 2008. A table type's system type is 243.
SELECT
    u.schema_name,
    u.type_name
FROM (
    SELECT
        s.name AS schema_name,
        t.name AS type_name,
        CASE WHEN t.system_type_id = 243 THEN 1 ELSE 0 END AS is_table_type
    FROM sys.types AS t
    INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
    WHERE t.is_user_defined = 1
        AND t.is_assembly_type = 0
) AS u
WHERE 1 = 1 {EXTRA_WHERE_CLAUSE}
ORDER BY u.schema_name, u.type_name
