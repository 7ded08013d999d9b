-- Numbered procedures follow the first one, each in its row and on a line of its own. One whose definition cannot be
-- read gives no row.
SELECT
    CASE WHEN d.procedure_number > 1 THEN NCHAR(13) + NCHAR(10) ELSE N'' END
        + CASE WHEN d.uses_ansi_nulls = 1 THEN N'SET ANSI_NULLS ON' ELSE N'SET ANSI_NULLS OFF' END
        AS ansi_nulls,
    CASE WHEN d.uses_quoted_identifier = 1 THEN N'SET QUOTED_IDENTIFIER ON' ELSE N'SET QUOTED_IDENTIFIER OFF' END
        AS quoted_identifier,
    d.definition AS definition
FROM (
    SELECT
        m.object_id,
        1 AS procedure_number,
        m.uses_ansi_nulls,
        m.uses_quoted_identifier,
        m.definition
    FROM sys.sql_modules AS m
    UNION ALL
    SELECT
        m.object_id,
        n.procedure_number,
        m.uses_ansi_nulls,
        m.uses_quoted_identifier,
        n.definition
    FROM sys.sql_modules AS m
    INNER JOIN sys.numbered_procedures AS n ON n.object_id = m.object_id
) AS d
INNER JOIN sys.objects AS o ON o.object_id = d.object_id
INNER JOIN sys.schemas AS s ON s.schema_id = o.schema_id
WHERE s.name = N'{SCHEMA}'
    AND o.name = N'{PROCEDURE_NAME}'
    AND o.type = 'P'
    AND d.definition IS NOT NULL
ORDER BY d.procedure_number
