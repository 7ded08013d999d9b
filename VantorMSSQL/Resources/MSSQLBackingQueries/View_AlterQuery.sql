-- The name arrives with brackets where the caller found them needed, so brackets are left out on both sides. An exact
-- match goes first. CREATE OR ALTER leaves three blanks behind CREATE.
SELECT TOP (1)
    m.uses_quoted_identifier,
    m.uses_ansi_nulls,
    CASE
        WHEN m.definition IS NULL
            THEN N'-- The definition of view ' + QUOTENAME(s.name) + N'.' + QUOTENAME(v.name)
                + N' is encrypted or may not be seen by this login.'
        ELSE REPLACE(m.definition COLLATE Latin1_General_CI_AS, N'CREATE   VIEW', N'CREATE VIEW')
    END AS definition
FROM sys.views AS v
INNER JOIN sys.schemas AS s ON s.schema_id = v.schema_id
INNER JOIN sys.sql_modules AS m ON m.object_id = v.object_id
WHERE REPLACE(REPLACE(s.name + N'.' + v.name, N'[', N''), N']', N'')
    = REPLACE(REPLACE(N'{VIEW_NAME}', N'[', N''), N']', N'')
ORDER BY CASE WHEN v.object_id = OBJECT_ID(N'{VIEW_NAME}') THEN 0 ELSE 1 END, v.object_id
