-- sys.*: objects, columns, indexes, constraints and modules.
CREATE VIEW sys.all_objects AS
SELECT name, object_id, CAST(NULL AS int) AS principal_id, schema_id, parent_object_id, type, type_desc,
    create_date, modify_date, is_ms_shipped, CAST(0 AS bit) AS is_published, CAST(0 AS bit) AS is_schema_published
FROM sys.[objects$]
GO
CREATE VIEW sys.objects AS
SELECT *
FROM sys.all_objects
WHERE is_ms_shipped = 0
GO
CREATE VIEW sys.system_objects AS
SELECT *
FROM sys.all_objects
WHERE is_ms_shipped = 1
GO
CREATE VIEW sys.tables AS
SELECT o.name, o.object_id, CAST(NULL AS int) AS principal_id, o.schema_id, o.parent_object_id, o.type, o.type_desc,
    o.create_date, o.modify_date, o.is_ms_shipped, CAST(0 AS bit) AS is_published,
    CAST(0 AS bit) AS is_schema_published, 0 AS lob_data_space_id, CAST(NULL AS int) AS filestream_data_space_id,
    o.max_column_id_used, CAST(0 AS bit) AS lock_on_bulk_load, CAST(1 AS bit) AS uses_ansi_nulls,
    CAST(0 AS bit) AS is_replicated, CAST(0 AS bit) AS has_replication_filter, CAST(0 AS bit) AS is_merge_published,
    CAST(0 AS bit) AS is_sync_tran_subscribed, CAST(0 AS bit) AS has_unchecked_assembly_data,
    0 AS text_in_row_limit, CAST(0 AS bit) AS large_value_types_out_of_row, CAST(0 AS bit) AS is_tracked_by_cdc,
    CAST(0 AS tinyint) AS lock_escalation, CAST('TABLE' AS nvarchar(60)) AS lock_escalation_desc,
    CAST(0 AS bit) AS is_filetable, CAST(0 AS bit) AS is_memory_optimized, CAST(0 AS tinyint) AS durability,
    CAST(0 AS tinyint) AS temporal_type, CAST('NON_TEMPORAL_TABLE' AS nvarchar(60)) AS temporal_type_desc,
    CAST(NULL AS int) AS history_table_id, CAST(0 AS bit) AS is_external, CAST(0 AS bit) AS is_node,
    CAST(0 AS bit) AS is_edge
FROM sys.[objects$] o
WHERE o.type = 'U'
GO
CREATE VIEW sys.all_views AS
SELECT o.name, o.object_id, CAST(NULL AS int) AS principal_id, o.schema_id, o.parent_object_id, o.type, o.type_desc,
    o.create_date, o.modify_date, o.is_ms_shipped, CAST(0 AS bit) AS is_published,
    CAST(0 AS bit) AS is_schema_published, CAST(0 AS bit) AS is_replicated,
    CAST(0 AS bit) AS has_replication_filter, CAST(0 AS bit) AS has_opaque_metadata,
    CAST(0 AS bit) AS has_unchecked_assembly_data, CAST(0 AS bit) AS with_check_option,
    CAST(0 AS bit) AS is_date_correlation_view, CAST(0 AS bit) AS is_tracked_by_cdc
FROM sys.[objects$] o
WHERE o.type = 'V'
GO
CREATE VIEW sys.views AS
SELECT *
FROM sys.all_views
WHERE is_ms_shipped = 0
GO
CREATE VIEW sys.system_views AS
SELECT *
FROM sys.all_views
WHERE is_ms_shipped = 1
GO
CREATE VIEW sys.procedures AS
SELECT o.name, o.object_id, CAST(NULL AS int) AS principal_id, o.schema_id, o.parent_object_id, o.type, o.type_desc,
    o.create_date, o.modify_date, o.is_ms_shipped, CAST(0 AS bit) AS is_published,
    CAST(0 AS bit) AS is_schema_published, CAST(0 AS bit) AS is_auto_executed,
    CAST(0 AS bit) AS is_execution_replicated, CAST(0 AS bit) AS is_repl_serializable_only,
    CAST(0 AS bit) AS skips_repl_constraints
FROM sys.[objects$] o
WHERE o.type = 'P'
GO
CREATE VIEW sys.triggers AS
SELECT o.name, o.object_id, CAST(1 AS tinyint) AS parent_class,
    CAST('OBJECT_OR_COLUMN' AS nvarchar(60)) AS parent_class_desc, o.parent_object_id AS parent_id, o.type,
    o.type_desc, o.create_date, o.modify_date, o.is_ms_shipped, o.is_disabled,
    CAST(0 AS bit) AS is_not_for_replication, o.is_instead_of_trigger
FROM sys.[objects$] o
WHERE o.type = 'TR'
GO
CREATE VIEW sys.trigger_events AS
SELECT e.object_id, e.type,
    CAST(CASE e.type WHEN 1 THEN 'INSERT' WHEN 2 THEN 'UPDATE' ELSE 'DELETE' END AS nvarchar(60)) AS type_desc,
    CAST(0 AS bit) AS is_first, CAST(0 AS bit) AS is_last, CAST(NULL AS int) AS event_group_type,
    CAST(NULL AS nvarchar(60)) AS event_group_type_desc, CAST(1 AS bit) AS is_trigger_event
FROM sys.[trigger_events$] e
GO
CREATE VIEW sys.synonyms AS
SELECT o.name, o.object_id, CAST(NULL AS int) AS principal_id, o.schema_id, o.parent_object_id, o.type, o.type_desc,
    o.create_date, o.modify_date, o.is_ms_shipped, CAST(0 AS bit) AS is_published,
    CAST(0 AS bit) AS is_schema_published, o.base_object_name
FROM sys.[objects$] o
WHERE o.type = 'SN'
GO
CREATE VIEW sys.sql_modules AS
SELECT o.object_id, o.definition, CAST(1 AS bit) AS uses_ansi_nulls, o.uses_quoted_identifier, o.is_schema_bound,
    CAST(0 AS bit) AS uses_database_collation, CAST(0 AS bit) AS is_recompiled,
    CAST(0 AS bit) AS null_on_null_input, CAST(NULL AS int) AS execute_as_principal_id,
    CAST(0 AS bit) AS uses_native_compilation
FROM sys.[objects$] o
WHERE o.type IN ('V', 'P', 'FN', 'IF', 'TF', 'TR') AND o.is_ms_shipped = 0
GO
CREATE VIEW sys.all_sql_modules AS
SELECT o.object_id, o.definition, CAST(1 AS bit) AS uses_ansi_nulls, o.uses_quoted_identifier, o.is_schema_bound,
    CAST(0 AS bit) AS uses_database_collation, CAST(0 AS bit) AS is_recompiled,
    CAST(0 AS bit) AS null_on_null_input, CAST(NULL AS int) AS execute_as_principal_id,
    CAST(0 AS bit) AS uses_native_compilation
FROM sys.[objects$] o
WHERE o.type IN ('V', 'P', 'FN', 'IF', 'TF', 'TR')
GO
CREATE VIEW sys.system_sql_modules AS
SELECT m.*
FROM sys.all_sql_modules m
WHERE m.object_id < 0
GO
CREATE VIEW sys.all_columns AS
SELECT c.object_id, c.name, c.column_id, c.system_type_id, c.user_type_id, c.max_length, c.precision, c.scale,
    c.collation_name, c.is_nullable, CAST(1 AS bit) AS is_ansi_padded, c.is_rowguidcol, c.is_identity,
    c.is_computed, CAST(0 AS bit) AS is_filestream, CAST(0 AS bit) AS is_replicated,
    CAST(0 AS bit) AS is_non_sql_subscribed, CAST(0 AS bit) AS is_merge_published,
    CAST(0 AS bit) AS is_dts_replicated, CAST(0 AS bit) AS is_xml_document, 0 AS xml_collection_id,
    c.default_object_id, 0 AS rule_object_id, c.is_sparse, CAST(0 AS bit) AS is_column_set,
    CAST(0 AS tinyint) AS generated_always_type,
    CAST('NOT_APPLICABLE' AS nvarchar(60)) AS generated_always_type_desc, CAST(0 AS bit) AS is_hidden,
    CAST(0 AS bit) AS is_masked
FROM sys.[columns$] c
GO
CREATE VIEW sys.columns AS
SELECT *
FROM sys.all_columns
WHERE object_id > 0
GO
CREATE VIEW sys.computed_columns AS
SELECT c.object_id, c.name, c.column_id, c.system_type_id, c.user_type_id, c.max_length, c.precision, c.scale,
    c.collation_name, c.is_nullable, CAST(1 AS bit) AS is_ansi_padded, c.is_rowguidcol, c.is_identity,
    c.is_computed, c.computed_definition AS definition, CAST(1 AS bit) AS uses_database_collation, c.is_persisted
FROM sys.[columns$] c
WHERE c.is_computed = 1
GO
CREATE VIEW sys.identity_columns AS
SELECT c.object_id, c.name, c.column_id, c.system_type_id, c.user_type_id, c.max_length, c.precision, c.scale,
    c.collation_name, c.is_nullable, CAST(1 AS bit) AS is_ansi_padded, c.is_rowguidcol, c.is_identity,
    c.is_computed, c.seed_value, c.increment_value, c.last_value, CAST(0 AS bit) AS is_not_for_replication
FROM sys.[columns$] c
WHERE c.is_identity = 1
GO
CREATE VIEW sys.types AS
SELECT t.name, t.system_type_id, t.user_type_id, t.schema_id, CAST(NULL AS int) AS principal_id, t.max_length,
    t.precision, t.scale, t.collation_name, t.is_nullable, t.is_user_defined, t.is_assembly_type,
    0 AS default_object_id, 0 AS rule_object_id, t.is_table_type
FROM sys.[types$] t
GO
CREATE VIEW sys.table_types AS
SELECT t.name, t.system_type_id, t.user_type_id, t.schema_id, CAST(NULL AS int) AS principal_id, t.max_length,
    t.precision, t.scale, t.collation_name, t.is_nullable, t.is_user_defined, t.is_assembly_type,
    0 AS default_object_id, 0 AS rule_object_id, t.is_table_type, t.type_table_object_id,
    CAST(0 AS bit) AS is_memory_optimized
FROM sys.[types$] t
WHERE t.is_table_type = 1
GO
CREATE VIEW sys.assembly_types AS
SELECT t.name, t.system_type_id, t.user_type_id, t.schema_id, CAST(NULL AS int) AS principal_id, t.max_length,
    t.precision, t.scale, t.collation_name, t.is_nullable, t.is_user_defined, t.is_assembly_type,
    0 AS default_object_id, 0 AS rule_object_id, 1 AS assembly_id,
    CAST('SqlHierarchyId' AS sysname) AS assembly_class, CAST(0 AS bit) AS is_binary_ordered,
    CAST(0 AS bit) AS is_fixed_length, CAST(NULL AS nvarchar(40)) AS prog_id,
    CAST('SqlHierarchyId' AS nvarchar(4000)) AS assembly_qualified_name, t.is_table_type
FROM sys.[types$] t
WHERE t.is_assembly_type = 1
GO
CREATE VIEW sys.schemas AS
SELECT s.name, s.schema_id, CASE WHEN s.schema_id < 5 THEN s.schema_id ELSE 1 END AS principal_id
FROM sys.[schemas$] s
GO
CREATE VIEW sys.indexes AS
SELECT i.object_id, i.name, i.index_id, i.type, i.type_desc, i.is_unique, 1 AS data_space_id, i.ignore_dup_key,
    i.is_primary_key, i.is_unique_constraint, i.fill_factor, i.is_padded, i.is_disabled,
    CAST(0 AS bit) AS is_hypothetical, CAST(0 AS bit) AS is_ignored_in_optimization,
    CAST(1 AS bit) AS allow_row_locks, CAST(1 AS bit) AS allow_page_locks, i.has_filter, i.filter_definition,
    CAST(NULL AS int) AS compression_delay, CAST(0 AS bit) AS suppress_dup_key_messages,
    CAST(0 AS bit) AS auto_created, CAST(0 AS bit) AS optimize_for_sequential_key
FROM sys.[indexes$] i
GO
CREATE VIEW sys.index_columns AS
SELECT c.object_id, c.index_id, c.index_column_id, c.column_id, c.key_ordinal,
    CAST(0 AS tinyint) AS partition_ordinal, c.is_descending_key, c.is_included_column,
    CAST(0 AS tinyint) AS column_store_order_ordinal
FROM sys.[index_columns$] c
GO
CREATE VIEW sys.key_constraints AS
SELECT o.name, o.object_id, CAST(NULL AS int) AS principal_id, o.schema_id, o.parent_object_id, o.type, o.type_desc,
    o.create_date, o.modify_date, o.is_ms_shipped, CAST(0 AS bit) AS is_published,
    CAST(0 AS bit) AS is_schema_published, o.unique_index_id, o.is_system_named, CAST(1 AS bit) AS is_enforced
FROM sys.[objects$] o
WHERE o.type IN ('PK', 'UQ')
GO
CREATE VIEW sys.check_constraints AS
SELECT o.name, o.object_id, CAST(NULL AS int) AS principal_id, o.schema_id, o.parent_object_id, o.type, o.type_desc,
    o.create_date, o.modify_date, o.is_ms_shipped, CAST(0 AS bit) AS is_published,
    CAST(0 AS bit) AS is_schema_published, o.is_disabled, CAST(0 AS bit) AS is_not_for_replication,
    o.is_not_trusted, o.parent_column_id, o.definition, CAST(1 AS bit) AS uses_database_collation, o.is_system_named
FROM sys.[objects$] o
WHERE o.type = 'C'
GO
CREATE VIEW sys.default_constraints AS
SELECT o.name, o.object_id, CAST(NULL AS int) AS principal_id, o.schema_id, o.parent_object_id, o.type, o.type_desc,
    o.create_date, o.modify_date, o.is_ms_shipped, CAST(0 AS bit) AS is_published,
    CAST(0 AS bit) AS is_schema_published, o.parent_column_id, o.definition, o.is_system_named
FROM sys.[objects$] o
WHERE o.type = 'D'
GO
CREATE VIEW sys.foreign_keys AS
SELECT o.name, o.object_id, CAST(NULL AS int) AS principal_id, o.schema_id, o.parent_object_id, o.type, o.type_desc,
    o.create_date, o.modify_date, o.is_ms_shipped, CAST(0 AS bit) AS is_published,
    CAST(0 AS bit) AS is_schema_published, k.referenced_object_id, k.key_index_id, o.is_disabled,
    CAST(0 AS bit) AS is_not_for_replication, o.is_not_trusted, k.delete_referential_action,
    CAST(CHOOSE(k.delete_referential_action + 1, 'NO_ACTION', 'CASCADE', 'SET_NULL', 'SET_DEFAULT') AS
        nvarchar(60)) AS delete_referential_action_desc, k.update_referential_action,
    CAST(CHOOSE(k.update_referential_action + 1, 'NO_ACTION', 'CASCADE', 'SET_NULL', 'SET_DEFAULT') AS
        nvarchar(60)) AS update_referential_action_desc, o.is_system_named
FROM sys.[foreign_keys$] k
JOIN sys.[objects$] o ON o.object_id = k.object_id
GO
CREATE VIEW sys.foreign_key_columns AS
SELECT constraint_object_id, constraint_column_id, parent_object_id, parent_column_id, referenced_object_id,
    referenced_column_id
FROM sys.[foreign_key_columns$]
GO
CREATE VIEW sys.all_parameters AS
SELECT p.object_id, p.name, p.parameter_id, p.system_type_id, p.user_type_id, p.max_length, p.precision, p.scale,
    p.is_output, CAST(0 AS bit) AS is_cursor_ref, p.has_default_value, CAST(0 AS bit) AS is_xml_document,
    CAST(NULL AS sql_variant) AS default_value, 0 AS xml_collection_id, p.is_readonly, CAST(1 AS bit) AS is_nullable
FROM sys.[parameters$] p
GO
CREATE VIEW sys.parameters AS
SELECT *
FROM sys.all_parameters
GO
CREATE VIEW sys.extended_properties AS
SELECT class,
    CAST(CASE class WHEN 0 THEN 'DATABASE' WHEN 1 THEN 'OBJECT_OR_COLUMN' WHEN 2 THEN 'PARAMETER' WHEN 3 THEN
        'SCHEMA' WHEN 6 THEN 'TYPE' ELSE 'INDEX' END AS nvarchar(60)) AS class_desc, major_id, minor_id, name, value
FROM sys.[properties$]
GO
CREATE VIEW sys.assemblies AS
SELECT CAST('Microsoft.SqlServer.Types' AS sysname) AS name, 4 AS principal_id, 1 AS assembly_id,
    CAST('microsoft.sqlserver.types, version=16.0.0.0' AS nvarchar(4000)) AS clr_name,
    CAST(3 AS tinyint) AS permission_set, CAST('UNSAFE_ACCESS' AS nvarchar(60)) AS permission_set_desc,
    CAST(1 AS bit) AS is_visible, CAST('2022-01-01' AS datetime) AS create_date,
    CAST('2022-01-01' AS datetime) AS modify_date, CAST(0 AS bit) AS is_user_defined
GO
CREATE VIEW sys.xml_schema_collections AS
SELECT 1 AS xml_collection_id, 4 AS schema_id, CAST(NULL AS int) AS principal_id, CAST('sys' AS sysname) AS name,
    CAST('2022-01-01' AS datetime) AS create_date, CAST('2022-01-01' AS datetime) AS modify_date
GO
CREATE VIEW sys.sql_dependencies AS
SELECT CAST(d.is_schema_bound_reference AS tinyint) AS class,
    CAST(CASE d.is_schema_bound_reference WHEN 0 THEN 'OBJECT_OR_COLUMN_REFERENCE_NON_SCHEMA_BOUND'
        ELSE 'OBJECT_OR_COLUMN_REFERENCE_SCHEMA_BOUND' END AS nvarchar(60)) AS class_desc,
    d.referencing_id AS object_id, 0 AS column_id, d.referenced_id AS referenced_major_id, 0 AS referenced_minor_id,
    CAST(0 AS bit) AS is_selected, CAST(0 AS bit) AS is_updated, CAST(0 AS bit) AS is_select_all
FROM sys.[dependencies$] AS d
GO
CREATE VIEW sys.sql_expression_dependencies AS
SELECT d.referencing_id, 0 AS referencing_minor_id, CAST(1 AS tinyint) AS referencing_class,
    CAST('OBJECT_OR_COLUMN' AS nvarchar(60)) AS referencing_class_desc, d.is_schema_bound_reference,
    CAST(1 AS tinyint) AS referenced_class, CAST('OBJECT_OR_COLUMN' AS nvarchar(60)) AS referenced_class_desc,
    CAST(NULL AS sysname) AS referenced_server_name, CAST(NULL AS sysname) AS referenced_database_name,
    d.referenced_schema_name, d.referenced_entity_name, d.referenced_id, 0 AS referenced_minor_id,
    CAST(0 AS bit) AS is_caller_dependent, CAST(0 AS bit) AS is_ambiguous
FROM sys.[dependencies$] AS d
GO
CREATE VIEW sys.sequences AS
SELECT *
FROM sys.objects
WHERE type = 'SO'
GO
CREATE VIEW sys.numbered_procedures AS
SELECT 0 AS object_id, CAST(0 AS smallint) AS procedure_number, CAST(NULL AS nvarchar(max)) AS definition
WHERE 1 = 0
GO
CREATE VIEW sys.masked_columns AS
SELECT *, CAST(NULL AS nvarchar(4000)) AS masking_function
FROM sys.all_columns
WHERE 1 = 0
