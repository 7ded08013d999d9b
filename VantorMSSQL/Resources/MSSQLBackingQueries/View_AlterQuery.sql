SELECT
    m.uses_quoted_identifier,
    m.uses_ansi_nulls,
    CASE
        WHEN m.definition IS NULL
            THEN N'-- The definition of view '
                + REPLACE(REPLACE(QUOTENAME(s.name) + N'.' + QUOTENAME(v.name), NCHAR(13), N' '), NCHAR(10), N' ')
                + N' is encrypted or may not be seen by this login.'
        ELSE m.definition COLLATE DATABASE_DEFAULT
    END AS definition
FROM sys.views AS v
INNER JOIN sys.schemas AS s ON s.schema_id = v.schema_id
INNER JOIN sys.sql_modules AS m ON m.object_id = v.object_id
WHERE v.object_id = OBJECT_ID(QUOTENAME(N'{SCHEMA}') + N'.' + QUOTENAME(N'{VIEW}'))
