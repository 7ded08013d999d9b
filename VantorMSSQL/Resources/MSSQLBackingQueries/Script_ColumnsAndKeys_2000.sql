-- The columns of a table or view, or the parameters of a procedure or function; then its keys and indexes, one row for
-- each of their columns.
DECLARE @object int
SET @object = OBJECT_ID(QUOTENAME(N'{SCHEMA}') + N'.' + QUOTENAME(N'{OBJECT}'))

SELECT
    c.name AS [Name],
    CASE
        WHEN t.xusertype > 256 THEN QUOTENAME(t.name)
        WHEN t.name IN (N'decimal', N'numeric')
            THEN t.name + N'(' + CONVERT(nvarchar(10), c.xprec) + N',' + CONVERT(nvarchar(10), c.xscale) + N')'
        WHEN t.name IN (N'nchar', N'nvarchar')
            THEN t.name + N'(' + CONVERT(nvarchar(10), c.length / 2) + N')'
        WHEN t.name IN (N'char', N'varchar', N'binary', N'varbinary')
            THEN t.name + N'(' + CONVERT(nvarchar(10), c.length) + N')'
        ELSE t.name
    END AS [Type],
    CASE
        WHEN c.name LIKE N'@%' OR c.name = N'' THEN NULL
        WHEN c.isnullable = 1 THEN N'yes'
        ELSE N'no'
    END AS [Nullable],
    CASE WHEN EXISTS (
        SELECT 1
        FROM dbo.sysobjects AS pk
        INNER JOIN dbo.sysindexes AS i ON i.id = pk.parent_obj AND i.name = pk.name
        INNER JOIN dbo.sysindexkeys AS ik ON ik.id = i.id AND ik.indid = i.indid
        WHERE pk.parent_obj = c.id
            AND pk.xtype = 'PK'
            AND ik.colid = c.colid
    ) THEN N'yes' ELSE N'' END AS [Primary key],
    CASE
        WHEN c.name = N'' THEN N'result'
        WHEN c.isoutparam = 1 THEN N'output'
        WHEN COLUMNPROPERTY(c.id, c.name, N'IsIdentity') = 1 THEN N'identity'
        WHEN c.iscomputed = 1 THEN N'computed'
        ELSE N''
    END AS [Remark],
    d.text AS [Default]
FROM dbo.syscolumns AS c
INNER JOIN dbo.systypes AS t ON t.xusertype = c.xusertype
LEFT JOIN dbo.sysobjects AS dc ON dc.id = c.cdefault AND dc.parent_obj = c.id
LEFT JOIN dbo.syscomments AS d ON d.id = dc.id AND d.colid = 1
WHERE c.id = @object
    AND c.number <= 1
ORDER BY CASE WHEN c.name LIKE N'@%' OR c.name = N'' THEN 0 ELSE 1 END, c.colid

SELECT
    k.name AS [Key or index],
    k.kind AS [Kind],
    k.position AS [Position],
    k.column_name AS [Column],
    k.referenced_table AS [Referenced table],
    k.referenced_column AS [Referenced column]
FROM (
    SELECT
        CASE WHEN o.xtype = 'PK' THEN 0 ELSE 1 END AS rank_of_kind,
        i.name,
        CASE
            WHEN o.xtype = 'PK' THEN N'primary key'
            WHEN o.xtype = 'UQ' THEN N'unique constraint'
            WHEN INDEXPROPERTY(i.id, i.name, N'IsUnique') = 1 THEN N'unique index'
            ELSE N'index'
        END AS kind,
        CONVERT(int, ik.keyno) AS position,
        c.name AS column_name,
        CONVERT(nvarchar(600), NULL) AS referenced_table,
        CONVERT(nvarchar(128), NULL) AS referenced_column
    FROM dbo.sysindexes AS i
    INNER JOIN dbo.sysindexkeys AS ik ON ik.id = i.id AND ik.indid = i.indid
    INNER JOIN dbo.syscolumns AS c ON c.id = ik.id AND c.colid = ik.colid
    LEFT JOIN dbo.sysobjects AS o ON o.parent_obj = i.id AND o.name = i.name AND o.xtype IN ('PK', 'UQ')
    WHERE i.id = @object
        AND i.indid BETWEEN 1 AND 254
        AND INDEXPROPERTY(i.id, i.name, N'IsStatistics') = 0
        AND INDEXPROPERTY(i.id, i.name, N'IsHypothetical') = 0
    UNION ALL
    SELECT
        2 AS rank_of_kind,
        f.name,
        N'foreign key' AS kind,
        CONVERT(int, fk.keyno) AS position,
        lc.name AS column_name,
        QUOTENAME(ru.name) + N'.' + QUOTENAME(rt.name) AS referenced_table,
        rc.name AS referenced_column
    FROM dbo.sysforeignkeys AS fk
    INNER JOIN dbo.sysobjects AS f ON f.id = fk.constid
    INNER JOIN dbo.syscolumns AS lc ON lc.id = fk.fkeyid AND lc.colid = fk.fkey
    INNER JOIN dbo.sysobjects AS rt ON rt.id = fk.rkeyid
    INNER JOIN dbo.sysusers AS ru ON ru.uid = rt.uid
    INNER JOIN dbo.syscolumns AS rc ON rc.id = fk.rkeyid AND rc.colid = fk.rkey
    WHERE fk.fkeyid = @object
) AS k
ORDER BY k.rank_of_kind, k.name, k.position
