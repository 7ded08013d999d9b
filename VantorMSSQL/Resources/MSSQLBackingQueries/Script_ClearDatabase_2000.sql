-- DROPS EVERY USER OBJECT OF THE CURRENT DATABASE, WITH ALL DATA. There is no way back but a backup. In this order:
-- foreign keys, check constraints, then views, procedures, functions, tables, rules, defaults and types. What still
-- depends on another object says so in a message and is tried again after the others. Users and roles stay.
SET NOCOUNT ON

IF DB_NAME() IN (N'master', N'model', N'msdb', N'tempdb')
BEGIN
	RAISERROR (N'This is a system database. Connect to the database that is to be cleared.', 16, 1)
	RETURN
END

DECLARE @id int
DECLARE @before int
DECLARE @left int
DECLARE @statement nvarchar(1000)
DECLARE @todo TABLE (
	id int IDENTITY(1,1) NOT NULL PRIMARY KEY,
	object_id int NULL,
	type_name nvarchar(128) NULL,
	statement nvarchar(1000) NOT NULL,
	is_done bit NOT NULL DEFAULT (0)
)

INSERT INTO @todo (object_id, statement)
SELECT
	k.id,
	N'ALTER TABLE ' + QUOTENAME(u.name) + N'.' + QUOTENAME(t.name) + N' DROP CONSTRAINT ' + QUOTENAME(k.name)
FROM dbo.sysobjects AS k
INNER JOIN dbo.sysobjects AS t ON t.id = k.parent_obj
INNER JOIN dbo.sysusers AS u ON u.uid = t.uid
WHERE k.xtype IN ('F', 'C')
	AND OBJECTPROPERTY(t.id, N'IsMSShipped') = 0
ORDER BY CASE k.xtype WHEN 'F' THEN 0 ELSE 1 END

INSERT INTO @todo (object_id, statement)
SELECT
	o.id,
	N'DROP ' + CASE
		WHEN o.xtype = 'V' THEN N'VIEW'
		WHEN o.xtype = 'P' THEN N'PROCEDURE'
		WHEN o.xtype IN ('FN', 'IF', 'TF') THEN N'FUNCTION'
		WHEN o.xtype = 'U' THEN N'TABLE'
		WHEN o.xtype = 'R' THEN N'RULE'
		ELSE N'DEFAULT'
	END + N' ' + QUOTENAME(u.name) + N'.' + QUOTENAME(o.name)
FROM dbo.sysobjects AS o
INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
WHERE o.xtype IN ('V', 'P', 'FN', 'IF', 'TF', 'U', 'R', 'D')
	AND o.parent_obj = 0
	AND OBJECTPROPERTY(o.id, N'IsMSShipped') = 0
ORDER BY CASE o.xtype WHEN 'U' THEN 2 WHEN 'R' THEN 3 WHEN 'D' THEN 3 ELSE 1 END

INSERT INTO @todo (type_name, statement)
SELECT t.name, N'EXEC sp_droptype N''' + REPLACE(t.name, N'''', N'''''') + N''''
FROM dbo.systypes AS t
WHERE t.xusertype > 256

-- Pass after pass, until nothing is left or nothing more goes.
SET @before = -1
SELECT @left = COUNT(*) FROM @todo WHERE is_done = 0
WHILE @left > 0 AND @left <> @before
BEGIN
	SELECT @id = MIN(id) FROM @todo WHERE is_done = 0
	WHILE @id IS NOT NULL
	BEGIN
		SELECT @statement = statement FROM @todo WHERE id = @id
		EXEC sp_executesql @statement
		SELECT @id = MIN(id) FROM @todo WHERE is_done = 0 AND id > @id
	END

	UPDATE d
	SET is_done = 1
	FROM @todo AS d
	WHERE NOT EXISTS (SELECT 1 FROM dbo.sysobjects AS o WHERE o.id = d.object_id)
		AND NOT EXISTS (SELECT 1 FROM dbo.systypes AS t WHERE t.name = d.type_name)

	SET @before = @left
	SELECT @left = COUNT(*) FROM @todo WHERE is_done = 0
END

SET NOCOUNT OFF

SELECT t.statement AS could_not_run
FROM @todo AS t
WHERE t.is_done = 0
ORDER BY t.id
