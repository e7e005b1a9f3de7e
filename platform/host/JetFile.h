#pragma once
// Jet database files (".mdb" of the Jet 3 and Jet 4 engines): recognising them by
// their header and reading their tables through libmdb into a mirror.

#include <functional>
#include <string>

namespace qi {

class MirrorWriter;

/// The Jet version of a file by its header: 3 or 4 (4 also for the later ACE format),
/// 0 when the file is no Jet database (or can't be read).
int jetFileVersion(const std::string& path);

/// The message of a Jet file that can't be read, naming the file.
std::string jetUnreadableMessage(const std::string& path);

/// Reads every user table of the Jet file for which `wanted` answers true (all when it is
/// empty) into `mirror`, in the file's order, rows in stored order. Quarn's tables and
/// columns take the spelling the system uses. Throws DbError with jetUnreadableMessage
/// when libmdb can't read the file. libmdb is not hardened against damaged files: run this
/// in a process of its own (see the program qi_jetmirror) when the file is not trusted.
void readJetFile(const std::string& path, MirrorWriter& mirror,
                 const std::function<bool(const std::string& table)>& wanted = {});

/// Text of a Jet date/time value (days since 30.12.1899; the fraction is the time of day,
/// also before 1899) as "YYYY-MM-DD HH:MM:SS"; empty outside the years 100 to 9999.
std::string jetDateText(double serial);

} // namespace qi
