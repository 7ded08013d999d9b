-- A definition longer than 4000 characters stands in several rows of syscomments: they are put together in an ntext.
DECLARE @nocount int
DECLARE @id int
DECLARE @number int
DECLARE @chunk int
DECLARE @text nvarchar(4000)
DECLARE @pointer binary(16)

SET @nocount = @@OPTIONS & 512
SET NOCOUNT ON

SELECT @id = o.id
FROM dbo.sysobjects AS o
WHERE o.xtype = 'V'
    AND o.id = OBJECT_ID(QUOTENAME(N'{SCHEMA}') + N'.' + QUOTENAME(N'{VIEW}'))

IF OBJECT_ID(N'tempdb..#vantor_module') IS NOT NULL
    DROP TABLE #vantor_module

CREATE TABLE #vantor_module (
    number int NOT NULL PRIMARY KEY,
    definition ntext NOT NULL
)

INSERT INTO #vantor_module (number, definition)
SELECT DISTINCT c.number, N''
FROM dbo.syscomments AS c
WHERE c.id = @id
    AND c.encrypted = 0

SELECT @number = MIN(number) FROM #vantor_module
WHILE @number IS NOT NULL
BEGIN
    SELECT @pointer = TEXTPTR(definition) FROM #vantor_module WHERE number = @number
    SELECT @chunk = MIN(colid) FROM dbo.syscomments WHERE id = @id AND number = @number
    WHILE @chunk IS NOT NULL
    BEGIN
        SELECT @text = text FROM dbo.syscomments WHERE id = @id AND number = @number AND colid = @chunk
        UPDATETEXT #vantor_module.definition @pointer NULL 0 @text
        SELECT @chunk = MIN(colid) FROM dbo.syscomments WHERE id = @id AND number = @number AND colid > @chunk
    END
    SELECT @number = MIN(number) FROM #vantor_module WHERE number > @number
END

IF @nocount = 0
    SET NOCOUNT OFF

SELECT
    CONVERT(bit, OBJECTPROPERTY(@id, N'ExecIsQuotedIdentOn')) AS uses_quoted_identifier,
    CONVERT(bit, OBJECTPROPERTY(@id, N'ExecIsAnsiNullsOn')) AS uses_ansi_nulls,
    d.definition
FROM #vantor_module AS d
ORDER BY d.number

DROP TABLE #vantor_module
