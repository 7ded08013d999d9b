#pragma once

struct tds_dblib_dbprocess;

/// \name The process-wide db-lib callbacks
/// They run on whatever thread is inside db-lib, and fill that thread's part of MSSQLMessageList. Nothing is
/// ever thrown through them.
/// @{

/// Collects a client error; always returns INT_CANCEL. `dberrstr` is UTF-8.
int err_handler(tds_dblib_dbprocess *dbproc, int severity, int dberr, int oserr, char *dberrstr,
                char *oserrstr);
/// Collects a server message, except 5701 and 5703 (database and language changes), which are ignored.
int msg_handler(tds_dblib_dbprocess *dbproc, int msgno, int msgstate, int severity, char *msgtext,
                char *srvname, char *procname, int line);
/// Called by db-lib when its wait for a server was interrupted: decides whether to cancel the run. Passes all
/// other errors to err_handler().
int interruptible_err_handler(tds_dblib_dbprocess *dbproc, int severity, int dberr, int oserr, char *dberrstr,
                              char *oserrstr);
/// The two callbacks of dbsetinterrupt().
int check_interrupt(void *dbproc);
int handle_interrupt(void *dbproc);

/// @}
