// orvctl: drives a camera's test agent from a command line.

#include "command_line.h"

int main(int argc, char** argv) {
  return orvctl::run_program({argv, static_cast<size_t>(argc)});
}
