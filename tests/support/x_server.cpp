#include "x_server.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <utility>

namespace orv_test {

x_server::x_server(int display, std::string options)
    : display_{display}, options_{std::move(options)} {
  start();
}

std::string x_server::name() const {
  return ":" + std::to_string(display_);
}

// The server writes its display's number once it listens.
void x_server::start() {
  const std::string told = std::string{getenv("ORV_PLATFORM_ROOT")} + "/x-server" + name();
  std::filesystem::remove(told);
  const std::string command = "exec Xvfb " + name() +
                              " -screen 0 800x480x24 -noreset -nolisten tcp -nolisten unix"
                              " -displayfd 3 " +
                              options_ + " 3>" + told + " 2>/dev/null";
  process_ = std::make_unique<background>(std::vector<std::string>{"sh", "-c", command});
  std::error_code not_yet;
  const auto listens = [&] {
    const auto size = std::filesystem::file_size(told, not_yet);
    return !not_yet && size != 0;
  };
  EXPECT_TRUE(eventually(listens, 30'000)) << "Xvfb did not start";
}

}  // namespace orv_test
