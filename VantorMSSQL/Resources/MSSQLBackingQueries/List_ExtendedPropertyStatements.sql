-- The extended properties of the objects, schemas and types of this database, or of one of them, each as a statement
-- with the condition under which it has something to do. A value that is not text is converted from its text; one of
-- bytes, and one of a constraint whose name the server made up, is named in a comment. A backslash before a line end
-- is written so that the constant keeps both.
DECLARE @crlf nvarchar(2)
SET @crlf = NCHAR(13) + NCHAR(10)

SELECT
    q.kind,
    q.schema_name,
    q.object_name,
    N'NOT EXISTS (SELECT 1 FROM fn_listextendedproperty(' + q.name_literal + N', ' + q.levels + N'))' AS condition,
    CASE
        WHEN q.is_system_named = 1 OR q.base_type LIKE N'%binary'
            THEN N'-- Not scripted: extended property '
                + REPLACE(REPLACE(q.name_literal, NCHAR(13), N' '), NCHAR(10), N' ')
                + N' of ' + REPLACE(REPLACE(q.levels, NCHAR(13), N' '), NCHAR(10), N' ')
        WHEN q.base_type IS NULL OR q.base_type LIKE N'%char'
            THEN N'EXEC sp_addextendedproperty ' + q.name_literal + N', '
                + CASE
                    WHEN q.base_type IS NULL THEN N'NULL'
                    ELSE CASE WHEN q.base_type LIKE N'n%' THEN N'N''' ELSE N'''' END
                        + REPLACE(
                            REPLACE(
                                REPLACE(
                                    CASE
                                        WHEN q.base_type LIKE N'n%'
                                            THEN CONVERT(nvarchar(max), CONVERT(nvarchar(4000), q.value))
                                        ELSE CONVERT(nvarchar(max), CONVERT(varchar(8000), q.value))
                                    END,
                                    N'''',
                                    N''''''
                                ),
                                N'\' + NCHAR(10),
                                N'\\' + NCHAR(10) + NCHAR(10)
                            ),
                            N'\' + @crlf,
                            N'\\' + @crlf + @crlf
                        ) + N''''
                END
                + N', ' + q.levels
        ELSE N'DECLARE @value sql_variant' + @crlf
            + N'SET @value = CONVERT(' + q.base_type
            + CASE
                WHEN q.base_type IN (N'decimal', N'numeric')
                    THEN N'(' + CONVERT(nvarchar(10), SQL_VARIANT_PROPERTY(q.value, N'Precision')) + N','
                        + CONVERT(nvarchar(10), SQL_VARIANT_PROPERTY(q.value, N'Scale')) + N')'
                WHEN q.base_type IN (N'time', N'datetime2', N'datetimeoffset')
                    THEN N'(' + CONVERT(nvarchar(10), SQL_VARIANT_PROPERTY(q.value, N'Scale')) + N')'
                ELSE N''
            END
            + N', N'''
            + CASE
                WHEN q.base_type LIKE N'%datetime' THEN CONVERT(nvarchar(60), CONVERT(datetime, q.value), 121)
                WHEN q.base_type IN (N'float', N'real') THEN CONVERT(nvarchar(60), CONVERT(float, q.value), 2)
                WHEN q.base_type LIKE N'%money' THEN CONVERT(nvarchar(60), CONVERT(money, q.value), 2)
                ELSE CONVERT(nvarchar(200), q.value)
            END
            + N''')' + @crlf
            + N'EXEC sp_addextendedproperty ' + q.name_literal + N', @value, ' + q.levels
    END AS statement,
    q.part,
    CONVERT(nvarchar(200), NULL) AS settings
FROM (
    SELECT
        l.kind,
        l.schema_name,
        l.object_name,
        N'N''' + REPLACE(l.property_name, N'''', N'''''') + N'''' AS name_literal,
        l.value,
        CONVERT(nvarchar(128), SQL_VARIANT_PROPERTY(l.value, N'BaseType')) AS base_type,
        l.is_system_named,
        l.position,
        CASE WHEN l.level2 = N'CONSTRAINT' AND l.part_type NOT IN ('C', 'F') THEN N'KEY' ELSE l.level2 END AS part,
        N'N''SCHEMA'', N''' + REPLACE(l.schema_name, N'''', N'''''') + N''', '
            + ISNULL(N'N''' + l.level1 + N''', N''' + REPLACE(l.object_name, N'''', N'''''') + N'''', N'NULL, NULL')
            + N', '
            + ISNULL(N'N''' + l.level2 + N''', N''' + REPLACE(l.part_name, N'''', N'''''') + N'''', N'NULL, NULL')
            AS levels
    FROM (
        SELECT
            N'OBJECT' AS kind,
            s.name AS schema_name,
            o.name AS object_name,
            p.name AS property_name,
            p.value,
            CASE
                WHEN o.type = 'U' THEN N'TABLE'
                WHEN o.type = 'V' THEN N'VIEW'
                WHEN o.type IN ('P', 'PC') THEN N'PROCEDURE'
                ELSE N'FUNCTION'
            END AS level1,
            CASE
                WHEN p.class = 2 THEN N'PARAMETER'
                WHEN p.class = 7 THEN N'INDEX'
                WHEN p.minor_id > 0 THEN N'COLUMN'
                WHEN part.type = 'TR' THEN N'TRIGGER'
                WHEN part.object_id <> o.object_id THEN N'CONSTRAINT'
            END AS level2,
            CASE
                WHEN p.class = 2 THEN a.name
                WHEN p.class = 7 THEN i.name
                WHEN p.minor_id > 0 THEN c.name
                ELSE part.name
            END AS part_name,
            part.type AS part_type,
            CASE
                WHEN k.is_system_named = 1 OR ch.is_system_named = 1 OR d.is_system_named = 1 OR f.is_system_named = 1
                    THEN 1
                ELSE 0
            END AS is_system_named,
            CASE
                WHEN p.class = 1 AND p.minor_id = 0 AND part.object_id = o.object_id THEN 0
                ELSE p.class
            END AS position
        FROM sys.extended_properties AS p
        INNER JOIN sys.objects AS part ON part.object_id = p.major_id
        INNER JOIN sys.objects AS o
            ON o.object_id = CASE WHEN part.parent_object_id = 0 THEN part.object_id ELSE part.parent_object_id END
        INNER JOIN sys.schemas AS s ON s.schema_id = o.schema_id
        LEFT JOIN sys.columns AS c ON c.object_id = p.major_id AND c.column_id = p.minor_id AND p.class = 1
        LEFT JOIN sys.parameters AS a ON a.object_id = p.major_id AND a.parameter_id = p.minor_id AND p.class = 2
        LEFT JOIN sys.indexes AS i ON i.object_id = p.major_id AND i.index_id = p.minor_id AND p.class = 7
        LEFT JOIN sys.key_constraints AS k ON k.object_id = p.major_id
        LEFT JOIN sys.check_constraints AS ch ON ch.object_id = p.major_id
        LEFT JOIN sys.default_constraints AS d ON d.object_id = p.major_id
        LEFT JOIN sys.foreign_keys AS f ON f.object_id = p.major_id
        WHERE p.class IN (1, 2, 7)
            AND o.is_ms_shipped = 0
            AND o.type IN ('U', 'V', 'P', 'PC', 'FN', 'IF', 'TF', 'FS', 'FT')
        UNION ALL
        SELECT
            N'SCHEMA',
            s.name,
            N'',
            p.name,
            p.value,
            NULL,
            NULL,
            NULL,
            NULL,
            0,
            0
        FROM sys.extended_properties AS p
        INNER JOIN sys.schemas AS s ON s.schema_id = p.major_id
        WHERE p.class = 3
        UNION ALL
        SELECT
            N'TYPE',
            s.name,
            t.name,
            p.name,
            p.value,
            N'TYPE',
            NULL,
            NULL,
            NULL,
            0,
            0
        FROM sys.extended_properties AS p
        INNER JOIN sys.types AS t ON t.user_type_id = p.major_id
        INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
        WHERE p.class = 6
    ) AS l
) AS q
WHERE N'{OBJECT}' = N'' OR (q.schema_name = N'{SCHEMA}' AND q.object_name = N'{OBJECT}')
ORDER BY q.kind, q.schema_name, q.object_name, q.position, q.levels, q.name_literal
