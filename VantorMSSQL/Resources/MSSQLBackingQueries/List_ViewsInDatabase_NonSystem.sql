-- Azure has views of its own in sys that are not marked as shipped.
SELECT
    v.object_id,
    s.name AS schema_name,
    v.name AS view_name
FROM sys.views AS v
INNER JOIN sys.schemas AS s ON s.schema_id = v.schema_id
WHERE v.is_ms_shipped = 0
    AND s.name <> N'sys'
    AND NOT EXISTS (
        SELECT 1
        FROM sys.extended_properties AS p
        WHERE p.class = 1
            AND p.major_id = v.object_id
            AND p.minor_id = 0
            AND p.name = N'microsoft_database_tools_support'
    )
ORDER BY s.name, v.name
