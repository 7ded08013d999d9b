-- Without a schema the table is looked up as a statement would, and else in whichever schema has it alone.
DECLARE @schema_name nvarchar(128)
DECLARE @table_name nvarchar(128)
DECLARE @table int
DECLARE @statement nvarchar(max)

SET @schema_name = N'{TABLE_SCHEMA}'
SET @table_name = N'{TABLE_NAME}'
IF @schema_name <> N''
    SET @table = OBJECT_ID(QUOTENAME(@schema_name) + N'.' + QUOTENAME(@table_name), N'U')
ELSE
    SET @table = OBJECT_ID(QUOTENAME(@table_name), N'U')
IF @table IS NULL AND @schema_name = N''
    SELECT @table = MIN(t.object_id)
    FROM sys.tables AS t
    WHERE t.name = @table_name
    HAVING COUNT(*) = 1

IF @table IS NULL
    RAISERROR (N'Table %s was not found, or several schemas have one of this name.', 16, 1, @table_name)

SELECT @statement = N'ALTER TABLE ' + QUOTENAME(s.name) + N'.' + QUOTENAME(t.name)
    + N' DROP CONSTRAINT ' + QUOTENAME(k.name)
FROM sys.key_constraints AS k
INNER JOIN sys.tables AS t ON t.object_id = k.parent_object_id
INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
WHERE t.object_id = @table
    AND k.type = 'PK'

IF @statement IS NOT NULL
    EXEC sp_executesql @statement
