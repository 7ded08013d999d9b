-- Rows and space of every user table, the largest first. The figures are as old as the last DBCC UPDATEUSAGE.
SELECT
	u.name AS schema_name,
	o.name AS table_name,
	SUM(CASE WHEN i.indid IN (0, 1) THEN CONVERT(bigint, i.rows) ELSE 0 END) AS rows_total,
	SUM(CASE WHEN i.indid IN (0, 1, 255) THEN CONVERT(bigint, i.reserved) ELSE 0 END) * 8 AS reserved_kb,
	SUM(
		CASE
			WHEN i.indid IN (0, 1) THEN CONVERT(bigint, i.dpages)
			WHEN i.indid = 255 THEN CONVERT(bigint, i.used)
			ELSE 0
		END
	) * 8 AS data_kb,
	SUM(CASE WHEN i.indid IN (0, 1) THEN CONVERT(bigint, i.used) - CONVERT(bigint, i.dpages) ELSE 0 END) * 8 AS index_kb,
	SUM(
		CASE
			WHEN i.indid IN (0, 1, 255) THEN CONVERT(bigint, i.reserved) - CONVERT(bigint, i.used)
			ELSE 0
		END
	) * 8 AS unused_kb
FROM dbo.sysindexes AS i
INNER JOIN dbo.sysobjects AS o ON o.id = i.id
INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
WHERE o.xtype = 'U'
	AND OBJECTPROPERTY(o.id, N'IsMSShipped') = 0
	AND o.name <> N'dtproperties'
GROUP BY u.name, o.name
ORDER BY reserved_kb DESC, u.name, o.name
