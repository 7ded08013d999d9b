-- Scripts one table with its constraints, indexes and triggers, in one cell. The pieces are collected in their order
-- and joined at the end. Nothing of the text depends on ids or on names that the server made up, so that a table made
-- by the script is scripted alike. What 2005 does not have is asked for by COLUMNPROPERTY, which answers NULL there,
-- or in dynamic SQL behind a look into sys.all_columns.
DECLARE @nocount int
DECLARE @table int
DECLARE @target nvarchar(600)
DECLARE @schema nvarchar(300)
DECLARE @ansi_nulls bit
DECLARE @table_space int
DECLARE @table_place nvarchar(2000)
DECLARE @table_options nvarchar(2000)
DECLARE @history nvarchar(600)
DECLARE @retention nvarchar(100)
DECLARE @filestream_place nvarchar(300)
DECLARE @setting nvarchar(200)
DECLARE @collation nvarchar(128)
DECLARE @hidden nvarchar(100)
DECLARE @visible nvarchar(20)
DECLARE @crlf nvarchar(2)
DECLARE @go nvarchar(10)
DECLARE @item nvarchar(10)
DECLARE @ordinal int
DECLARE @last int
DECLARE @script nvarchar(max)
DECLARE @piece TABLE (
    id int IDENTITY(1,1) NOT NULL PRIMARY KEY,
    body nvarchar(max) NULL
)
DECLARE @mask TABLE (
    column_id int NOT NULL PRIMARY KEY,
    function_text nvarchar(4000) NULL
)
DECLARE @filestream TABLE (
    column_id int NOT NULL PRIMARY KEY
)
DECLARE @storage TABLE (
    index_id int NOT NULL PRIMARY KEY,
    filter nvarchar(max) NULL,
    compression nvarchar(60) NULL,
    is_mixed bit NOT NULL
)
DECLARE @option TABLE (
    index_id int NOT NULL,
    option_text nvarchar(100) NOT NULL
)
DECLARE @ordered_column TABLE (
    index_id int NOT NULL,
    ordinal int NOT NULL,
    name nvarchar(300) NOT NULL
)
DECLARE @selective_xml TABLE (
    index_id int NOT NULL PRIMARY KEY,
    is_secondary bit NOT NULL,
    head nvarchar(max) NULL,
    namespaces nvarchar(max) NULL,
    paths nvarchar(max) NULL
)
DECLARE @selective_item TABLE (
    index_id int NOT NULL,
    is_path bit NOT NULL,
    ordinal int NOT NULL,
    body nvarchar(max) NULL
)
DECLARE @statistic TABLE (
    stats_id int NOT NULL PRIMARY KEY,
    name nvarchar(128) NOT NULL,
    columns nvarchar(max) NOT NULL,
    filter nvarchar(max) NULL,
    options nvarchar(200) NOT NULL
)
DECLARE @note TABLE (
    id int NOT NULL,
    note nvarchar(max) NULL
)
DECLARE @loss TABLE (
    note nvarchar(500) NOT NULL
)
DECLARE @index TABLE (
    index_id int NOT NULL PRIMARY KEY,
    name nvarchar(128) NULL,
    shown_name nvarchar(128) NULL,
    type tinyint NOT NULL,
    is_primary_key bit NOT NULL,
    is_constraint bit NOT NULL,
    is_disabled bit NOT NULL,
    head nvarchar(max) NOT NULL,
    key_columns nvarchar(max) NOT NULL,
    included_columns nvarchar(max) NOT NULL,
    order_columns nvarchar(max) NOT NULL,
    options nvarchar(max) NOT NULL,
    space int NOT NULL,
    is_default_space bit NOT NULL,
    place nvarchar(1000) NOT NULL
)
DECLARE @foreign_key TABLE (
    object_id int NOT NULL PRIMARY KEY,
    local_columns nvarchar(max) NOT NULL,
    referenced_columns nvarchar(max) NOT NULL
)

SET @nocount = @@OPTIONS & 512
SET NOCOUNT ON

SET @crlf = NCHAR(13) + NCHAR(10)
SET @go = @crlf + N'GO' + @crlf
SET @item = N',' + @crlf + NCHAR(9)
SET @hidden = N'/* its definition may not be seen by this login */'
SET @visible = N'%[^' + NCHAR(9) + @crlf + N' ]%'
SET @collation = CONVERT(nvarchar(128), DATABASEPROPERTYEX(DB_NAME(), N'Collation'))

SELECT
    @table = t.object_id,
    @schema = QUOTENAME(s.name),
    @target = QUOTENAME(s.name) + N'.' + QUOTENAME(t.name),
    @ansi_nulls = t.uses_ansi_nulls
FROM sys.tables AS t
INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
WHERE s.name = N'{TABLE_SCHEMA}'
    AND t.name = N'{TABLE_NAME}'

-- What newer servers know beside.
IF OBJECT_ID(N'sys.masked_columns') IS NOT NULL
    INSERT INTO @mask (column_id, function_text)
    EXEC sp_executesql N'
        SELECT m.column_id, m.masking_function
        FROM sys.masked_columns AS m
        WHERE m.object_id = @table
            AND m.is_masked = 1',
        N'@table int',
        @table

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.columns') AND name = N'is_filestream')
    INSERT INTO @filestream (column_id)
    EXEC sp_executesql N'SELECT c.column_id FROM sys.columns AS c WHERE c.object_id = @table AND c.is_filestream = 1',
        N'@table int',
        @table

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.indexes') AND name = N'filter_definition')
    INSERT INTO @storage (index_id, filter, compression, is_mixed)
    EXEC sp_executesql N'
        SELECT
            i.index_id,
            CASE WHEN i.has_filter = 1 THEN ISNULL(i.filter_definition, @hidden) END,
            CASE WHEN p.lowest = p.highest AND p.lowest IN (1, 2, 4) THEN p.name END,
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
        N'@table int, @hidden nvarchar(100)',
        @table,
        @hidden

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.tables') AND name = N'history_table_id')
    EXEC sp_executesql N'
        SELECT @history = QUOTENAME(s.name) + N''.'' + QUOTENAME(h.name)
        FROM sys.tables AS t
        INNER JOIN sys.tables AS h ON h.object_id = t.history_table_id
        INNER JOIN sys.schemas AS s ON s.schema_id = h.schema_id
        WHERE t.object_id = @table
            AND t.temporal_type = 2',
        N'@table int, @history nvarchar(600) OUTPUT',
        @table,
        @history OUTPUT

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.tables')
    AND name = N'history_retention_period')
    EXEC sp_executesql N'
        SELECT @retention = N'', HISTORY_RETENTION_PERIOD = '' + CONVERT(nvarchar(10), t.history_retention_period)
            + N'' '' + t.history_retention_period_unit_desc COLLATE DATABASE_DEFAULT
        FROM sys.tables AS t
        WHERE t.object_id = @table
            AND t.temporal_type = 2
            AND t.history_retention_period > 0',
        N'@table int, @retention nvarchar(100) OUTPUT',
        @table,
        @retention OUTPUT

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.tables')
    AND name = N'filestream_data_space_id')
    EXEC sp_executesql N'
        SELECT @filestream_place = N'' FILESTREAM_ON '' + QUOTENAME(d.name)
        FROM sys.tables AS t
        INNER JOIN sys.data_spaces AS d ON d.data_space_id = t.filestream_data_space_id
        WHERE t.object_id = @table
            AND EXISTS (SELECT 1 FROM sys.columns AS c WHERE c.object_id = t.object_id AND c.is_filestream = 1)
            AND d.type = ''FD''
            AND d.is_default = 0',
        N'@table int, @filestream_place nvarchar(300) OUTPUT',
        @table,
        @filestream_place OUTPUT

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.indexes')
    AND name = N'optimize_for_sequential_key')
    INSERT INTO @option (index_id, option_text)
    EXEC sp_executesql N'
        SELECT i.index_id, N'', OPTIMIZE_FOR_SEQUENTIAL_KEY = ON''
        FROM sys.indexes AS i
        WHERE i.object_id = @table
            AND i.type IN (1, 2)
            AND i.optimize_for_sequential_key = 1',
        N'@table int',
        @table

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.indexes') AND name = N'compression_delay')
    INSERT INTO @option (index_id, option_text)
    EXEC sp_executesql N'
        SELECT i.index_id, N'', COMPRESSION_DELAY = '' + CONVERT(nvarchar(10), i.compression_delay) + N'' MINUTES''
        FROM sys.indexes AS i
        WHERE i.object_id = @table
            AND i.type IN (5, 6)
            AND i.compression_delay > 0',
        N'@table int',
        @table

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.partitions') AND name = N'xml_compression')
    INSERT INTO @option (index_id, option_text)
    EXEC sp_executesql N'
        SELECT p.index_id, N'', XML_COMPRESSION = ON''
        FROM sys.partitions AS p
        INNER JOIN sys.indexes AS i ON i.object_id = p.object_id AND i.index_id = p.index_id
        WHERE p.object_id = @table
            AND i.type IN (0, 1, 2)
        GROUP BY p.index_id
        HAVING MIN(CONVERT(int, p.xml_compression)) = 1',
        N'@table int',
        @table

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.index_columns')
    AND name = N'column_store_order_ordinal')
    INSERT INTO @ordered_column (index_id, ordinal, name)
    EXEC sp_executesql N'
        SELECT ic.index_id, ic.column_store_order_ordinal, QUOTENAME(c.name)
        FROM sys.index_columns AS ic
        INNER JOIN sys.columns AS c ON c.object_id = ic.object_id AND c.column_id = ic.column_id
        WHERE ic.object_id = @table
            AND ic.column_store_order_ordinal > 0',
        N'@table int',
        @table

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.xml_indexes') AND name = N'xml_index_type')
    INSERT INTO @selective_xml (index_id, is_secondary, head, namespaces, paths)
    EXEC sp_executesql N'
        SELECT
            i.index_id,
            CASE WHEN p.name IS NULL THEN 0 ELSE 1 END,
            CASE WHEN p.name IS NULL THEN N''CREATE SELECTIVE XML INDEX '' ELSE N''CREATE XML INDEX '' END
                + QUOTENAME(i.name) + N'' ON '' + @target + N'' ('' + QUOTENAME(c.name) + N'')''
                + ISNULL(N'' USING XML INDEX '' + QUOTENAME(p.name), N''''),
            N'''',
            N''''
        FROM sys.xml_indexes AS i
        LEFT JOIN sys.index_columns AS ic
            ON ic.object_id = i.object_id
            AND ic.index_id = i.index_id
            AND ic.index_column_id = 1
        LEFT JOIN sys.columns AS c ON c.object_id = ic.object_id AND c.column_id = ic.column_id
        LEFT JOIN sys.xml_indexes AS p ON p.object_id = i.object_id AND p.index_id = i.using_xml_index_id
        WHERE i.object_id = @table
            AND i.xml_index_type > 1',
        N'@table int, @target nvarchar(600)',
        @table,
        @target

-- The namespaces and paths of selective XML indexes; those on top of them have one path each.
IF EXISTS (SELECT 1 FROM @selective_xml)
    AND OBJECT_ID(N'sys.selective_xml_index_paths') IS NOT NULL
    AND OBJECT_ID(N'sys.selective_xml_index_namespaces') IS NOT NULL
    INSERT INTO @selective_item (index_id, is_path, ordinal, body)
    EXEC sp_executesql N'
        SELECT
            n.index_id,
            0,
            ROW_NUMBER() OVER (PARTITION BY n.index_id ORDER BY n.is_default_uri DESC, n.prefix),
            CASE WHEN n.is_default_uri = 1 THEN N''DEFAULT '' ELSE N'''' END
                + N'''''''' + REPLACE(n.uri COLLATE DATABASE_DEFAULT, N'''''''', N'''''''''''') + N''''''''
                + CASE
                    WHEN n.is_default_uri = 1 THEN N''''
                    WHEN n.prefix LIKE N''%[^A-Za-z0-9_]%''
                        THEN N'' AS '' + QUOTENAME(n.prefix) COLLATE DATABASE_DEFAULT
                    ELSE N'' AS '' + n.prefix COLLATE DATABASE_DEFAULT
                END
        FROM sys.selective_xml_index_namespaces AS n
        WHERE n.object_id = @table
        UNION ALL
        SELECT
            p.index_id,
            1,
            ROW_NUMBER() OVER (PARTITION BY p.index_id ORDER BY p.path_id),
            QUOTENAME(p.name) COLLATE DATABASE_DEFAULT + N'' = ''
                + CASE WHEN CONVERT(nvarchar(4000), CONVERT(varchar(4000), p.path)) = p.path THEN N'''' ELSE N''N'' END
                + N'''''''' + REPLACE(p.path COLLATE DATABASE_DEFAULT, N'''''''', N'''''''''''') + N''''''''
                + CASE
                    WHEN p.path_type = 1
                        THEN N'' AS SQL '' + t.name COLLATE DATABASE_DEFAULT
                            + CASE
                                WHEN t.name IN (N''decimal'', N''numeric'')
                                    THEN N''('' + CONVERT(nvarchar(10), p.[precision]) + N'',''
                                        + CONVERT(nvarchar(10), p.scale) + N'')''
                                WHEN t.name IN (N''time'', N''datetime2'', N''datetimeoffset'')
                                    THEN N''('' + CONVERT(nvarchar(10), p.scale) + N'')''
                                WHEN t.name NOT IN (
                                    N''char'', N''varchar'', N''nchar'', N''nvarchar'', N''binary'', N''varbinary''
                                )
                                    THEN N''''
                                WHEN p.max_length = -1 THEN N''(max)''
                                WHEN t.name IN (N''nchar'', N''nvarchar'')
                                    THEN N''('' + CONVERT(nvarchar(10), p.max_length / 2) + N'')''
                                ELSE N''('' + CONVERT(nvarchar(10), p.max_length) + N'')''
                            END
                    WHEN p.is_node = 1 THEN N'' AS XQUERY ''''node()''''''
                    ELSE ISNULL(N'' AS XQUERY'' + NULLIF(
                            CASE
                                WHEN p.is_xquery_type_inferred = 1 OR p.xquery_type_description IS NULL THEN N''''
                                ELSE N'' ''''''
                                    + CASE WHEN p.xquery_type_description LIKE N''%:%'' THEN N'''' ELSE N''xs:'' END
                                    + p.xquery_type_description COLLATE DATABASE_DEFAULT + N''''''''
                            END
                            + CASE
                                WHEN p.is_xquery_max_length_inferred = 1 OR p.xquery_max_length IS NULL THEN N''''
                                ELSE N'' MAXLENGTH('' + CONVERT(nvarchar(10), p.xquery_max_length) + N'')''
                            END,
                            N''''
                        ), N'''')
                END
                + CASE WHEN p.is_singleton = 1 THEN N'' SINGLETON'' ELSE N'''' END
        FROM sys.selective_xml_index_paths AS p
        INNER JOIN sys.xml_indexes AS i ON i.object_id = p.object_id AND i.index_id = p.index_id
        LEFT JOIN sys.types AS t ON t.user_type_id = p.system_type_id
        WHERE p.object_id = @table
            AND i.xml_index_type = 2
        UNION ALL
        SELECT i.index_id, 1, 1, QUOTENAME(p.name) COLLATE DATABASE_DEFAULT
        FROM sys.xml_indexes AS i
        INNER JOIN sys.selective_xml_index_paths AS p
            ON p.object_id = i.object_id
            AND p.index_id = i.using_xml_index_id
            AND p.path_id = i.path_id
        WHERE i.object_id = @table
            AND i.xml_index_type = 3',
        N'@table int',
        @table

SELECT @last = MAX(ordinal) FROM @selective_item
SET @ordinal = 1
WHILE @ordinal <= @last
BEGIN
    UPDATE x
    SET namespaces = x.namespaces + CASE WHEN @ordinal = 1 THEN N'' ELSE N', ' END + i.body
    FROM @selective_xml AS x
    INNER JOIN @selective_item AS i ON i.index_id = x.index_id
    WHERE i.is_path = 0
        AND i.ordinal = @ordinal

    UPDATE x
    SET paths = x.paths + CASE WHEN @ordinal = 1 THEN N'' ELSE N', ' END + i.body
    FROM @selective_xml AS x
    INNER JOIN @selective_item AS i ON i.index_id = x.index_id
    WHERE i.is_path = 1
        AND i.ordinal = @ordinal

    SET @ordinal = @ordinal + 1
END

-- Statistics that users made; those of indexes and of the server itself come by themselves.
INSERT INTO @statistic (stats_id, name, columns, filter, options)
SELECT st.stats_id, st.name, N'', NULL, CASE WHEN st.no_recompute = 1 THEN N', NORECOMPUTE' ELSE N'' END
FROM sys.stats AS st
WHERE st.object_id = @table
    AND st.user_created = 1

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.stats') AND name = N'filter_definition')
BEGIN
    INSERT INTO @note (id, note)
    EXEC sp_executesql N'
        SELECT st.stats_id, ISNULL(st.filter_definition, @hidden)
        FROM sys.stats AS st
        WHERE st.object_id = @table
            AND st.user_created = 1
            AND st.has_filter = 1',
        N'@table int, @hidden nvarchar(100)',
        @table,
        @hidden

    UPDATE s
    SET filter = n.note
    FROM @statistic AS s
    INNER JOIN @note AS n ON n.id = s.stats_id

    DELETE FROM @note
END

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.stats') AND name = N'is_incremental')
BEGIN
    INSERT INTO @note (id, note)
    EXEC sp_executesql N'
        SELECT st.stats_id, N'', INCREMENTAL = ON''
        FROM sys.stats AS st
        WHERE st.object_id = @table
            AND st.user_created = 1
            AND st.is_incremental = 1',
        N'@table int',
        @table

    UPDATE s
    SET options = s.options + n.note
    FROM @statistic AS s
    INNER JOIN @note AS n ON n.id = s.stats_id
END

-- Indexes and the heap. A constraint or index whose name the server made up is named only where a statement needs it.
INSERT INTO @index (
    index_id, name, shown_name, type, is_primary_key, is_constraint, is_disabled, head, key_columns, included_columns,
    order_columns, options, space, is_default_space, place
)
SELECT
    i.index_id,
    i.name,
    CASE WHEN k.is_system_named = 1 AND i.is_disabled = 0 THEN NULL ELSE i.name END,
    i.type,
    i.is_primary_key,
    CASE WHEN k.object_id IS NULL THEN 0 ELSE 1 END,
    i.is_disabled,
    CASE
        WHEN k.object_id IS NOT NULL
            THEN CASE
                    WHEN k.is_system_named = 1 AND i.is_disabled = 0 THEN N''
                    ELSE N'CONSTRAINT ' + QUOTENAME(k.name) + N' '
                END
                + CASE WHEN i.is_primary_key = 1 THEN N'PRIMARY KEY ' ELSE N'UNIQUE ' END
                + CASE WHEN i.type = 1 THEN N'CLUSTERED' ELSE N'NONCLUSTERED' END
        WHEN i.type = 0 THEN N''
        ELSE N'CREATE '
            + CASE WHEN i.is_unique = 1 THEN N'UNIQUE ' ELSE N'' END
            + CASE i.type
                WHEN 1 THEN N'CLUSTERED INDEX '
                WHEN 5 THEN N'CLUSTERED COLUMNSTORE INDEX '
                WHEN 6 THEN N'NONCLUSTERED COLUMNSTORE INDEX '
                ELSE N'NONCLUSTERED INDEX '
            END
            + QUOTENAME(i.name) + N' ON ' + @target
    END,
    N'',
    N'',
    N'',
    CASE WHEN i.type IN (1, 2) AND i.is_padded = 1 THEN N', PAD_INDEX = ON' ELSE N'' END
        + CASE
            WHEN i.type IN (1, 2) AND i.fill_factor > 0 THEN N', FILLFACTOR = ' + CONVERT(nvarchar(10), i.fill_factor)
            ELSE N''
        END
        + CASE WHEN i.type IN (1, 2) AND i.ignore_dup_key = 1 THEN N', IGNORE_DUP_KEY = ON' ELSE N'' END
        + CASE WHEN i.type IN (1, 2) AND st.no_recompute = 1 THEN N', STATISTICS_NORECOMPUTE = ON' ELSE N'' END
        + CASE WHEN i.type IN (1, 2) AND i.allow_row_locks = 0 THEN N', ALLOW_ROW_LOCKS = OFF' ELSE N'' END
        + CASE WHEN i.type IN (1, 2) AND i.allow_page_locks = 0 THEN N', ALLOW_PAGE_LOCKS = OFF' ELSE N'' END
        + ISNULL(N', DATA_COMPRESSION = ' + g.compression, N''),
    ISNULL(i.data_space_id, 0),
    ISNULL(d.is_default, 1),
    CASE d.type
        WHEN 'PS' THEN N' ON ' + QUOTENAME(d.name) + N'(' + ISNULL(QUOTENAME(pc.name), N'') + N')'
        WHEN 'FG' THEN N' ON ' + QUOTENAME(d.name)
        ELSE N''
    END
FROM sys.indexes AS i
LEFT JOIN sys.key_constraints AS k
    ON k.parent_object_id = i.object_id
    AND k.unique_index_id = i.index_id
LEFT JOIN sys.stats AS st ON st.object_id = i.object_id AND st.stats_id = i.index_id
LEFT JOIN sys.data_spaces AS d ON d.data_space_id = i.data_space_id
LEFT JOIN sys.index_columns AS ic
    ON ic.object_id = i.object_id
    AND ic.index_id = i.index_id
    AND ic.partition_ordinal = 1
LEFT JOIN sys.columns AS pc ON pc.object_id = ic.object_id AND pc.column_id = ic.column_id
LEFT JOIN @storage AS g ON g.index_id = i.index_id
WHERE i.object_id = @table
    AND i.is_hypothetical = 0
    AND i.type IN (0, 1, 2, 5, 6)

-- The options that not every server has; an index has at most two of them.
UPDATE x
SET options = x.options + o.first_option + CASE WHEN o.last_option = o.first_option THEN N'' ELSE o.last_option END
FROM @index AS x
INNER JOIN (
    SELECT w.index_id, MIN(w.option_text) AS first_option, MAX(w.option_text) AS last_option
    FROM @option AS w
    GROUP BY w.index_id
) AS o ON o.index_id = x.index_id

-- The n-th column of every index, then of every foreign key, is appended to its list.
SELECT @last = MAX(index_column_id) FROM sys.index_columns WHERE object_id = @table
SET @ordinal = 1
WHILE @ordinal <= @last
BEGIN
    UPDATE x
    SET key_columns = x.key_columns
        + CASE WHEN x.key_columns = N'' THEN N'' ELSE N', ' END
        + QUOTENAME(c.name) COLLATE DATABASE_DEFAULT
        + CASE WHEN ic.is_descending_key = 1 THEN N' DESC' ELSE N' ASC' END
    FROM @index AS x
    INNER JOIN sys.index_columns AS ic ON ic.index_id = x.index_id
    INNER JOIN sys.columns AS c ON c.object_id = ic.object_id AND c.column_id = ic.column_id
    WHERE ic.object_id = @table
        AND ic.key_ordinal = @ordinal

    UPDATE x
    SET included_columns = x.included_columns
        + CASE WHEN x.included_columns = N'' THEN N'' ELSE N', ' END
        + QUOTENAME(c.name) COLLATE DATABASE_DEFAULT
    FROM @index AS x
    INNER JOIN sys.index_columns AS ic ON ic.index_id = x.index_id
    INNER JOIN sys.columns AS c ON c.object_id = ic.object_id AND c.column_id = ic.column_id
    WHERE ic.object_id = @table
        AND ic.index_column_id = @ordinal
        AND ic.is_included_column = 1

    UPDATE x
    SET order_columns = x.order_columns + CASE WHEN @ordinal = 1 THEN N'' ELSE N', ' END
        + o.name COLLATE DATABASE_DEFAULT
    FROM @index AS x
    INNER JOIN @ordered_column AS o ON o.index_id = x.index_id
    WHERE o.ordinal = @ordinal

    SET @ordinal = @ordinal + 1
END

SELECT @last = MAX(stats_column_id) FROM sys.stats_columns WHERE object_id = @table
SET @ordinal = 1
WHILE @ordinal <= @last
BEGIN
    UPDATE x
    SET columns = x.columns + CASE WHEN @ordinal = 1 THEN N'' ELSE N', ' END
        + QUOTENAME(c.name) COLLATE DATABASE_DEFAULT
    FROM @statistic AS x
    INNER JOIN sys.stats_columns AS sc ON sc.stats_id = x.stats_id
    INNER JOIN sys.columns AS c ON c.object_id = sc.object_id AND c.column_id = sc.column_id
    WHERE sc.object_id = @table
        AND sc.stats_column_id = @ordinal

    SET @ordinal = @ordinal + 1
END

INSERT INTO @foreign_key (object_id, local_columns, referenced_columns)
SELECT f.object_id, N'', N''
FROM sys.foreign_keys AS f
WHERE f.parent_object_id = @table

SELECT @last = MAX(constraint_column_id) FROM sys.foreign_key_columns WHERE parent_object_id = @table
SET @ordinal = 1
WHILE @ordinal <= @last
BEGIN
    UPDATE x
    SET local_columns = x.local_columns + CASE WHEN @ordinal = 1 THEN N'' ELSE N', ' END
            + QUOTENAME(lc.name) COLLATE DATABASE_DEFAULT,
        referenced_columns = x.referenced_columns + CASE WHEN @ordinal = 1 THEN N'' ELSE N', ' END
            + ISNULL(QUOTENAME(rc.name), @hidden) COLLATE DATABASE_DEFAULT
    FROM @foreign_key AS x
    INNER JOIN sys.foreign_key_columns AS fc ON fc.constraint_object_id = x.object_id
    INNER JOIN sys.columns AS lc ON lc.object_id = fc.parent_object_id AND lc.column_id = fc.parent_column_id
    LEFT JOIN sys.columns AS rc ON rc.object_id = fc.referenced_object_id AND rc.column_id = fc.referenced_column_id
    WHERE fc.constraint_column_id = @ordinal

    SET @ordinal = @ordinal + 1
END

-- Where the table stands, unless that is where a new one would stand anyway.
SELECT
    @table_space = x.space,
    @table_place = CASE WHEN x.is_default_space = 1 THEN N'' ELSE x.place END
FROM @index AS x
WHERE x.index_id IN (0, 1)

SELECT @table_place = @table_place + N' TEXTIMAGE_ON ' + QUOTENAME(d.name)
FROM sys.tables AS t
INNER JOIN sys.data_spaces AS d ON d.data_space_id = t.lob_data_space_id
LEFT JOIN sys.data_spaces AS own ON own.data_space_id = @table_space
WHERE t.object_id = @table
    AND d.type = 'FG'
    AND own.type = 'FG'
    AND (d.is_default = 0 OR own.is_default = 0)

SET @table_options = ISNULL(
    N', SYSTEM_VERSIONING = ON (HISTORY_TABLE = ' + @history + ISNULL(@retention, N'') + N')',
    N''
)
SELECT @table_options = @table_options + x.options
FROM @index AS x
WHERE x.index_id = 0

-- What the script loses is named at its head.
INSERT INTO @loss (note)
SELECT N'The compression of ' + CASE WHEN i.type = 0 THEN N'the heap' ELSE N'index ' + QUOTENAME(i.name) END
    + N', which differs by partition.'
FROM @storage AS g
INNER JOIN sys.indexes AS i ON i.object_id = @table AND i.index_id = g.index_id
WHERE g.is_mixed = 1

INSERT INTO @loss (note)
SELECT N'The full-text index of the table.'
WHERE OBJECTPROPERTY(@table, N'TableHasActiveFulltextIndex') = 1

INSERT INTO @loss (note)
SELECT N'The table option "text in row".'
WHERE OBJECTPROPERTY(@table, N'TableTextInRowLimit') > 0

INSERT INTO @loss (note)
SELECT N'The table option "vardecimal storage format".'
WHERE OBJECTPROPERTY(@table, N'TableHasVarDecimalStorageFormat') = 1

INSERT INTO @loss (note)
SELECT N'The table option "large value types out of row".'
FROM sys.tables AS t
WHERE t.object_id = @table
    AND t.large_value_types_out_of_row = 1

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.tables') AND name = N'is_filetable')
    INSERT INTO @loss (note)
    EXEC sp_executesql N'
        SELECT N''The table is a FileTable; this script makes a plain one.''
        FROM sys.tables AS t
        WHERE t.object_id = @table
            AND t.is_filetable = 1',
        N'@table int',
        @table

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.tables') AND name = N'is_external')
    INSERT INTO @loss (note)
    EXEC sp_executesql N'
        SELECT N''The table is external; this script makes a plain one.''
        FROM sys.tables AS t
        WHERE t.object_id = @table
            AND t.is_external = 1',
        N'@table int',
        @table

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.tables') AND name = N'is_node')
    INSERT INTO @loss (note)
    EXEC sp_executesql N'
        SELECT N''The table is a node or an edge of a graph; this script makes a plain one.''
        FROM sys.tables AS t
        WHERE t.object_id = @table
            AND (t.is_node = 1 OR t.is_edge = 1)',
        N'@table int',
        @table

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.tables') AND name = N'ledger_type')
    INSERT INTO @loss (note)
    EXEC sp_executesql N'
        SELECT N''The table is a ledger table; this script makes one without a ledger.''
        FROM sys.tables AS t
        WHERE t.object_id = @table
            AND t.ledger_type <> 0',
        N'@table int',
        @table

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.columns') AND name = N'encryption_type')
    INSERT INTO @loss (note)
    EXEC sp_executesql N'
        SELECT N''The encryption of column '' + QUOTENAME(c.name) + N''.''
        FROM sys.columns AS c
        WHERE c.object_id = @table
            AND c.encryption_type IS NOT NULL',
        N'@table int',
        @table

IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.partitions') AND name = N'xml_compression')
    INSERT INTO @loss (note)
    EXEC sp_executesql N'
        SELECT N''The compression of xml, which differs by partition.''
        FROM sys.partitions AS p
        WHERE p.object_id = @table
        GROUP BY p.index_id
        HAVING MIN(CONVERT(int, p.xml_compression)) <> MAX(CONVERT(int, p.xml_compression))',
        N'@table int',
        @table

INSERT INTO @loss (note)
SELECT N'Selective XML index ' + QUOTENAME(i.name) + N'.'
FROM @selective_xml AS sx
INNER JOIN sys.indexes AS i ON i.object_id = @table AND i.index_id = sx.index_id
WHERE sx.paths = N''
    OR sx.head + sx.namespaces + sx.paths IS NULL

INSERT INTO @piece (body)
SELECT N'-- Not scripted: ' + l.note
FROM @loss AS l
ORDER BY l.note

INSERT INTO @piece (body)
SELECT N'-- Not scripted: the table is memory-optimized; this script makes one on disk.'
WHERE OBJECTPROPERTY(@table, N'TableIsMemoryOptimized') = 1

INSERT INTO @piece (body)
SELECT N'-- Not scripted: index ' + QUOTENAME(i.name) + N' (' + i.type_desc COLLATE DATABASE_DEFAULT + N').'
FROM sys.indexes AS i
WHERE i.object_id = @table
    AND i.is_hypothetical = 0
    AND i.type NOT IN (0, 1, 2, 3, 5, 6)
ORDER BY i.name

-- So far there are comments only. A line end in a name would end them.
UPDATE @piece
SET body = REPLACE(REPLACE(body, NCHAR(13), N' '), NCHAR(10), N' ') + @crlf

INSERT INTO @piece (body)
SELECT N'SET ANSI_NULLS ' + CASE WHEN @ansi_nulls = 0 THEN N'OFF' ELSE N'ON' END + @go
    + N'SET QUOTED_IDENTIFIER ON' + @go
    + N'CREATE TABLE ' + @target + N' ('

INSERT INTO @piece (body)
SELECT
    CASE WHEN ROW_NUMBER() OVER (ORDER BY c.column_id) = 1 THEN @crlf + NCHAR(9) ELSE @item END
    + QUOTENAME(c.name)
    + CASE
        WHEN c.is_computed = 1
            THEN N' AS ' + ISNULL(cc.definition COLLATE DATABASE_DEFAULT, @hidden)
                + CASE WHEN cc.is_persisted = 1 THEN N' PERSISTED' ELSE N'' END
                + CASE WHEN cc.is_persisted = 1 AND c.is_nullable = 0 THEN N' NOT NULL' ELSE N'' END
        ELSE N' '
            + CASE
                WHEN c.is_user_defined = 1 THEN QUOTENAME(c.type_schema) + N'.' + QUOTENAME(c.type_name)
                WHEN c.type_name IN (N'decimal', N'numeric')
                    THEN c.type_name + N'(' + CONVERT(nvarchar(10), c.[precision])
                        + N',' + CONVERT(nvarchar(10), c.scale) + N')'
                WHEN c.type_name IN (N'time', N'datetime2', N'datetimeoffset')
                    THEN c.type_name + N'(' + CONVERT(nvarchar(10), c.scale) + N')'
                WHEN c.type_name = N'xml' AND x.xml_collection_id IS NOT NULL
                    THEN N'xml(' + CASE WHEN c.is_xml_document = 1 THEN N'DOCUMENT ' ELSE N'CONTENT ' END
                        + QUOTENAME(xs.name) + N'.'
                        + QUOTENAME(x.name) COLLATE DATABASE_DEFAULT + N')'
                WHEN c.type_name NOT IN (N'char', N'varchar', N'nchar', N'nvarchar', N'binary', N'varbinary')
                    THEN c.type_name
                WHEN c.max_length = -1 THEN c.type_name + N'(max)'
                WHEN c.type_name IN (N'nchar', N'nvarchar')
                    THEN c.type_name + N'(' + CONVERT(nvarchar(10), c.max_length / 2) + N')'
                ELSE c.type_name + N'(' + CONVERT(nvarchar(10), c.max_length) + N')'
            END
            + CASE WHEN fs.column_id IS NULL THEN N'' ELSE N' FILESTREAM' END
            + CASE
                WHEN c.is_user_defined = 0 AND c.collation_name <> @collation THEN N' COLLATE ' + c.collation_name
                ELSE N''
            END
            + CASE WHEN COLUMNPROPERTY(@table, c.name, N'IsSparse') = 1 THEN N' SPARSE' ELSE N'' END
            + CASE
                WHEN COLUMNPROPERTY(@table, c.name, N'IsColumnSet') = 1 THEN N' COLUMN_SET FOR ALL_SPARSE_COLUMNS'
                ELSE N''
            END
            + ISNULL(N' MASKED WITH (FUNCTION = ''' + REPLACE(m.function_text, N'''', N'''''') + N''')', N'')
            + CASE
                WHEN ident.column_id IS NULL THEN N''
                ELSE N' IDENTITY(' + CONVERT(nvarchar(40), CONVERT(decimal(38,0), ident.seed_value))
                    + N',' + CONVERT(nvarchar(40), CONVERT(decimal(38,0), ident.increment_value)) + N')'
                    + CASE WHEN ident.is_not_for_replication = 1 THEN N' NOT FOR REPLICATION' ELSE N'' END
            END
            + CASE WHEN c.is_rowguidcol = 1 THEN N' ROWGUIDCOL' ELSE N'' END
            + CASE
                WHEN c.generated IN (1, 2)
                    THEN CASE c.generated
                            WHEN 1 THEN N' GENERATED ALWAYS AS ROW START'
                            ELSE N' GENERATED ALWAYS AS ROW END'
                        END
                        + CASE WHEN COLUMNPROPERTY(@table, c.name, N'IsHidden') = 1 THEN N' HIDDEN' ELSE N'' END
                ELSE N''
            END
            + CASE WHEN c.is_nullable = 1 THEN N' NULL' ELSE N' NOT NULL' END
            + CASE
                WHEN d.object_id IS NULL THEN N''
                ELSE CASE WHEN d.is_system_named = 1 THEN N'' ELSE N' CONSTRAINT ' + QUOTENAME(d.name) END
                    + N' DEFAULT ' + ISNULL(d.definition COLLATE DATABASE_DEFAULT, @hidden)
            END
    END
FROM (
    SELECT
        col.object_id,
        col.column_id,
        col.name COLLATE DATABASE_DEFAULT AS name,
        col.max_length,
        col.[precision],
        col.scale,
        col.collation_name COLLATE DATABASE_DEFAULT AS collation_name,
        col.is_nullable,
        col.is_computed,
        col.is_rowguidcol,
        col.is_xml_document,
        col.xml_collection_id,
        ISNULL(t.is_user_defined, 0) AS is_user_defined,
        COLUMNPROPERTY(col.object_id, col.name, N'GeneratedAlwaysType') AS generated,
        ts.name COLLATE DATABASE_DEFAULT AS type_schema,
        COALESCE(t.name, TYPE_NAME(col.system_type_id)) COLLATE DATABASE_DEFAULT AS type_name
    FROM sys.columns AS col
    LEFT JOIN sys.types AS t ON t.user_type_id = col.user_type_id
    LEFT JOIN sys.schemas AS ts ON ts.schema_id = t.schema_id
    WHERE col.object_id = @table
) AS c
LEFT JOIN sys.computed_columns AS cc ON cc.object_id = c.object_id AND cc.column_id = c.column_id
LEFT JOIN sys.identity_columns AS ident ON ident.object_id = c.object_id AND ident.column_id = c.column_id
LEFT JOIN sys.default_constraints AS d ON d.parent_object_id = c.object_id AND d.parent_column_id = c.column_id
LEFT JOIN sys.xml_schema_collections AS x ON x.xml_collection_id = c.xml_collection_id AND c.xml_collection_id <> 0
LEFT JOIN sys.schemas AS xs ON xs.schema_id = x.schema_id
LEFT JOIN @mask AS m ON m.column_id = c.column_id
LEFT JOIN @filestream AS fs ON fs.column_id = c.column_id
ORDER BY c.column_id

INSERT INTO @piece (body)
SELECT
    @item + x.head + N' (' + x.key_columns + N')'
    + CASE WHEN x.options = N'' THEN N'' ELSE N' WITH (' + STUFF(x.options, 1, 2, N'') + N')' END
    + CASE WHEN x.space = @table_space THEN N'' ELSE x.place END
FROM @index AS x
WHERE x.is_constraint = 1
ORDER BY x.is_primary_key DESC, x.shown_name, x.key_columns

INSERT INTO @piece (body)
SELECT @item + N'PERIOD FOR SYSTEM_TIME (' + QUOTENAME(f.name) + N', ' + QUOTENAME(l.name) + N')'
FROM sys.columns AS f
INNER JOIN sys.columns AS l ON l.object_id = f.object_id
WHERE f.object_id = @table
    AND COLUMNPROPERTY(@table, f.name, N'GeneratedAlwaysType') = 1
    AND COLUMNPROPERTY(@table, l.name, N'GeneratedAlwaysType') = 2

INSERT INTO @piece (body)
SELECT @crlf + N')' + ISNULL(@table_place, N'') + ISNULL(@filestream_place, N'')
    + CASE WHEN @table_options = N'' THEN N'' ELSE N' WITH (' + STUFF(@table_options, 1, 2, N'') + N')' END
    + @go

-- Indexes, the clustered one first.
INSERT INTO @piece (body)
SELECT
    x.head
    + CASE x.type WHEN 5 THEN N'' WHEN 6 THEN N' (' + x.included_columns + N')' ELSE N' (' + x.key_columns + N')' END
    + CASE WHEN x.order_columns <> N'' THEN N' ORDER (' + x.order_columns + N')' ELSE N'' END
    + CASE WHEN x.type = 2 AND x.included_columns <> N'' THEN N' INCLUDE (' + x.included_columns + N')' ELSE N'' END
    + ISNULL(N' WHERE ' + g.filter, N'')
    + CASE WHEN x.options = N'' THEN N'' ELSE N' WITH (' + STUFF(x.options, 1, 2, N'') + N')' END
    + CASE WHEN x.space = @table_space THEN N'' ELSE x.place END
    + @go
FROM @index AS x
LEFT JOIN @storage AS g ON g.index_id = x.index_id
WHERE x.is_constraint = 0
    AND x.type <> 0
ORDER BY CASE WHEN x.index_id = 1 THEN 0 ELSE 1 END, x.name

INSERT INTO @piece (body)
SELECT
    CASE WHEN p.name IS NULL THEN N'CREATE PRIMARY XML INDEX ' ELSE N'CREATE XML INDEX ' END
    + QUOTENAME(i.name) + N' ON ' + @target + N' (' + QUOTENAME(c.name) + N')'
    + ISNULL(N' USING XML INDEX ' + QUOTENAME(p.name) + N' FOR ' + i.secondary_type_desc COLLATE DATABASE_DEFAULT, N'')
    + @go
FROM sys.xml_indexes AS i
INNER JOIN sys.index_columns AS ic
    ON ic.object_id = i.object_id
    AND ic.index_id = i.index_id
    AND ic.index_column_id = 1
INNER JOIN sys.columns AS c ON c.object_id = ic.object_id AND c.column_id = ic.column_id
LEFT JOIN sys.xml_indexes AS p ON p.object_id = i.object_id AND p.index_id = i.using_xml_index_id
WHERE i.object_id = @table
    AND NOT EXISTS (SELECT 1 FROM @selective_xml AS sx WHERE sx.index_id = i.index_id)
ORDER BY CASE WHEN p.name IS NULL THEN 0 ELSE 1 END, i.name

INSERT INTO @piece (body)
SELECT
    sx.head
    + CASE WHEN sx.namespaces = N'' THEN N'' ELSE N' WITH XMLNAMESPACES (' + sx.namespaces + N')' END
    + N' FOR (' + sx.paths + N')'
    + @go
FROM @selective_xml AS sx
WHERE sx.paths <> N''
    AND sx.head + sx.namespaces + sx.paths IS NOT NULL
ORDER BY sx.is_secondary, sx.head

INSERT INTO @piece (body)
SELECT
    N'CREATE STATISTICS ' + QUOTENAME(x.name) + N' ON ' + @target + N' (' + x.columns + N')'
    + ISNULL(N' WHERE ' + x.filter, N'')
    + CASE WHEN x.options = N'' THEN N'' ELSE N' WITH ' + STUFF(x.options, 1, 2, N'') END
    + @go
FROM @statistic AS x
ORDER BY x.name

-- Checks and foreign keys. NOCHECK keeps them as untrusted as they are.
INSERT INTO @piece (body)
SELECT
    N'ALTER TABLE ' + @target + CASE WHEN k.is_not_trusted = 1 THEN N' WITH NOCHECK' ELSE N' WITH CHECK' END + N' ADD '
    + ISNULL(N'CONSTRAINT ' + QUOTENAME(k.shown_name) + N' ', N'')
    + N'CHECK ' + CASE WHEN k.is_not_for_replication = 1 THEN N'NOT FOR REPLICATION ' ELSE N'' END
    + ISNULL(k.definition, @hidden)
    + @go
    + CASE
        WHEN k.is_disabled = 1 THEN N'ALTER TABLE ' + @target + N' NOCHECK CONSTRAINT ' + QUOTENAME(k.shown_name) + @go
        ELSE N''
    END
FROM (
    SELECT
        CASE WHEN cc.is_system_named = 1 AND cc.is_disabled = 0 THEN NULL ELSE cc.name END COLLATE DATABASE_DEFAULT
            AS shown_name,
        cc.is_not_trusted,
        cc.is_not_for_replication,
        cc.is_disabled,
        cc.definition COLLATE DATABASE_DEFAULT AS definition
    FROM sys.check_constraints AS cc
    WHERE cc.parent_object_id = @table
) AS k
ORDER BY k.shown_name, k.definition

INSERT INTO @piece (body)
SELECT
    N'ALTER TABLE ' + @target + CASE WHEN k.is_not_trusted = 1 THEN N' WITH NOCHECK' ELSE N' WITH CHECK' END + N' ADD '
    + ISNULL(N'CONSTRAINT ' + QUOTENAME(k.shown_name) + N' ', N'')
    + N'FOREIGN KEY (' + x.local_columns + N') REFERENCES '
    + ISNULL(QUOTENAME(rs.name) + N'.' + QUOTENAME(rt.name), @hidden) COLLATE DATABASE_DEFAULT
    + N' (' + x.referenced_columns + N')'
    + CASE k.delete_referential_action
        WHEN 1 THEN N' ON DELETE CASCADE'
        WHEN 2 THEN N' ON DELETE SET NULL'
        WHEN 3 THEN N' ON DELETE SET DEFAULT'
        ELSE N''
    END
    + CASE k.update_referential_action
        WHEN 1 THEN N' ON UPDATE CASCADE'
        WHEN 2 THEN N' ON UPDATE SET NULL'
        WHEN 3 THEN N' ON UPDATE SET DEFAULT'
        ELSE N''
    END
    + CASE WHEN k.is_not_for_replication = 1 THEN N' NOT FOR REPLICATION' ELSE N'' END
    + @go
    + CASE
        WHEN k.is_disabled = 1 THEN N'ALTER TABLE ' + @target + N' NOCHECK CONSTRAINT ' + QUOTENAME(k.shown_name) + @go
        ELSE N''
    END
FROM (
    SELECT
        f.object_id,
        CASE WHEN f.is_system_named = 1 AND f.is_disabled = 0 THEN NULL ELSE f.name END COLLATE DATABASE_DEFAULT
            AS shown_name,
        f.referenced_object_id,
        f.is_not_trusted,
        f.is_not_for_replication,
        f.is_disabled,
        f.delete_referential_action,
        f.update_referential_action
    FROM sys.foreign_keys AS f
    WHERE f.parent_object_id = @table
) AS k
INNER JOIN @foreign_key AS x ON x.object_id = k.object_id
LEFT JOIN sys.objects AS rt ON rt.object_id = k.referenced_object_id
LEFT JOIN sys.schemas AS rs ON rs.schema_id = rt.schema_id
ORDER BY k.shown_name, x.local_columns, rs.name, rt.name, x.referenced_columns

-- Defaults and rules that are objects of their own, unless the column has them from its type.
INSERT INTO @piece (body)
SELECT
    N'EXEC sys.sp_bindefault @defname = N'''
    + REPLACE(QUOTENAME(s.name) + N'.' + QUOTENAME(o.name), N'''', N'''''') + N''', @objname = N'''
    + REPLACE(@target + N'.' + QUOTENAME(c.name), N'''', N'''''') + N'''' + @go
FROM sys.columns AS c
INNER JOIN sys.objects AS o ON o.object_id = c.default_object_id
INNER JOIN sys.schemas AS s ON s.schema_id = o.schema_id
LEFT JOIN sys.types AS t ON t.user_type_id = c.user_type_id
WHERE c.object_id = @table
    AND o.parent_object_id = 0
    AND c.default_object_id <> ISNULL(t.default_object_id, 0)
ORDER BY c.column_id

INSERT INTO @piece (body)
SELECT
    N'EXEC sys.sp_bindrule @rulename = N'''
    + REPLACE(QUOTENAME(s.name) + N'.' + QUOTENAME(o.name), N'''', N'''''') + N''', @objname = N'''
    + REPLACE(@target + N'.' + QUOTENAME(c.name), N'''', N'''''') + N'''' + @go
FROM sys.columns AS c
INNER JOIN sys.objects AS o ON o.object_id = c.rule_object_id
INNER JOIN sys.schemas AS s ON s.schema_id = o.schema_id
LEFT JOIN sys.types AS t ON t.user_type_id = c.user_type_id
WHERE c.object_id = @table
    AND c.rule_object_id <> ISNULL(t.rule_object_id, 0)
ORDER BY c.column_id

-- Settings of the table that are no part of CREATE TABLE.
IF EXISTS (SELECT 1 FROM sys.all_columns WHERE object_id = OBJECT_ID(N'sys.tables') AND name = N'lock_escalation_desc')
    EXEC sp_executesql N'
        SELECT @setting = t.lock_escalation_desc COLLATE DATABASE_DEFAULT
        FROM sys.tables AS t
        WHERE t.object_id = @table
            AND t.lock_escalation_desc IN (N''AUTO'', N''DISABLE'')',
        N'@table int, @setting nvarchar(200) OUTPUT',
        @table,
        @setting OUTPUT

INSERT INTO @piece (body)
SELECT N'ALTER TABLE ' + @target + N' SET (LOCK_ESCALATION = ' + @setting + N')' + @go
WHERE @setting IS NOT NULL

SET @setting = NULL
IF OBJECT_ID(N'sys.change_tracking_tables') IS NOT NULL
    EXEC sp_executesql N'
        SELECT @setting = CASE WHEN t.is_track_columns_updated_on = 1 THEN N''ON'' ELSE N''OFF'' END
        FROM sys.change_tracking_tables AS t
        WHERE t.object_id = @table',
        N'@table int, @setting nvarchar(200) OUTPUT',
        @table,
        @setting OUTPUT

INSERT INTO @piece (body)
SELECT N'ALTER TABLE ' + @target + N' ENABLE CHANGE_TRACKING WITH (TRACK_COLUMNS_UPDATED = ' + @setting + N')' + @go
WHERE @setting IS NOT NULL

-- Triggers, each with the settings it was made under, its place in the order and its state.
INSERT INTO @piece (body)
SELECT
    N'SET ANSI_NULLS ' + CASE WHEN tr.uses_ansi_nulls = 0 THEN N'OFF' ELSE N'ON' END + @go
    + N'SET QUOTED_IDENTIFIER ' + CASE WHEN tr.uses_quoted_identifier = 0 THEN N'OFF' ELSE N'ON' END + @go
    + CASE
        WHEN tr.definition IS NULL
            THEN N'-- Trigger '
                + REPLACE(REPLACE(QUOTENAME(tr.name), NCHAR(13), N' '), NCHAR(10), N' ')
                + N' is encrypted or may not be seen by this login.' + @go
        ELSE SUBSTRING(
                tr.definition,
                tr.first_visible,
                CONVERT(int, DATALENGTH(tr.definition) / 2) + 2 - tr.first_visible - tr.last_visible
            )
            + @go
            + CASE
                WHEN tr.is_disabled = 1
                    THEN N'ALTER TABLE ' + @target + N' DISABLE TRIGGER ' + QUOTENAME(tr.name) + @go
                ELSE N''
            END
    END
FROM (
    SELECT
        g.name COLLATE DATABASE_DEFAULT AS name,
        g.is_disabled,
        m.uses_ansi_nulls,
        m.uses_quoted_identifier,
        m.definition COLLATE DATABASE_DEFAULT AS definition,
        CONVERT(int, PATINDEX(@visible, m.definition COLLATE Latin1_General_CI_AS)) AS first_visible,
        CONVERT(int, PATINDEX(@visible, REVERSE(m.definition) COLLATE Latin1_General_CI_AS)) AS last_visible
    FROM sys.triggers AS g
    LEFT JOIN sys.sql_modules AS m ON m.object_id = g.object_id
    WHERE g.parent_id = @table
        AND g.parent_class = 1
        AND g.is_ms_shipped = 0
) AS tr
ORDER BY tr.name

INSERT INTO @piece (body)
SELECT
    N'EXEC sys.sp_settriggerorder @triggername = N''' + REPLACE(@schema + N'.' + QUOTENAME(g.name), N'''', N'''''')
    + N''', @order = N''' + CASE WHEN e.is_first = 1 THEN N'First' ELSE N'Last' END
    + N''', @stmttype = N''' + e.type_desc COLLATE DATABASE_DEFAULT + N'''' + @go
FROM sys.triggers AS g
INNER JOIN sys.trigger_events AS e ON e.object_id = g.object_id
INNER JOIN sys.sql_modules AS m ON m.object_id = g.object_id AND m.definition IS NOT NULL
WHERE g.parent_id = @table
    AND g.parent_class = 1
    AND g.is_ms_shipped = 0
    AND (e.is_first = 1 OR e.is_last = 1)
ORDER BY g.name, e.type

-- A disabled clustered index locks the table, so this comes last.
INSERT INTO @piece (body)
SELECT N'ALTER INDEX ' + QUOTENAME(x.name) + N' ON ' + @target + N' DISABLE' + @go
FROM @index AS x
WHERE x.is_disabled = 1
ORDER BY CASE WHEN x.index_id = 1 THEN 1 ELSE 0 END, x.name

SET @script = N''
SELECT @last = MAX(id) FROM @piece
SET @ordinal = 1
WHILE @ordinal <= @last
BEGIN
    SELECT @script = @script + ISNULL(p.body, N'-- A part of this table may not be seen by this login.' + @crlf)
    FROM @piece AS p
    WHERE p.id = @ordinal

    SET @ordinal = @ordinal + 1
END

IF @nocount = 0
    SET NOCOUNT OFF

SELECT @script AS creation_script
WHERE @table IS NOT NULL
