// The directory that an address names. It holds the lock file; the stand-in keeps the store there
// too.
#ifndef ORV_CLIENT_STORE_DIRECTORY_H
#define ORV_CLIENT_STORE_DIRECTORY_H

#include <string>

namespace orv_client::store {

enum class directory_state { usable, missing, refused };

// Usable: a directory of this user's, closed to others. Otherwise `why` says in one line what is
// wrong, with its name, and what to do.
directory_state check_directory(const std::string& path, std::string& why);

// Made where it is missing, not what is above it.
bool make_directory(const std::string& path, std::string& why);

// A descriptor (close-on-exec), or -1 with the reason in `why`.
int open_directory(const std::string& path, std::string& why);

// Whether both paths lead to one directory.
bool same_directory(const std::string& one, const std::string& other);

// The directory of the address "store:".
std::string default_directory();

}  // namespace orv_client::store

#endif
