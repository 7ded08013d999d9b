-- One row per column of every index and the primary key: the keys in their order, then the included columns. Unique
-- constraints are left out.
-- A data space is named where a new index would not stand there anyway. 2005 has neither filters nor compression.
DECLARE @nocount int
DECLARE @table int
DECLARE @storage TABLE (
    index_id int NOT NULL PRIMARY KEY,
    filter nvarchar(max) NULL,
    compression nvarchar(60) NULL,
    is_mixed int NOT NULL
)

SET @nocount = @@OPTIONS & 512
SET NOCOUNT ON

SELECT @table = t.object_id
FROM sys.tables AS t
INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
WHERE s.name = N'{TABLE_SCHEMA}'
    AND t.name = N'{TABLE_NAME}'

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.indexes') AND name = N'filter_definition')
    INSERT INTO @storage (index_id, filter, compression, is_mixed)
    EXEC sp_executesql N'
        SELECT
            i.index_id,
            i.filter_definition,
            CASE WHEN p.lowest = p.highest AND p.lowest IN (1, 2) THEN p.name END,
            CASE WHEN p.lowest <> p.highest THEN 1 ELSE 0 END
        FROM sys.indexes AS i
        LEFT JOIN (
            SELECT
                q.index_id,
                MIN(q.data_compression) AS lowest,
                MAX(q.data_compression) AS highest,
                MIN(q.data_compression_desc) AS name
            FROM sys.partitions AS q
            WHERE q.object_id = @table
            GROUP BY q.index_id
        ) AS p ON p.index_id = i.index_id
        WHERE i.object_id = @table',
        N'@table int',
        @table

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
    g.filter AS filter_definition,
    g.compression,
    ISNULL(g.is_mixed, 0) AS has_mixed_compression,
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
LEFT JOIN @storage AS g ON g.index_id = i.index_id
WHERE i.object_id = @table
    AND i.type IN (1, 2)
    AND i.is_hypothetical = 0
    AND i.is_unique_constraint = 0
    AND (ic.key_ordinal > 0 OR ic.is_included_column = 1)
ORDER BY i.index_id, ic.is_included_column, ic.key_ordinal, ic.index_column_id
