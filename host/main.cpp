// orv-host: a host process for the agent. Loads the library, starts the agent, runs the default
// main loop, and stops both on SIGTERM or SIGINT.

#include <dlfcn.h>
#include <glib-unix.h>
#include <glib.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "command_line.h"
#include "host_process.h"

namespace {

constexpr auto children_patience = std::chrono::seconds{2};

struct agent {
  int (*start)(void);
  void (*stop)(void);
};

template <class Function>
bool find(void* library, const char* name, Function*& function) {
  function = reinterpret_cast<Function*>(dlsym(library, name));
  return function != nullptr;
}

bool load(const std::string& path, agent& loaded) {
  void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_GLOBAL);
  if (library == nullptr || !find(library, "orv_init_handler", loaded.start) ||
      !find(library, "orv_destroy_handler", loaded.stop)) {
    fprintf(stderr, "orv-host: cannot load the agent: %s\n", dlerror());
    return false;
  }
  return true;
}

gboolean quit(gpointer loop) {
  g_main_loop_quit(static_cast<GMainLoop*>(loop));
  return G_SOURCE_CONTINUE;
}

// The agent leaves its log reader running in the background. As the reaper of what it started, the
// host finds such processes among its own children and ends them; one that stays is left alone.
void end_children() {
  std::ifstream children{"/proc/thread-self/children"};
  std::vector<pid_t> ended;
  for (pid_t child = 0; children >> child;) {
    kill(child, SIGTERM);
    ended.push_back(child);
  }
  const auto deadline = std::chrono::steady_clock::now() + children_patience;
  for (const pid_t child : ended) {
    while (waitpid(child, nullptr, WNOHANG) == 0 && std::chrono::steady_clock::now() < deadline) {
      std::this_thread::sleep_for(std::chrono::milliseconds{1});
    }
  }
}

int run(const agent& loaded) {
  GMainLoop* loop = g_main_loop_new(nullptr, FALSE);
  g_unix_signal_add(SIGTERM, quit, loop);
  g_unix_signal_add(SIGINT, quit, loop);
  prctl(PR_SET_CHILD_SUBREAPER, 1);
  platform::name_this_process_host();  // its log reader ends with it, however it ends
  const bool started = loaded.start() == 0;
  if (started) {
    puts("orv-host: the agent runs; SIGTERM or SIGINT ends it");
    fflush(stdout);
    g_main_loop_run(loop);
    loaded.stop();
    end_children();
  } else {
    fputs("orv-host: the agent did not start; the lines above and the log say why\n", stderr);
  }
  g_main_loop_unref(loop);
  return started ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app;
  orv_host::options given;
  orv_host::describe_program(app, given);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : 2;
  }
  agent loaded{};
  return load(given.library, loaded) ? run(loaded) : 1;
}
