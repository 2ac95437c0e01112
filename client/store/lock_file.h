// Who may do what on a store, among all programs that use this library.
//
// One file in the store's directory, DIR/.orv-tools. Each right is a lock on a separate byte; a
// lock belongs to an open lock_file, also within a process, and ends with it, killed or not. The
// file's text says who took which right last and when, and whether answers are outstanding.
//
// The turn is for sending commands. The packet is in the key that queries answer in, so a query
// wipes it: a watch therefore holds the packet, and a query waits until the watch lends it. Who
// wants the packet shares `wanting` from before it has it until after. Only one watch has the
// monitors, and while it has them no other program starts or stops one.
#ifndef ORV_CLIENT_STORE_LOCK_FILE_H
#define ORV_CLIENT_STORE_LOCK_FILE_H

#include <functional>
#include <memory>
#include <string>

#include "../loop.h"

namespace orv_client::store {

enum class right { turn, monitors, packet, wanting };

class lock_file {
 public:
  // In that directory. Not usable: `why` says in one line what is wrong, with its name.
  lock_file(const std::string& directory, std::string& why);
  lock_file(const lock_file&) = delete;
  lock_file& operator=(const lock_file&) = delete;
  ~lock_file();

  [[nodiscard]] bool usable() const { return fd_ >= 0; }
  // Not when the file was removed since, with its directory.
  [[nodiscard]] bool in_place() const;

  // At once or not at all. Sharers exclude only those who take it alone. Those of this process that
  // wait for the right already come first.
  [[nodiscard]] bool try_take(right which);
  [[nodiscard]] bool try_share(right which);
  void release(right which);

  // Whether another holds or shares it.
  [[nodiscard]] bool taken_by_others(right which) const;

  // Commands that were written and whose answers nobody has seen: they may still come. The number
  // is in the file, so it outlives a program that gave up or was killed. Only with the turn.
  [[nodiscard]] int answers_outstanding() const;
  void set_answers_outstanding(int answers);

 private:
  friend class claims;

  void write_first_text();
  void close_file();
  bool set_lock(right which, short type);
  bool take_now(right which);
  void note_holder(right which) const;

  int fd_ = -1;
};

// Takes a right as soon as it is free, or gives up at the limit; given up when it is destroyed.
// Those of one process get it in their order. `done` says whether it was got; it is never called
// before the constructor returns, and may destroy this.
class claim {
 public:
  using function = std::function<void(bool taken)>;

  claim(lock_file& file, right which, steady_clock::time_point end, function done);
  claim(const claim&) = delete;
  claim& operator=(const claim&) = delete;
  ~claim();

 private:
  friend class claims;

  lock_file& file_;
  right which_;
  steady_clock::time_point end_;
  function done_;
};

}  // namespace orv_client::store

#endif
