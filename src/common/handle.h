// Handles of the C library that release themselves; one pointer wide.
#ifndef ORV_COMMON_HANDLE_H
#define ORV_COMMON_HANDLE_H

#include <dirent.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>

#include <memory>

namespace orv {

struct closer {
  void operator()(FILE* file) const noexcept { fclose(file); }
  void operator()(DIR* directory) const noexcept { closedir(directory); }
};
template <class T>
using handle = std::unique_ptr<T, closer>;

// For streams opened with the plain mode "r", where no flag can ask for it; null stays null.
inline FILE* closed_on_exec(FILE* file) noexcept {
  if (file != nullptr) {
    fcntl(fileno(file), F_SETFD, FD_CLOEXEC);
  }
  return file;
}

// What malloc returned, a text of the store included.
struct freer {
  void operator()(void* memory) const noexcept { free(memory); }
};
using owned_text = std::unique_ptr<char, freer>;

}  // namespace orv

#endif
