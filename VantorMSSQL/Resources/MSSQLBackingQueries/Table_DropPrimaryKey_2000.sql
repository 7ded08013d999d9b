-- Without an owner the table is looked up as a statement would, and else under whichever owner has it alone.
DECLARE @schema_name nvarchar(128)
DECLARE @table_name nvarchar(128)
DECLARE @table int
DECLARE @statement nvarchar(1000)

SET @schema_name = N'{TABLE_SCHEMA}'
SET @table_name = N'{TABLE_NAME}'
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

SELECT @statement = N'ALTER TABLE ' + QUOTENAME(u.name) + N'.' + QUOTENAME(o.name)
    + N' DROP CONSTRAINT ' + QUOTENAME(k.name)
FROM dbo.sysobjects AS k
INNER JOIN dbo.sysobjects AS o ON o.id = k.parent_obj
INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
WHERE o.id = @table
    AND k.xtype = 'PK'

IF @statement IS NOT NULL
    EXEC sp_executesql @statement
