-- A function whose definition cannot be read gives no row.
SELECT
    CASE WHEN m.uses_ansi_nulls = 1 THEN N'SET ANSI_NULLS ON' ELSE N'SET ANSI_NULLS OFF' END AS ansi_nulls,
    CASE WHEN m.uses_quoted_identifier = 1 THEN N'SET QUOTED_IDENTIFIER ON' ELSE N'SET QUOTED_IDENTIFIER OFF' END
        AS quoted_identifier,
    m.definition AS definition
FROM sys.objects AS o
INNER JOIN sys.schemas AS s ON s.schema_id = o.schema_id
INNER JOIN sys.sql_modules AS m ON m.object_id = o.object_id
WHERE s.name = N'{SCHEMA}'
    AND o.name = N'{FUNCTION_NAME}'
    AND o.type IN ('FN', 'IF', 'TF')
    AND m.definition IS NOT NULL
