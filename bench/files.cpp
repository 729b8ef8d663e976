#include "files.h"

#include <cstdio>
#include <filesystem>
#include <set>
#include <stdexcept>

#include "prefs/JsonCommon.h"

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace vemora::bench {
namespace {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using UniqueFile = std::unique_ptr<std::FILE, FileCloser>;

UniqueFile OpenFile(const std::string& path, const char* mode) {
  UniqueFile file(std::fopen(path.c_str(), mode));
  if (file == nullptr) {
    throw std::runtime_error("cannot open " + path);
  }
  return file;
}

#ifdef _WIN32
bool Flush(std::FILE* file) { return _commit(_fileno(file)) == 0; }
#else
bool Flush(std::FILE* file) { return fsync(fileno(file)) == 0; }
#endif

}  // namespace

std::string GetFile(Size size, const std::string& name) {
  const std::filesystem::path folder = std::filesystem::path(BENCH_WORK_FOLDER) / GetName(size);
  std::filesystem::create_directories(folder);
  return (folder / name).u8string();
}

StoreFiles::StoreFiles(Size size)
    : private_file(GetFile(size, "private.json")), shared_file(GetFile(size, "shared.json")) {}

void StoreFiles::Write(Size size) {
  static std::set<Size> written;
  if (!written.insert(size).second) {
    return;
  }
  const StoreFiles files(size);
  std::filesystem::remove(files.private_file);
  std::filesystem::remove(files.shared_file);
  prefs::JsonCommon store;
  store.SetPaths(ToText(files.private_file), ToText(files.shared_file));
  store.LoadPreferences();
  WriteAll(GetPreferences(size), store);
  store.SavePreferences();
}

std::unique_ptr<char[]> ReadFile(const std::string& path, std::size_t* size) {
  const UniqueFile file = OpenFile(path, "rb");
  const auto length = static_cast<std::size_t>(std::filesystem::file_size(path));
  std::unique_ptr<char[]> buffer(new char[length + 1]);
  if (std::fread(buffer.get(), 1, length, file.get()) != length) {
    throw std::runtime_error("cannot read " + path);
  }
  buffer[length] = '\0';
  if (size != nullptr) {
    *size = length;
  }
  return buffer;
}

void WriteFile(const std::string& path, const char* data, std::size_t size) {
  const UniqueFile file = OpenFile(path, "wb");
  if (std::fwrite(data, 1, size, file.get()) != size) {
    throw std::runtime_error("cannot write " + path);
  }
}

void ReplaceFlushed(const std::string& path, const char* data, std::size_t size) {
  const std::string temporary = path + ".new";
  {
    const UniqueFile file = OpenFile(temporary, "wb");
    if (std::fwrite(data, 1, size, file.get()) != size || std::fflush(file.get()) != 0 ||
        !Flush(file.get())) {
      throw std::runtime_error("cannot write " + temporary);
    }
  }
  std::filesystem::rename(temporary, path);
}

}  // namespace vemora::bench
