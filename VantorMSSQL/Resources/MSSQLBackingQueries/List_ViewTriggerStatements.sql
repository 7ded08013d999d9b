-- The triggers of views, or of one view, each as statements with the condition under which they have something to do.
-- What cannot be seen is named in a comment.
DECLARE @crlf nvarchar(2)
SET @crlf = NCHAR(13) + NCHAR(10)

SELECT
    N'OBJECT' AS kind,
    s.name AS schema_name,
    v.name AS object_name,
    N'OBJECT_ID(N''' + REPLACE(QUOTENAME(s.name) + N'.' + QUOTENAME(g.name), N'''', N'''''') + N''') IS NULL'
        AS condition,
    ISNULL(
        m.definition COLLATE DATABASE_DEFAULT,
        N'-- Not scripted: trigger ' + REPLACE(REPLACE(QUOTENAME(g.name), NCHAR(13), N' '), NCHAR(10), N' ')
            + N' is encrypted or may not be seen by this login.'
    ) AS statement,
    N'TRIGGER' AS part,
    N'SET ANSI_NULLS ' + CASE WHEN m.uses_ansi_nulls = 0 THEN N'OFF' ELSE N'ON' END + @crlf + N'GO' + @crlf
        + N'SET QUOTED_IDENTIFIER ' + CASE WHEN m.uses_quoted_identifier = 0 THEN N'OFF' ELSE N'ON' END
        + @crlf + N'GO' + @crlf AS settings
FROM sys.triggers AS g
INNER JOIN sys.views AS v ON v.object_id = g.parent_id
INNER JOIN sys.schemas AS s ON s.schema_id = v.schema_id
LEFT JOIN sys.sql_modules AS m ON m.object_id = g.object_id
WHERE g.parent_class = 1
    AND g.is_ms_shipped = 0
    AND v.is_ms_shipped = 0
    AND (N'{OBJECT}' = N'' OR (s.name = N'{SCHEMA}' AND v.name = N'{OBJECT}'))
UNION ALL
SELECT
    N'OBJECT',
    s.name,
    v.name,
    NULL,
    N'DISABLE TRIGGER ' + QUOTENAME(s.name) + N'.' + QUOTENAME(g.name) + N' ON '
        + QUOTENAME(s.name) + N'.' + QUOTENAME(v.name),
    N'TRIGGER',
    NULL
FROM sys.triggers AS g
INNER JOIN sys.views AS v ON v.object_id = g.parent_id
INNER JOIN sys.schemas AS s ON s.schema_id = v.schema_id
INNER JOIN sys.sql_modules AS m ON m.object_id = g.object_id AND m.definition IS NOT NULL
WHERE g.parent_class = 1
    AND g.is_disabled = 1
    AND g.is_ms_shipped = 0
    AND v.is_ms_shipped = 0
    AND (N'{OBJECT}' = N'' OR (s.name = N'{SCHEMA}' AND v.name = N'{OBJECT}'))
ORDER BY 2, 3, 4 DESC, 5
