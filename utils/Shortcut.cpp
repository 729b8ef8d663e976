// `ResolveShortcut` of utils/Files.h.
#include <windows.h>

#include <objbase.h>
#include <shlobj.h>

#include <memory>

#include "utils/Files.h"
#include "utils/SystemFile.h"
#include "utils/SystemFunction.h"

namespace vemora::utils {
namespace {

struct InterfaceReleaser {
  void operator()(IUnknown* object) const { object->Release(); }
};
template <typename Interface>
using UniqueInterface = std::unique_ptr<Interface, InterfaceReleaser>;

constexpr wchar_t kComLibrary[] = L"ole32.dll";

/// COM for the life of the object. A thread that has COM in another mode can use it as well.
class ComScope {
 public:
  ComScope() {
    const auto initialize =
        FindSystemFunction<decltype(CoInitializeEx)>(kComLibrary, "CoInitializeEx");
    if (initialize != nullptr && SUCCEEDED(initialize(nullptr, COINIT_APARTMENTTHREADED))) {
      uninitialize_ = FindSystemFunction<decltype(CoUninitialize)>(kComLibrary, "CoUninitialize");
    }
  }
  ComScope(const ComScope&) = delete;
  ComScope& operator=(const ComScope&) = delete;
  ~ComScope() {
    if (uninitialize_ != nullptr) {
      uninitialize_();
    }
  }

 private:
  decltype(CoUninitialize)* uninitialize_ = nullptr;
};

}  // namespace

vemora_ustring ResolveShortcut(const vemora_ustring& path) {
  if (!CanNameFile(path) || path.size() >= MAX_PATH) {
    return {};
  }
  const ComScope com;
  const auto create =
      FindSystemFunction<decltype(CoCreateInstance)>(kComLibrary, "CoCreateInstance");
  void* object = nullptr;
  if (create == nullptr || FAILED(create(__uuidof(ShellLink), nullptr, CLSCTX_INPROC_SERVER,
                                         __uuidof(IShellLinkW), &object))) {
    return {};
  }
  const UniqueInterface<IShellLinkW> link(static_cast<IShellLinkW*>(object));
  if (FAILED(link->QueryInterface(__uuidof(IPersistFile), &object))) {
    return {};
  }
  const UniqueInterface<IPersistFile> file(static_cast<IPersistFile*>(object));
  const vemora_ustring absolute = GetAbsolutePath(path);
  wchar_t target[MAX_PATH] = {};
  if (FAILED(file->Load(absolute.c_str(), STGM_READ)) ||
      FAILED(link->GetPath(target, MAX_PATH, nullptr, 0))) {
    return {};
  }
  return target;
}

}  // namespace vemora::utils
