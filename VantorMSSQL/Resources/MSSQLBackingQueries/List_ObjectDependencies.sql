-- Which object names which other one of this database in its text, for the order of a script. What a column or a
-- constraint of a table names counts for the table. An object that is bound to another one by its schema cannot exist
-- before it. 2005, and a login that may not read the newer view, know only what sys.sql_dependencies has recorded.
IF EXISTS (SELECT 1 FROM sys.all_objects WHERE name = N'sql_expression_dependencies')
    AND HAS_PERMS_BY_NAME(N'sys.sql_expression_dependencies', N'OBJECT', N'SELECT') = 1
    EXEC sp_executesql N'
        SELECT
            ns.name AS schema_name,
            n.name AS object_name,
            ts.name AS referenced_schema_name,
            t.name AS referenced_object_name,
            MAX(CONVERT(int, d.is_schema_bound_reference)) AS is_schema_bound
        FROM sys.sql_expression_dependencies AS d
        INNER JOIN sys.objects AS o ON o.object_id = d.referencing_id
        INNER JOIN sys.objects AS n
            ON n.object_id = CASE WHEN o.parent_object_id = 0 THEN o.object_id ELSE o.parent_object_id END
        INNER JOIN sys.schemas AS ns ON ns.schema_id = n.schema_id
        INNER JOIN sys.objects AS t ON t.object_id = d.referenced_id
        INNER JOIN sys.schemas AS ts ON ts.schema_id = t.schema_id
        WHERE o.type <> ''TR''
            AND t.object_id <> n.object_id
        GROUP BY ns.name, n.name, ts.name, t.name
        ORDER BY ns.name, n.name, ts.name, t.name'
ELSE
    SELECT
        ns.name AS schema_name,
        n.name AS object_name,
        ts.name AS referenced_schema_name,
        t.name AS referenced_object_name,
        MAX(CONVERT(int, d.class)) AS is_schema_bound
    FROM sys.sql_dependencies AS d
    INNER JOIN sys.objects AS o ON o.object_id = d.object_id
    INNER JOIN sys.objects AS n
            ON n.object_id = CASE WHEN o.parent_object_id = 0 THEN o.object_id ELSE o.parent_object_id END
    INNER JOIN sys.schemas AS ns ON ns.schema_id = n.schema_id
    INNER JOIN sys.objects AS t ON t.object_id = d.referenced_major_id
    INNER JOIN sys.schemas AS ts ON ts.schema_id = t.schema_id
    WHERE d.class IN (0, 1)
        AND o.type <> 'TR'
        AND t.object_id <> n.object_id
    GROUP BY ns.name, n.name, ts.name, t.name
    ORDER BY ns.name, n.name, ts.name, t.name
