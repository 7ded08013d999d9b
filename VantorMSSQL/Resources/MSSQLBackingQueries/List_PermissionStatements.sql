-- The permissions on objects, schemas and types of this database, each as a statement, those on columns behind those
-- on their objects.
SELECT
    q.kind,
    q.schema_name,
    q.object_name,
    CONVERT(nvarchar(4000), NULL) AS condition,
    CASE q.state WHEN 'D' THEN N'DENY ' WHEN 'R' THEN N'REVOKE ' ELSE N'GRANT ' END
        + q.permission_name + N' ON ' + q.target
        + ISNULL(N' (' + QUOTENAME(q.column_name) + N')', N'')
        + CASE WHEN q.state = 'R' THEN N' FROM ' ELSE N' TO ' END + QUOTENAME(q.grantee)
        + CASE WHEN q.state = 'W' THEN N' WITH GRANT OPTION' ELSE N'' END AS statement,
    CONVERT(nvarchar(60), NULL) AS part,
    CONVERT(nvarchar(200), NULL) AS settings
FROM (
    SELECT
        N'OBJECT' AS kind,
        s.name AS schema_name,
        o.name AS object_name,
        (N'OBJECT::' + QUOTENAME(s.name) + N'.' + QUOTENAME(o.name)) COLLATE DATABASE_DEFAULT AS target,
        c.name COLLATE DATABASE_DEFAULT AS column_name,
        p.state COLLATE DATABASE_DEFAULT AS state,
        p.permission_name COLLATE DATABASE_DEFAULT AS permission_name,
        g.name COLLATE DATABASE_DEFAULT AS grantee
    FROM sys.database_permissions AS p
    INNER JOIN sys.database_principals AS g ON g.principal_id = p.grantee_principal_id
    INNER JOIN sys.objects AS o ON o.object_id = p.major_id
    INNER JOIN sys.schemas AS s ON s.schema_id = o.schema_id
    LEFT JOIN sys.columns AS c ON c.object_id = p.major_id AND c.column_id = p.minor_id AND p.minor_id > 0
    WHERE p.class = 1
        AND o.is_ms_shipped = 0
    UNION ALL
    SELECT
        N'SCHEMA',
        s.name,
        N'',
        (N'SCHEMA::' + QUOTENAME(s.name)) COLLATE DATABASE_DEFAULT,
        NULL,
        p.state COLLATE DATABASE_DEFAULT,
        p.permission_name COLLATE DATABASE_DEFAULT,
        g.name COLLATE DATABASE_DEFAULT
    FROM sys.database_permissions AS p
    INNER JOIN sys.database_principals AS g ON g.principal_id = p.grantee_principal_id
    INNER JOIN sys.schemas AS s ON s.schema_id = p.major_id
    WHERE p.class = 3
    UNION ALL
    SELECT
        N'TYPE',
        s.name,
        t.name,
        (N'TYPE::' + QUOTENAME(s.name) + N'.' + QUOTENAME(t.name)) COLLATE DATABASE_DEFAULT,
        NULL,
        p.state COLLATE DATABASE_DEFAULT,
        p.permission_name COLLATE DATABASE_DEFAULT,
        g.name COLLATE DATABASE_DEFAULT
    FROM sys.database_permissions AS p
    INNER JOIN sys.database_principals AS g ON g.principal_id = p.grantee_principal_id
    INNER JOIN sys.types AS t ON t.user_type_id = p.major_id
    INNER JOIN sys.schemas AS s ON s.schema_id = t.schema_id
    WHERE p.class = 6
) AS q
ORDER BY q.kind, q.schema_name, q.object_name, CASE WHEN q.column_name IS NULL THEN 0 ELSE 1 END, q.column_name,
    q.grantee, q.permission_name
