-- The procedures of database diagrams are marked by an extended property, not as shipped.
SELECT
    s.name AS schema_name,
    o.name AS procedure_name
FROM sys.objects AS o
INNER JOIN sys.schemas AS s ON s.schema_id = o.schema_id
WHERE o.type IN ('P', 'PC')
    AND o.is_ms_shipped = 0
    AND NOT EXISTS (
        SELECT 1
        FROM sys.extended_properties AS p
        WHERE p.class = 1
            AND p.major_id = o.object_id
            AND p.minor_id = 0
            AND p.name = N'microsoft_database_tools_support'
    )
ORDER BY s.name, o.name
