-- A job with one T-SQL step that runs every night at two. Put in names, database and command, then run. Either all of
-- it is made or nothing.
DECLARE @JobId uniqueidentifier;
DECLARE @Owner nvarchar(128);
DECLARE @Result int;

SET @Owner = SUSER_SNAME();
SET @Result = 1;

BEGIN TRANSACTION;

EXEC @Result = msdb.dbo.sp_add_job
	@job_name = N'New job',
	@enabled = 1,
	@description = N'What the job is for.',
	@owner_login_name = @Owner,
	@job_id = @JobId OUTPUT;

IF @Result = 0
	EXEC @Result = msdb.dbo.sp_add_jobstep
		@job_id = @JobId,
		@step_name = N'First step',
		@subsystem = N'TSQL',
		@database_name = N'master',
		@command = N'SELECT GETDATE();',
		@retry_attempts = 0,
		@on_success_action = 1, -- quit with success
		@on_fail_action = 2;    -- quit with failure

IF @Result = 0
	EXEC @Result = msdb.dbo.sp_add_jobschedule
		@job_id = @JobId,
		@name = N'Every night at two',
		@freq_type = 4,             -- daily
		@freq_interval = 1,         -- every day
		@active_start_time = 20000; -- hhmmss

IF @Result = 0
	EXEC @Result = msdb.dbo.sp_add_jobserver
		@job_id = @JobId,
		@server_name = N'(local)';

IF @Result = 0
	COMMIT TRANSACTION;
ELSE IF @@TRANCOUNT > 0
	ROLLBACK TRANSACTION;
