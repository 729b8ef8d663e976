#include "prefs/LoadResult.h"

#include "prefs/LoadResultState.h"

namespace vemora::prefs {

namespace {

bool keep_unreadable_files = false;
LoadResult last_result;

}  // namespace

void KeepUnreadableFiles(bool keep) { keep_unreadable_files = keep; }

bool KeepsUnreadableFiles() { return keep_unreadable_files; }

LoadResult& LastLoadResult() { return last_result; }

}  // namespace vemora::prefs
