-- The agent's tables and the procedures that keep them. There is no agent: a job that is started is noted as running
-- until it is stopped.
CREATE TABLE syscategories (category_id int IDENTITY(0, 1) NOT NULL, category_class int NOT NULL, category_type tinyint NOT NULL, name sysname NOT NULL)
INSERT INTO syscategories (category_class, category_type, name) SELECT 1, 1, N'[Uncategorized (Local)]'
INSERT INTO syscategories (category_class, category_type, name) SELECT 1, 1, N'Database Maintenance'
CREATE TABLE sysjobs (
    job_id uniqueidentifier NOT NULL, originating_server_id int NOT NULL DEFAULT 0, name sysname NOT NULL,
    enabled tinyint NOT NULL, description nvarchar(512) NULL, start_step_id int NOT NULL, category_id int NOT NULL,
    owner_sid varbinary(85) NOT NULL, notify_level_eventlog int NOT NULL, notify_level_email int NOT NULL,
    notify_level_netsend int NOT NULL, notify_level_page int NOT NULL, notify_email_operator_id int NOT NULL,
    notify_netsend_operator_id int NOT NULL, notify_page_operator_id int NOT NULL, delete_level int NOT NULL,
    date_created datetime NOT NULL, date_modified datetime NOT NULL, version_number int NOT NULL)
CREATE UNIQUE CLUSTERED INDEX clust ON sysjobs (job_id)
CREATE INDEX nc1 ON sysjobs (name)
CREATE TABLE sysjobsteps (
    job_id uniqueidentifier NOT NULL, step_id int NOT NULL, step_name sysname NOT NULL, subsystem nvarchar(40) NOT NULL,
    command nvarchar(3200) NULL, flags int NOT NULL, additional_parameters nvarchar(4000) NULL,
    cmdexec_success_code int NOT NULL, on_success_action tinyint NOT NULL, on_success_step_id int NOT NULL,
    on_fail_action tinyint NOT NULL, on_fail_step_id int NOT NULL, server sysname NULL, database_name sysname NULL,
    database_user_name sysname NULL, retry_attempts int NOT NULL, retry_interval int NOT NULL,
    os_run_priority int NOT NULL, output_file_name nvarchar(200) NULL, last_run_outcome int NOT NULL,
    last_run_duration int NOT NULL, last_run_retries int NOT NULL, last_run_date int NOT NULL, last_run_time int NOT NULL,
    proxy_id int NULL, step_uid uniqueidentifier NULL)
CREATE UNIQUE CLUSTERED INDEX clust ON sysjobsteps (job_id, step_id)
CREATE TABLE sysschedules (
    schedule_id int IDENTITY(1, 1) NOT NULL PRIMARY KEY, schedule_uid uniqueidentifier NOT NULL,
    originating_server_id int NOT NULL DEFAULT 0, name sysname NOT NULL, owner_sid varbinary(85) NOT NULL,
    enabled int NOT NULL, freq_type int NOT NULL, freq_interval int NOT NULL, freq_subday_type int NOT NULL,
    freq_subday_interval int NOT NULL, freq_relative_interval int NOT NULL, freq_recurrence_factor int NOT NULL,
    active_start_date int NOT NULL, active_end_date int NOT NULL, active_start_time int NOT NULL,
    active_end_time int NOT NULL, date_created datetime NOT NULL, date_modified datetime NOT NULL,
    version_number int NOT NULL)
CREATE TABLE sysjobschedules (
    schedule_id int NULL, job_id uniqueidentifier NULL, next_run_date int NOT NULL DEFAULT 0,
    next_run_time int NOT NULL DEFAULT 0)
CREATE TABLE sysjobservers (
    job_id uniqueidentifier NOT NULL, server_id int NOT NULL, last_run_outcome tinyint NOT NULL,
    last_outcome_message nvarchar(4000) NULL, last_run_date int NOT NULL, last_run_time int NOT NULL,
    last_run_duration int NOT NULL)
CREATE TABLE syssessions (session_id int IDENTITY(1, 1) NOT NULL PRIMARY KEY, agent_start_date datetime NOT NULL)
INSERT INTO syssessions (agent_start_date) SELECT GETDATE()
CREATE TABLE sysjobactivity (
    session_id int NOT NULL, job_id uniqueidentifier NOT NULL, run_requested_date datetime NULL,
    run_requested_source sysname NULL, queued_date datetime NULL, start_execution_date datetime NULL,
    last_executed_step_id int NULL, last_executed_step_date datetime NULL, stop_execution_date datetime NULL,
    job_history_id int NULL, next_scheduled_run_date datetime NULL)
CREATE TABLE sysjobhistory (
    instance_id int IDENTITY(1, 1) NOT NULL, job_id uniqueidentifier NOT NULL, step_id int NOT NULL,
    step_name sysname NOT NULL, sql_message_id int NOT NULL, sql_severity int NOT NULL, message nvarchar(4000) NULL,
    run_status int NOT NULL, run_date int NOT NULL, run_time int NOT NULL, run_duration int NOT NULL,
    operator_id_emailed int NOT NULL, operator_id_netsent int NOT NULL, operator_id_paged int NOT NULL,
    retries_attempted int NOT NULL, server sysname NOT NULL)
GO
CREATE VIEW sysjobs_view AS
SELECT job_id, CAST(@@SERVERNAME AS sysname) AS originating_server, name, enabled, description, start_step_id, category_id,
       owner_sid, notify_level_eventlog, notify_level_email, notify_level_netsend, notify_level_page,
       notify_email_operator_id, notify_netsend_operator_id, notify_page_operator_id, delete_level, date_created,
       date_modified, version_number, originating_server_id, CAST(0 AS bit) AS master_server
FROM sysjobs
GO
CREATE PROCEDURE sp_verify_job_identifiers
    @name_of_name_parameter varchar(60), @name_of_id_parameter varchar(60),
    @job_name sysname OUTPUT, @job_id uniqueidentifier OUTPUT
AS
SET NOCOUNT ON
DECLARE @given varchar(36)
IF @job_name IS NULL AND @job_id IS NULL
BEGIN
    RAISERROR(14294, 16, 1, @name_of_id_parameter, @name_of_name_parameter)
    RETURN 1
END
IF @job_id IS NOT NULL
BEGIN
    SELECT @given = CONVERT(varchar(36), @job_id), @job_name = NULL
    SELECT @job_name = name FROM sysjobs WHERE job_id = @job_id
    IF @job_name IS NULL
    BEGIN
        RAISERROR(14262, 16, 1, @name_of_id_parameter, @given)
        RETURN 1
    END
    RETURN 0
END
SELECT @job_id = job_id FROM sysjobs WHERE name = @job_name
IF @job_id IS NULL
BEGIN
    RAISERROR(14262, 16, 1, @name_of_name_parameter, @job_name)
    RETURN 1
END
RETURN 0
GO
CREATE PROCEDURE sp_add_job
    @job_name sysname, @enabled tinyint = 1, @description nvarchar(512) = NULL, @start_step_id int = 1,
    @category_name sysname = NULL, @category_id int = NULL, @owner_login_name sysname = NULL,
    @notify_level_eventlog int = 2, @notify_level_email int = 0, @notify_level_netsend int = 0,
    @notify_level_page int = 0, @notify_email_operator_name sysname = NULL,
    @notify_netsend_operator_name sysname = NULL, @notify_page_operator_name sysname = NULL,
    @delete_level int = 0, @job_id uniqueidentifier = NULL OUTPUT, @originating_server sysname = NULL
AS
SET NOCOUNT ON
IF EXISTS (SELECT * FROM sysjobs WHERE name = @job_name)
BEGIN
    RAISERROR(14261, 16, 1, '@job_name', @job_name)
    RETURN 1
END
IF @category_name IS NOT NULL
BEGIN
    SELECT @category_id = category_id FROM syscategories WHERE name = @category_name
    IF @category_id IS NULL
    BEGIN
        RAISERROR(14262, 16, 1, '@category_name', @category_name)
        RETURN 1
    END
END
SELECT @job_id = NEWID()
INSERT INTO sysjobs (job_id, name, enabled, description, start_step_id, category_id, owner_sid, notify_level_eventlog,
                     notify_level_email, notify_level_netsend, notify_level_page, notify_email_operator_id,
                     notify_netsend_operator_id, notify_page_operator_id, delete_level, date_created, date_modified,
                     version_number)
SELECT @job_id, @job_name, @enabled, ISNULL(@description, N'No description available.'), @start_step_id,
       ISNULL(@category_id, 0), 0x01, @notify_level_eventlog, @notify_level_email, @notify_level_netsend,
       @notify_level_page, 0, 0, 0, @delete_level, GETDATE(), GETDATE(), 1
RETURN 0
GO
CREATE PROCEDURE sp_update_job
    @job_id uniqueidentifier = NULL, @job_name sysname = NULL, @new_name sysname = NULL, @enabled tinyint = NULL,
    @description nvarchar(512) = NULL, @start_step_id int = NULL
AS
SET NOCOUNT ON
DECLARE @status int
EXEC @status = sp_verify_job_identifiers '@job_name', '@job_id', @job_name OUTPUT, @job_id OUTPUT
IF @status <> 0
    RETURN 1
IF @new_name <> @job_name AND EXISTS (SELECT * FROM sysjobs WHERE name = @new_name)
BEGIN
    RAISERROR(14261, 16, 1, '@new_name', @new_name)
    RETURN 1
END
UPDATE sysjobs
SET name = ISNULL(@new_name, name), enabled = ISNULL(@enabled, enabled), description = ISNULL(@description, description),
    start_step_id = ISNULL(@start_step_id, start_step_id), date_modified = GETDATE(), version_number = version_number + 1
WHERE job_id = @job_id
RETURN 0
GO
CREATE PROCEDURE sp_add_jobstep
    @job_id uniqueidentifier = NULL, @job_name sysname = NULL, @step_id int = NULL, @step_name sysname,
    @subsystem nvarchar(40) = N'TSQL', @command nvarchar(3200) = NULL, @additional_parameters nvarchar(4000) = NULL,
    @cmdexec_success_code int = 0, @on_success_action tinyint = 1, @on_success_step_id int = 0,
    @on_fail_action tinyint = 2, @on_fail_step_id int = 0, @server sysname = NULL, @database_name sysname = NULL,
    @database_user_name sysname = NULL, @retry_attempts int = 0, @retry_interval int = 0, @os_run_priority int = 0,
    @output_file_name nvarchar(200) = NULL, @flags int = 0
AS
SET NOCOUNT ON
DECLARE @status int
EXEC @status = sp_verify_job_identifiers '@job_name', '@job_id', @job_name OUTPUT, @job_id OUTPUT
IF @status <> 0
    RETURN 1
IF EXISTS (SELECT * FROM sysjobsteps WHERE job_id = @job_id AND step_name = @step_name)
BEGIN
    RAISERROR(14261, 16, 1, '@step_name', @step_name)
    RETURN 1
END
DECLARE @steps int
SELECT @steps = COUNT(*) FROM sysjobsteps WHERE job_id = @job_id
IF @step_id IS NULL OR @step_id > @steps
    SELECT @step_id = @steps + 1
UPDATE sysjobsteps SET step_id = step_id + 1000 WHERE job_id = @job_id AND step_id >= @step_id
UPDATE sysjobsteps SET step_id = step_id - 999 WHERE job_id = @job_id AND step_id > 1000
INSERT INTO sysjobsteps
SELECT @job_id, @step_id, @step_name, @subsystem, @command, @flags, @additional_parameters, @cmdexec_success_code,
       @on_success_action, @on_success_step_id, @on_fail_action, @on_fail_step_id, @server,
       ISNULL(@database_name, CASE @subsystem WHEN N'TSQL' THEN N'master' END), @database_user_name, @retry_attempts,
       @retry_interval, @os_run_priority, @output_file_name, 0, 0, 0, 0, 0, NULL, NEWID()
UPDATE sysjobs SET date_modified = GETDATE(), version_number = version_number + 1 WHERE job_id = @job_id
RETURN 0
GO
CREATE PROCEDURE sp_add_schedule
    @schedule_name sysname, @enabled tinyint = 1, @freq_type int = 1, @freq_interval int = 0, @freq_subday_type int = 1,
    @freq_subday_interval int = 0, @freq_relative_interval int = 0, @freq_recurrence_factor int = 0,
    @active_start_date int = NULL, @active_end_date int = 99991231, @active_start_time int = 0,
    @active_end_time int = 235959, @owner_login_name sysname = NULL, @schedule_uid uniqueidentifier = NULL OUTPUT,
    @schedule_id int = NULL OUTPUT
AS
SET NOCOUNT ON
SELECT @schedule_uid = NEWID()
INSERT INTO sysschedules (schedule_uid, name, owner_sid, enabled, freq_type, freq_interval, freq_subday_type,
                          freq_subday_interval, freq_relative_interval, freq_recurrence_factor, active_start_date,
                          active_end_date, active_start_time, active_end_time, date_created, date_modified,
                          version_number)
SELECT @schedule_uid, @schedule_name, 0x01, @enabled, @freq_type, @freq_interval, @freq_subday_type,
       @freq_subday_interval, @freq_relative_interval, @freq_recurrence_factor,
       ISNULL(@active_start_date, CAST(CONVERT(char(8), GETDATE(), 112) AS int)), @active_end_date, @active_start_time,
       @active_end_time, GETDATE(), GETDATE(), 1
SELECT @schedule_id = SCOPE_IDENTITY()
RETURN 0
GO
CREATE PROCEDURE sp_attach_schedule
    @job_id uniqueidentifier = NULL, @job_name sysname = NULL, @schedule_id int = NULL, @schedule_name sysname = NULL
AS
SET NOCOUNT ON
DECLARE @status int
EXEC @status = sp_verify_job_identifiers '@job_name', '@job_id', @job_name OUTPUT, @job_id OUTPUT
IF @status <> 0
    RETURN 1
IF @schedule_id IS NULL
    SELECT @schedule_id = schedule_id FROM sysschedules WHERE name = @schedule_name
IF NOT EXISTS (SELECT * FROM sysschedules WHERE schedule_id = @schedule_id)
BEGIN
    RAISERROR(14262, 16, 1, '@schedule_name', @schedule_name)
    RETURN 1
END
IF NOT EXISTS (SELECT * FROM sysjobschedules WHERE schedule_id = @schedule_id AND job_id = @job_id)
    INSERT INTO sysjobschedules (schedule_id, job_id) SELECT @schedule_id, @job_id
RETURN 0
GO
CREATE PROCEDURE sp_detach_schedule
    @job_id uniqueidentifier = NULL, @job_name sysname = NULL, @schedule_id int = NULL, @schedule_name sysname = NULL,
    @delete_unused_schedule bit = 0
AS
SET NOCOUNT ON
DECLARE @status int
EXEC @status = sp_verify_job_identifiers '@job_name', '@job_id', @job_name OUTPUT, @job_id OUTPUT
IF @status <> 0
    RETURN 1
IF @schedule_id IS NULL
    SELECT @schedule_id = schedule_id FROM sysschedules WHERE name = @schedule_name
DELETE FROM sysjobschedules WHERE schedule_id = @schedule_id AND job_id = @job_id
IF @delete_unused_schedule = 1 AND NOT EXISTS (SELECT * FROM sysjobschedules WHERE schedule_id = @schedule_id)
    DELETE FROM sysschedules WHERE schedule_id = @schedule_id
RETURN 0
GO
CREATE PROCEDURE sp_add_jobschedule
    @job_id uniqueidentifier = NULL, @job_name sysname = NULL, @name sysname, @enabled tinyint = 1, @freq_type int = 1,
    @freq_interval int = 0, @freq_subday_type int = 0, @freq_subday_interval int = 0, @freq_relative_interval int = 0,
    @freq_recurrence_factor int = 0, @active_start_date int = NULL, @active_end_date int = 99991231,
    @active_start_time int = 0, @active_end_time int = 235959, @schedule_id int = NULL OUTPUT
AS
SET NOCOUNT ON
DECLARE @status int
EXEC @status = sp_verify_job_identifiers '@job_name', '@job_id', @job_name OUTPUT, @job_id OUTPUT
IF @status <> 0
    RETURN 1
EXEC sp_add_schedule @schedule_name = @name, @enabled = @enabled, @freq_type = @freq_type,
    @freq_interval = @freq_interval, @freq_subday_type = @freq_subday_type,
    @freq_subday_interval = @freq_subday_interval, @freq_relative_interval = @freq_relative_interval,
    @freq_recurrence_factor = @freq_recurrence_factor, @active_start_date = @active_start_date,
    @active_end_date = @active_end_date, @active_start_time = @active_start_time, @active_end_time = @active_end_time,
    @schedule_id = @schedule_id OUTPUT
EXEC sp_attach_schedule @job_id = @job_id, @schedule_id = @schedule_id
RETURN 0
GO
CREATE PROCEDURE sp_add_jobserver
    @job_id uniqueidentifier = NULL, @job_name sysname = NULL, @server_name sysname = NULL
AS
SET NOCOUNT ON
DECLARE @status int
EXEC @status = sp_verify_job_identifiers '@job_name', '@job_id', @job_name OUTPUT, @job_id OUTPUT
IF @status <> 0
    RETURN 1
IF EXISTS (SELECT * FROM sysjobservers WHERE job_id = @job_id)
BEGIN
    RAISERROR(14269, 16, 1, @job_name, @server_name)
    RETURN 1
END
INSERT INTO sysjobservers SELECT @job_id, 0, 5, NULL, 0, 0, 0
RETURN 0
GO
CREATE PROCEDURE sp_start_job
    @job_name sysname = NULL, @job_id uniqueidentifier = NULL, @error_flag int = 1, @server_name sysname = NULL,
    @step_name sysname = NULL, @output_flag int = 1
AS
SET NOCOUNT ON
DECLARE @status int, @text nvarchar(400)
EXEC @status = sp_verify_job_identifiers '@job_name', '@job_id', @job_name OUTPUT, @job_id OUTPUT
IF @status <> 0
    RETURN 1
IF NOT EXISTS (SELECT * FROM sysjobservers WHERE job_id = @job_id)
BEGIN
    RAISERROR(14256, 16, 1, @job_name)
    RETURN 1
END
SELECT @text = SUSER_SNAME()
IF EXISTS (SELECT * FROM sysjobactivity
           WHERE job_id = @job_id AND start_execution_date IS NOT NULL AND stop_execution_date IS NULL)
BEGIN
    SELECT @text = N'Request to run job ' + @job_name + N' (from User ' + @text
                 + N') refused because the job is already running from a request by User ' + @text + N'.'
    RAISERROR(22022, 16, 1, @text)
    RETURN 1
END
INSERT INTO sysjobactivity (session_id, job_id, run_requested_date, run_requested_source, start_execution_date)
SELECT MAX(session_id), @job_id, GETDATE(), N'4', GETDATE() FROM syssessions
IF @output_flag = 1
    RAISERROR(14243, 0, 1, @job_name)
RETURN 0
GO
CREATE PROCEDURE sp_stop_job
    @job_name sysname = NULL, @job_id uniqueidentifier = NULL, @originating_server sysname = NULL,
    @server_name sysname = NULL
AS
SET NOCOUNT ON
DECLARE @status int, @text nvarchar(400)
EXEC @status = sp_verify_job_identifiers '@job_name', '@job_id', @job_name OUTPUT, @job_id OUTPUT
IF @status <> 0
    RETURN 1
IF NOT EXISTS (SELECT * FROM sysjobactivity
               WHERE job_id = @job_id AND start_execution_date IS NOT NULL AND stop_execution_date IS NULL)
BEGIN
    SELECT @text = N'Request to stop job ' + @job_name + N' (from User ' + SUSER_SNAME()
                 + N') refused because the job is not currently running.'
    RAISERROR(22022, 16, 1, @text)
    RETURN 1
END
INSERT INTO sysjobhistory (job_id, step_id, step_name, sql_message_id, sql_severity, message, run_status, run_date,
                           run_time, run_duration, operator_id_emailed, operator_id_netsent, operator_id_paged,
                           retries_attempted, server)
SELECT @job_id, 0, N'(Job outcome)', 0, 0, N'The job was stopped prior to completion by User ' + SUSER_SNAME() + N'.', 3,
       CAST(CONVERT(char(8), start_execution_date, 112) AS int),
       CAST(REPLACE(CONVERT(char(8), start_execution_date, 108), ':', '') AS int),
       DATEDIFF(ss, start_execution_date, GETDATE()), 0, 0, 0, 0, @@SERVERNAME
FROM sysjobactivity
WHERE job_id = @job_id AND start_execution_date IS NOT NULL AND stop_execution_date IS NULL
UPDATE sysjobactivity SET stop_execution_date = GETDATE()
WHERE job_id = @job_id AND start_execution_date IS NOT NULL AND stop_execution_date IS NULL
RAISERROR(14254, 0, 1, @job_name)
RETURN 0
GO
CREATE PROCEDURE sp_delete_job
    @job_id uniqueidentifier = NULL, @job_name sysname = NULL, @originating_server sysname = NULL,
    @delete_history bit = 1, @delete_unused_schedule bit = 1
AS
SET NOCOUNT ON
DECLARE @status int
EXEC @status = sp_verify_job_identifiers '@job_name', '@job_id', @job_name OUTPUT, @job_id OUTPUT
IF @status <> 0
    RETURN 1
SELECT schedule_id INTO #schedules FROM sysjobschedules WHERE job_id = @job_id
DELETE FROM sysjobschedules WHERE job_id = @job_id
IF @delete_unused_schedule = 1
    DELETE FROM sysschedules
    WHERE schedule_id IN (SELECT schedule_id FROM #schedules)
      AND schedule_id NOT IN (SELECT schedule_id FROM sysjobschedules WHERE schedule_id IS NOT NULL)
IF @delete_history = 1
    DELETE FROM sysjobhistory WHERE job_id = @job_id
DELETE FROM sysjobactivity WHERE job_id = @job_id
DELETE FROM sysjobservers WHERE job_id = @job_id
DELETE FROM sysjobsteps WHERE job_id = @job_id
DELETE FROM sysjobs WHERE job_id = @job_id
RETURN 0
GO
-- Three jobs to look at.
EXEC sp_add_job @job_name = N'Nightly stock count', @description = N'Counts what is in stock, and warns.',
    @category_name = N'Database Maintenance'
EXEC sp_add_jobstep @job_name = N'Nightly stock count', @step_name = N'Count', @database_name = N'shop',
    @command = N'SELECT SUM(InStock) FROM dbo.Products', @on_success_action = 3
EXEC sp_add_jobstep @job_name = N'Nightly stock count', @step_name = N'Warn', @database_name = N'shop',
    @command = N'SELECT Name FROM dbo.Products WHERE InStock = 0 AND Discontinued = 0', @on_success_action = 3,
    @retry_attempts = 2, @retry_interval = 5
EXEC sp_add_jobstep @job_name = N'Nightly stock count', @step_name = N'Tidy up', @subsystem = N'CmdExec',
    @command = N'echo done'
EXEC sp_add_jobschedule @job_name = N'Nightly stock count', @name = N'Every night at two', @freq_type = 4,
    @freq_interval = 1, @freq_subday_type = 1, @active_start_date = 20240101, @active_start_time = 20000
EXEC sp_add_jobserver @job_name = N'Nightly stock count'
EXEC sp_add_job @job_name = N'Weekly report', @description = N'What the shop has sold.'
EXEC sp_add_jobstep @job_name = N'Weekly report', @step_name = N'Report', @database_name = N'shop',
    @command = N'SELECT COUNT(*) FROM dbo.Orders'
EXEC sp_add_jobserver @job_name = N'Weekly report'
EXEC sp_add_job @job_name = N'Import of the old catalogue', @enabled = 0, @description = N'Not needed any more.'
EXEC sp_add_jobstep @job_name = N'Import of the old catalogue', @step_name = N'Import', @database_name = N'shop',
    @command = N'PRINT ''Nothing to import.'''
EXEC sp_add_jobserver @job_name = N'Import of the old catalogue'
