-- The view shows every job to an administrator and his own ones to everybody else.
SELECT
    CONVERT(nvarchar(36), j.job_id) AS job_id,
    j.name AS job_name
FROM msdb.dbo.sysjobs_view AS j
ORDER BY j.name
