/// @file
/// What the hosts of the lifetime tests do: the steps named on their command lines, in order.
#pragma once

#include <windows.h>

#include <cstdlib>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "prefs/Preferences.h"

namespace vemora::testing {

/// The functions of the DLL, however the host came by them.
struct FrontDoor {
  decltype(&prefs::Get) get;
  decltype(&prefs::Destroy) destroy;
  decltype(&prefs::SetPaths) set_paths;
  decltype(&prefs::SetSavePrefsFlag) set_save_prefs_flag;
};

inline FrontDoor front_door;

inline void Write() { front_door.get().WriteInt(L"Host", L"written", 1); }

/// Runs the steps that follow the two paths on the command line; false when one is unknown.
inline bool RunSteps(const std::vector<std::wstring>& arguments) {
  if (arguments.size() < 2) {
    return false;
  }
  const std::map<std::wstring, void (*)()> plain_steps = {
      {L"get", [] { front_door.get(); }},
      {L"write", Write},
      {L"save", [] { front_door.get().SavePreferences(); }},
      {L"destroy", [] { front_door.destroy(); }},
      {L"flags-00", [] { front_door.set_save_prefs_flag(false, false); }},
      {L"flags-01", [] { front_door.set_save_prefs_flag(false, true); }},
      {L"flags-10", [] { front_door.set_save_prefs_flag(true, false); }},
      {L"flags-11", [] { front_door.set_save_prefs_flag(true, true); }},
      {L"write-at-exit", [] { std::atexit(Write); }},
      {L"exit", [] { std::exit(EXIT_SUCCESS); }},
      {L"_exit", [] { _exit(EXIT_SUCCESS); }},
      {L"abort", [] { std::abort(); }},
      {L"throw", [] { throw std::runtime_error("nobody catches this"); }},
      {L"crash", [] { RaiseException(EXCEPTION_ACCESS_VIOLATION, 0, 0, nullptr); }},
      {L"terminate", [] { TerminateProcess(GetCurrentProcess(), EXIT_SUCCESS); }},
  };
  for (std::size_t i = 2; i < arguments.size(); ++i) {
    if (arguments[i] == L"set-paths") {
      front_door.set_paths(arguments[0], arguments[1], {});
      continue;
    }
    const auto step = plain_steps.find(arguments[i]);
    if (step == plain_steps.end()) {
      return false;
    }
    step->second();
  }
  return true;
}

}  // namespace vemora::testing
