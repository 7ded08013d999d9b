-- The caller's clause tells the kinds of function apart by DATA_TYPE.
SELECT
    f.schema_name,
    f.function_name
FROM (
    SELECT
        s.name AS schema_name,
        o.name AS function_name,
        CASE WHEN o.type IN ('IF', 'TF', 'FT') THEN 'TABLE' ELSE 'SCALAR' END AS DATA_TYPE
    FROM sys.objects AS o
    INNER JOIN sys.schemas AS s ON s.schema_id = o.schema_id
    WHERE o.type IN ('FN', 'IF', 'TF', 'FS', 'FT')
        AND o.is_ms_shipped = 0
        AND NOT EXISTS (
            SELECT 1
            FROM sys.extended_properties AS p
            WHERE p.class = 1
                AND p.major_id = o.object_id
                AND p.minor_id = 0
                AND p.name = N'microsoft_database_tools_support'
        )
) AS f
WHERE 1 = 1 {EXTRA_WHERE_CLAUSE}
ORDER BY f.schema_name, f.function_name
