#pragma once

namespace orv::camera {

// Becomes the `program` that PATH would have found without this one. Returns only when that fails,
// with an exit status, and says on standard error what went wrong.
int exec_next_in_path(const char* program, char** argv);

}  // namespace orv::camera
