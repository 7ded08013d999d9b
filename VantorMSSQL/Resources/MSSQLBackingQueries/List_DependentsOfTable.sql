-- Views, procedures, functions, triggers and constraints whose text names the table. A name without schema in a
-- procedure is resolved when it runs, and is known by name only until then. 2005, and a login that may not read the
-- newer view, know only what sys.sql_dependencies has recorded.
DECLARE @schema nvarchar(128)
DECLARE @name nvarchar(128)
DECLARE @table int
SET @schema = N'{SCHEMA}'
SET @name = N'{TABLE}'
SET @table = OBJECT_ID(QUOTENAME(@schema) + N'.' + QUOTENAME(@name))

IF EXISTS (SELECT 1 FROM sys.all_objects WHERE name = N'sql_expression_dependencies')
    AND HAS_PERMS_BY_NAME(N'sys.sql_expression_dependencies', N'OBJECT', N'SELECT') = 1
    EXEC sp_executesql N'
        SELECT DISTINCT s.name AS schema_name, o.name AS object_name
        FROM sys.sql_expression_dependencies AS d
        INNER JOIN sys.objects AS o ON o.object_id = d.referencing_id
        INNER JOIN sys.schemas AS s ON s.schema_id = o.schema_id
        WHERE (
                d.referenced_id = @table
                OR (
                    d.referenced_id IS NULL
                    AND d.referenced_entity_name = @name
                    AND ISNULL(d.referenced_schema_name, @schema) = @schema
                    AND ISNULL(d.referenced_database_name, DB_NAME()) = DB_NAME()
                    AND d.referenced_server_name IS NULL
                )
            )
            AND d.referencing_id <> @table
        ORDER BY s.name, o.name',
        N'@table int, @schema nvarchar(128), @name nvarchar(128)',
        @table,
        @schema,
        @name
ELSE
    SELECT DISTINCT s.name AS schema_name, o.name AS object_name
    FROM sys.sql_dependencies AS d
    INNER JOIN sys.objects AS o ON o.object_id = d.object_id
    INNER JOIN sys.schemas AS s ON s.schema_id = o.schema_id
    WHERE d.referenced_major_id = @table
        AND d.object_id <> @table
    ORDER BY s.name, o.name
