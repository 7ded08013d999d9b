-- The items of a table type in their order: its columns, then its keys and indexes with a row for each of their
-- columns, then its checks. Their names are the server's own, except those of indexes. Table types exist since 2008.
EXEC sp_executesql N'
    SELECT
        q.section,
        q.item,
        q.head,
        q.column_text,
        q.tail,
        q.is_memory_optimized
    FROM (
        SELECT
            0 AS section,
            c.column_id AS item,
            0 AS ordinal,
            QUOTENAME(c.name)
                + CASE
                    WHEN cc.object_id IS NOT NULL
                        THEN N'' AS '' + ISNULL(cc.definition, @hidden)
                            + CASE WHEN cc.is_persisted = 1 THEN N'' PERSISTED'' ELSE N'''' END
                    ELSE N'' ''
                        + CASE
                            WHEN ty.is_user_defined = 1 THEN QUOTENAME(tys.name) + N''.'' + QUOTENAME(ty.name)
                            WHEN ty.name IN (N''decimal'', N''numeric'')
                                THEN ty.name + N''('' + CONVERT(nvarchar(10), c.[precision])
                                    + N'','' + CONVERT(nvarchar(10), c.scale) + N'')''
                            WHEN ty.name IN (N''time'', N''datetime2'', N''datetimeoffset'')
                                THEN ty.name + N''('' + CONVERT(nvarchar(10), c.scale) + N'')''
                            WHEN ty.name NOT IN (
                                N''char'', N''varchar'', N''nchar'', N''nvarchar'', N''binary'', N''varbinary''
                            ) THEN ty.name
                            WHEN c.max_length = -1 THEN ty.name + N''(max)''
                            WHEN ty.name IN (N''nchar'', N''nvarchar'')
                                THEN ty.name + N''('' + CONVERT(nvarchar(10), c.max_length / 2) + N'')''
                            ELSE ty.name + N''('' + CONVERT(nvarchar(10), c.max_length) + N'')''
                        END
                        + CASE
                            WHEN ty.is_user_defined = 0
                                AND c.collation_name
                                    <> CONVERT(nvarchar(128), DATABASEPROPERTYEX(DB_NAME(), N''Collation''))
                                THEN N'' COLLATE '' + c.collation_name
                            ELSE N''''
                        END
                        + CASE
                            WHEN ident.column_id IS NULL THEN N''''
                            ELSE N'' IDENTITY('' + CONVERT(nvarchar(40), CONVERT(decimal(38,0), ident.seed_value))
                                + N'','' + CONVERT(nvarchar(40), CONVERT(decimal(38,0), ident.increment_value)) + N'')''
                        END
                        + CASE WHEN c.is_rowguidcol = 1 THEN N'' ROWGUIDCOL'' ELSE N'''' END
                        + CASE WHEN c.is_nullable = 1 THEN N'' NULL'' ELSE N'' NOT NULL'' END
                        + CASE
                            WHEN d.object_id IS NULL THEN N''''
                            ELSE N'' DEFAULT '' + ISNULL(d.definition, @hidden)
                        END
                END AS head,
            CONVERT(nvarchar(300), NULL) AS column_text,
            CONVERT(nvarchar(4000), NULL) AS tail,
            ISNULL(OBJECTPROPERTY(t.type_table_object_id, N''TableIsMemoryOptimized''), 0) AS is_memory_optimized
        FROM sys.table_types AS t
        INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
        INNER JOIN sys.columns AS c ON c.object_id = t.type_table_object_id
        INNER JOIN sys.types AS ty ON ty.user_type_id = c.user_type_id
        INNER JOIN sys.schemas AS tys ON tys.schema_id = ty.schema_id
        LEFT JOIN sys.computed_columns AS cc ON cc.object_id = c.object_id AND cc.column_id = c.column_id
        LEFT JOIN sys.identity_columns AS ident ON ident.object_id = c.object_id AND ident.column_id = c.column_id
        LEFT JOIN sys.default_constraints AS d ON d.parent_object_id = c.object_id AND d.parent_column_id = c.column_id
        WHERE s.name = @schema
            AND t.name = @name
        UNION ALL
        SELECT
            1,
            i.index_id,
            ic.key_ordinal,
            CASE
                WHEN i.is_primary_key = 1 THEN N''PRIMARY KEY ''
                WHEN i.is_unique_constraint = 1 THEN N''UNIQUE ''
                ELSE N''INDEX '' + QUOTENAME(i.name) + CASE WHEN i.is_unique = 1 THEN N'' UNIQUE '' ELSE N'' '' END
            END + CASE WHEN i.type = 1 THEN N''CLUSTERED'' ELSE N''NONCLUSTERED'' END,
            QUOTENAME(c.name) + CASE WHEN ic.is_descending_key = 1 THEN N'' DESC'' ELSE N'' ASC'' END,
            CASE WHEN i.has_filter = 1 THEN N'' WHERE '' + ISNULL(i.filter_definition, @hidden) ELSE N'''' END
                + CASE WHEN i.ignore_dup_key = 1 THEN N'' WITH (IGNORE_DUP_KEY = ON)'' ELSE N'''' END,
            0
        FROM sys.table_types AS t
        INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
        INNER JOIN sys.indexes AS i ON i.object_id = t.type_table_object_id
        INNER JOIN sys.index_columns AS ic ON ic.object_id = i.object_id AND ic.index_id = i.index_id
        INNER JOIN sys.columns AS c ON c.object_id = ic.object_id AND c.column_id = ic.column_id
        WHERE s.name = @schema
            AND t.name = @name
            AND i.type > 0
            AND ic.key_ordinal > 0
        UNION ALL
        SELECT
            2,
            0,
            0,
            N''CHECK '' + ISNULL(ch.definition, @hidden),
            NULL,
            NULL,
            0
        FROM sys.table_types AS t
        INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
        INNER JOIN sys.check_constraints AS ch ON ch.parent_object_id = t.type_table_object_id
        WHERE s.name = @schema
            AND t.name = @name
    ) AS q
    ORDER BY q.section, q.item, q.ordinal, q.head',
    N'@schema nvarchar(128), @name nvarchar(128), @hidden nvarchar(100)',
    N'{TABLE_SCHEMA}',
    N'{TABLE_NAME}',
    N'/* its definition may not be seen by this login */'
