-- The permissions on objects of this database, each as a statement. The bitmap of columns is 0x01 for all of them; its
-- other bits stand for the columns by their numbers.
SELECT
    N'OBJECT' AS kind,
    q.schema_name,
    q.object_name,
    CONVERT(nvarchar(4000), NULL) AS condition,
    CASE q.protecttype WHEN 206 THEN N'DENY ' ELSE N'GRANT ' END
        + q.permission_name + N' ON ' + QUOTENAME(q.schema_name) + N'.' + QUOTENAME(q.object_name)
        + ISNULL(N' (' + QUOTENAME(q.column_name) + N')', N'')
        + N' TO ' + QUOTENAME(q.grantee)
        + CASE WHEN q.protecttype = 204 THEN N' WITH GRANT OPTION' ELSE N'' END AS statement,
    CONVERT(nvarchar(60), NULL) AS part,
    CONVERT(nvarchar(200), NULL) AS settings
FROM (
    SELECT
        u.name AS schema_name,
        o.name AS object_name,
        c.name AS column_name,
        p.protecttype,
        CASE p.action
            WHEN 26 THEN N'REFERENCES'
            WHEN 193 THEN N'SELECT'
            WHEN 195 THEN N'INSERT'
            WHEN 196 THEN N'DELETE'
            WHEN 197 THEN N'UPDATE'
            ELSE N'EXECUTE'
        END AS permission_name,
        g.name AS grantee
    FROM dbo.sysprotects AS p
    INNER JOIN dbo.sysobjects AS o ON o.id = p.id
    INNER JOIN dbo.sysusers AS u ON u.uid = o.uid
    INNER JOIN dbo.sysusers AS g ON g.uid = p.uid
    LEFT JOIN dbo.syscolumns AS c
        ON c.id = p.id
        AND ISNULL(SUBSTRING(p.columns, 1, 1), 0x01) & 1 = 0
        AND CONVERT(int, SUBSTRING(p.columns, c.colid / 8 + 1, 1)) & POWER(2, c.colid % 8) <> 0
    WHERE p.action IN (26, 193, 195, 196, 197, 224)
        AND OBJECTPROPERTY(o.id, N'IsMSShipped') = 0
) AS q
ORDER BY q.schema_name, q.object_name, CASE WHEN q.column_name IS NULL THEN 0 ELSE 1 END, q.column_name, q.grantee,
    q.permission_name
