#pragma once

#include <string>

namespace SampleServer {

/// Makes a test of every case in the files of a folder. A file holds cases with ==== between them: a line "#
/// title", the SQL (its batches with a line "go" between them), a line ---- and what RecordingSink::log()
/// must be after it. Every case runs on a new server, in the database "shop".
void registerCases(const std::string &folder);

} // namespace SampleServer
