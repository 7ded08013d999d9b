-- Scripts one table with its constraints, indexes and triggers, in one cell. No variable can hold so long a text
-- here: the pieces are collected in their order, definitions in the chunks that syscomments has, and appended to an
-- ntext.
DECLARE @nocount int
DECLARE @table int
DECLARE @target nvarchar(600)
DECLARE @collation nvarchar(128)
DECLARE @crlf nvarchar(2)
DECLARE @go nvarchar(10)
DECLARE @item nvarchar(10)
DECLARE @ordinal int
DECLARE @last int
DECLARE @body nvarchar(4000)
DECLARE @pointer binary(16)
DECLARE @piece TABLE (
    id int IDENTITY(1,1) NOT NULL PRIMARY KEY,
    body nvarchar(4000) NULL
)
DECLARE @index TABLE (
    index_id int NOT NULL PRIMARY KEY,
    name nvarchar(128) NOT NULL,
    key_type nvarchar(2) NOT NULL,
    head nvarchar(1000) NOT NULL,
    key_columns nvarchar(2500) NOT NULL,
    options nvarchar(200) NOT NULL
)
DECLARE @foreign_key TABLE (
    id int NOT NULL PRIMARY KEY,
    local_columns nvarchar(2500) NOT NULL,
    referenced_columns nvarchar(2500) NOT NULL
)

SET @nocount = @@OPTIONS & 512
SET NOCOUNT ON

SET @crlf = NCHAR(13) + NCHAR(10)
SET @go = @crlf + N'GO' + @crlf
SET @item = N',' + @crlf + NCHAR(9)
SET @collation = CONVERT(nvarchar(128), DATABASEPROPERTYEX(DB_NAME(), N'Collation'))

IF OBJECT_ID(N'tempdb..#vantor_script') IS NOT NULL
    DROP TABLE #vantor_script

CREATE TABLE #vantor_script (
    body ntext NOT NULL
)

SELECT
    @table = o.id,
    @target = QUOTENAME(u.name) + N'.' + QUOTENAME(o.name)
FROM dbo.sysobjects AS o
INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
WHERE u.name = N'{TABLE_SCHEMA}'
    AND o.name = N'{TABLE_NAME}'
    AND o.xtype = 'U'

-- Indexes; those of keys are constraints.
INSERT INTO @index (index_id, name, key_type, head, key_columns, options)
SELECT
    i.indid,
    i.name,
    ISNULL(k.xtype, N''),
    CASE k.xtype
        WHEN 'PK' THEN N'CONSTRAINT ' + QUOTENAME(k.name) + N' PRIMARY KEY '
        WHEN 'UQ' THEN N'CONSTRAINT ' + QUOTENAME(k.name) + N' UNIQUE '
        ELSE N'CREATE ' + CASE WHEN INDEXPROPERTY(i.id, i.name, N'IsUnique') = 1 THEN N'UNIQUE ' ELSE N'' END
    END
    + CASE WHEN i.indid = 1 THEN N'CLUSTERED' ELSE N'NONCLUSTERED' END
    + CASE WHEN k.xtype IS NULL THEN N' INDEX ' + QUOTENAME(i.name) + N' ON ' + @target ELSE N'' END,
    N'',
    CASE WHEN k.xtype IS NULL AND INDEXPROPERTY(i.id, i.name, N'IsPadIndex') = 1 THEN N', PAD_INDEX' ELSE N'' END
        + CASE
            WHEN i.OrigFillFactor > 0 THEN N', FILLFACTOR = ' + CONVERT(nvarchar(10), i.OrigFillFactor)
            ELSE N''
        END
        + CASE WHEN k.xtype IS NULL AND i.status & 1 = 1 THEN N', IGNORE_DUP_KEY' ELSE N'' END
        + CASE WHEN k.xtype IS NULL AND i.status & 16777216 <> 0 THEN N', STATISTICS_NORECOMPUTE' ELSE N'' END
FROM dbo.sysindexes AS i
LEFT JOIN dbo.sysobjects AS k ON k.parent_obj = i.id AND k.name = i.name AND k.xtype IN ('PK', 'UQ')
WHERE i.id = @table
    AND i.indid BETWEEN 1 AND 254
    AND INDEXPROPERTY(i.id, i.name, N'IsStatistics') = 0
    AND INDEXPROPERTY(i.id, i.name, N'IsHypothetical') = 0

INSERT INTO @foreign_key (id, local_columns, referenced_columns)
SELECT DISTINCT fk.constid, N'', N''
FROM dbo.sysforeignkeys AS fk
WHERE fk.fkeyid = @table

-- The n-th column of every index and foreign key is appended to its list. Neither has more than 16.
SET @ordinal = 1
WHILE @ordinal <= 16
BEGIN
    UPDATE x
    SET key_columns = x.key_columns
        + CASE WHEN @ordinal = 1 THEN N'' ELSE N', ' END
        + QUOTENAME(c.name)
        + CASE WHEN INDEXKEY_PROPERTY(@table, x.index_id, @ordinal, N'IsDescending') = 1 THEN N' DESC' ELSE N' ASC' END
    FROM @index AS x
    INNER JOIN dbo.sysindexkeys AS k ON k.id = @table AND k.indid = x.index_id AND k.keyno = @ordinal
    INNER JOIN dbo.syscolumns AS c ON c.id = k.id AND c.colid = k.colid

    UPDATE x
    SET local_columns = x.local_columns + CASE WHEN @ordinal = 1 THEN N'' ELSE N', ' END + QUOTENAME(lc.name),
        referenced_columns = x.referenced_columns + CASE WHEN @ordinal = 1 THEN N'' ELSE N', ' END + QUOTENAME(rc.name)
    FROM @foreign_key AS x
    INNER JOIN dbo.sysforeignkeys AS fk ON fk.constid = x.id AND fk.keyno = @ordinal
    INNER JOIN dbo.syscolumns AS lc ON lc.id = fk.fkeyid AND lc.colid = fk.fkey
    INNER JOIN dbo.syscolumns AS rc ON rc.id = fk.rkeyid AND rc.colid = fk.rkey

    SET @ordinal = @ordinal + 1
END

INSERT INTO @piece (body)
SELECT N'SET ANSI_NULLS ' + CASE WHEN OBJECTPROPERTY(@table, N'IsAnsiNullsOn') = 0 THEN N'OFF' ELSE N'ON' END + @go
    + N'SET QUOTED_IDENTIFIER ON' + @go
    + N'CREATE TABLE ' + @target + N' (' + @crlf + NCHAR(9)

-- A column is its head, the chunks of its formula or default, and nothing behind.
INSERT INTO @piece (body)
SELECT l.body
FROM (
    SELECT
        c.colorder,
        0 AS chunk,
        CASE
            WHEN c.colorder = (SELECT MIN(f.colorder) FROM dbo.syscolumns AS f WHERE f.id = @table) THEN N''
            ELSE @item
        END
        + QUOTENAME(c.name)
        + CASE
            WHEN c.iscomputed = 1 THEN N' AS '
            ELSE N' '
                + CASE
                    WHEN t.xusertype > 256 THEN QUOTENAME(t.name)
                    WHEN t.name IN (N'decimal', N'numeric')
                        THEN t.name + N'(' + CONVERT(nvarchar(10), c.xprec)
                            + N',' + CONVERT(nvarchar(10), c.xscale) + N')'
                    WHEN t.name IN (N'nchar', N'nvarchar')
                        THEN t.name + N'(' + CONVERT(nvarchar(10), c.length / 2) + N')'
                    WHEN t.name IN (N'char', N'varchar', N'binary', N'varbinary')
                        THEN t.name + N'(' + CONVERT(nvarchar(10), c.length) + N')'
                    ELSE t.name
                END
                + CASE
                    WHEN t.xusertype <= 256 AND c.collation <> @collation THEN N' COLLATE ' + c.collation
                    ELSE N''
                END
                + CASE
                    WHEN COLUMNPROPERTY(@table, c.name, N'IsIdentity') = 1
                        THEN N' IDENTITY(' + CONVERT(nvarchar(40), IDENT_SEED(@target))
                            + N',' + CONVERT(nvarchar(40), IDENT_INCR(@target)) + N')'
                            + CASE
                                WHEN COLUMNPROPERTY(@table, c.name, N'IsIdNotForRepl') = 1 THEN N' NOT FOR REPLICATION'
                                ELSE N''
                            END
                    ELSE N''
                END
                + CASE WHEN COLUMNPROPERTY(@table, c.name, N'IsRowGuidCol') = 1 THEN N' ROWGUIDCOL' ELSE N'' END
                + CASE WHEN c.isnullable = 1 THEN N' NULL' ELSE N' NOT NULL' END
                + CASE WHEN d.id IS NULL THEN N'' ELSE N' CONSTRAINT ' + QUOTENAME(d.name) + N' DEFAULT ' END
        END AS body
    FROM dbo.syscolumns AS c
    INNER JOIN dbo.systypes AS t ON t.xusertype = c.xusertype
    LEFT JOIN dbo.sysobjects AS d ON d.id = c.cdefault AND d.parent_obj = c.id
    WHERE c.id = @table
    UNION ALL
    SELECT c.colorder, m.colid, m.text
    FROM dbo.syscolumns AS c
    INNER JOIN dbo.syscomments AS m ON m.id = c.id AND m.number = c.colid
    WHERE c.id = @table
        AND c.iscomputed = 1
    UNION ALL
    SELECT c.colorder, m.colid, m.text
    FROM dbo.syscolumns AS c
    INNER JOIN dbo.sysobjects AS d ON d.id = c.cdefault AND d.parent_obj = c.id
    INNER JOIN dbo.syscomments AS m ON m.id = d.id
    WHERE c.id = @table
) AS l
ORDER BY l.colorder, l.chunk

INSERT INTO @piece (body)
SELECT
    @item + x.head + N' (' + x.key_columns + N')'
    + CASE WHEN x.options = N'' THEN N'' ELSE N' WITH ' + STUFF(x.options, 1, 2, N'') END
FROM @index AS x
WHERE x.key_type <> N''
ORDER BY x.key_type, x.name

INSERT INTO @piece (body) VALUES (@crlf + N')' + @go)

INSERT INTO @piece (body)
SELECT
    x.head + N' (' + x.key_columns + N')'
    + CASE WHEN x.options = N'' THEN N'' ELSE N' WITH ' + STUFF(x.options, 1, 2, N'') END
    + @go
FROM @index AS x
WHERE x.key_type = N''
ORDER BY CASE WHEN x.index_id = 1 THEN 0 ELSE 1 END, x.name

-- Checks and foreign keys. NOCHECK keeps them as untrusted as they are.
INSERT INTO @piece (body)
SELECT l.body
FROM (
    SELECT
        k.name,
        0 AS chunk,
        N'ALTER TABLE ' + @target
            + CASE WHEN OBJECTPROPERTY(k.id, N'CnstIsNotTrusted') = 1 THEN N' WITH NOCHECK' ELSE N' WITH CHECK' END
            + N' ADD CONSTRAINT ' + QUOTENAME(k.name) + N' CHECK '
            + CASE WHEN OBJECTPROPERTY(k.id, N'CnstIsNotRepl') = 1 THEN N'NOT FOR REPLICATION ' ELSE N'' END AS body
    FROM dbo.sysobjects AS k
    WHERE k.parent_obj = @table
        AND k.xtype = 'C'
    UNION ALL
    SELECT k.name, m.colid, m.text
    FROM dbo.sysobjects AS k
    INNER JOIN dbo.syscomments AS m ON m.id = k.id
    WHERE k.parent_obj = @table
        AND k.xtype = 'C'
    UNION ALL
    SELECT
        k.name,
        100000,
        @go + CASE
            WHEN OBJECTPROPERTY(k.id, N'CnstIsDisabled') = 1
                THEN N'ALTER TABLE ' + @target + N' NOCHECK CONSTRAINT ' + QUOTENAME(k.name) + @go
            ELSE N''
        END
    FROM dbo.sysobjects AS k
    WHERE k.parent_obj = @table
        AND k.xtype = 'C'
) AS l
ORDER BY l.name, l.chunk

INSERT INTO @piece (body)
SELECT l.body
FROM (
    SELECT
        k.name,
        0 AS chunk,
        N'ALTER TABLE ' + @target
            + CASE WHEN OBJECTPROPERTY(k.id, N'CnstIsNotTrusted') = 1 THEN N' WITH NOCHECK' ELSE N' WITH CHECK' END
            + N' ADD CONSTRAINT ' + QUOTENAME(k.name) + N' FOREIGN KEY (' + x.local_columns + N')' AS body
    FROM @foreign_key AS x
    INNER JOIN dbo.sysobjects AS k ON k.id = x.id
    UNION ALL
    SELECT
        k.name,
        1,
        N' REFERENCES ' + QUOTENAME(ru.name) + N'.' + QUOTENAME(rt.name) + N' (' + x.referenced_columns + N')'
            + CASE WHEN OBJECTPROPERTY(k.id, N'CnstIsDeleteCascade') = 1 THEN N' ON DELETE CASCADE' ELSE N'' END
            + CASE WHEN OBJECTPROPERTY(k.id, N'CnstIsUpdateCascade') = 1 THEN N' ON UPDATE CASCADE' ELSE N'' END
            + CASE WHEN OBJECTPROPERTY(k.id, N'CnstIsNotRepl') = 1 THEN N' NOT FOR REPLICATION' ELSE N'' END
            + @go
            + CASE
                WHEN OBJECTPROPERTY(k.id, N'CnstIsDisabled') = 1
                    THEN N'ALTER TABLE ' + @target + N' NOCHECK CONSTRAINT ' + QUOTENAME(k.name) + @go
                ELSE N''
            END
    FROM @foreign_key AS x
    INNER JOIN dbo.sysobjects AS k ON k.id = x.id
    INNER JOIN dbo.sysreferences AS r ON r.constid = x.id
    INNER JOIN dbo.sysobjects AS rt ON rt.id = r.rkeyid
    INNER JOIN dbo.sysusers AS ru ON ru.uid = rt.uid
) AS l
ORDER BY l.name, l.chunk

-- Defaults that are objects of their own, unless the column has them from its type, and rules likewise.
INSERT INTO @piece (body)
SELECT
    N'EXEC sp_bindefault N''' + REPLACE(QUOTENAME(du.name) + N'.' + QUOTENAME(d.name), N'''', N'''''')
    + N''', N''' + REPLACE(@target + N'.' + QUOTENAME(c.name), N'''', N'''''') + N'''' + @go
FROM dbo.syscolumns AS c
INNER JOIN dbo.systypes AS t ON t.xusertype = c.xusertype
INNER JOIN dbo.sysobjects AS d ON d.id = c.cdefault
INNER JOIN dbo.sysusers AS du ON du.uid = d.uid
WHERE c.id = @table
    AND d.parent_obj = 0
    AND c.cdefault <> t.tdefault
ORDER BY c.colorder

INSERT INTO @piece (body)
SELECT
    N'EXEC sp_bindrule N''' + REPLACE(QUOTENAME(du.name) + N'.' + QUOTENAME(d.name), N'''', N'''''')
    + N''', N''' + REPLACE(@target + N'.' + QUOTENAME(c.name), N'''', N'''''') + N'''' + @go
FROM dbo.syscolumns AS c
INNER JOIN dbo.systypes AS t ON t.xusertype = c.xusertype
INNER JOIN dbo.sysobjects AS d ON d.id = c.domain
INNER JOIN dbo.sysusers AS du ON du.uid = d.uid
WHERE c.id = @table
    AND c.domain <> t.domain
ORDER BY c.colorder

-- Triggers, each with the settings it was made under and its state.
INSERT INTO @piece (body)
SELECT l.body
FROM (
    SELECT
        tr.name,
        0 AS chunk,
        N'SET ANSI_NULLS ' + CASE WHEN OBJECTPROPERTY(tr.id, N'ExecIsAnsiNullsOn') = 0 THEN N'OFF' ELSE N'ON' END + @go
            + N'SET QUOTED_IDENTIFIER '
            + CASE WHEN OBJECTPROPERTY(tr.id, N'ExecIsQuotedIdentOn') = 0 THEN N'OFF' ELSE N'ON' END + @go
            + CASE
                WHEN EXISTS (SELECT 1 FROM dbo.syscomments AS m WHERE m.id = tr.id AND m.encrypted = 1)
                    THEN N'-- Trigger '
                        + REPLACE(REPLACE(QUOTENAME(tr.name), NCHAR(13), N' '), NCHAR(10), N' ')
                        + N' is encrypted.'
                ELSE N''
            END AS body
    FROM dbo.sysobjects AS tr
    WHERE tr.parent_obj = @table
        AND tr.xtype = 'TR'
        AND OBJECTPROPERTY(tr.id, N'IsMSShipped') = 0
    UNION ALL
    SELECT tr.name, m.colid, m.text
    FROM dbo.sysobjects AS tr
    INNER JOIN dbo.syscomments AS m ON m.id = tr.id
    WHERE tr.parent_obj = @table
        AND tr.xtype = 'TR'
        AND OBJECTPROPERTY(tr.id, N'IsMSShipped') = 0
        AND m.encrypted = 0
    UNION ALL
    SELECT
        tr.name,
        100000,
        @go + CASE
            WHEN OBJECTPROPERTY(tr.id, N'ExecIsTriggerDisabled') = 1
                AND NOT EXISTS (SELECT 1 FROM dbo.syscomments AS m WHERE m.id = tr.id AND m.encrypted = 1)
                THEN N'ALTER TABLE ' + @target + N' DISABLE TRIGGER ' + QUOTENAME(tr.name) + @go
            ELSE N''
        END
    FROM dbo.sysobjects AS tr
    WHERE tr.parent_obj = @table
        AND tr.xtype = 'TR'
        AND OBJECTPROPERTY(tr.id, N'IsMSShipped') = 0
) AS l
ORDER BY l.name, l.chunk

INSERT INTO #vantor_script (body) VALUES (N'')
SELECT @pointer = TEXTPTR(body) FROM #vantor_script
SELECT @last = MAX(id) FROM @piece
SET @ordinal = 1
WHILE @ordinal <= @last
BEGIN
    SELECT @body = ISNULL(p.body, N'') FROM @piece AS p WHERE p.id = @ordinal
    UPDATETEXT #vantor_script.body @pointer NULL 0 @body
    SET @ordinal = @ordinal + 1
END

IF @nocount = 0
    SET NOCOUNT OFF

SELECT v.body AS creation_script
FROM #vantor_script AS v
WHERE @table IS NOT NULL

DROP TABLE #vantor_script
