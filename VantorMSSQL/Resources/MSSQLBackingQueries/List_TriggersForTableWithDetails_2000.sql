-- A definition longer than 4000 characters stands in several rows of syscomments: they are put together in an ntext.
-- It is NULL when the trigger is encrypted.
DECLARE @nocount int
DECLARE @id int
DECLARE @chunk int
DECLARE @text nvarchar(4000)
DECLARE @pointer binary(16)

SET @nocount = @@OPTIONS & 512
SET NOCOUNT ON

IF OBJECT_ID(N'tempdb..#vantor_trigger') IS NOT NULL
    DROP TABLE #vantor_trigger

CREATE TABLE #vantor_trigger (
    id int NOT NULL PRIMARY KEY,
    definition ntext NULL
)

INSERT INTO #vantor_trigger (id, definition)
SELECT tr.id, N''
FROM dbo.sysobjects AS tr
INNER JOIN dbo.sysobjects AS o ON o.id = tr.parent_obj
INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
WHERE tr.xtype = 'TR'
    AND OBJECTPROPERTY(tr.id, N'IsMSShipped') = 0
    AND u.name = N'{TABLE_SCHEMA}'
    AND o.name = N'{TABLE_NAME}'

SELECT @id = MIN(id) FROM #vantor_trigger
WHILE @id IS NOT NULL
BEGIN
    SELECT @pointer = TEXTPTR(definition) FROM #vantor_trigger WHERE id = @id
    SELECT @chunk = MIN(colid) FROM dbo.syscomments WHERE id = @id AND encrypted = 0
    IF @chunk IS NULL
        UPDATE #vantor_trigger SET definition = NULL WHERE id = @id
    WHILE @chunk IS NOT NULL
    BEGIN
        SELECT @text = text FROM dbo.syscomments WHERE id = @id AND colid = @chunk
        UPDATETEXT #vantor_trigger.definition @pointer NULL 0 @text
        SELECT @chunk = MIN(colid) FROM dbo.syscomments WHERE id = @id AND colid > @chunk
    END
    SELECT @id = MIN(id) FROM #vantor_trigger WHERE id > @id
END

IF @nocount = 0
    SET NOCOUNT OFF

SELECT
    tr.name AS trigger_name,
    CASE WHEN OBJECTPROPERTY(tr.id, N'ExecIsInsteadOfTrigger') = 1 THEN N'INSTEAD OF' ELSE N'AFTER' END AS timing,
    STUFF(
        CASE WHEN OBJECTPROPERTY(tr.id, N'ExecIsInsertTrigger') = 1 THEN N', INSERT' ELSE N'' END
        + CASE WHEN OBJECTPROPERTY(tr.id, N'ExecIsUpdateTrigger') = 1 THEN N', UPDATE' ELSE N'' END
        + CASE WHEN OBJECTPROPERTY(tr.id, N'ExecIsDeleteTrigger') = 1 THEN N', DELETE' ELSE N'' END,
        1, 2, N''
    ) AS event,
    d.definition AS statement,
    CASE WHEN OBJECTPROPERTY(tr.id, N'ExecIsTriggerDisabled') = 1 THEN 0 ELSE 1 END AS enabled
FROM #vantor_trigger AS d
INNER JOIN dbo.sysobjects AS tr ON tr.id = d.id
ORDER BY tr.name

DROP TABLE #vantor_trigger
