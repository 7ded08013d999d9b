-- As old as the last DBCC UPDATEUSAGE.
SELECT i.id AS object_id, CONVERT(bigint, i.rows) AS row_count
FROM dbo.sysindexes AS i
INNER JOIN dbo.sysobjects AS o ON o.id = i.id
WHERE i.indid IN (0, 1)
    AND o.xtype = 'U'
