-- One row per column of every index and the primary key: the keys in their order, then the included columns. Unique
-- constraints are left out.
-- A data space is named where a new index would not stand there anyway. The options of compression name the partitions
-- that have them, unless all have. 2005 has neither filters nor compression.
DECLARE @nocount int
DECLARE @table int
DECLARE @ordinal int
DECLARE @last int
DECLARE @filter TABLE (
    index_id int NOT NULL PRIMARY KEY,
    condition nvarchar(max) NULL
)
DECLARE @sequential TABLE (
    index_id int NOT NULL PRIMARY KEY
)
DECLARE @partition TABLE (
    index_id int NOT NULL,
    option_text nvarchar(100) NOT NULL,
    number int NOT NULL
)
DECLARE @range TABLE (
    index_id int NOT NULL,
    option_text nvarchar(100) NOT NULL,
    ordinal int NOT NULL,
    range_text nvarchar(40) NOT NULL
)
DECLARE @option TABLE (
    index_id int NOT NULL,
    option_text nvarchar(100) NOT NULL,
    ordinal int NOT NULL,
    is_whole int NOT NULL,
    ranges nvarchar(max) NOT NULL
)
DECLARE @compression TABLE (
    index_id int NOT NULL PRIMARY KEY,
    options nvarchar(max) NOT NULL
)

SET @nocount = @@OPTIONS & 512
SET NOCOUNT ON

SELECT @table = t.object_id
FROM sys.tables AS t
INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
WHERE s.name = N'{TABLE_SCHEMA}'
    AND t.name = N'{TABLE_NAME}'

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.indexes') AND name = N'filter_definition')
    INSERT INTO @filter (index_id, condition)
    EXEC sp_executesql N'
        SELECT i.index_id, ISNULL(i.filter_definition, N''/* its definition may not be seen by this login */'')
        FROM sys.indexes AS i
        WHERE i.object_id = @table
            AND i.has_filter = 1',
        N'@table int',
        @table

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.indexes')
    AND name = N'optimize_for_sequential_key')
    INSERT INTO @sequential (index_id)
    EXEC sp_executesql N'
        SELECT i.index_id
        FROM sys.indexes AS i
        WHERE i.object_id = @table
            AND i.optimize_for_sequential_key = 1',
        N'@table int',
        @table

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.partitions') AND name = N'data_compression')
    INSERT INTO @partition (index_id, option_text, number)
    EXEC sp_executesql N'
        SELECT p.index_id, N''DATA_COMPRESSION = '' + p.data_compression_desc, p.partition_number
        FROM sys.partitions AS p
        WHERE p.object_id = @table
            AND p.data_compression IN (1, 2)',
        N'@table int',
        @table

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.partitions') AND name = N'xml_compression')
    INSERT INTO @partition (index_id, option_text, number)
    EXEC sp_executesql N'
        SELECT p.index_id, N''XML_COMPRESSION = ON'', p.partition_number
        FROM sys.partitions AS p
        WHERE p.object_id = @table
            AND p.xml_compression = 1',
        N'@table int',
        @table

INSERT INTO @range (index_id, option_text, ordinal, range_text)
SELECT
    r.index_id,
    r.option_text,
    ROW_NUMBER() OVER (PARTITION BY r.index_id, r.option_text ORDER BY r.first_number),
    CONVERT(nvarchar(10), r.first_number)
        + CASE WHEN r.last_number > r.first_number THEN N' TO ' + CONVERT(nvarchar(10), r.last_number) ELSE N'' END
FROM (
    SELECT n.index_id, n.option_text, MIN(n.number) AS first_number, MAX(n.number) AS last_number
    FROM (
        SELECT
            p.index_id,
            p.option_text,
            p.number,
            p.number - ROW_NUMBER() OVER (PARTITION BY p.index_id, p.option_text ORDER BY p.number) AS gap
        FROM @partition AS p
    ) AS n
    GROUP BY n.index_id, n.option_text, n.gap
) AS r

INSERT INTO @option (index_id, option_text, ordinal, is_whole, ranges)
SELECT
    o.index_id,
    o.option_text,
    ROW_NUMBER() OVER (PARTITION BY o.index_id ORDER BY o.option_text),
    CASE WHEN o.partitions = t.partitions THEN 1 ELSE 0 END,
    N''
FROM (
    SELECT p.index_id, p.option_text, COUNT(*) AS partitions
    FROM @partition AS p
    GROUP BY p.index_id, p.option_text
) AS o
INNER JOIN (
    SELECT p.index_id, COUNT(*) AS partitions
    FROM sys.partitions AS p
    WHERE p.object_id = @table
    GROUP BY p.index_id
) AS t ON t.index_id = o.index_id

SELECT @last = MAX(ordinal) FROM @range
SET @ordinal = 1
WHILE @ordinal <= @last
BEGIN
    UPDATE o
    SET ranges = o.ranges + CASE WHEN @ordinal = 1 THEN N'' ELSE N', ' END + r.range_text
    FROM @option AS o
    INNER JOIN @range AS r ON r.index_id = o.index_id AND r.option_text = o.option_text
    WHERE r.ordinal = @ordinal

    SET @ordinal = @ordinal + 1
END

INSERT INTO @compression (index_id, options)
SELECT DISTINCT o.index_id, N''
FROM @option AS o

SELECT @last = MAX(ordinal) FROM @option
SET @ordinal = 1
WHILE @ordinal <= @last
BEGIN
    UPDATE c
    SET options = c.options + CASE WHEN @ordinal = 1 THEN N'' ELSE N', ' END + o.option_text
        + CASE WHEN o.is_whole = 1 THEN N'' ELSE N' ON PARTITIONS (' + o.ranges + N')' END
    FROM @compression AS c
    INNER JOIN @option AS o ON o.index_id = c.index_id
    WHERE o.ordinal = @ordinal

    SET @ordinal = @ordinal + 1
END

IF @nocount = 0
    SET NOCOUNT OFF

SELECT
    i.name AS index_name,
    c.name AS column_name,
    CONVERT(int, ic.is_included_column) AS is_included,
    CONVERT(int, ic.is_descending_key) AS is_descending,
    CONVERT(int, i.fill_factor) AS fill_factor,
    CONVERT(int, i.is_padded) AS is_padded,
    CONVERT(int, i.ignore_dup_key) AS ignores_duplicates,
    CONVERT(int, ISNULL(st.no_recompute, 0)) AS is_without_recompute,
    CONVERT(int, i.allow_row_locks) AS allows_row_locks,
    CONVERT(int, i.allow_page_locks) AS allows_page_locks,
    CONVERT(int, i.is_disabled) AS is_disabled,
    f.condition AS filter_definition,
    g.options AS compression,
    CASE WHEN q.index_id IS NULL THEN 0 ELSE 1 END AS is_sequential,
    d.name AS data_space,
    CASE WHEN d.type = 'PS' THEN pc.name END AS partition_column,
    CONVERT(int, i.is_primary_key) AS is_primary_key
FROM sys.indexes AS i
INNER JOIN sys.index_columns AS ic ON ic.object_id = i.object_id AND ic.index_id = i.index_id
INNER JOIN sys.columns AS c ON c.object_id = ic.object_id AND c.column_id = ic.column_id
LEFT JOIN sys.indexes AS base ON base.object_id = i.object_id AND base.index_id IN (0, 1)
LEFT JOIN sys.stats AS st ON st.object_id = i.object_id AND st.stats_id = i.index_id
LEFT JOIN sys.index_columns AS pic
    ON pic.object_id = i.object_id
    AND pic.index_id = i.index_id
    AND pic.partition_ordinal = 1
LEFT JOIN sys.columns AS pc ON pc.object_id = pic.object_id AND pc.column_id = pic.column_id
LEFT JOIN sys.index_columns AS bic
    ON bic.object_id = base.object_id
    AND bic.index_id = base.index_id
    AND bic.partition_ordinal = 1
LEFT JOIN sys.data_spaces AS d
    ON d.data_space_id = i.data_space_id
    AND d.type IN ('FG', 'PS')
    AND (
        i.data_space_id <> base.data_space_id
        OR ISNULL(pic.column_id, 0) <> ISNULL(bic.column_id, 0)
    )
LEFT JOIN @filter AS f ON f.index_id = i.index_id
LEFT JOIN @compression AS g ON g.index_id = i.index_id
LEFT JOIN @sequential AS q ON q.index_id = i.index_id
WHERE i.object_id = @table
    AND i.type IN (1, 2)
    AND i.is_hypothetical = 0
    AND i.is_unique_constraint = 0
    AND (ic.key_ordinal > 0 OR ic.is_included_column = 1)
ORDER BY i.index_id, ic.is_included_column, ic.key_ordinal, ic.index_column_id
