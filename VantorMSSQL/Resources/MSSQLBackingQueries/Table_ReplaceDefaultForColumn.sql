-- Without a schema the table is looked up as a statement would, and else in whichever schema has it alone. The new
-- default arrives with a double quote in place of every apostrophe. It gets the name that a user gave the old one.
DECLARE @schema_name nvarchar(128)
DECLARE @table_name nvarchar(128)
DECLARE @column_name nvarchar(128)
DECLARE @table int
DECLARE @target nvarchar(600)
DECLARE @default nvarchar(128)
DECLARE @is_system_named bit
DECLARE @new_default nvarchar(max)
DECLARE @bound nvarchar(1000)
DECLARE @statement nvarchar(max)

SET @schema_name = N'{TABLE_SCHEMA}'
SET @table_name = N'{TABLE_NAME}'
SET @column_name = N'{COLUMN_NAME}'
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

SELECT @target = QUOTENAME(s.name) + N'.' + QUOTENAME(t.name)
FROM sys.tables AS t
INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
WHERE t.object_id = @table

SELECT @default = d.name, @is_system_named = d.is_system_named
FROM sys.default_constraints AS d
INNER JOIN sys.columns AS c ON c.object_id = d.parent_object_id AND c.column_id = d.parent_column_id
WHERE c.object_id = @table
    AND c.name = @column_name

IF @default IS NOT NULL
BEGIN
    SET @statement = N'ALTER TABLE ' + @target + N' DROP CONSTRAINT ' + QUOTENAME(@default)
    EXEC sp_executesql @statement
END

-- A default may also be an object of its own that is bound to the column.
SELECT @bound = @target + N'.' + QUOTENAME(c.name)
FROM sys.columns AS c
INNER JOIN sys.objects AS o ON o.object_id = c.default_object_id
WHERE c.object_id = @table
    AND c.name = @column_name
    AND o.parent_object_id = 0

IF @bound IS NOT NULL
    EXEC sp_unbindefault @bound

SET @new_default = REPLACE(N'{NEW_DEFAULT}', N'"', N'''')
SET @statement = N'ALTER TABLE ' + @target + N' ADD '
    + CASE WHEN @is_system_named = 0 THEN N'CONSTRAINT ' + QUOTENAME(@default) + N' ' ELSE N'' END
    + N'DEFAULT ' + @new_default + N' FOR ' + QUOTENAME(@column_name)
IF @table IS NOT NULL
    EXEC sp_executesql @statement
