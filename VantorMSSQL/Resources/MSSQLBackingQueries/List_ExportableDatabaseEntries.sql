-- Grouped by kind, named as the catalog names it.
SELECT
    s.name + N'.' + o.name AS entry_name,
    s.name AS schema_name,
    o.name AS object_name,
    o.type_desc AS kind
FROM sys.objects AS o
INNER JOIN sys.schemas AS s ON s.schema_id = o.schema_id
WHERE o.is_ms_shipped = 0
    AND s.name <> N'sys'
    AND o.type IN ('U', 'V', 'P', 'PC', 'FN', 'IF', 'TF', 'FS', 'FT', 'TR')
    AND NOT EXISTS (
        SELECT 1
        FROM sys.extended_properties AS p
        WHERE p.class = 1
            AND p.major_id = o.object_id
            AND p.minor_id = 0
            AND p.name = N'microsoft_database_tools_support'
    )
ORDER BY o.type_desc, s.name, o.name
