SELECT
    s.name AS schema_name,
    o.name AS object_name,
    CASE
        WHEN o.type = 'U' THEN N'TABLE'
        WHEN o.type = 'V' THEN N'VIEW'
        WHEN o.type IN ('P', 'PC') THEN N'PROCEDURE'
        ELSE N'FUNCTION'
    END AS object_type
FROM sys.objects AS o
INNER JOIN sys.schemas AS s ON s.schema_id = o.schema_id
WHERE o.is_ms_shipped = 0
    AND s.name <> N'sys'
    AND o.type IN ('U', 'V', 'P', 'PC', 'FN', 'IF', 'TF', 'FS', 'FT')
    AND NOT EXISTS (
        SELECT 1
        FROM sys.extended_properties AS p
        WHERE p.class = 1
            AND p.major_id = o.object_id
            AND p.minor_id = 0
            AND p.name = N'microsoft_database_tools_support'
    )
ORDER BY s.name, o.name
