-- Keys and included columns are appended to their lists column by column, all indexes at a time. Compression is asked
-- for in dynamic SQL: 2005 has no such column.
DECLARE @nocount int
DECLARE @ordinal int
DECLARE @last int
DECLARE @index TABLE (
    object_id int NOT NULL,
    index_id int NOT NULL,
    head nvarchar(max) NOT NULL,
    key_columns nvarchar(max) NOT NULL,
    included_columns nvarchar(max) NOT NULL,
    options nvarchar(max) NOT NULL,
    place nvarchar(1000) NOT NULL,
    PRIMARY KEY (object_id, index_id)
)
DECLARE @compression TABLE (
    object_id int NOT NULL,
    index_id int NOT NULL,
    name nvarchar(60) NOT NULL
)

SET @nocount = @@OPTIONS & 512
SET NOCOUNT ON

INSERT INTO @index (object_id, index_id, head, key_columns, included_columns, options, place)
SELECT
    i.object_id,
    i.index_id,
    N'CREATE ' + CASE WHEN i.is_unique = 1 THEN N'UNIQUE ' ELSE N'' END
        + CASE WHEN i.type = 1 THEN N'CLUSTERED' ELSE N'NONCLUSTERED' END
        + N' INDEX ' + QUOTENAME(i.name)
        + N' ON ' + QUOTENAME(s.name) + N'.' + QUOTENAME(t.name) + N' (',
    N'',
    N'',
    CASE WHEN i.is_padded = 1 THEN N', PAD_INDEX = ON' ELSE N'' END
        + CASE WHEN i.fill_factor > 0 THEN N', FILLFACTOR = ' + CONVERT(nvarchar(10), i.fill_factor) ELSE N'' END
        + CASE WHEN i.ignore_dup_key = 1 THEN N', IGNORE_DUP_KEY = ON' ELSE N'' END
        + CASE WHEN st.no_recompute = 1 THEN N', STATISTICS_NORECOMPUTE = ON' ELSE N'' END
        + CASE WHEN i.allow_row_locks = 0 THEN N', ALLOW_ROW_LOCKS = OFF' ELSE N'' END
        + CASE WHEN i.allow_page_locks = 0 THEN N', ALLOW_PAGE_LOCKS = OFF' ELSE N'' END,
    CASE
        WHEN d.type = 'PS' THEN N' ON ' + QUOTENAME(d.name) + N'(' + ISNULL(QUOTENAME(pc.name), N'') + N')'
        WHEN d.type = 'FG' AND d.is_default = 0 THEN N' ON ' + QUOTENAME(d.name)
        ELSE N''
    END
FROM {INDEX_SRC} AS t
INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
INNER JOIN sys.indexes AS i ON i.object_id = t.object_id
LEFT JOIN sys.stats AS st ON st.object_id = i.object_id AND st.stats_id = i.index_id
LEFT JOIN sys.data_spaces AS d ON d.data_space_id = i.data_space_id
LEFT JOIN sys.index_columns AS ic
    ON ic.object_id = i.object_id
    AND ic.index_id = i.index_id
    AND ic.partition_ordinal = 1
LEFT JOIN sys.columns AS pc ON pc.object_id = ic.object_id AND pc.column_id = ic.column_id
WHERE {INDEX_CLAUSE}
    AND i.type IN (1, 2)
    AND i.is_hypothetical = 0
    AND i.is_primary_key = 0
    AND i.is_unique_constraint = 0

SELECT @last = MAX(ic.index_column_id)
FROM sys.index_columns AS ic
INNER JOIN @index AS x ON x.object_id = ic.object_id AND x.index_id = ic.index_id

SET @ordinal = 1
WHILE @ordinal <= @last
BEGIN
    UPDATE x
    SET key_columns = x.key_columns
        + CASE WHEN x.key_columns = N'' THEN N'' ELSE N', ' END
        + QUOTENAME(c.name) COLLATE DATABASE_DEFAULT
        + CASE WHEN ic.is_descending_key = 1 THEN N' DESC' ELSE N' ASC' END
    FROM @index AS x
    INNER JOIN sys.index_columns AS ic
        ON ic.object_id = x.object_id
        AND ic.index_id = x.index_id
        AND ic.key_ordinal = @ordinal
    INNER JOIN sys.columns AS c ON c.object_id = ic.object_id AND c.column_id = ic.column_id

    UPDATE x
    SET included_columns = x.included_columns
        + CASE WHEN x.included_columns = N'' THEN N'' ELSE N', ' END
        + QUOTENAME(c.name) COLLATE DATABASE_DEFAULT
    FROM @index AS x
    INNER JOIN sys.index_columns AS ic
        ON ic.object_id = x.object_id
        AND ic.index_id = x.index_id
        AND ic.index_column_id = @ordinal
        AND ic.is_included_column = 1
    INNER JOIN sys.columns AS c ON c.object_id = ic.object_id AND c.column_id = ic.column_id

    SET @ordinal = @ordinal + 1
END

IF EXISTS (
    SELECT 1
    FROM sys.all_columns
    WHERE object_id = OBJECT_ID(N'sys.partitions')
        AND name = N'data_compression'
)
    INSERT INTO @compression (object_id, index_id, name)
    EXEC sp_executesql N'
        SELECT p.object_id, p.index_id, MIN(p.data_compression_desc)
        FROM sys.partitions AS p
        INNER JOIN sys.views AS v ON v.object_id = p.object_id
        GROUP BY p.object_id, p.index_id
        HAVING MIN(p.data_compression) = MAX(p.data_compression) AND MIN(p.data_compression) IN (1, 2)'

UPDATE x
SET options = x.options + N', DATA_COMPRESSION = ' + p.name
FROM @index AS x
INNER JOIN @compression AS p ON p.object_id = x.object_id AND p.index_id = x.index_id

IF @nocount = 0
    SET NOCOUNT OFF

-- The clustered index has to be there first: index_id 1.
SELECT
    x.head + x.key_columns + N')'
        + CASE WHEN x.included_columns = N'' THEN N'' ELSE N' INCLUDE (' + x.included_columns + N')' END
        + CASE WHEN x.options = N'' THEN N'' ELSE N' WITH (' + STUFF(x.options, 1, 2, N'') + N')' END
        + x.place AS index_statement
FROM @index AS x
ORDER BY x.object_id, x.index_id
