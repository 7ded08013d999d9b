-- This version does not report the format of dates and the isolation level.
SELECT CONVERT(nvarchar(4000), NULL) AS options_batch
