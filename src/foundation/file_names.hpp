#pragma once
// Names of the validation report files and writing them whole.
#include <filesystem>
#include <string>
#include <string_view>

namespace nimbara::GlobalFrameWork {

// 0 to 99, from a generator reseeded from the seconds-since-midnight timer at every call.
int RandomNumber();

// "ErrosGuia_" + yyyymmddhhnnss + hundredths of a second + RandomNumber + ".txt", no folder.
std::string GeraNomeFicheiro();

// The folder joined with a fresh name; after a collision the replacement is a bare name, so it
// resolves against the current folder, as the report names always have.
std::string GetUniqueFileName(std::string_view folder);

// True for any file whose length can be read, an empty one included.
bool FileExists(const std::filesystem::path& path);

// Writes the contents and a line break, replacing the file whole; a failure leaves any old file as
// it was and is reported only through the answer, which the old callers ignore.
bool EscreveFicheiro(const std::filesystem::path& path, std::string_view contents);

}  // namespace nimbara::GlobalFrameWork
