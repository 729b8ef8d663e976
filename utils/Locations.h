/// @file
/// The folders of the user and of the host application. Paths have "/" as separator unless a
/// function says otherwise. Nothing here throws for a failure of the system: the result is false or
/// empty.
#pragma once

#include "utils/PathText.h"
#include "utils/vemora_ustring.h"

namespace vemora::utils {

/// Folders of the shell; empty when the system does not give one.
/// @{
vemora_ustring GetFontsFolder();
vemora_ustring GetProfileFolder();
vemora_ustring GetCommonAppDataFolder();
vemora_ustring GetAppDataFolder();
vemora_ustring GetDocumentsFolder();
/// As the system spells it: this one is not normalised, on purpose.
vemora_ustring GetPicturesFolder();
/// @}

/// Whether there is a folder of that name.
bool IsDirectory(const vemora_ustring& path);

/// Makes a folder and its missing parents; characters that Windows does not allow in names are
/// replaced, as by `NormalizePath`. A relative path works only below an existing folder that it
/// names.
/// @return true when there is a folder of that very path, or when it was made; false for "x?y" when
///         there is a folder "x_y" already
bool CreateDirectories(const vemora_ustring& path);

/// The per-user folder of a version of the host application, made if it is missing: with 18,
/// "Quillane/Quillane 2018" and then `subfolder`. Version 0 is the viewer, which has no subfolders.
/// @param roaming whether to look below the roaming or the local application data
/// @return the path, also when the folder could not be made; empty, and nothing is made, when the
///         system does not tell where application data goes
vemora_ustring GetPreferencesFolder(const vemora_ustring& subfolder, int version, bool roaming);

/// The roaming per-user folder of the current version.
vemora_ustring GetDefaultPreferencesFolder(const vemora_ustring& subfolder);

/// Where the host application is installed, spelled and separated as the registry of this computer
/// has it; empty when it is not installed.
vemora_ustring GetInstallLocation();

/// The folder "Parvel" below the install location; empty when there is no such location.
vemora_ustring GetParvelFolder();

}  // namespace vemora::utils
