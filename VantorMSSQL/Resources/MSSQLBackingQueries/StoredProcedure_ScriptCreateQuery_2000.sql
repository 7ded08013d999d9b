-- A definition longer than 4000 characters stands in several rows of syscomments: they are put together in an ntext.
-- Numbered procedures come one per row. An encrypted one gives no row.
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
INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
WHERE o.xtype = 'P'
    AND u.name = N'{SCHEMA}'
    AND o.name = N'{PROCEDURE_NAME}'

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
    CASE WHEN d.number > 1 THEN NCHAR(13) + NCHAR(10) ELSE N'' END
        + CASE
            WHEN OBJECTPROPERTY(@id, N'ExecIsAnsiNullsOn') = 1 THEN N'SET ANSI_NULLS ON'
            ELSE N'SET ANSI_NULLS OFF'
        END AS ansi_nulls,
    CASE
        WHEN OBJECTPROPERTY(@id, N'ExecIsQuotedIdentOn') = 1 THEN N'SET QUOTED_IDENTIFIER ON'
        ELSE N'SET QUOTED_IDENTIFIER OFF'
    END AS quoted_identifier,
    d.definition
FROM #vantor_module AS d
ORDER BY d.number

DROP TABLE #vantor_module
