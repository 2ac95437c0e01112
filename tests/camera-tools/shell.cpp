#include "shell.h"

#include <sys/wait.h>

#include <array>
#include <cstdio>

shell_result run_in_camera(const std::string& command) {
  const std::string setup = "PATH='" ORV_CAMERA_TOOLS "':$PATH; ";
  FILE* pipe = popen((setup + command).c_str(), "re");
  if (pipe == nullptr) return {"", -1};
  shell_result result{};
  std::array<char, 4096> buffer;
  while (const std::size_t length = fread(buffer.data(), 1, buffer.size(), pipe)) {
    result.output.append(buffer.data(), length);
  }
  const int status = pclose(pipe);
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return result;
}
