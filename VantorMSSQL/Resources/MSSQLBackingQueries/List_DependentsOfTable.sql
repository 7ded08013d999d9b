-- Views, procedures, functions, triggers and constraints whose text names the table. 2005 knows only what
-- sys.sql_dependencies has recorded.
DECLARE @table int
SET @table = OBJECT_ID(QUOTENAME(N'{SCHEMA}') + N'.' + QUOTENAME(N'{TABLE}'))

IF EXISTS (SELECT 1 FROM sys.all_objects WHERE name = N'sql_expression_dependencies')
    EXEC sp_executesql N'
        SELECT DISTINCT s.name AS schema_name, o.name AS object_name
        FROM sys.sql_expression_dependencies AS d
        INNER JOIN sys.objects AS o ON o.object_id = d.referencing_id
        INNER JOIN sys.schemas AS s ON s.schema_id = o.schema_id
        WHERE d.referenced_id = @table
            AND d.referencing_id <> @table
        ORDER BY s.name, o.name',
        N'@table int',
        @table
ELSE
    SELECT DISTINCT s.name AS schema_name, o.name AS object_name
    FROM sys.sql_dependencies AS d
    INNER JOIN sys.objects AS o ON o.object_id = d.object_id
    INNER JOIN sys.schemas AS s ON s.schema_id = o.schema_id
    WHERE d.referenced_major_id = @table
        AND d.object_id <> @table
    ORDER BY s.name, o.name
