// Where effects find their data files.
#ifndef SPECIALEFFECTS_SFX_DATAFILES_H
#define SPECIALEFFECTS_SFX_DATAFILES_H

#include <functional>
#include <string>
#include <vector>

namespace sfx {

/// The folders in which data files are looked for, in order: the caller's unless it is empty, those of an
/// installation, the user's cache.
std::vector<std::string> DataFolders(const std::string& callersFolder);

/// The path of a data file, or "" if it is not found.
std::string FindDataFile(const std::string& name, const std::string& callersFolder);

/// Like FindDataFile, but makes the file first where it is missing and `make(path)` can make it: in the
/// caller's folder, or else in the cache. The file appears whole or not at all, also when several
/// threads or processes make it at once. `make` may write nothing.
std::string FindOrMakeDataFile(const std::string& name, const std::string& callersFolder,
                               const std::function<void(const std::string& path)>& make);

}  // namespace sfx

#endif
