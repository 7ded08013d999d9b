EXEC msdb.dbo.sp_start_job @job_id = N'{SQLAGENT_JOB_ID}'
