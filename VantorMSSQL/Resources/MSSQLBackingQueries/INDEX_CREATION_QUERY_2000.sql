-- The keys are appended to their lists column by column, all indexes at a time. The caller's other fragments name the
-- catalog of later servers and are not asked for here.
DECLARE @nocount int
DECLARE @ordinal int
DECLARE @id int
DECLARE @index TABLE (
    index_id int NOT NULL PRIMARY KEY,
    head nvarchar(1000) NOT NULL,
    key_columns nvarchar(2500) NOT NULL,
    options nvarchar(200) NOT NULL
)

SET @nocount = @@OPTIONS & 512
SET NOCOUNT ON
SET @id = OBJECT_ID(N'{VIEW_PATH}')

INSERT INTO @index (index_id, head, key_columns, options)
SELECT
    i.indid,
    N'CREATE ' + CASE WHEN INDEXPROPERTY(i.id, i.name, N'IsUnique') = 1 THEN N'UNIQUE ' ELSE N'' END
        + CASE WHEN i.indid = 1 THEN N'CLUSTERED' ELSE N'NONCLUSTERED' END
        + N' INDEX ' + QUOTENAME(i.name)
        + N' ON ' + QUOTENAME(u.name) + N'.' + QUOTENAME(o.name) + N' (',
    N'',
    CASE WHEN INDEXPROPERTY(i.id, i.name, N'IsPadIndex') = 1 THEN N', PAD_INDEX' ELSE N'' END
        + CASE
            WHEN i.OrigFillFactor > 0 THEN N', FILLFACTOR = ' + CONVERT(nvarchar(10), i.OrigFillFactor)
            ELSE N''
        END
        + CASE WHEN i.status & 1 = 1 THEN N', IGNORE_DUP_KEY' ELSE N'' END
        + CASE WHEN i.status & 16777216 <> 0 THEN N', STATISTICS_NORECOMPUTE' ELSE N'' END
FROM dbo.sysindexes AS i
INNER JOIN dbo.sysobjects AS o ON o.id = i.id
INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
WHERE i.id = @id
    AND o.xtype = 'V'
    AND i.indid BETWEEN 1 AND 254
    AND INDEXPROPERTY(i.id, i.name, N'IsStatistics') = 0
    AND INDEXPROPERTY(i.id, i.name, N'IsHypothetical') = 0

SET @ordinal = 1
WHILE EXISTS (SELECT 1 FROM dbo.sysindexkeys WHERE id = @id AND keyno >= @ordinal)
BEGIN
    UPDATE x
    SET key_columns = x.key_columns
        + CASE WHEN x.key_columns = N'' THEN N'' ELSE N', ' END
        + QUOTENAME(c.name)
        + CASE WHEN INDEXKEY_PROPERTY(@id, x.index_id, @ordinal, N'IsDescending') = 1 THEN N' DESC' ELSE N' ASC' END
    FROM @index AS x
    INNER JOIN dbo.sysindexkeys AS k ON k.id = @id AND k.indid = x.index_id AND k.keyno = @ordinal
    INNER JOIN dbo.syscolumns AS c ON c.id = k.id AND c.colid = k.colid

    SET @ordinal = @ordinal + 1
END

IF @nocount = 0
    SET NOCOUNT OFF

SELECT
    x.head + x.key_columns + N')'
        + CASE WHEN x.options = N'' THEN N'' ELSE N' WITH ' + STUFF(x.options, 1, 2, N'') END
        AS index_statement
FROM @index AS x
ORDER BY x.index_id
