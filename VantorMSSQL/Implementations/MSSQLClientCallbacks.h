#pragma once

struct tds_dblib_dbprocess;

/// \name The process-wide db-lib callbacks
/// They run on whatever thread is inside db-lib, and fill that thread's part of MSSQLMessageList. Nothing is
/// ever thrown through them.
/// @{

/// Collects a client error; always answers INT_CANCEL. `dberrstr` is UTF-8.
int err_handler(tds_dblib_dbprocess *dbproc, int severity, int dberr, int oserr, char *dberrstr,
                char *oserrstr);
/// Collects a server message, except 5701 and 5703, which tell of changes that are of no interest.
int msg_handler(tds_dblib_dbprocess *dbproc, int msgno, int msgstate, int severity, char *msgtext,
                char *srvname, char *procname, int line);
/// What db-lib asks first when its waiting for a server was interrupted: whether a run is to be cancelled.
/// Answers everything else with err_handler().
int interruptible_err_handler(tds_dblib_dbprocess *dbproc, int severity, int dberr, int oserr, char *dberrstr,
                              char *oserrstr);
/// The pair that dbsetinterrupt() wants.
int check_interrupt(void *dbproc);
int handle_interrupt(void *dbproc);

/// @}
