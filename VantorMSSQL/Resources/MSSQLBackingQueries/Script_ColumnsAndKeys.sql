-- The columns of a table or view, or the parameters of a procedure or function; then its keys and indexes, one row for
-- each of their columns.
DECLARE @object int
SET @object = OBJECT_ID(QUOTENAME(N'{SCHEMA}') + N'.' + QUOTENAME(N'{OBJECT}'))

SELECT
    c.name AS [Name],
    CASE
        WHEN t.is_user_defined = 1 THEN QUOTENAME(ts.name) + N'.' + QUOTENAME(t.name)
        WHEN t.name IN (N'decimal', N'numeric')
            THEN t.name + N'(' + CONVERT(nvarchar(10), c.[precision]) + N',' + CONVERT(nvarchar(10), c.scale) + N')'
        WHEN t.name IN (N'time', N'datetime2', N'datetimeoffset')
            THEN t.name + N'(' + CONVERT(nvarchar(10), c.scale) + N')'
        WHEN t.name NOT IN (N'char', N'varchar', N'nchar', N'nvarchar', N'binary', N'varbinary') THEN t.name
        WHEN c.max_length = -1 THEN t.name + N'(max)'
        WHEN t.name IN (N'nchar', N'nvarchar') THEN t.name + N'(' + CONVERT(nvarchar(10), c.max_length / 2) + N')'
        ELSE t.name + N'(' + CONVERT(nvarchar(10), c.max_length) + N')'
    END AS [Type],
    CASE c.is_nullable WHEN 1 THEN N'yes' WHEN 0 THEN N'no' END AS [Nullable],
    CASE WHEN EXISTS (
        SELECT 1
        FROM sys.indexes AS i
        INNER JOIN sys.index_columns AS ic ON ic.object_id = i.object_id AND ic.index_id = i.index_id
        WHERE i.object_id = @object
            AND i.is_primary_key = 1
            AND c.is_parameter = 0
            AND ic.column_id = c.position
            AND ic.key_ordinal > 0
    ) THEN N'yes' ELSE N'' END AS [Primary key],
    c.remark AS [Remark],
    d.definition AS [Default]
FROM (
    SELECT
        0 AS is_parameter,
        col.column_id AS position,
        col.name,
        col.user_type_id,
        col.max_length,
        col.[precision],
        col.scale,
        CONVERT(int, col.is_nullable) AS is_nullable,
        CASE WHEN col.is_identity = 1 THEN N'identity' WHEN col.is_computed = 1 THEN N'computed' ELSE N'' END AS remark
    FROM sys.all_columns AS col
    WHERE col.object_id = @object
    UNION ALL
    SELECT
        1 AS is_parameter,
        p.parameter_id AS position,
        CASE WHEN p.parameter_id = 0 THEN N'' ELSE p.name END AS name,
        p.user_type_id,
        p.max_length,
        p.[precision],
        p.scale,
        NULL AS is_nullable,
        CASE WHEN p.parameter_id = 0 THEN N'result' WHEN p.is_output = 1 THEN N'output' ELSE N'' END AS remark
    FROM sys.all_parameters AS p
    WHERE p.object_id = @object
) AS c
INNER JOIN sys.types AS t ON t.user_type_id = c.user_type_id
INNER JOIN sys.schemas AS ts ON ts.schema_id = t.schema_id
LEFT JOIN sys.default_constraints AS d
    ON d.parent_object_id = @object
    AND d.parent_column_id = c.position
    AND c.is_parameter = 0
ORDER BY c.is_parameter DESC, c.position

SELECT
    k.name AS [Key or index],
    k.kind AS [Kind],
    k.position AS [Position],
    k.column_name AS [Column],
    k.referenced_table AS [Referenced table],
    k.referenced_column AS [Referenced column]
FROM (
    SELECT
        CASE WHEN i.is_primary_key = 1 THEN 0 ELSE 1 END AS rank_of_kind,
        i.name,
        CASE
            WHEN i.is_primary_key = 1 THEN N'primary key'
            WHEN i.is_unique_constraint = 1 THEN N'unique constraint'
            WHEN i.is_unique = 1 THEN N'unique index'
            WHEN i.type IN (5, 6) THEN N'columnstore index'
            ELSE N'index'
        END AS kind,
        CONVERT(int, ic.key_ordinal) AS position,
        col.name AS column_name,
        CONVERT(nvarchar(600), NULL) AS referenced_table,
        CONVERT(nvarchar(128), NULL) AS referenced_column
    FROM sys.indexes AS i
    INNER JOIN sys.index_columns AS ic ON ic.object_id = i.object_id AND ic.index_id = i.index_id
    INNER JOIN sys.all_columns AS col ON col.object_id = ic.object_id AND col.column_id = ic.column_id
    WHERE i.object_id = @object
        AND i.is_hypothetical = 0
        AND (ic.key_ordinal > 0 OR i.type IN (5, 6))
    UNION ALL
    SELECT
        2 AS rank_of_kind,
        f.name,
        N'foreign key' AS kind,
        fc.constraint_column_id AS position,
        lc.name AS column_name,
        QUOTENAME(rs.name) + N'.' + QUOTENAME(rt.name) AS referenced_table,
        rc.name AS referenced_column
    FROM sys.foreign_keys AS f
    INNER JOIN sys.foreign_key_columns AS fc ON fc.constraint_object_id = f.object_id
    INNER JOIN sys.columns AS lc ON lc.object_id = fc.parent_object_id AND lc.column_id = fc.parent_column_id
    INNER JOIN sys.tables AS rt ON rt.object_id = fc.referenced_object_id
    INNER JOIN sys.schemas AS rs ON rs.schema_id = rt.schema_id
    INNER JOIN sys.columns AS rc ON rc.object_id = rt.object_id AND rc.column_id = fc.referenced_column_id
    WHERE f.parent_object_id = @object
) AS k
ORDER BY k.rank_of_kind, k.name, k.position
