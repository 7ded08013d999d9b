-- The extended properties of the objects of this database, or of one of them, each as a statement with the condition
-- under which it has something to do. A value that is not text becomes text; bytes are named in a comment. A backslash
-- before a line end is written so that the constant keeps both. The levels of 2000 begin with the owner.
SELECT
    N'OBJECT' AS kind,
    q.schema_name,
    q.object_name,
    N'NOT EXISTS (SELECT 1 FROM ::fn_listextendedproperty(' + q.name_literal + N', ' + q.levels + N'))' AS condition,
    CASE
        WHEN q.base_type LIKE N'%binary'
            THEN N'-- Not scripted: extended property '
                + REPLACE(REPLACE(q.name_literal, NCHAR(13), N' '), NCHAR(10), N' ')
                + N' of ' + REPLACE(REPLACE(q.levels, NCHAR(13), N' '), NCHAR(10), N' ')
        ELSE N'EXEC sp_addextendedproperty ' + q.name_literal + N', '
            + ISNULL(
                N'N''' + REPLACE(
                    REPLACE(
                        REPLACE(CONVERT(nvarchar(4000), q.value), N'''', N''''''),
                        N'\' + NCHAR(10),
                        N'\\' + NCHAR(10) + NCHAR(10)
                    ),
                    N'\' + NCHAR(13) + NCHAR(10),
                    N'\\' + NCHAR(13) + NCHAR(10) + NCHAR(13) + NCHAR(10)
                ) + N'''',
                N'NULL'
            )
            + N', ' + q.levels
    END AS statement,
    q.part,
    CONVERT(nvarchar(200), NULL) AS settings
FROM (
    SELECT
        CASE
            WHEN p.type = 5 THEN N'INDEX'
            WHEN part.xtype = 'TR' THEN N'TRIGGER'
            WHEN part.xtype IN ('C', 'F') THEN N'CONSTRAINT'
        END AS part,
        u.name AS schema_name,
        o.name AS object_name,
        N'N''' + REPLACE(p.name, N'''', N'''''') + N'''' AS name_literal,
        p.value,
        CONVERT(nvarchar(128), SQL_VARIANT_PROPERTY(p.value, N'BaseType')) AS base_type,
        N'N''USER'', N''' + REPLACE(u.name, N'''', N'''''') + N''', N'''
            + CASE o.xtype WHEN 'U' THEN N'TABLE' WHEN 'V' THEN N'VIEW' WHEN 'P' THEN N'PROCEDURE' ELSE N'FUNCTION' END
            + N''', N''' + REPLACE(o.name, N'''', N'''''') + N''', '
            + CASE
                WHEN p.type = 5 THEN N'N''INDEX'', N''' + REPLACE(i.name, N'''', N'''''') + N''''
                WHEN p.smallid > 0
                    THEN CASE WHEN o.xtype IN ('U', 'V') THEN N'N''COLUMN''' ELSE N'N''PARAMETER''' END
                        + N', N''' + REPLACE(c.name, N'''', N'''''') + N''''
                WHEN part.xtype = 'TR' THEN N'N''TRIGGER'', N''' + REPLACE(part.name, N'''', N'''''') + N''''
                WHEN part.id <> o.id THEN N'N''CONSTRAINT'', N''' + REPLACE(part.name, N'''', N'''''') + N''''
                ELSE N'NULL, NULL'
            END AS levels
    FROM dbo.sysproperties AS p
    INNER JOIN dbo.sysobjects AS part ON part.id = p.id
    INNER JOIN dbo.sysobjects AS o ON o.id = CASE WHEN part.parent_obj = 0 THEN part.id ELSE part.parent_obj END
    INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
    LEFT JOIN dbo.syscolumns AS c ON c.id = p.id AND c.colid = p.smallid
    LEFT JOIN dbo.sysindexes AS i ON i.id = p.id AND i.indid = p.smallid
    WHERE o.xtype IN ('U', 'V', 'P', 'FN', 'IF', 'TF')
        AND OBJECTPROPERTY(o.id, N'IsMSShipped') = 0
) AS q
WHERE N'{OBJECT}' = N'' OR (q.schema_name = N'{SCHEMA}' AND q.object_name = N'{OBJECT}')
ORDER BY q.schema_name, q.object_name, q.levels, q.name_literal
