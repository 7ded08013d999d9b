-- The views exist only where federations do. They are named in dynamic SQL so that every other server answers with no
-- rows instead of an error.
IF OBJECT_ID(N'sys.federations') IS NOT NULL
    EXEC sp_executesql N'
        SELECT
            f.federation_id,
            f.name AS federation_name,
            d.distribution_name,
            TYPE_NAME(d.system_type_id) AS distribution_data_type,
            d.distribution_type
        FROM sys.federations AS f
        INNER JOIN sys.federation_distributions AS d ON d.federation_id = f.federation_id
        ORDER BY f.name, d.distribution_name'
ELSE
    SELECT
        0 AS federation_id,
        N'' AS federation_name,
        N'' AS distribution_name,
        N'' AS distribution_data_type,
        N'' AS distribution_type
    WHERE 1 = 0
