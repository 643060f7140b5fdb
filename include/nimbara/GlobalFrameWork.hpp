#pragma once
// Names of the validation report files and writing them whole.
#include <filesystem>
#include <string>
#include <string_view>

#include "nimbara/export.hpp"

namespace nimbara::GlobalFrameWork {

// 0 to 99, from a generator reseeded from the seconds-since-midnight timer at every call.
NIMBARA_API int RandomNumber();

// "ErrosGuia_" + yyyymmddhhnnss + hundredths of a second + RandomNumber + ".txt", no folder.
NIMBARA_API std::string GeraNomeFicheiro();

// The folder joined with a fresh name; a name already taken is retried in the same folder. The name
// may be taken by another writer before it is used: WriteUniqueReport takes it for sure.
NIMBARA_API std::string GetUniqueFileName(std::string_view folder);

// True for any file whose length can be read, an empty one included.
NIMBARA_API bool FileExists(const std::filesystem::path& path);

// Writes the contents and a line break, replacing the file whole; a failure leaves any old file as
// it was and is reported only through the answer, which the old callers ignore.
NIMBARA_API bool EscreveFicheiro(const std::filesystem::path& path, std::string_view contents);

// Writes the contents and a line break into a new file of the folder named by GeraNomeFicheiro,
// never over another file (a taken name is retried in the same folder, across threads and
// processes), and answers its path. Nothing is left behind on failure: throws std::system_error
// with the folder and the cause.
NIMBARA_API std::filesystem::path WriteUniqueReport(const std::filesystem::path& folder, std::string_view contents);

// Nothing is ever written into the folder the library or program is installed in. Reports and PDFs
// go, unless the host or user names another folder, to the current working folder (answered as an
// absolute path); the print log to $XDG_STATE_HOME/nimbara/nimbara.log, or
// ~/.local/state/nimbara/nimbara.log when XDG_STATE_HOME is unset or relative. The log's folder is
// made when the first entry is written.
NIMBARA_API std::filesystem::path DefaultOutputFolder();
NIMBARA_API std::filesystem::path DefaultPrintLog();

// Removes every file this process is still writing (reports, PDFs); safe to call from a signal
// handler, so that a program stopped by a signal leaves nothing half-written.
NIMBARA_API void RemovePendingFiles();

}  // namespace nimbara::GlobalFrameWork
