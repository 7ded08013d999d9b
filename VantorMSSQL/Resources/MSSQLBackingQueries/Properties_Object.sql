-- One row about a table, view, procedure, function, trigger or constraint: a column for each property, NULL where it
-- does not apply. Sizes come from the allocation units, which a login may read for what it may see; they can be a
-- little old. What 2005 does not have is read by dynamic SQL behind a look into sys.all_columns.
DECLARE @object int
DECLARE @compression nvarchar(60)
DECLARE @history nvarchar(600)
DECLARE @row_count bigint
DECLARE @data bigint
DECLARE @index bigint
DECLARE @unused bigint
SET @object = OBJECT_ID(QUOTENAME(N'{SCHEMA}') + N'.' + QUOTENAME(N'{OBJECT}'))

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.partitions') AND name = N'data_compression')
    EXEC sp_executesql N'
        SELECT @compression = CASE
            WHEN MIN(p.data_compression) = MAX(p.data_compression) THEN MIN(p.data_compression_desc)
            WHEN COUNT(*) > 0 THEN N''MIXED''
        END
        FROM sys.partitions AS p
        WHERE p.object_id = @object
            AND p.index_id IN (0, 1)',
        N'@object int, @compression nvarchar(60) OUTPUT',
        @object,
        @compression OUTPUT

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.tables') AND name = N'history_table_id')
    EXEC sp_executesql N'
        SELECT @history = QUOTENAME(s.name) + N''.'' + QUOTENAME(h.name)
        FROM sys.tables AS t
        INNER JOIN sys.tables AS h ON h.object_id = t.history_table_id
        INNER JOIN sys.schemas AS s ON s.schema_id = h.schema_id
        WHERE t.object_id = @object',
        N'@object int, @history nvarchar(600) OUTPUT',
        @object,
        @history OUTPUT

SELECT @row_count = SUM(p.rows)
FROM sys.partitions AS p
WHERE p.object_id = @object
    AND p.index_id IN (0, 1)

SELECT
    @data = SUM(CASE
        WHEN p.index_id IN (0, 1) AND a.type = 1 THEN a.data_pages
        WHEN p.index_id IN (0, 1) THEN a.used_pages
        ELSE 0
    END) * 8,
    @index = SUM(a.used_pages - CASE
        WHEN p.index_id IN (0, 1) AND a.type = 1 THEN a.data_pages
        WHEN p.index_id IN (0, 1) THEN a.used_pages
        ELSE 0
    END) * 8,
    @unused = SUM(a.total_pages - a.used_pages) * 8
FROM sys.partitions AS p
INNER JOIN sys.allocation_units AS a
    ON a.container_id = CASE WHEN a.type IN (1, 3) THEN p.hobt_id ELSE p.partition_id END
WHERE p.object_id = @object

SELECT
    o.name AS [Name],
    s.name AS [Schema],
    LOWER(REPLACE(o.type_desc, N'_', N' ')) AS [Kind],
    QUOTENAME(OBJECT_SCHEMA_NAME(o.parent_object_id)) + N'.'
        + QUOTENAME(OBJECT_NAME(o.parent_object_id)) AS [Belongs to],
    CONVERT(nvarchar(30), o.create_date, 120) AS [Created],
    CONVERT(nvarchar(30), o.modify_date, 120) AS [Changed],
    @row_count AS [Rows],
    @data AS [Data (KB)],
    @index AS [Indexes (KB)],
    @unused AS [Unused (KB)],
    (
        SELECT d.name
        FROM sys.indexes AS i
        INNER JOIN sys.data_spaces AS d ON d.data_space_id = i.data_space_id
        WHERE i.object_id = o.object_id
            AND i.index_id IN (0, 1)
            AND o.type = 'U'
    ) AS [Filegroup],
    @compression AS [Compression],
    @history AS [History table],
    CASE
        WHEN o.type = 'U' THEN CONVERT(nvarchar(128), DATABASEPROPERTYEX(DB_NAME(), 'Collation'))
    END AS [Default collation],
    CASE m.uses_ansi_nulls WHEN 1 THEN N'on' WHEN 0 THEN N'off' END AS [ANSI_NULLS],
    CASE m.uses_quoted_identifier WHEN 1 THEN N'on' WHEN 0 THEN N'off' END AS [QUOTED_IDENTIFIER],
    CASE WHEN m.object_id IS NOT NULL AND m.definition IS NULL THEN N'yes' END AS [Encrypted],
    CASE t.is_disabled WHEN 1 THEN N'no' WHEN 0 THEN N'yes' END AS [Trigger enabled],
    QUOTENAME(OBJECT_SCHEMA_NAME(f.referenced_object_id)) + N'.'
        + QUOTENAME(OBJECT_NAME(f.referenced_object_id)) AS [References],
    LOWER(REPLACE(f.update_referential_action_desc, N'_', N' ')) AS [On update],
    LOWER(REPLACE(f.delete_referential_action_desc, N'_', N' ')) AS [On delete],
    CASE f.is_disabled WHEN 1 THEN N'no' WHEN 0 THEN N'yes' END AS [Key enabled],
    CASE f.is_not_trusted WHEN 1 THEN N'no' WHEN 0 THEN N'yes' END AS [Trusted],
    (
        SELECT CONVERT(nvarchar(max), e.value)
        FROM sys.extended_properties AS e
        WHERE e.class = 1
            AND e.major_id = o.object_id
            AND e.minor_id = 0
            AND e.name = N'MS_Description'
    ) AS [Description]
FROM sys.objects AS o
INNER JOIN sys.schemas AS s ON s.schema_id = o.schema_id
LEFT JOIN sys.sql_modules AS m ON m.object_id = o.object_id
LEFT JOIN sys.triggers AS t ON t.object_id = o.object_id
LEFT JOIN sys.foreign_keys AS f ON f.object_id = o.object_id
WHERE o.object_id = @object
