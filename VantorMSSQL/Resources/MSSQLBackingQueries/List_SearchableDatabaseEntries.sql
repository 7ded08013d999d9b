-- The searchable objects of every user database that this login can open, one database after the other.
DECLARE @nocount int
DECLARE @database sysname
DECLARE @database_id int
DECLARE @prefix nvarchar(300)
DECLARE @sql nvarchar(max)
DECLARE @entry TABLE (
    database_name sysname,
    schema_name sysname,
    object_name sysname,
    object_type nvarchar(20)
)

SET @nocount = @@OPTIONS & 512
SET NOCOUNT ON

SELECT @database_id = MIN(d.database_id)
FROM sys.databases AS d
WHERE d.database_id > 4
    AND HAS_DBACCESS(d.name) = 1

WHILE @database_id IS NOT NULL
BEGIN
    SET @database = NULL
    SELECT @database = d.name
    FROM sys.databases AS d
    WHERE d.database_id = @database_id

    SET @prefix = QUOTENAME(@database) + N'.'
    SET @sql = N'
        SELECT
            @database,
            s.name,
            o.name,
            CASE
                WHEN o.type = ''U'' THEN N''TABLE''
                WHEN o.type = ''V'' THEN N''VIEW''
                WHEN o.type IN (''P'', ''PC'') THEN N''PROCEDURE''
                ELSE N''FUNCTION''
            END
        FROM ' + @prefix + N'sys.objects AS o
        INNER JOIN ' + @prefix + N'sys.schemas AS s ON s.schema_id = o.schema_id
        WHERE o.is_ms_shipped = 0
            AND s.name <> N''sys''
            AND o.type IN (''U'', ''V'', ''P'', ''PC'', ''FN'', ''IF'', ''TF'', ''FS'', ''FT'')
            AND NOT EXISTS (
                SELECT 1
                FROM ' + @prefix + N'sys.extended_properties AS p
                WHERE p.class = 1
                    AND p.major_id = o.object_id
                    AND p.minor_id = 0
                    AND p.name = N''microsoft_database_tools_support''
            )'

    -- A database may be closed to us by now; the others are still worth having.
    BEGIN TRY
        INSERT INTO @entry (database_name, schema_name, object_name, object_type)
        EXEC sp_executesql @sql, N'@database sysname', @database
    END TRY
    BEGIN CATCH
        PRINT ERROR_MESSAGE()
    END CATCH

    SELECT @database_id = MIN(d.database_id)
    FROM sys.databases AS d
    WHERE d.database_id > @database_id
        AND HAS_DBACCESS(d.name) = 1
END

IF @nocount = 0
    SET NOCOUNT OFF

SELECT
    e.database_name,
    e.schema_name,
    e.object_name,
    e.object_type
FROM @entry AS e
ORDER BY e.database_name, e.schema_name, e.object_name
