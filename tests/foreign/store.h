// Another platform's store: a server keeps the values in its memory and pushes changes to watchers,
// over the Unix socket "store" in the directory that ELSEWHERE names. Written from the contract of
// the store's functions alone; nothing of it is shared with the stand-ins in platform/.
//
// Left out: values and watches that outlive the server, rights on keys, values over 128 KiB, an end
// of pushing a key that is watched no more, and clients that misbehave: one that connects and sends
// nothing holds up all others, one that does not read misses what follows some 200 writes.
//
// A connection carries one request and its reply, each one packet; TYPE is 'i' or 's':
//   'G' KEY                  TYPE TEXT, or "-"
//   'S' KEY NUL TYPE TEXT    "+"
//   'L'                      a number; the connection stays, and then carries the key of each write
//                            that is watched, in the order of the writes
//   'W' KEY NUL NUMBER       "+"; from now on the connection of that number watches the key
#ifndef ORV_TESTS_FOREIGN_STORE_H
#define ORV_TESTS_FOREIGN_STORE_H

#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/types.h>
#include <sys/un.h>

#include <string>

namespace elsewhere {

using socket_call = int (*)(int fd, const sockaddr* address, socklen_t size);

// A socket that was bound or connected to the store's address; a call on it fails if that failed.
inline int open_socket(socket_call bind_or_connect) {
  sockaddr_un address{AF_UNIX, {}};
  const char* directory = getenv("ELSEWHERE");
  stpncpy(address.sun_path,
          ((directory != nullptr ? directory : "") + std::string{"/store"}).c_str(),
          sizeof address.sun_path - 1);
  const int fd = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
  bind_or_connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  return fd;
}

inline bool send_packet(int fd, const std::string& packet, int flags = 0) {
  return send(fd, packet.data(), packet.size(), MSG_NOSIGNAL | flags) >= 0;
}

// Empty at the connection's end.
inline std::string receive_packet(int fd) {
  std::string packet(131072, '\0');
  const ssize_t size = recv(fd, packet.data(), packet.size(), 0);
  packet.resize(size > 0 ? static_cast<size_t>(size) : 0);
  return packet;
}

}  // namespace elsewhere

#endif
