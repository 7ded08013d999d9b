-- Rows and sizes are as old as the last DBCC UPDATEUSAGE.
SELECT
    o.name AS [Name],
    u.name AS [Schema],
    CASE o.xtype
        WHEN 'U' THEN N'user table'
        WHEN 'V' THEN N'view'
        WHEN 'P' THEN N'sql stored procedure'
        WHEN 'FN' THEN N'sql scalar function'
        WHEN 'IF' THEN N'sql inline table valued function'
        WHEN 'TF' THEN N'sql table valued function'
        WHEN 'TR' THEN N'sql trigger'
        WHEN 'PK' THEN N'primary key constraint'
        WHEN 'UQ' THEN N'unique constraint'
        WHEN 'F' THEN N'foreign key constraint'
        ELSE RTRIM(o.xtype)
    END AS [Kind],
    OBJECT_NAME(NULLIF(o.parent_obj, 0)) AS [Belongs to],
    CONVERT(nvarchar(30), o.crdate, 120) AS [Created],
    z.row_total AS [Rows],
    z.data_kb AS [Data (KB)],
    z.index_kb AS [Indexes (KB)],
    z.unused_kb AS [Unused (KB)],
    CASE
        WHEN o.xtype = 'U' THEN CONVERT(nvarchar(128), DATABASEPROPERTYEX(DB_NAME(), 'Collation'))
    END AS [Default collation],
    CASE WHEN o.xtype = 'TR' THEN
        CASE OBJECTPROPERTY(o.id, N'ExecIsTriggerDisabled') WHEN 1 THEN N'no' ELSE N'yes' END
    END AS [Trigger enabled],
    OBJECT_NAME(r.rkeyid) AS [References],
    CASE WHEN r.rkeyid IS NOT NULL THEN
        CASE OBJECTPROPERTY(o.id, N'CnstIsUpdateCascade') WHEN 1 THEN N'cascade' ELSE N'no action' END
    END AS [On update],
    CASE WHEN r.rkeyid IS NOT NULL THEN
        CASE OBJECTPROPERTY(o.id, N'CnstIsDeleteCascade') WHEN 1 THEN N'cascade' ELSE N'no action' END
    END AS [On delete]
FROM dbo.sysobjects AS o
INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
LEFT JOIN (
    SELECT
        i.id,
        SUM(CASE WHEN i.indid IN (0, 1) THEN CONVERT(bigint, i.rows) ELSE 0 END) AS row_total,
        SUM(CASE
            WHEN i.indid IN (0, 1) THEN CONVERT(bigint, i.dpages)
            WHEN i.indid = 255 THEN CONVERT(bigint, i.used)
            ELSE 0
        END) * 8 AS data_kb,
        SUM(CASE
            WHEN i.indid IN (0, 1) THEN CONVERT(bigint, i.used) - CONVERT(bigint, i.dpages)
            ELSE 0
        END) * 8 AS index_kb,
        SUM(CASE
            WHEN i.indid IN (0, 1, 255) THEN CONVERT(bigint, i.reserved) - CONVERT(bigint, i.used)
            ELSE 0
        END) * 8 AS unused_kb
    FROM dbo.sysindexes AS i
    GROUP BY i.id
) AS z ON z.id = o.id
LEFT JOIN dbo.sysreferences AS r ON r.constid = o.id
WHERE o.id = OBJECT_ID(QUOTENAME(N'{SCHEMA}') + N'.' + QUOTENAME(N'{OBJECT}'))
