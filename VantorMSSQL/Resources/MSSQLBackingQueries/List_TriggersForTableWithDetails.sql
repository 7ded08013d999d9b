-- The definition is NULL when the trigger is encrypted, is a CLR trigger or may not be seen by this login.
SELECT
    tr.name AS trigger_name,
    CASE WHEN tr.is_instead_of_trigger = 1 THEN N'INSTEAD OF' ELSE N'AFTER' END AS timing,
    STUFF(
        CASE WHEN EXISTS (
            SELECT 1 FROM sys.trigger_events AS e WHERE e.object_id = tr.object_id AND e.type = 1
        ) THEN N', INSERT' ELSE N'' END
        + CASE WHEN EXISTS (
            SELECT 1 FROM sys.trigger_events AS e WHERE e.object_id = tr.object_id AND e.type = 2
        ) THEN N', UPDATE' ELSE N'' END
        + CASE WHEN EXISTS (
            SELECT 1 FROM sys.trigger_events AS e WHERE e.object_id = tr.object_id AND e.type = 3
        ) THEN N', DELETE' ELSE N'' END,
        1, 2, N''
    ) AS event,
    m.definition AS statement,
    CASE WHEN tr.is_disabled = 1 THEN 0 ELSE 1 END AS enabled
FROM sys.triggers AS tr
INNER JOIN sys.objects AS o ON o.object_id = tr.parent_id
INNER JOIN sys.schemas AS s ON s.schema_id = o.schema_id
LEFT JOIN sys.sql_modules AS m ON m.object_id = tr.object_id
WHERE tr.parent_class = 1
    AND tr.is_ms_shipped = 0
    AND s.name = N'{TABLE_SCHEMA}'
    AND o.name = N'{TABLE_NAME}'
ORDER BY tr.name
