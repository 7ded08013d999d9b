-- DROPS EVERY USER OBJECT OF THE CURRENT DATABASE, WITH ALL DATA. There is no way back but a backup.
-- In this order: database triggers, security policies, system versioning, foreign keys, check constraints, then views,
-- procedures, functions, synonyms, sequences, tables, rules, defaults, types, XML schema collections, partition schemes
-- and functions, and schemas. What still depends on another object is tried again after the others. Users, roles,
-- assemblies, full-text catalogs, keys and Service Broker objects stay. The server keeps a ledger table that is
-- dropped, with its history and its view, under another name.
SET NOCOUNT ON

IF DB_NAME() IN (N'master', N'model', N'msdb', N'tempdb')
BEGIN
	RAISERROR (N'This is a system database. Connect to the database that is to be cleared.', 16, 1)
	RETURN
END

DECLARE @id int
DECLARE @pass int
DECLARE @dropped int
DECLARE @left int
DECLARE @statement nvarchar(max)
DECLARE @todo TABLE (
	id int IDENTITY(1,1) NOT NULL PRIMARY KEY,
	statement nvarchar(max) NOT NULL,
	is_done bit NOT NULL DEFAULT (0),
	message nvarchar(4000) NULL
)
DECLARE @ledger TABLE (
	statement nvarchar(1000) NOT NULL
)

-- A database trigger could forbid the rest.
INSERT INTO @todo (statement)
SELECT N'DROP TRIGGER ' + QUOTENAME(tr.name) + N' ON DATABASE'
FROM sys.triggers AS tr
WHERE tr.parent_class = 0
	AND tr.is_ms_shipped = 0

-- A security policy forbids to drop the tables and functions that it names.
IF OBJECT_ID(N'sys.security_policies') IS NOT NULL
	INSERT INTO @todo (statement)
	EXEC sp_executesql N'
		SELECT N''DROP SECURITY POLICY '' + QUOTENAME(s.name) + N''.'' + QUOTENAME(p.name)
		FROM sys.security_policies AS p
		INNER JOIN sys.schemas AS s ON s.schema_id = p.schema_id'

-- Temporal and external tables are newer than 2005: only dynamic SQL may name their columns.
IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.tables') AND name = N'temporal_type')
	INSERT INTO @todo (statement)
	EXEC sp_executesql N'
		SELECT N''ALTER TABLE '' + QUOTENAME(s.name) + N''.'' + QUOTENAME(t.name) + N'' SET (SYSTEM_VERSIONING = OFF)''
		FROM sys.tables AS t
		INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
		WHERE t.temporal_type = 2'

INSERT INTO @todo (statement)
SELECT N'ALTER TABLE ' + QUOTENAME(s.name) + N'.' + QUOTENAME(t.name) + N' DROP CONSTRAINT ' + QUOTENAME(k.name)
FROM sys.objects AS k
INNER JOIN sys.tables AS t ON t.object_id = k.parent_object_id
INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
WHERE k.type IN ('F', 'C')
	AND t.is_ms_shipped = 0
ORDER BY CASE k.type WHEN 'F' THEN 0 ELSE 1 END

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.tables') AND name = N'is_external')
	INSERT INTO @todo (statement)
	EXEC sp_executesql N'
		SELECT N''DROP EXTERNAL TABLE '' + QUOTENAME(s.name) + N''.'' + QUOTENAME(t.name)
		FROM sys.tables AS t
		INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
		WHERE t.is_external = 1'

INSERT INTO @todo (statement)
SELECT N'DROP ' + d.kind + N' ' + QUOTENAME(d.schema_name) + N'.' + QUOTENAME(d.object_name)
FROM (
	SELECT
		s.name AS schema_name,
		o.name AS object_name,
		CASE
			WHEN o.type = 'V' THEN N'VIEW'
			WHEN o.type IN ('P', 'PC', 'RF') THEN N'PROCEDURE'
			WHEN o.type IN ('FN', 'IF', 'TF', 'FS', 'FT') THEN N'FUNCTION'
			WHEN o.type = 'AF' THEN N'AGGREGATE'
			WHEN o.type = 'SN' THEN N'SYNONYM'
			WHEN o.type = 'SO' THEN N'SEQUENCE'
			WHEN o.type = 'U' THEN N'TABLE'
			WHEN o.type = 'R' THEN N'RULE'
			WHEN o.type = 'D' THEN N'DEFAULT'
		END AS kind,
		CASE
			WHEN o.type IN ('U', 'SO') THEN 2
			WHEN o.type IN ('R', 'D') THEN 3
			ELSE 1
		END AS wave
	FROM sys.objects AS o
	INNER JOIN sys.schemas AS s ON s.schema_id = o.schema_id
	WHERE o.is_ms_shipped = 0
		AND o.parent_object_id = 0
) AS d
WHERE d.kind IS NOT NULL
	AND NOT EXISTS (
		SELECT 1
		FROM @todo AS x
		WHERE x.statement = N'DROP EXTERNAL TABLE ' + QUOTENAME(d.schema_name) + N'.'
			+ QUOTENAME(d.object_name) COLLATE DATABASE_DEFAULT
	)
ORDER BY d.wave

INSERT INTO @todo (statement)
SELECT N'DROP TYPE ' + QUOTENAME(s.name) + N'.' + QUOTENAME(t.name)
FROM sys.types AS t
INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
WHERE t.is_user_defined = 1

INSERT INTO @todo (statement)
SELECT N'DROP XML SCHEMA COLLECTION ' + QUOTENAME(s.name) + N'.' + QUOTENAME(x.name)
FROM sys.xml_schema_collections AS x
INNER JOIN sys.schemas AS s ON s.schema_id = x.schema_id
WHERE s.name <> N'sys'

INSERT INTO @todo (statement)
SELECT N'DROP PARTITION SCHEME ' + QUOTENAME(p.name)
FROM sys.partition_schemes AS p

INSERT INTO @todo (statement)
SELECT N'DROP PARTITION FUNCTION ' + QUOTENAME(f.name)
FROM sys.partition_functions AS f

-- 1 to 4 are dbo, guest, INFORMATION_SCHEMA and sys, 16384 and above belong to the fixed roles.
INSERT INTO @todo (statement)
SELECT N'DROP SCHEMA ' + QUOTENAME(s.name)
FROM sys.schemas AS s
WHERE s.schema_id BETWEEN 5 AND 16383

-- What belongs to a ledger table goes with it, and one that was dropped before cannot be dropped again.
IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.tables') AND name = N'ledger_type')
BEGIN
	INSERT INTO @ledger (statement)
	EXEC sp_executesql N'
		SELECT N''DROP TABLE '' + QUOTENAME(s.name) + N''.'' + QUOTENAME(t.name)
		FROM sys.tables AS t
		INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
		WHERE t.ledger_type = 1 OR t.is_dropped_ledger_table = 1
		UNION ALL
		SELECT N''ALTER TABLE '' + QUOTENAME(s.name) + N''.'' + QUOTENAME(t.name) + N'' SET (SYSTEM_VERSIONING = OFF)''
		FROM sys.tables AS t
		INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
		WHERE t.ledger_type = 2
		UNION ALL
		SELECT N''DROP VIEW '' + QUOTENAME(s.name) + N''.'' + QUOTENAME(v.name)
		FROM sys.views AS v
		INNER JOIN sys.schemas AS s ON s.schema_id = v.schema_id
		WHERE v.ledger_view_type = 1 OR v.is_dropped_ledger_view = 1'

	DELETE FROM @todo
	WHERE statement IN (SELECT l.statement FROM @ledger AS l)
END

-- Pass after pass, until nothing is left or nothing more goes.
SET @dropped = 1
SET @pass = 0
WHILE @dropped > 0
BEGIN
	SET @dropped = 0
	SET @pass = @pass + 1
	SELECT @id = MIN(id) FROM @todo WHERE is_done = 0
	WHILE @id IS NOT NULL
	BEGIN
		SELECT @statement = statement FROM @todo WHERE id = @id
		BEGIN TRY
			EXEC sp_executesql @statement
			UPDATE @todo SET is_done = 1 WHERE id = @id
			SET @dropped = @dropped + 1
		END TRY
		BEGIN CATCH
			UPDATE @todo SET message = ERROR_MESSAGE() WHERE id = @id
			IF XACT_STATE() = -1
				ROLLBACK TRANSACTION
		END CATCH
		SELECT @id = MIN(id) FROM @todo WHERE is_done = 0 AND id > @id
	END
END

SET NOCOUNT OFF

SELECT
	t.statement AS could_not_run,
	t.message AS reason
FROM @todo AS t
WHERE t.is_done = 0
ORDER BY t.id

SELECT @left = COUNT(*) FROM @todo WHERE is_done = 0
IF @left > 0
	RAISERROR (N'%d objects could not be dropped in %d passes. They are listed with the reason.', 16, 1, @left, @pass)
