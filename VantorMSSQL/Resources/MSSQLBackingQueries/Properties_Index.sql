-- One row about an index, or the index of a key: a column for each property, NULL where it does not apply.
DECLARE @object int
DECLARE @filter nvarchar(max)
SET @object = OBJECT_ID(QUOTENAME(N'{SCHEMA}') + N'.' + QUOTENAME(N'{OBJECT}'))

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.indexes') AND name = N'filter_definition')
    EXEC sp_executesql N'
        SELECT @filter = i.filter_definition
        FROM sys.indexes AS i
        WHERE i.object_id = @object
            AND i.name = @name',
        N'@object int, @name sysname, @filter nvarchar(max) OUTPUT',
        @object,
        N'{INDEX}',
        @filter OUTPUT

SELECT
    i.name AS [Name],
    LOWER(i.type_desc) AS [Kind],
    CASE i.is_unique WHEN 1 THEN N'yes' ELSE N'no' END AS [Unique],
    CASE
        WHEN i.is_primary_key = 1 THEN N'primary key'
        WHEN i.is_unique_constraint = 1 THEN N'unique constraint'
    END AS [Constraint],
    CASE i.is_disabled WHEN 1 THEN N'no' ELSE N'yes' END AS [Enabled],
    CASE WHEN i.fill_factor > 0 THEN CONVERT(int, i.fill_factor) END AS [Fill factor (%)],
    @filter AS [Filter],
    d.name AS [Data space],
    (
        SELECT SUM(p.rows)
        FROM sys.partitions AS p
        WHERE p.object_id = i.object_id
            AND p.index_id = i.index_id
    ) AS [Rows],
    (
        SELECT SUM(a.used_pages) * 8
        FROM sys.partitions AS p
        INNER JOIN sys.allocation_units AS a
            ON a.container_id = CASE WHEN a.type IN (1, 3) THEN p.hobt_id ELSE p.partition_id END
        WHERE p.object_id = i.object_id
            AND p.index_id = i.index_id
    ) AS [Used (KB)]
FROM sys.indexes AS i
LEFT JOIN sys.data_spaces AS d ON d.data_space_id = i.data_space_id
WHERE i.object_id = @object
    AND i.name = N'{INDEX}'
