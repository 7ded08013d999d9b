-- The indexes of a view and the statistics that users made on it: all are lost when it is altered. Columns are appended
-- to their lists one by one, all indexes at a time. What 2005 does not have is asked for in dynamic SQL.
DECLARE @nocount int
DECLARE @ordinal int
DECLARE @last int
DECLARE @index TABLE (
    object_id int NOT NULL,
    index_id int NOT NULL,
    type tinyint NOT NULL,
    is_disabled bit NOT NULL,
    name nvarchar(300) NOT NULL,
    target nvarchar(600) NOT NULL,
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
    name nvarchar(60) NULL
)
DECLARE @option TABLE (
    object_id int NOT NULL,
    index_id int NOT NULL,
    option_text nvarchar(100) NOT NULL
)
DECLARE @statistic TABLE (
    object_id int NOT NULL,
    stats_id int NOT NULL,
    head nvarchar(max) NOT NULL,
    columns nvarchar(max) NOT NULL,
    options nvarchar(100) NOT NULL
)

SET @nocount = @@OPTIONS & 512
SET NOCOUNT ON

INSERT INTO @index (
    object_id, index_id, type, is_disabled, name, target, head, key_columns, included_columns, options, place
)
SELECT
    i.object_id,
    i.index_id,
    i.type,
    i.is_disabled,
    QUOTENAME(i.name),
    QUOTENAME(s.name) + N'.' + QUOTENAME(t.name),
    N'CREATE ' + CASE WHEN i.is_unique = 1 THEN N'UNIQUE ' ELSE N'' END
        + CASE i.type WHEN 1 THEN N'CLUSTERED' WHEN 6 THEN N'NONCLUSTERED COLUMNSTORE' ELSE N'NONCLUSTERED' END
        + N' INDEX ' + QUOTENAME(i.name)
        + N' ON ' + QUOTENAME(s.name) + N'.' + QUOTENAME(t.name) + N' (',
    N'',
    N'',
    CASE
        WHEN i.type = 6 THEN N''
        ELSE CASE WHEN i.is_padded = 1 THEN N', PAD_INDEX = ON' ELSE N'' END
            + CASE WHEN i.fill_factor > 0 THEN N', FILLFACTOR = ' + CONVERT(nvarchar(10), i.fill_factor) ELSE N'' END
            + CASE WHEN i.ignore_dup_key = 1 THEN N', IGNORE_DUP_KEY = ON' ELSE N'' END
            + CASE WHEN st.no_recompute = 1 THEN N', STATISTICS_NORECOMPUTE = ON' ELSE N'' END
            + CASE WHEN i.allow_row_locks = 0 THEN N', ALLOW_ROW_LOCKS = OFF' ELSE N'' END
            + CASE WHEN i.allow_page_locks = 0 THEN N', ALLOW_PAGE_LOCKS = OFF' ELSE N'' END
    END,
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
    AND i.type IN (1, 2, 6)
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

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.partitions') AND name = N'data_compression')
    INSERT INTO @compression (object_id, index_id, name)
    EXEC sp_executesql N'
        SELECT
            p.object_id,
            p.index_id,
            CASE WHEN MIN(p.data_compression) = MAX(p.data_compression) THEN MIN(p.data_compression_desc) END
        FROM sys.partitions AS p
        INNER JOIN sys.views AS v ON v.object_id = p.object_id
        GROUP BY p.object_id, p.index_id
        HAVING MIN(p.data_compression) <> MAX(p.data_compression) OR MIN(p.data_compression) IN (1, 2, 4)'

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.indexes')
    AND name = N'optimize_for_sequential_key')
    INSERT INTO @option (object_id, index_id, option_text)
    EXEC sp_executesql N'
        SELECT i.object_id, i.index_id, N'', OPTIMIZE_FOR_SEQUENTIAL_KEY = ON''
        FROM sys.indexes AS i
        INNER JOIN sys.views AS v ON v.object_id = i.object_id
        WHERE i.type IN (1, 2)
            AND i.optimize_for_sequential_key = 1'

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.indexes') AND name = N'compression_delay')
    INSERT INTO @option (object_id, index_id, option_text)
    EXEC sp_executesql N'
        SELECT
            i.object_id,
            i.index_id,
            N'', COMPRESSION_DELAY = '' + CONVERT(nvarchar(10), i.compression_delay) + N'' MINUTES''
        FROM sys.indexes AS i
        INNER JOIN sys.views AS v ON v.object_id = i.object_id
        WHERE i.type = 6
            AND i.compression_delay > 0'

UPDATE x
SET options = x.options + N', DATA_COMPRESSION = ' + p.name
FROM @index AS x
INNER JOIN @compression AS p ON p.object_id = x.object_id AND p.index_id = x.index_id
WHERE p.name IS NOT NULL

-- An index is of a kind that takes one of these options only.
UPDATE x
SET options = x.options + o.option_text
FROM @index AS x
INNER JOIN @option AS o ON o.object_id = x.object_id AND o.index_id = x.index_id

INSERT INTO @statistic (object_id, stats_id, head, columns, options)
SELECT
    st.object_id,
    st.stats_id,
    N'CREATE STATISTICS ' + QUOTENAME(st.name) + N' ON ' + x.target COLLATE DATABASE_DEFAULT + N' (',
    N'',
    CASE WHEN st.no_recompute = 1 THEN N' WITH NORECOMPUTE' ELSE N'' END
FROM sys.stats AS st
INNER JOIN @index AS x ON x.object_id = st.object_id AND x.index_id = 1
WHERE st.user_created = 1

SELECT @last = MAX(sc.stats_column_id)
FROM sys.stats_columns AS sc
INNER JOIN @statistic AS x ON x.object_id = sc.object_id AND x.stats_id = sc.stats_id

SET @ordinal = 1
WHILE @ordinal <= @last
BEGIN
    UPDATE x
    SET columns = x.columns + CASE WHEN @ordinal = 1 THEN N'' ELSE N', ' END
        + QUOTENAME(c.name) COLLATE DATABASE_DEFAULT
    FROM @statistic AS x
    INNER JOIN sys.stats_columns AS sc
        ON sc.object_id = x.object_id
        AND sc.stats_id = x.stats_id
        AND sc.stats_column_id = @ordinal
    INNER JOIN sys.columns AS c ON c.object_id = sc.object_id AND c.column_id = sc.column_id

    SET @ordinal = @ordinal + 1
END

IF @nocount = 0
    SET NOCOUNT OFF

-- The clustered index, index_id 1, has to be there first, and to be disabled last: nothing can be made behind it.
SELECT q.index_statement
FROM (
    SELECT
        x.object_id,
        1 AS step,
        x.index_id AS ordinal,
        N'-- Not scripted: the compression of index ' + REPLACE(REPLACE(x.name, NCHAR(13), N' '), NCHAR(10), N' ')
            + N', which differs by partition.' AS index_statement
    FROM @index AS x
    INNER JOIN @compression AS p ON p.object_id = x.object_id AND p.index_id = x.index_id
    WHERE p.name IS NULL
    UNION ALL
    SELECT
        x.object_id,
        2,
        x.index_id,
        x.head + CASE WHEN x.type = 6 THEN x.included_columns ELSE x.key_columns END + N')'
            + CASE
                WHEN x.type = 6 OR x.included_columns = N'' THEN N''
                ELSE N' INCLUDE (' + x.included_columns + N')'
            END
            + CASE WHEN x.options = N'' THEN N'' ELSE N' WITH (' + STUFF(x.options, 1, 2, N'') + N')' END
            + x.place
    FROM @index AS x
    UNION ALL
    SELECT x.object_id, 3, x.stats_id, x.head + x.columns + N')' + x.options
    FROM @statistic AS x
    UNION ALL
    SELECT
        x.object_id,
        4,
        CASE WHEN x.index_id = 1 THEN 1 ELSE 0 END,
        N'ALTER INDEX ' + x.name + N' ON ' + x.target + N' DISABLE'
    FROM @index AS x
    WHERE x.is_disabled = 1
) AS q
ORDER BY q.object_id, q.step, q.ordinal, q.index_statement
