EXEC msdb.dbo.sp_stop_job @job_id = N'{SQLAGENT_JOB_ID}'
