/// @file
/// What a store without preferences saves.
#pragma once

namespace vemora::testing {

inline constexpr char kEmptyPrivateFile[] =
    "{\n"
    "    \"This Computer Only\": {}\n"
    "}";

inline constexpr char kEmptySharedFile[] =
    "{\n"
    "    \"Shared for All Computers\": {},\n"
    "    \"Windows Only\": {},\n"
    "    \"Mac Only\": {},\n"
    "    \"Web Only\": {},\n"
    "    \"iOS Only\": {},\n"
    "    \"Android Only\": {}\n"
    "}";

}  // namespace vemora::testing
