-- Without an owner the table is looked up as a statement would, and else under whichever owner has it alone. The new
-- default arrives with a double quote in place of every apostrophe.
DECLARE @schema_name nvarchar(128)
DECLARE @table_name nvarchar(128)
DECLARE @column_name nvarchar(128)
DECLARE @table int
DECLARE @target nvarchar(600)
DECLARE @default nvarchar(128)
DECLARE @new_default nvarchar(2000)
DECLARE @bound nvarchar(1000)
DECLARE @statement nvarchar(4000)

SET @schema_name = N'{TABLE_SCHEMA}'
SET @table_name = N'{TABLE_NAME}'
SET @column_name = N'{COLUMN_NAME}'
IF @schema_name <> N''
    SET @table = OBJECT_ID(QUOTENAME(@schema_name) + N'.' + QUOTENAME(@table_name))
ELSE
    SET @table = OBJECT_ID(QUOTENAME(@table_name))
IF @table IS NULL AND @schema_name = N''
    SELECT @table = MIN(o.id)
    FROM dbo.sysobjects AS o
    WHERE o.name = @table_name
        AND o.xtype = 'U'
    HAVING COUNT(*) = 1

IF @table IS NULL
    RAISERROR (N'Table %s was not found, or several users own one of this name.', 16, 1, @table_name)

SELECT @target = QUOTENAME(u.name) + N'.' + QUOTENAME(o.name)
FROM dbo.sysobjects AS o
INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
WHERE o.id = @table

SELECT @default = d.name
FROM dbo.syscolumns AS c
INNER JOIN dbo.sysobjects AS d ON d.id = c.cdefault
WHERE c.id = @table
    AND c.name = @column_name
    AND d.parent_obj = @table

IF @default IS NOT NULL
BEGIN
    SET @statement = N'ALTER TABLE ' + @target + N' DROP CONSTRAINT ' + QUOTENAME(@default)
    EXEC sp_executesql @statement
END

-- A default may also be an object of its own that is bound to the column.
SELECT @bound = @target + N'.' + QUOTENAME(c.name)
FROM dbo.syscolumns AS c
INNER JOIN dbo.sysobjects AS d ON d.id = c.cdefault
WHERE c.id = @table
    AND c.name = @column_name
    AND d.parent_obj = 0

IF @bound IS NOT NULL
    EXEC sp_unbindefault @bound

SET @new_default = REPLACE(N'{NEW_DEFAULT}', N'"', N'''')
-- A name that the server made up, such as DF__table__column__0A1B2C3D, is not kept.
SET @statement = N'ALTER TABLE ' + @target + N' ADD '
    + CASE WHEN @default NOT LIKE N'DF[_][_]%[_][_]________'
        THEN N'CONSTRAINT ' + QUOTENAME(@default) + N' ' ELSE N'' END
    + N'DEFAULT ' + @new_default + N' FOR ' + QUOTENAME(@column_name)
IF @table IS NOT NULL
    EXEC sp_executesql @statement
