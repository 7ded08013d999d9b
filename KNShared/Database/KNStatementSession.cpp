#include "Database/KNStatementSession.h"

KNStatementSession::~KNStatementSession() = default;
