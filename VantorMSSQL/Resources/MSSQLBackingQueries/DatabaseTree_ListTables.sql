-- The tables of database diagrams are marked by an extended property, not as shipped.
SELECT
    t.object_id,
    s.name AS schema_name,
    t.name AS table_name
FROM sys.tables AS t
INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
WHERE t.is_ms_shipped = 0
    AND NOT EXISTS (
        SELECT 1
        FROM sys.extended_properties AS p
        WHERE p.class = 1
            AND p.major_id = t.object_id
            AND p.minor_id = 0
            AND p.name = N'microsoft_database_tools_support'
    )
ORDER BY
    CASE WHEN s.name = SCHEMA_NAME() THEN 0 ELSE 1 END,
    s.name,
    t.name
